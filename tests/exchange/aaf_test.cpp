// Charts in the exchange format: coordinates and zones in their written
// forms, missing fields and chunks, damaged records skipped by line, and a
// project that goes out and comes back the same.
#include "exchange/aaf.h"

#include <gtest/gtest.h>

#include "core/project_file.h"
#include "exchange/import.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

TEST(Aaf, ReadsTheWrittenForms) {
  TestSession t;
  const std::string text =
      "#A93:Einstein,Albert,m,14.3.1879g,11:30,Ulm,D\r\n"
      "#B93:*,48n24,9e59,0e39:56,L\r\n"
      "#ZNAM:LMT\r\n"
      "#COM:a comment, with commas\r\n"
      "#A93:Ferber,Tobias,m,27.9.1970,11:04,Kandel/Pfalz,D\n"
      "#B93:*,49N05,8E11,1he,0\n"
      "#A93:Summer,*,e,1.7.1983,12:00,New York,USA\n"
      "#B93:*,40n43,74w00,5hw00,1\n"
      "#A93:Zone by name,*,e,1.1.1990,10:00,London,UK\n"
      "#B93:*,51n30,0w10,GMT,0\n"
      "#A93:From the day,*,e,1.1.1990,10:00,Nowhere,*\n"
      "#B93:2447892.87500,*,*,*,*\n"
      "#A93:Date only,*,e,5.5.1955,*,*,*\n"
      "#A93:Bad date,*,e,31.2.1990,10:00,X,Y\n"
      "#A93:Bad time,*,e,1.2.1990,25:00,X,Y\n"
      "#A93:No date\n";
  const AafReadResult r = ReadAaf(t.session, text);
  ASSERT_EQ(r.Charts.size(), 6u);
  struct Expect {
    const char* name;
    bool position;
    double latitude, longitude;
    bool zone;
    double zoneHours;
  } expect[] = {
      {"Einstein", true, 48.4, -(9 + 59 / 60.0), true, -(39 * 60 + 56) / 3600.0},
      {"Ferber", true, 49 + 5 / 60.0, -(8 + 11 / 60.0), true, -1.0},
      {"Summer", true, 40 + 43 / 60.0, 74.0, true, 4.0},  // five hours west, one of daylight saving
      {"Zone by name", true, 51.5, 10 / 60.0, true, 0.0},
      {"From the day", false, 0, 0, true, -1.0},  // 10:00 local at 9:00 UT
      {"Date only", false, 0, 0, false, 0},
  };
  for (size_t i = 0; i < r.Charts.size(); ++i) {
    const AafChart& c = r.Charts[i];
    const Expect& e = expect[i];
    EXPECT_EQ(c.Name, e.name);
    EXPECT_EQ(c.HasPosition, e.position) << e.name;
    EXPECT_NEAR(c.Latitude, e.latitude, 1e-9) << e.name;
    EXPECT_NEAR(c.Longitude, e.longitude, 1e-9) << e.name;
    EXPECT_EQ(c.HasZone, e.zone) << e.name;
    EXPECT_NEAR(c.ZoneHours, e.zoneHours, 1e-6) << e.name;
  }
  EXPECT_EQ(r.Charts[0].ZoneName, "LMT");
  EXPECT_EQ(AafChartToRecord(r.Charts[0]).DetailLevel, 3);
  EXPECT_EQ(AafChartToRecord(r.Charts[4]).DetailLevel, 2);
  EXPECT_EQ(AafChartToRecord(r.Charts[5]).DetailLevel, 0);
  EXPECT_EQ(AafChartToRecord(r.Charts[0]).Description, "Albert Einstein");
  EXPECT_EQ(r.Skipped, (std::vector<std::string>{"Line 14: the date \"31.2.1990\" is not a date",
                                                 "Line 15: the time \"25:00\" is not a time", "Line 16: no date"}));
}

TEST(Aaf, AProjectGoesOutAndComesBackTheSame) {
  TestSession t;
  Session& s = t.session;
  ProjectHeader& h = s.project.Header;
  h.Title = "Known";
  h.Name = "Test Person";
  h.Date = "10 Jun 1950";
  h.Time = "2:20 pm";
  h.Place = "London, UK";
  h.Latitude = "51N30";
  h.Longitude = "0W10";
  h.ZoneMnemonic = "GMT";
  h.ZoneTime = "0:00";
  std::vector<EventRecord>& e = s.project.Events;
  e.assign(3, EventRecord{});
  e[1].Description = "Moved, at last";
  e[1].Day = 3, e[1].Month = 5, e[1].Year = 1985, e[1].Hour = 22, e[1].Minute = 30;
  e[1].DetailLevel = 3;
  e[1].ZoneAbbr = "CET";
  e[1].ZoneHours = -1.0f;
  e[1].Placename = "Paris, France";
  e[1].Latitude = 48.85f;
  e[1].Longitude = -2.35f;
  e[2].Description = "A year";
  e[2].Day = 1, e[2].Month = 7, e[2].Year = 1990, e[2].DayRange = 182;
  h.RecordCount = 2;

  const std::string path = t.dir.file("out.aaf");
  std::string error;
  ASSERT_TRUE(ExportAaf(s, path, error)) << error;
  const AafReadResult back = ReadAaf(s, testing::ReadBytes(path));
  ASSERT_EQ(back.Charts.size(), 3u);
  EXPECT_TRUE(back.Skipped.empty());
  EXPECT_EQ(back.Charts[0].Name, "Test Person");
  EXPECT_EQ(back.Charts[0].Hour, 14);
  EXPECT_NEAR(back.Charts[0].Longitude, 10 / 60.0, 1e-9);
  const EventRecord moved = AafChartToRecord(back.Charts[1]);
  EXPECT_EQ(moved.Description, "Moved; at last");  // fields hold no commas
  EXPECT_EQ((std::array<int, 6>{moved.Day, moved.Month, moved.Year, moved.Hour, moved.Minute, moved.DetailLevel}),
            (std::array<int, 6>{3, 5, 1985, 22, 30, 3}));
  EXPECT_EQ(moved.Placename, "Paris, France");
  EXPECT_EQ(moved.ZoneAbbr, "CET");
  EXPECT_FLOAT_EQ(moved.ZoneHours, -1.0f);
  EXPECT_NEAR(moved.Latitude, 48.85, 1.0 / 120);  // to the minute
  EXPECT_NEAR(moved.Longitude, -2.35, 1.0 / 120);
  EXPECT_EQ(AafChartToRecord(back.Charts[2]).DetailLevel, 0);

  // Imported as a new project; an existing destination is refused.
  const std::string dat = t.dir.file("imported.dat");
  AafReadResult read;
  ASSERT_TRUE(ImportAaf(s, path, dat, read, error)) << error;
  Session fresh(t.sink);
  ASSERT_TRUE(OpenProjectFiles(fresh, dat, nullptr));
  EXPECT_EQ(fresh.project.Header.RecordCount, 3);
  EXPECT_EQ(fresh.project.Header.Title, "Imported from out.aaf");
  EXPECT_FALSE(ImportAaf(s, path, dat, read, error));
  EXPECT_EQ(error, "imported.dat (destination file) already exists. Please enter a different file name to import to.");
}

}  // namespace
}  // namespace vintar
