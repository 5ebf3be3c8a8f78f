// Historical time zones: known offsets of the database, the place's own
// local mean time, the gap and overlap rule, the years past the zone files,
// the change table, bad input, and the Illinois rule against America/Chicago.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "places/zone_history.h"

namespace vintar {
namespace {

struct Known {
  const char* label;
  const char* zone;
  int year, month, day, hour, minute;
  double longitudeWest;
  double hours;
  const char* abbreviation;
  bool dst, lmt, gap, overlap;
};

TEST(ZoneHistory, KnownOffsets) {
  ZoneDatabase db;
  const double ulm = -(9.0 + 59.0 / 60.0);
  const Known cases[] = {
      // The place's own mean time, not Berlin's (-0:53:28).
      {"Ulm 1879", "Europe/Berlin", 1879, 3, 14, 12, 0, ulm, -(9.0 + 59.0 / 60.0) / 15.0, "LMT", false, true, false,
       false},
      {"Berlin 1600, Julian calendar", "Europe/Berlin", 1600, 2, 29, 12, 0, ulm, ulm / 15.0, "LMT", false, true, false,
       false},
      {"London 1900", "Europe/London", 1900, 6, 1, 12, 0, 0.1275, 0.0, "GMT", false, false, false, false},
      {"New York war time", "America/New_York", 1943, 7, 1, 12, 0, 74.0, 4.0, "EWT", true, false, false, false},
      {"New York winter", "America/New_York", 1990, 1, 15, 12, 0, 74.0, 5.0, "EST", false, false, false, false},
      {"Berlin gap", "Europe/Berlin", 2021, 3, 28, 2, 30, -13.4, -1.0, "CET", false, false, true, false},
      {"Berlin overlap", "Europe/Berlin", 2021, 10, 31, 2, 30, -13.4, -2.0, "CEST", true, false, false, true},
      {"Berlin just before the overlap", "Europe/Berlin", 2021, 10, 31, 1, 59, -13.4, -2.0, "CEST", true, false,
       false, false},
      {"Berlin just after the overlap", "Europe/Berlin", 2021, 10, 31, 3, 0, -13.4, -1.0, "CET", false, false, false,
       false},
      {"Sydney January", "Australia/Sydney", 2020, 1, 15, 12, 0, -151.2, -11.0, "AEDT", true, false, false, false},
      // Past the zone files (2037) the rules go on.
      {"Berlin summer 2050", "Europe/Berlin", 2050, 7, 1, 12, 0, -13.4, -2.0, "CEST", true, false, false, false},
      {"Berlin winter 2050", "Europe/Berlin", 2050, 1, 1, 12, 0, -13.4, -1.0, "CET", false, false, false, false},
      {"Berlin gap 2050 (27 March)", "Europe/Berlin", 2050, 3, 27, 2, 30, -13.4, -1.0, "CET", false, false, true,
       false},
      {"Sydney January 2100", "Australia/Sydney", 2100, 1, 15, 12, 0, -151.2, -11.0, "AEDT", true, false, false,
       false},
      // A zone that gave up its summer time keeps standard time later on.
      {"Istanbul 2050", "Europe/Istanbul", 2050, 7, 1, 12, 0, -29.0, -3.0, "+03", false, false, false, false},
      // Manila kept the American side of the date line until 1845.
      {"Manila 1840", "Asia/Manila", 1840, 6, 1, 12, 0, -121.0, -121.0 / 15.0 + 24.0, "LMT", false, true, false,
       false},
      {"Manila 1850", "Asia/Manila", 1850, 6, 1, 12, 0, -121.0, -121.0 / 15.0, "LMT", false, true, false, false},
      // A name in the wrong case is found when it is the only match.
      {"lower case name", "europe/london", 1990, 1, 15, 12, 0, 0.0, 0.0, "GMT", false, false, false, false},
  };
  for (const Known& k : cases) {
    SCOPED_TRACE(k.label);
    ZoneInForce z = db.ZoneAt(k.zone, k.year, k.month, k.day, k.hour, k.minute, 0, k.longitudeWest);
    ASSERT_FALSE(z.Failed) << z.Message;
    EXPECT_NEAR(z.Hours, k.hours, 1e-9);
    EXPECT_EQ(z.Abbreviation, k.abbreviation);
    EXPECT_EQ(z.IsDst, k.dst);
    EXPECT_EQ(z.IsLmt, k.lmt);
    EXPECT_EQ(z.InGap, k.gap);
    EXPECT_EQ(z.InOverlap, k.overlap);
  }
  // Ulm to the second: -0:39:56.
  ZoneInForce ulmZone = db.ZoneAt("Europe/Berlin", 1879, 3, 14, 12, 0, 0, ulm);
  EXPECT_EQ(std::lround(ulmZone.Hours * 3600.0), -(39 * 60 + 56));
  EXPECT_EQ(db.ZoneAt("europe/london", 1990, 1, 1, 0, 0, 0, 0.0).ZoneName, "Europe/London");
}

TEST(ZoneHistory, BadInputFailsCleanly) {
  ZoneDatabase db;
  struct Bad {
    const char* label;
    std::string zone;
    int year, month, day, hour, minute, second;
    double longitudeWest;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Bad cases[] = {
      {"unknown zone", "Europe/Atlantis", 2000, 1, 1, 0, 0, 0, 0.0},
      {"empty name", "", 2000, 1, 1, 0, 0, 0, 0.0},
      {"a path, not a name", "../../etc/passwd", 2000, 1, 1, 0, 0, 0, 0.0},
      {"bytes", std::string("Europe/\xff" "\x00" "Berlin", 15), 2000, 1, 1, 0, 0, 0, 0.0},
      {"30 February", "Europe/Berlin", 2000, 2, 30, 0, 0, 0, 0.0},
      {"29 February 1900", "Europe/Berlin", 1900, 2, 29, 0, 0, 0, 0.0},
      {"month 13", "Europe/Berlin", 2000, 13, 1, 0, 0, 0, 0.0},
      {"hour 24", "Europe/Berlin", 2000, 1, 1, 24, 0, 0, 0.0},
      {"negative minute", "Europe/Berlin", 2000, 1, 1, 0, -1, 0, 0.0},
      {"year too late", "Europe/Berlin", 10000, 1, 1, 0, 0, 0, 0.0},
      {"year far too early", "Europe/Berlin", -2000000000, 1, 1, 0, 0, 0, 0.0},
      {"longitude out of range", "Europe/Berlin", 2000, 1, 1, 0, 0, 0, 181.0},
      {"longitude not a number", "Europe/Berlin", 2000, 1, 1, 0, 0, 0, nan},
  };
  for (const Bad& b : cases) {
    SCOPED_TRACE(b.label);
    ZoneInForce z = db.ZoneAt(b.zone, b.year, b.month, b.day, b.hour, b.minute, b.second, b.longitudeWest);
    EXPECT_TRUE(z.Failed);
    EXPECT_FALSE(z.Message.empty());
  }
  EXPECT_EQ(db.ZoneAt("Europe/Atlantis", 2000, 1, 1, 0, 0, 0, 0.0).Message, "Unknown time zone: Europe/Atlantis");

  std::string message;
  EXPECT_TRUE(db.ZoneChanges("Europe/Atlantis", 1900, 2000, message).empty());
  EXPECT_EQ(message, "Unknown time zone: Europe/Atlantis");
  EXPECT_TRUE(db.ZoneChanges("Europe/London", 2000, 1900, message).empty());
  EXPECT_FALSE(message.empty());
  EXPECT_TRUE(db.ZoneChanges("Europe/London", 1, 9999, message).empty());
  EXPECT_FALSE(message.empty());
  // A zone without changes in the range is no failure.
  EXPECT_TRUE(db.ZoneChanges("Etc/UTC", 1900, 2000, message).empty());
  EXPECT_TRUE(message.empty());
}

TEST(ZoneHistory, ChangeTables) {
  ZoneDatabase db;
  std::string message;
  // The first British summer time: 21 May 1916, 2:00 GMT to 3:00 BST; back
  // on 1 October, 3:00 BST to 2:00 GMT.
  std::vector<ZoneChange> london = db.ZoneChanges("Europe/London", 1916, 1916, message);
  ASSERT_TRUE(message.empty()) << message;
  ASSERT_EQ(london.size(), 2u);
  const ZoneChange& bst = london[0];
  EXPECT_EQ(bst.Abbreviation, "BST");
  EXPECT_TRUE(bst.IsDst);
  EXPECT_DOUBLE_EQ(bst.HoursBefore, 0.0);
  EXPECT_DOUBLE_EQ(bst.Hours, -1.0);
  EXPECT_EQ(bst.ClockBefore.Month, 5);
  EXPECT_EQ(bst.ClockBefore.Day, 21);
  EXPECT_EQ(bst.ClockBefore.Hour, 2);
  EXPECT_EQ(bst.ClockAfter.Hour, 3);
  EXPECT_DOUBLE_EQ(bst.UtJulianDay, 2421004.5 + 2.0 / 24.0);  // 1916-05-21 2:00 UT
  EXPECT_EQ(london[1].Abbreviation, "GMT");
  EXPECT_EQ(london[1].ClockAfter.Month, 10);

  // The table and the lookup agree: just after each change of Berlin's
  // history the lookup gives the new offset.
  std::vector<ZoneChange> berlin = db.ZoneChanges("Europe/Berlin", 1890, 2060, message);
  ASSERT_TRUE(message.empty()) << message;
  ASSERT_GT(berlin.size(), 100u);
  EXPECT_TRUE(berlin.front().IsDst == false && berlin.front().ClockAfter.Year == 1893);
  EXPECT_EQ(berlin.back().ClockAfter.Year, 2060);  // carried on past the zone files
  for (size_t i = 1; i < berlin.size(); ++i) ASSERT_GT(berlin[i].UtSeconds, berlin[i - 1].UtSeconds);
  for (const ZoneChange& c : berlin) {
    if (c.IsLmt) continue;
    const ZoneClock& after = c.ClockAfter;
    int minute = after.Minute + 1, hour = after.Hour;  // one minute on, clear of any overlap's start
    if (minute == 60) minute = 0, ++hour;
    if (hour == 24) continue;
    ZoneInForce z = db.ZoneAt("Europe/Berlin", after.Year, after.Month, after.Day, hour, minute, after.Second, -13.4);
    ASSERT_FALSE(z.Failed) << z.Message;
    if (c.Hours > c.HoursBefore) {
      // Clocks went back: one minute on is the first pass, still the old time.
      EXPECT_TRUE(z.InOverlap) << after.Year << "-" << after.Month << "-" << after.Day;
    } else {
      EXPECT_DOUBLE_EQ(z.Hours, c.Hours) << after.Year << "-" << after.Month << "-" << after.Day;
    }
  }
}

TEST(ZoneHistory, NamesAreSortedAndUsable) {
  ZoneDatabase db;
  std::vector<std::string> names = db.ZoneNames();
  ASSERT_GT(names.size(), 300u);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_TRUE(std::binary_search(names.begin(), names.end(), "America/Chicago"));
  EXPECT_FALSE(std::binary_search(names.begin(), names.end(), "localtime"));
  // Every name can be looked up, in its first and in a recent year.
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(db.ZoneAt(name, 1850, 6, 1, 12, 0, 0, 0.0).Failed);
    EXPECT_FALSE(db.ZoneAt(name, 2024, 6, 1, 12, 0, 0, 0.0).Failed);
  }
}

// The Illinois rule holds exactly on the days America/Chicago kept its own
// daylight saving time (at noon) from 1920 to June 1959.
TEST(ZoneHistory, IllinoisRuleFollowsChicago) {
  ZoneDatabase db;
  EXPECT_TRUE(IllinoisStandardTimeRule("IL", "US", 1950, 7, 1));
  EXPECT_TRUE(IllinoisStandardTimeRule(" il", "us ", 1959, 6, 30));
  EXPECT_FALSE(IllinoisStandardTimeRule("IL", "US", 1959, 7, 1));
  EXPECT_FALSE(IllinoisStandardTimeRule("IL", "US", 1943, 7, 1));  // federal war time
  EXPECT_FALSE(IllinoisStandardTimeRule("IL", "US", 1962, 7, 1));
  EXPECT_FALSE(IllinoisStandardTimeRule("IN", "US", 1950, 7, 1));
  EXPECT_FALSE(IllinoisStandardTimeRule("IL", "CA", 1950, 7, 1));
  EXPECT_FALSE(IllinoisStandardTimeRule("IL", "US", 1950, 2, 30));
  int days = 0, ruled = 0;
  for (int y = 1918; y <= 1967; ++y)
    for (int m = 1; m <= 12; ++m)
      for (int d = 1; d <= 31; ++d) {
        ZoneInForce z = db.ZoneAt("America/Chicago", y, m, d, 12, 0, 0, 87.65);
        if (z.Failed) continue;  // no such day
        ++days;
        bool cityDst = z.Abbreviation == "CDT" && (y >= 1920 && (y < 1959 || (y == 1959 && m < 7)));
        ruled += cityDst;
        ASSERT_EQ(IllinoisStandardTimeRule("IL", "US", y, m, d), cityDst) << y << "-" << m << "-" << d;
      }
  EXPECT_GT(days, 18000);
  EXPECT_GT(ruled, 4000);
}

}  // namespace
}  // namespace vintar
