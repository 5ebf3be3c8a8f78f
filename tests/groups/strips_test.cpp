// The chart strips' engine: places on the modulus with and without a
// midpoint partner, empty strips, the strips of a match, labels and lists,
// and longitudes read from the cache against the ephemeris library itself.
#include "groups/strips.h"

#include <gtest/gtest.h>
#include <swephexp.h>

#include "calc/cache.h"
#include "calc/ephemeris.h"
#include "core/calendar.h"
#include "core/parse.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(Strips, PlacesOnTheModulus) {
  struct Case {
    const char* name;
    int harmonic;
    double sun, moon;  // longitudes, -1 unknown
    int partner;       // 0: none; otherwise the Moon
    double expected;   // StripX of the Sun
  };
  const Case cases[] = {
      {"whole zodiac", 1, 123.4, 10.0, 0, 123.4},
      {"whole zodiac, last degree", 1, 359.9, 10.0, 0, 359.9},
      {"fifth harmonic", 5, 123.4, 10.0, 0, 51.4},
      {"unknown", 1, -1.0, 10.0, 0, kStripUnknown},
      {"midpoint across 0 Aries", 1, 10.0, 350.0, kMoon, 0.0},
      {"the nearer midpoint", 1, 100.0, 300.0, kMoon, 20.0},
      {"midpoint in the 4th", 4, 100.0, 300.0, kMoon, 20.0},
      {"midpoint with an unknown partner", 1, 100.0, -1.0, kMoon, kStripUnknown},
      {"midpoint of an unknown point", 1, -1.0, 300.0, kMoon, kStripUnknown},
  };
  for (const Case& c : cases) {
    StripTable t;
    SetStripRecords(t, {7});
    t.StripLongitude[kSun][1] = c.sun;
    t.StripLongitude[kMoon][1] = c.moon;
    t.StripLongitude[kMars][1] = 200.0;
    t.PlotModulus = c.harmonic;
    t.MidpointPartner = c.partner;
    t.Shown = {kMars, kSun};
    ComputeStripPlaces(t);
    EXPECT_NEAR(t.StripX[kSun][1], c.expected, 1e-9) << c.name;
    EXPECT_LT(t.StripX[kSun][1], t.Modulus()) << c.name;
    EXPECT_EQ(t.StripX[kMoon][1], kStripUnknown) << c.name << ": not shown";
    // Ascending by place, the unknown first.
    const std::vector<int>& order = t.StripOrder[1];
    ASSERT_EQ(order.size(), 3u) << c.name;
    EXPECT_LE(t.StripX[order[1]][1], t.StripX[order[2]][1]) << c.name;
  }
}

TEST(Strips, EmptyStripsStayBlank) {
  testing::TestSession ts;
  ProjectState& p = ts.session.project;
  p.Events.assign(4, EventRecord{});
  p.Events[3].Description = "  Grandmother  ";
  p.Events[3].Day = 2, p.Events[3].Month = 5, p.Events[3].Year = 1931;
  p.Header.RecordCount = 3;
  StripTable t;
  SetStripRecords(t, {3, 0, 3});
  for (int s : {1, 3}) t.StripLongitude[kSun][s] = 45.0;
  t.StripLongitude[kSun][2] = 45.0;  // left over from an earlier chart
  t.Shown = {kSun};
  ComputeStripPlaces(t);
  EXPECT_EQ(t.LastUsed(), 3);
  EXPECT_EQ(ChartLabel(ts.session, t, 2), "");
  EXPECT_EQ(t.StripX[kSun][2], kStripUnknown);
  EXPECT_EQ(t.StripOrder[2].size(), 1u);
  EXPECT_EQ(ChartLabel(ts.session, t, 3), "3) Grandmother\n" + FormatDate(ts.session, 2, 5, 1931));
  EXPECT_EQ(ChartLabel(ts.session, t, 4), "");
  SetStripRecords(t, {9});  // past the project's records
  EXPECT_EQ(ChartLabel(ts.session, t, 1), "");
}

TEST(Strips, FromAMatch) {
  GroupSearchState state;
  // Two search points in a combination search: elements alternate Sun, Moon/Sun.
  state.SearchPoints = {{kSun, kSun}, {kMoon, kSun}};
  GroupMatch m;
  m.Harmonic = 5;
  m.Position = 36.0f;
  m.Hits = 3;
  m.FirstItem = 1;
  state.Matches.push_back(m);
  state.MatchCount = 1;
  state.Items.push_back({4, 1, 1});
  state.Items.push_back({2, 2, 1});
  state.Items.push_back({4, 3, 1});
  StripTable t;
  EXPECT_FALSE(StripsFromMatch(t, state, 2));
  ASSERT_TRUE(StripsFromMatch(t, state, 1));
  EXPECT_EQ(t.PlotModulus, 5);
  EXPECT_DOUBLE_EQ(t.ScaleStart, 0.5);
  EXPECT_EQ(t.StripRecord[1], 4);
  EXPECT_EQ(t.StripRecord[2], 2);
  EXPECT_EQ(t.StripRecord[3], 0);
  EXPECT_EQ(t.StripFocusPoint[1], kSun);
  EXPECT_EQ(t.StripFocusPoint[2], kStripFocusMidpoint);
  EXPECT_TRUE(t.StripSelected[2]);
  EXPECT_FALSE(t.StripSelected[3]);

  // Twelve charts in a match: the first ten make strips.
  state.Items.assign(1, GroupMatchItem{});
  for (int c = 1; c <= 12; ++c) state.Items.push_back({c, 1, 1});
  state.Matches[1].Hits = 12;
  ASSERT_TRUE(StripsFromMatch(t, state, 1));
  EXPECT_EQ(t.LastUsed(), 10);
  EXPECT_EQ(t.StripRecord[10], 10);
}

TEST(Strips, ListsClassesAndClamp) {
  testing::TestSession ts;
  const auto display = DisplayListEntries(ts.session);
  const auto high = HighListEntries(ts.session);
  ASSERT_FALSE(display.empty());
  EXPECT_EQ(high.front().Name, "None");
  EXPECT_EQ(high.size(), display.size() + 1);
  for (const StripListEntry& e : display) {
    EXPECT_NE(e.Point, kEarth);
    EXPECT_FALSE(e.Glyph.empty()) << e.Point;
  }
  const std::pair<int, int> classes[] = {{kMoon, kStripLuminaries}, {kSun, kStripLuminaries},
                                         {kMars, kStripPersonal},   {kSaturn, kStripSocial},
                                         {kPluto, kStripOuter},     {kChiron, kStripOuter},
                                         {kMeanNode, kStripAngles}, {kMidheaven, kStripAngles}};
  for (auto [point, colourClass] : classes) EXPECT_EQ(PointColourClass(point), colourClass) << point;
  EXPECT_EQ(ClampPlotModulus(0), 1);
  EXPECT_EQ(ClampPlotModulus(361), 360);
}

TEST(Strips, CommandLineForms) {
  testing::TestSession ts;
  ProjectState& p = ts.session.project;
  p.Events.assign(13, EventRecord{});
  p.Header.RecordCount = 12;
  p.Events[2].DayRange = 3;  // a range of days: no search chart
  struct Case {
    const char* records;
    bool ok;
    std::vector<int> expected;
  };
  const Case cases[] = {
      {"", true, {1, 3, 4, 5, 6, 7, 8, 9, 10, 11}}, {"4, 2,9", true, {4, 2, 9}}, {"0", false, {}},
      {"13", false, {}}, {"x", false, {}}, {"99999999999999", false, {}}, {" , ", false, {}},
  };
  for (const Case& c : cases) {
    std::vector<int> records;
    std::string error;
    EXPECT_EQ(StripRecordsFromText(ts.session, c.records, records, error), c.ok) << c.records;
    if (c.ok) EXPECT_EQ(records, c.expected) << c.records;
    else EXPECT_FALSE(error.empty()) << c.records;
  }
  std::vector<int> points;
  std::string error;
  ASSERT_TRUE(StripPointsFromText(ts.session, "Sun, moon,Asc,Sun", points, error));
  EXPECT_EQ(points, (std::vector<int>{kSun, kMoon, kAscendant}));
  ASSERT_TRUE(StripPointsFromText(ts.session, "all", points, error));
  EXPECT_EQ(points, SelectablePoints(ts.session));
  EXPECT_FALSE(StripPointsFromText(ts.session, "Sun,Earth", points, error));
  int point = 5;
  EXPECT_TRUE(StripPointFromText(ts.session, "none", point, error));
  EXPECT_EQ(point, 0);
}

// The longitudes a strip shows, read from the cache, against the library.
TEST(Strips, LoadedLongitudesMatchTheEphemeris) {
  testing::TestSession ts;
  Session& s = ts.session;
  SetEphemerisPath(s.prefs.SwissEphPath);
  ProjectState& p = s.project;
  p.ProjectPath = ts.dir.file("family.dat");
  p.Events.assign(4, EventRecord{});
  for (int n = 1; n <= 3; ++n) {
    EventRecord& e = p.Events[n];
    e.Description = "Member " + std::to_string(n);
    e.Year = static_cast<int16_t>(1940 + 17 * n);
    e.Month = static_cast<uint8_t>(2 * n);
    e.Day = static_cast<uint8_t>(5 + n);
    e.Hour = static_cast<uint8_t>(4 * n);
    e.DetailLevel = 3;
    e.Latitude = 48.0f;
    e.ZoneHours = -1.0f;
    e.JulianDay = RecordJulianDay(e);
  }
  p.Header.RecordCount = 3;
  p.Open = true;
  StripTable t;
  SetStripRecords(t, {3, 1, 2});
  t.Shown = {kSun, kMoon, kMars, kJupiter, kPluto};
  t.PlotModulus = 7;
  ASSERT_TRUE(RefreshStrips(s, t));

  testing::AngleErrorTracker error("strip longitudes against swe_calc");
  const std::pair<int, int> bodies[] = {{kSun, SE_SUN}, {kMoon, SE_MOON}, {kMars, SE_MARS},
                                        {kJupiter, SE_JUPITER}, {kPluto, SE_PLUTO}};
  for (int strip = 1; strip <= 3; ++strip) {
    EXPECT_EQ(t.StripLoaded[strip], t.StripRecord[strip]);
    const double jd = RecordJulianDay(p.Events[t.StripRecord[strip]]);
    for (auto [point, body] : bodies) {
      double xx[6];
      char serr[256];
      ASSERT_GE(swe_calc(jd, body, SEFLG_SPEED, xx, serr), 0) << serr;
      EXPECT_TRUE(error.Check(t.StripLongitude[point][strip], xx[0], 1e-4)) << strip << " " << point;
      EXPECT_TRUE(error.Check(t.StripX[point][strip], GroupMod(xx[0], 360.0 / 7), 1e-4)) << strip << " " << point;
    }
  }
  EXPECT_EQ(t.StripLongitude[kSun][4], -1.0);
}

}  // namespace
}  // namespace vintar
