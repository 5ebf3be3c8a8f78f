// The viability report: counts, warnings and the exact text.
#include <gtest/gtest.h>

#include "core/calendar.h"
#include "rectify/viability.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

// A project of events at the given day offsets from 1 Jan 1990, each with
// its range and enabled flag.
struct Event {
  double day;
  int range = 0;
  bool enabled = true;
};

void Fill(Session& s, const std::vector<Event>& events) {
  s.project.Events.assign(events.size() + 1, EventRecord{});
  for (size_t i = 0; i < events.size(); ++i) {
    EventRecord& r = s.project.Events[i + 1];
    r.Description = "Event " + std::to_string(i + 1);
    r.Year = 1990;
    r.Month = 1;
    r.Day = 1;
    r.DayRange = static_cast<uint8_t>(events[i].range);
    r.Enabled = events[i].enabled ? kTrue : kFalse;
    r.JulianDay = JulDay(1, 1, 1990) + events[i].day;
  }
  s.project.Header.RecordCount = static_cast<int32_t>(events.size());
}

std::vector<Event> Spaced(int n, double gap) {
  std::vector<Event> e;
  for (int i = 0; i < n; ++i) e.push_back({i * gap});
  return e;
}

TEST(Viability, CountsAndWarnings) {
  struct Case {
    const char* what;
    std::vector<Event> events;
    int usable, invalid, disabled, warnings;
    bool problems;
  } cases[] = {
      {"ten events 150 days apart", Spaced(10, 150.0), 10, 0, 0, 0, false},
      {"nine usable events", Spaced(9, 200.0), 9, 0, 0, 0, true},
      {"149.5 days apart", [] { auto e = Spaced(11, 200.0); e[5].day = e[4].day + 149.5; return e; }(), 10, 0, 0,
       1, true},
      {"range 29 usable, 30 invalid", [] { auto e = Spaced(12, 200.0); e[0].range = 29; e[1].range = 30; return e; }(),
       11, 1, 0, 0, false},
      {"disabled events leave the walk",
       [] { auto e = Spaced(12, 100.0); for (size_t i = 1; i < e.size(); i += 2) e[i].enabled = false; return e; }(),
       6, 0, 6, 0, true},
      {"an empty project", {}, 0, 0, 0, 0, true},
  };
  for (const auto& c : cases) {
    TestSession t;
    Fill(t.session, c.events);
    std::string text;
    bool problems = false;
    ViabilityCounts n = ViabilityReport(t.session, text, problems);
    EXPECT_EQ(n.Usable, c.usable) << c.what;
    EXPECT_EQ(n.Invalid, c.invalid) << c.what;
    EXPECT_EQ(n.Disabled, c.disabled) << c.what;
    EXPECT_EQ(n.IntervalWarnings, c.warnings) << c.what;
    EXPECT_EQ(problems, c.problems) << c.what;
    EXPECT_EQ(text.find("Too few usable events") != std::string::npos, c.usable < 10) << c.what;
  }
}

TEST(Viability, RangesFallIntoTheirBins) {
  TestSession t;
  std::vector<Event> e = Spaced(8, 200.0);
  const int ranges[] = {0, 1, 5, 6, 15, 16, 29, 0};
  for (size_t i = 0; i < e.size(); ++i) e[i].range = ranges[i];
  Fill(t.session, e);
  std::string text;
  bool problems;
  ViabilityCounts n = ViabilityReport(t.session, text, problems);
  EXPECT_EQ(n.Bins[1], 2);
  EXPECT_EQ(n.Bins[2], 2) << "a range of 1 counts with 2-5";
  EXPECT_EQ(n.Bins[3], 2);
  EXPECT_EQ(n.Bins[4], 2);
}

TEST(Viability, TheReportTextWordForWord) {
  TestSession t;
  ProjectHeader& h = t.session.project.Header;
  h.Title = "Test";
  h.Name = "Ann";
  h.Date = "1 Jan 1950";
  h.Time = "Unknown";
  h.ZoneMnemonic = "GMT";
  h.ZoneTime = "0:00";
  h.Place = "London";
  h.Latitude = "51N30";
  h.Longitude = "0W10";
  // Record 2 is earlier than record 1: the walk is in date order.
  Fill(t.session, {{300}, {0}, {100, 3}, {500, 40}, {700, 0, false}});
  std::string text;
  bool problems;
  ViabilityReport(t.session, text, problems);
  EXPECT_EQ(text,
            "\r\n*** RECTIFICATION VIABILITY REPORT *** \r\n\r\nDETAILS: \r\n"
            "  Project Title:Test\r\n"
            "  Name:         Ann\r\n"
            "  Date:         1 Jan 1950\r\n"
            "  Time:         Unknown\r\n"
            "  TimeZone:     0:00  GMT\r\n"
            "  Place:        London  51N30  0W10\r\n"
            "\r\nWARNINGS: \r\n"
            "  Date interval too small - Events 2 & 3 - 100 Days\r\n"
            "  Too few usable events - 2\r\n"
            "\r\nSUMMARY: \r\n"
            "  Total Events:   5\r\n"
            "  Disabled Events: 1\r\n"
            "  Invalid Events: 1\r\n"
            "  Usable Events: 2\r\n"
            "  Exact Dates:    2\r\n"
            "  2-5 Day Range: 1\r\n"
            "  6-15 Day Range: 0\r\n"
            "  > 15 Day Range: 0\r\n"
            "\r\n*** END REPORT ***\r\n");
  EXPECT_TRUE(problems);
}

}  // namespace
}  // namespace vintar
