// Auto Rectify: the scoring rule, the candidate list's text, and an
// end-to-end run on a life whose events were placed where slow transits hit
// the angles of a chart of known time: on one and two threads, with the two
// ranking settings, leaving the project's graph settings alone.
#include <gtest/gtest.h>

#include <cmath>

#include "calc/astro.h"
#include "core/calendar.h"
#include "calc/chart.h"
#include "core/parse.h"
#include "rectify/auto_rectify.h"
#include "calc/oracle.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

TEST(OverallScore, LeavesOutTheLowestOfTheThree) {
  struct Case {
    float t, s, d, overall;
  } cases[] = {
      {0.1f, 0.4f, 0.6f, 0.5f},   // T lowest: S and D
      {0.5f, 0.2f, 0.3f, 0.4f},   // S lowest: T and D
      {0.5f, 0.6f, 0.1f, 0.55f},  // D lowest: T and S
      {0.3f, 0.3f, 0.3f, 0.3f},   // all equal: the third branch, T and S
      {0.2f, 0.2f, 0.8f, 0.2f},   // T and S tie lowest: neither is below both, so T and S
      {0.0f, 0.0f, 0.0f, 0.0f},
  };
  for (const auto& c : cases) EXPECT_FLOAT_EQ(OverallScore(c.t, c.s, c.d), c.overall) << c.t << " " << c.s << " " << c.d;
}

// Days on which a slow planet stands exactly on a multiple of 90 degrees from
// `target`, between two Julian days: a 5-day scan for sign changes, refined
// by bisection.
std::vector<double> HardAspectDays(int body, double target, double from, double to) {
  auto separation = [&](double jd) { return Mod(testing::LibraryLongitude(body, jd) - target + 45.0, 90.0) - 45.0; };
  std::vector<double> days;
  double previous = separation(from);
  for (double jd = from + 5; jd <= to; jd += 5) {
    double now = separation(jd);
    if (previous < 0 && now >= 0 && now - previous < 10) {
      double a = jd - 5, b = jd;
      for (int i = 0; i < 30; ++i) {
        double m = (a + b) / 2;
        (separation(m) < 0 ? a : b) = m;
      }
      days.push_back(a);
    }
    previous = now;
  }
  return days;
}

// A life whose events fall on every hard transit of Saturn, Uranus, Neptune
// and Pluto to the angles of a chart cast for 10 June 1950, 14:20 GMT, London.
void BuildKnownLife(TestSession& t) {
  Session& s = t.session;
  ProjectHeader& h = s.project.Header;
  h.Title = "Known chart";
  h.Name = "Test Person";
  h.Date = "10 Jun 1950";
  h.Time = "Unknown";
  h.Place = "London";
  h.Latitude = "51N30";
  h.Longitude = "0W10";
  h.ZoneMnemonic = "GMT";
  h.ZoneTime = "0:00";
  h.EarliestTime = "11:00 am";
  h.LatestTime = "5:00 pm";
  ASSERT_TRUE(CalcChart(s, 1, h.Date, "14:20", h.ZoneTime, h.Longitude, h.Latitude));
  const double mc = s.charts.Longitude[kGeocentric][1][kMidheaven];
  const double asc = s.charts.Longitude[kGeocentric][1][kAscendant];
  h.NatalJulianDay = s.charts.Slots[1].ChartJD;

  // Events: every hard transit of Saturn, Uranus, Neptune and Pluto to the
  // two angles from 1955 to 2015.
  std::vector<double> days;
  for (int body : {6, 7, 8, 9})
    for (double angle : {mc, asc})
      for (double jd : HardAspectDays(body, angle, JulDay(1, 1, 1955), JulDay(1, 1, 2015))) days.push_back(jd);
  std::sort(days.begin(), days.end());
  ASSERT_GE(days.size(), 25u);

  s.project.ProjectPath = t.dir.file("known.dat");
  s.project.Events.assign(days.size() + 1, EventRecord{});
  for (size_t i = 0; i < days.size(); ++i) {
    EventRecord& e = s.project.Events[i + 1];
    float day;
    int month, year;
    RevJul(days[i] + 0.5, day, month, year);
    e.Description = "Event " + std::to_string(i + 1);
    e.Day = static_cast<uint8_t>(day);
    e.Month = static_cast<uint8_t>(month);
    e.Year = static_cast<int16_t>(year);
    e.JulianDay = RecordJulianDay(e);
  }
  h.RecordCount = static_cast<int32_t>(days.size());
}

TEST(RunAutoRectify, FindsTheTimeOfAChartWhoseAnglesTheEventsHit) {
  TestSession t;
  Session& s = t.session;
  BuildKnownLife(t);
  Rectification rect;
  LoadGraphSettings(s, rect.graphs);
  rect.graphs.Graph[3].DynamicType = kSolarArc;  // changed on screen, not saved: the run must not read it back
  AutoRectifyOptions one;
  one.Threads = 1;
  AutoRectifyResult r = RunAutoRectify(s, rect, kAutoFromEvents, nullptr, one);
  ASSERT_TRUE(r.Finished) << r.Status;
  ASSERT_FALSE(r.Rows.empty());
  EXPECT_EQ(rect.graphs.Graph[3].DynamicType, kSolarArc);
  const double best = r.Rows.front().Time;
  std::printf("[ auto rectify ] best %s of %zu candidates, %llu ephemeris calls\n", r.Rows.front().TimeText.c_str(),
              r.Rows.size(), static_cast<unsigned long long>(r.EphemerisCalls));
  EXPECT_NEAR(best, 14 + 20 / 60.0, 0.25) << "within a quarter of an hour of 14:20";
  EXPECT_EQ(r.Status, "Finished - Best Scoring Birth Time: " + r.Rows.front().TimeText);
  for (size_t i = 1; i < r.Rows.size(); ++i) EXPECT_GE(r.Rows[i - 1].Overall, r.Rows[i].Overall);

  // The candidates again, on two threads: the same scores to the bit.
  AutoRectifyOptions two;
  two.Threads = 2;
  AutoRectifyResult again = RunAutoRectify(s, rect, kAutoFromCandidates, nullptr, two);
  ASSERT_TRUE(again.Finished);
  ASSERT_EQ(again.Scores.size(), r.Scores.size());
  for (size_t c = 1; c < r.Scores.size(); ++c)
    for (int type : {0, 1, 3}) EXPECT_EQ(again.Scores[c][type], r.Scores[c][type]) << c << " " << type;
  EXPECT_EQ(again.Order, r.Order);

  // Ranked by the transit ratio alone, ties in the order of the overall score.
  s.prefs.AutoScoreMode = 1;
  AutoRectifyResult byTransits = RunAutoRectify(s, rect, kAutoFromCandidates, nullptr, two);
  for (size_t i = 1; i < byTransits.Rows.size(); ++i) {
    const AutoRectifyRow &a = byTransits.Rows[i - 1], &b = byTransits.Rows[i];
    EXPECT_TRUE(a.Transits > b.Transits || (a.Transits == b.Transits && a.Overall >= b.Overall)) << i;
  }

  // The candidate list's rows: time, Ascendant and MC ranges, three blanks apart.
  const AngleResult& c = rect.peaks.Results;
  EXPECT_EQ(CandidateRowText(s, c, 1), AutoTimeText(s, c.ResultTime[1][kLow]) + "-" +
                                           AutoTimeText(s, c.ResultTime[1][kHigh]) + "   " +
                                           ZodiacPosition(s, c.ResultAsc[1][kLow], false) + "-" +
                                           ZodiacPosition(s, c.ResultAsc[1][kHigh], false) + "   " +
                                           ZodiacPosition(s, c.ResultMC[1][kLow], false) + "-" +
                                           ZodiacPosition(s, c.ResultMC[1][kHigh], false));
  EXPECT_EQ(CandidateRowText(s, c, 0), "");
}

// Stops the run when the first transit search begins.
class StopAtTransits : public Progress {
 public:
  void Status(const std::string& text) override { stop_ = stop_ || text.rfind("Transit Search", 0) == 0; }
  bool Cancelled() override { return stop_; }

 private:
  bool stop_ = false;
};

TEST(RunAutoRectify, AStopEndsTheRunAndSaysSo) {
  TestSession t;
  BuildKnownLife(t);
  Rectification rect;
  StopAtTransits stop;
  AutoRectifyResult r = RunAutoRectify(t.session, rect, kAutoFromEvents, &stop);
  EXPECT_TRUE(r.Cancelled);
  EXPECT_FALSE(r.Finished);
  EXPECT_EQ(r.Status, "Search Terminated by User");
}

// How far the graph stage narrows graphs 4 and 5: Mars stays in while the
// graph holds less weight than AutoGraphMinWeight.
TEST(RunAutoRectify, TheGraphWeightSettingDecidesTheNarrowing) {
  struct Case {
    float minWeight;
    bool marsKept, jupiterKept;
  } cases[] = {{1e9f, true, true}, {0.0f, false, false}};
  for (const Case& c : cases) {
    TestSession t;
    BuildKnownLife(t);
    t.session.prefs.AutoGraphMinWeight = c.minWeight;
    Rectification rect;
    LoadGraphSettings(t.session, rect.graphs);
    StopAtTransits stop;
    RunAutoRectify(t.session, rect, kAutoFromEvents, &stop);
    const auto& geo = rect.graphs.Selection[kGeocentric][4];
    EXPECT_EQ(geo[kMars] != 0, c.marsKept) << c.minWeight;
    EXPECT_EQ(geo[kJupiter] != 0, c.jupiterKept) << c.minWeight;
    EXPECT_NE(geo[kPluto], 0);
  }
}

TEST(RunAutoRectify, NoEventsMeansNoAngles) {
  TestSession t;
  Session& s = t.session;
  s.project.Header.Date = "10 Jun 1950";
  s.project.Header.ZoneTime = "0";
  s.project.Header.Latitude = "51N30";
  s.project.Header.Longitude = "0W10";
  s.project.ProjectPath = t.dir.file("empty.dat");
  Rectification rect;
  AutoRectifyResult r = RunAutoRectify(s, rect, kAutoFromEvents);
  EXPECT_FALSE(r.Finished);
  EXPECT_TRUE(r.Rows.empty());
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].text,
            "No possible chart angles were found. The auto-rectify option cannot find any chart times.");
  EXPECT_EQ(t.sink.messages[0].title, "Unable to Rectify");
  EXPECT_EQ(t.sink.messages[0].flags, 16);
}

TEST(RunAutoRectify, ModeTwoWithAnEmptyListHasNothingToDo) {
  TestSession t;
  Rectification rect;
  AutoRectifyResult r = RunAutoRectify(t.session, rect, kAutoFromCandidates);
  EXPECT_TRUE(r.Rows.empty());
  EXPECT_TRUE(t.sink.messages.empty());
}

TEST(RunAutoRectify, RefusingToSortEndsTheRunWithTheNote) {
  TestSession t;
  Session& s = t.session;
  s.project.Events.assign(3, EventRecord{});
  s.project.Events[1].JulianDay = 2440000;
  s.project.Events[2].JulianDay = 2430000;
  s.project.Header.RecordCount = 2;
  t.sink.answer = kNo;
  Rectification rect;
  AutoRectifyResult r = RunAutoRectify(s, rect, kAutoFromEvents);
  EXPECT_FALSE(r.Finished);
  EXPECT_EQ(r.Status, "You will need to use the manual rectification procedure if you wish to proceed any further.");
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].title, "Sort Events?");
}

}  // namespace
}  // namespace vintar
