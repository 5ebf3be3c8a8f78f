// Hand adjustment of the trial chart: minute steps across midnight, Midheaven
// steps across 0 Aries with the time that follows them, and the date steps.
#include <gtest/gtest.h>

#include "calc/chart.h"
#include "rectify/chart_adjust.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::AngleDiff;
using testing::TestSession;

TEST(ChartAdjust, TimeSpinCarriesAndWraps) {
  struct Case {
    int hours, minutes, direction, wantHours, wantMinutes;
  } cases[] = {
      {0, 0, -1, 23, 59},  // down from midnight: same date, 23:59
      {23, 59, 1, 0, 0},
      {10, 59, 1, 11, 0},
      {11, 0, -1, 10, 59},
      {12, 30, 1, 12, 31},
  };
  for (const Case& c : cases) {
    int h = c.hours, m = c.minutes;
    TimeSpin(h, m, c.direction);
    EXPECT_EQ(h, c.wantHours) << c.hours << ":" << c.minutes;
    EXPECT_EQ(m, c.wantMinutes) << c.hours << ":" << c.minutes;
  }
}

TEST(ChartAdjust, MCSpinAndDateSteps) {
  struct Spin {
    double mc;
    int direction;
    double want;
  } spins[] = {
      {359.0 + 55.0 / 60.0, 1, 5.0 / 60.0},   // 359 55' up wraps to 0 05'
      {5.0 / 60.0, -1, 359.0 + 55.0 / 60.0},
      {0.0, -1, 360.0 - 1.0 / 6.0},
      {100.0, 1, 100.0 + 1.0 / 6.0},
  };
  for (const Spin& s : spins) EXPECT_NEAR(MCSpin(s.mc, s.direction), s.want, 1e-9) << s.mc;

  struct Step {
    int stepDays, direction;
    bool fast;
    double want;
  } steps[] = {{7, 1, false, 7}, {7, -1, false, -7}, {7, 1, true, 70}, {7, -1, true, -70},
               {0, 1, false, 1}, {-3, -1, true, -10}};
  for (const Step& s : steps) EXPECT_EQ(StepDate(1000.0, s.stepDays, s.direction, s.fast) - 1000.0, s.want);
}

TEST(ChartAdjust, RecastsTheSlotAtTheNewTime) {
  TestSession t;
  Session& s = t.session;
  ChartAdjustState a;
  a.Day = 1;
  a.Month = 6;
  a.Year = 1960;
  a.Hour = 0;
  a.Minute = 0;
  a.Latitude = 51.5;
  CastChart(s, 1, a.Day, a.Month, a.Year, 0.0, a.Zone, a.Longitude, a.Latitude);
  const double midnight = s.charts.Slots[1].ChartJD;

  AdjustTime(s, a, -1);  // 23:59 of the same date: almost a day later
  EXPECT_EQ(a.Hour, 23);
  EXPECT_EQ(a.Minute, 59);
  EXPECT_NEAR(s.charts.Slots[1].ChartJD - midnight, 1.0 - 1.0 / 1440.0, 1e-9);

  // Each MC step moves the recast chart's Midheaven by ten minutes of arc
  // (to within the second of time the clock is rounded to).
  for (int direction : {1, 1, -1}) {
    const double before = s.charts.Longitude[kGeocentric][1][kMidheaven];
    const double mc = AdjustMC(s, a, direction);
    EXPECT_NEAR(AngleDiff(mc, before), direction / 6.0, 1e-9);
    EXPECT_NEAR(AngleDiff(s.charts.Longitude[kGeocentric][1][kMidheaven], mc), 0.0, 0.01);
  }
}

}  // namespace
}  // namespace vintar
