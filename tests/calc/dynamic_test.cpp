// Dynamic positions and the pass search, checked against direct ephemeris
// calls: progressions and directions at elapsed time zero give the radix
// back, and every pass that NextHit reports is a true zero of the separation
// with no earlier pass between the start and it (found by a fine scan).
#include <gtest/gtest.h>

#include <cmath>

#include "calc/chart.h"
#include "calc/dynamic.h"
#include "calc/ephemeris.h"
#include "calc/oracle.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::AngleDiff;
using testing::TestSession;


struct Fixture {
  TestSession t;
  Session& s = t.session;
  Fixture() { SetEphemerisPath(s.prefs.SwissEphPath); }
};

// The geocentric longitude and speed of a point straight from the library.
double Oracle(int point, double jd, double* speed = nullptr) {
  return testing::LibraryLongitude(EphemerisBody(point), jd, speed);
}

// A station of a planet after `from`: bisection on the sign of its speed.
double FindStation(int point, double from) {
  double v = 0;
  Oracle(point, from, &v);
  double a = from, b = from;
  double vb = v;
  while (std::signbit(vb) == std::signbit(v)) {
    a = b;
    b += 1.0;
    Oracle(point, b, &vb);
  }
  for (int i = 0; i < 60; ++i) {
    double m = (a + b) / 2, vm;
    Oracle(point, m, &vm);
    (std::signbit(vm) == std::signbit(v) ? a : b) = m;
  }
  return (a + b) / 2;
}

// Every pass is on the target, and a fine scan finds no pass before the first.
void ExpectTruePasses(const HitResult& r, int point, double target, double from, double scanStep) {
  ASSERT_FALSE(r.Unavailable);
  ASSERT_FALSE(r.Passes.empty());
  for (size_t i = 0; i < r.Passes.size(); ++i) {
    EXPECT_NEAR(AngleDiff(Oracle(point, r.Passes[i]), target), 0.0, 1e-5) << "pass " << i;
    if (i > 0) {
      EXPECT_LT(r.Passes[i - 1], r.Passes[i]);
    }
  }
  EXPECT_GE(r.Passes[0], from);
  double previous = AngleDiff(Oracle(point, from), target);
  for (double t = from + scanStep; t < r.Passes[0] - scanStep; t += scanStep) {
    double d = AngleDiff(Oracle(point, t), target);
    EXPECT_FALSE(std::fabs(d) < 90 && std::fabs(previous) < 90 && std::signbit(d) != std::signbit(previous))
        << "an earlier pass near " << t;
    previous = d;
  }
}

TEST(ProgressionRate, DaysOfEphemerisPerDayOfLife) {
  struct Case {
    int type, kind;
    double rate;
  } cases[] = {{kTransits, 0, 1.0},
               {kSecondary, 0, 1.0 / 365.24219907},
               {kSecondary, 1, 0.997269566 / 365.24219907},
               {kTertiary, 0, 1.0 / 27.32158648},
               {kSolarArc, 1, 0.997269566 / 365.24219907},
               {9, 0, 1.0}};
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(ProgressionRate(c.type, c.kind), c.rate) << c.type << "/" << c.kind;
}

// At the radix moment every type gives the radix chart back, angles too.
TEST(DynamicPositions, ElapsedZeroReturnsTheRadix) {
  Fixture f;
  CastChart(f.s, 1, 12, 8, 1958, 15.6667, 5.0, 75.0, 40.7);
  const double radixJD = f.s.charts.Slots[1].ChartJD;
  for (int type : {kSecondary, kTertiary, kSolarArc}) {
    SlotPositions radix = CopySlotPositions(f.s, 1);
    DynamicOptions options;
    if (type == kSolarArc) options.Radix = &radix;
    DynamicPositions(f.s, 2, radixJD, radixJD, type, 0.0, options);
    for (int c = kGeocentric; c <= kHeliocentric; ++c)
      for (int p = 1; p <= (type == kSolarArc ? kPoints : kMeanNode); ++p) {
        const double expected = f.s.charts.Longitude[c][1][p];
        if (expected < 0 || (c == kGeocentric && p == kEarth) || (c == kHeliocentric && (p == kMoon || p == kSun)))
          continue;
        EXPECT_NEAR(AngleDiff(f.s.charts.Longitude[c][2][p], expected), 0.0, 1e-9)
            << "type " << type << " coordinate " << c << " point " << p;
      }
    for (int method : {kNaibod, kSolarArcLongitude, kMeanQuotidian}) {
      ProgressedAngles(f.s, 0.0, radixJD, 2, 1, method, 0.0);
      for (int p = kAscendant; p <= kEastPoint; ++p)
        EXPECT_NEAR(AngleDiff(f.s.charts.Longitude[kGeocentric][2][p], f.s.charts.Longitude[kGeocentric][1][p]), 0,
                    method == kMeanQuotidian ? 2e-3 : 1e-9)
            << "type " << type << " method " << method << " point " << p;
    }
  }
}

// A transit chart is the chart of the moment cast at the radix place.
TEST(DynamicChart, TransitsAreTheChartOfTheMomentAtTheRadixPlace) {
  Fixture f;
  CastChart(f.s, 1, 12, 8, 1958, 15.6667, 5.0, 75.0, 40.7);
  CastChart(f.s, 2, 3, 4, 2001, 6.25, 0.0, 75.0, 40.7);  // zone 0: its moment is universal time
  DynamicChart(f.s, 3, 1, f.s.charts.Slots[2].ChartJD, kTransits, kNaibod);
  for (int p = 1; p <= kPoints; ++p) {
    if (p == kEarth) continue;
    EXPECT_NEAR(f.s.charts.Longitude[kGeocentric][3][p], f.s.charts.Longitude[kGeocentric][2][p], 1e-6) << p;
  }
  for (int cusp = 1; cusp <= 12; ++cusp)
    EXPECT_NEAR(f.s.charts.Slots[3].Cusps[cusp], f.s.charts.Slots[2].Cusps[cusp], 1e-6) << cusp;
}

HitQuery Transit(int point, double target, double from) {
  HitQuery q;
  q.Point = point;
  q.Target = target;
  q.FromJD = from;
  return q;
}

// The first pass after the start for bodies of every speed and direction,
// not one behind it.
TEST(NextHit, FindsTheFirstPassAfterTheStart) {
  Fixture f;
  struct Case {
    int point;
    double from, ahead, scanStep;
  } cases[] = {{kMoon, 2451545.0, 200, 0.05},     {kSun, 2451545.0, 350, 0.5},
               {kMars, 2455000.0, 100, 0.5},      {kJupiter, 2453000.0, 250, 1.0},
               {kMeanNode, 2451545.0, 90, 2.0},   {kMercury, 2452000.0, 170, 0.05},
               {kVenus, 2452300.0, 5, 0.05},
               {kMercury, 2452000.0, -0.5, 0.05}};  // direct and just past the target: the next pass
  for (const auto& c : cases) {
    SCOPED_TRACE(c.point);
    const double target = Mod(Oracle(c.point, c.from) + (c.point == kMeanNode ? -c.ahead : c.ahead), 360);
    ExpectTruePasses(NextHit(f.s, Transit(c.point, target, c.from)), c.point, target, c.from, c.scanStep);
  }
}

TEST(NextHit, RetrogradeLoopGivesThreePassesInOrder) {
  Fixture f;
  const double retro = FindStation(kMercury, 2452000.0), direct = FindStation(kMercury, retro + 1);
  const double target = Oracle(kMercury, (retro + direct) / 2);
  for (double from : {retro - 25, retro - 60}) {  // followed from near, and found by estimate
    HitResult r = NextHit(f.s, Transit(kMercury, target, from));
    ASSERT_EQ(r.Passes.size(), 3u) << from;
    EXPECT_LT(r.Passes[0], retro);
    EXPECT_TRUE(r.Passes[1] > retro && r.Passes[1] < direct);
    EXPECT_GT(r.Passes[2], direct);
    ExpectTruePasses(r, kMercury, target, from, 0.05);
  }
}

TEST(NextHit, StationaryAtTheTargetConverges) {
  Fixture f;
  const double station = FindStation(kJupiter, 2453000.0);
  const double target = Oracle(kJupiter, station);
  for (double from : {station - 20, station - 500}) {
    HitResult r = NextHit(f.s, Transit(kJupiter, target, from));
    ASSERT_FALSE(r.Passes.empty()) << from;
    EXPECT_NEAR(r.Passes[0], station, 1.0) << from;
    EXPECT_NEAR(AngleDiff(Oracle(kJupiter, r.Passes[0]), target), 0, 1e-5);
    EXPECT_LT(r.Rounds, 2000);
  }
}

TEST(NextHit, PointsWithoutPositionOrPeriodAreUnavailable) {
  Fixture f;
  HitQuery trueNode = Transit(kTrueNode, 10, 2451545.0);
  HitQuery moonHelio = Transit(kMoon, 10, 2451545.0);
  moonHelio.Coordinate = kHeliocentric;
  HitQuery angle = Transit(kAscendant, 10, 2451545.0);
  HitQuery beyond = Transit(kMars, 10, JulDay(1, 1, 9000));
  for (const HitQuery* q : {&trueNode, &moonHelio, &angle, &beyond}) {
    HitResult r = NextHit(f.s, *q);
    EXPECT_TRUE(r.Unavailable) << q->Point;
    EXPECT_TRUE(r.Passes.empty());
  }
}

// Progressed Moon, directed Sun and a progressed Midheaven reach their
// targets on the progressed date scale.
TEST(NextHit, ProgressionsSearchOnTheProgressedScale) {
  Fixture f;
  CastChart(f.s, 1, 12, 8, 1958, 15.6667, 5.0, 75.0, 40.7);
  const double radixJD = f.s.charts.Slots[1].ChartJD;
  struct Case {
    int type, point, method;
  } cases[] = {{kSecondary, kMoon, 1}, {kTertiary, kVenus, 1}, {kSolarArc, kMoon, 1},
               {kSecondary, kMidheaven, kNaibod}, {kSolarArc, kAscendant, kSolarArcLongitude},
               {kSecondary, kMidheaven, kMeanQuotidian}};
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.type << "/" << c.point << "/" << c.method);
    HitQuery q;
    q.Point = c.point;
    q.DynamicType = c.type;
    q.Method = c.method;
    q.FromJD = radixJD + 1.0;
    q.Target = Mod(f.s.charts.Longitude[kGeocentric][1][c.point] + 40, 360);
    HitResult r = NextHit(f.s, q);
    ASSERT_FALSE(r.Passes.empty());
    EXPECT_GE(r.Passes[0], q.FromJD);
    // The chart of the life moment of the pass has the point on the target;
    // directions move the angles with the rest of the radix.
    const double rate = ProgressionRate(c.type, c.type == kSolarArc ? 1 : 0);
    const double lifeJD = radixJD + (r.Passes[0] - radixJD) / rate;
    if (c.type == kSolarArc) {
      const SlotPositions radix = CopySlotPositions(f.s, 1);
      DynamicOptions options;
      options.Radix = &radix;
      DynamicPositions(f.s, 3, lifeJD, radixJD, kSolarArc, 0.0, options);
    } else {
      DynamicChart(f.s, 3, 1, lifeJD, c.type, c.method);
    }
    EXPECT_NEAR(AngleDiff(f.s.charts.Longitude[kGeocentric][3][c.point], q.Target), 0, 1e-4);
  }
}

}  // namespace
}  // namespace vintar
