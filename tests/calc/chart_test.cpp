// Chart construction end to end: the ephemeris plumbing of ComputePositions
// against published positions and against direct library calls, and
// CalcChart's time, zone, zodiac and house handling.
#include <gtest/gtest.h>

#include <cmath>

#include "calc/chart.h"
#include "calc/ephemeris.h"
#include "core/parse.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::AngleErrorTracker;
using testing::TestSession;

double TFromJD(double jd) { return CenturiesFrom1900(jd); }

// Published apparent geocentric longitudes (Meeus, Astronomical Algorithms,
// examples 25.a and 47.a) at 0h dynamical time. Meeus's truncated lunar
// theory is good to about 10 arcseconds; what this catches is the wrong body,
// frame or time argument.
TEST(ComputePositions, AgreesWithPublishedPositions) {
  TestSession t;
  struct Case {
    const char* what;
    double jd;
    int point;
    double longitude;
  } cases[] = {
      {"Sun 1992 Oct 13", 2448908.5, kSun, 199.90606},
      {"Moon 1992 Apr 12", 2448724.5, kMoon, 133.162655},
  };
  AngleErrorTracker tracker("published positions");
  for (const auto& c : cases) {
    ComputePositions(t.session, 1, 0, 0, TFromJD(c.jd), 0.0);
    EXPECT_TRUE(tracker.Check(t.session.charts.Longitude[kGeocentric][1][c.point], c.longitude, 0.005)) << c.what;
  }
  EXPECT_TRUE(t.sink.messages.empty());
}

// Every body goes to the library with its own number and the frame's flags,
// and lands in its own row with the offset added.
TEST(ComputePositions, EachPointComesFromItsBodyInItsFrame) {
  TestSession t;
  const double jd = 2451545.0, offset = -23.5;
  ComputePositions(t.session, 4, 0, 0, TFromJD(jd), offset);
  struct Row {
    int point, body, coordinate;
  } rows[] = {{1, 1, 1},   {2, 14, 2},  {3, 0, 1},   {4, 2, 1},   {5, 3, 2},   {7, 5, 1},   {11, 9, 2},
              {12, 15, 1}, {13, 20, 1}, {14, 18, 1}, {15, 19, 1}, {16, 17, 1}, {19, 11, 1}, {20, 10, 1}};
  AngleErrorTracker tracker("direct library calls");
  for (const auto& r : rows) {
    double xx[6];
    std::string error;
    int flags = kFlagSpeed | (r.coordinate == kHeliocentric ? kFlagHeliocentric : 0);
    ASSERT_GE(EphemerisCalc(jd, r.body, flags, xx, error), 0) << error;
    const auto& c = t.session.charts;
    EXPECT_TRUE(tracker.Check(c.Longitude[r.coordinate][4][r.point], Mod(xx[0] + offset, 360.0), 1e-9))
        << "point " << r.point;
    EXPECT_DOUBLE_EQ(c.Latitude[r.coordinate][4][r.point], xx[1]);
    EXPECT_DOUBLE_EQ(c.LongSpeed[r.coordinate][4][r.point], xx[3]);
  }
}

TEST(ComputePositions, MissingAsteroidFilesStaySilentAtMinusOne) {
  TestSession t;
  ComputePositions(t.session, 1, 0, 0, TFromJD(2451545.0), 0.0);
  EXPECT_EQ(t.session.charts.Longitude[kGeocentric][1][17], -1.0) << "Hygeia is not in the basic files";
  EXPECT_EQ(t.session.charts.Longitude[kGeocentric][1][18], -1.0) << "nor Astraea";
  EXPECT_GE(t.session.charts.Longitude[kGeocentric][1][16], 0.0) << "Ceres is";
  EXPECT_EQ(t.session.charts.Longitude[kHeliocentric][1][kTrueNode], -1.0) << "the nodes have no heliocentric place";
  EXPECT_EQ(t.session.charts.Longitude[kHeliocentric][1][kMeanNode], -1.0);
  EXPECT_TRUE(t.sink.messages.empty());
}

TEST(ComputePositions, SunAloneLeavesTheOtherPointsAlone) {
  TestSession t;
  auto& lon = t.session.charts.Longitude;
  lon[kGeocentric][2][kMoon] = 123.0;
  lon[kGeocentric][2][kMercury] = 45.0;
  uint64_t before = t.session.charts.EphemerisCalls;
  ComputePositions(t.session, 2, 3, 3, TFromJD(2451545.0), 0.0);
  EXPECT_EQ(t.session.charts.EphemerisCalls - before, 1u);
  EXPECT_EQ(lon[kGeocentric][2][kMoon], 123.0);
  EXPECT_EQ(lon[kGeocentric][2][kMercury], 45.0);
  EXPECT_NEAR(lon[kGeocentric][2][kSun], 280.37, 0.02);
}

TEST(ComputePositions, RetrogradeOnlyFromMercuryOn) {
  TestSession t;
  ComputePositions(t.session, 1, 0, 0, TFromJD(2451545.0), 0.0);
  const auto& c = t.session.charts;
  for (int p = 4; p <= 20; ++p) {
    if (c.Longitude[kGeocentric][1][p] < 0) continue;
    EXPECT_EQ(c.Retrograde[1][p] != 0, c.LongSpeed[kGeocentric][1][p] < 0) << "point " << p;
  }
  EXPECT_EQ(c.Retrograde[1][kMoon], 0);
  EXPECT_EQ(c.Retrograde[1][kSun], 0);
  EXPECT_NE(c.Retrograde[1][kMeanNode], 0) << "the mean node always moves backwards";
}

TEST(ComputePositions, ADateBeyondTheFilesGivesOneMessage) {
  TestSession t;
  // The mean node is analytical and computes at any date, so a full chart
  // stays silent; only a run in which every body failed speaks.
  ComputePositions(t.session, 1, 0, 0, TFromJD(JulDay(1, 1, 9000)), 0.0);
  EXPECT_TRUE(t.sink.messages.empty());
  EXPECT_EQ(t.session.charts.Longitude[kGeocentric][1][kSun], -1.0);
  EXPECT_GE(t.session.charts.Longitude[kGeocentric][1][kMeanNode], 0.0);
  ComputePositions(t.session, 1, 1, 3, TFromJD(JulDay(1, 1, 9000)), 0.0);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  const auto& m = t.sink.messages[0];
  EXPECT_EQ(m.title, "Vintar");
  EXPECT_EQ(m.flags, 48);
  EXPECT_EQ(m.text.rfind("Unable to calculate planetary position. The requested date may be out of range of the "
                         "installed Swiss Ephemeris files.\r\nReturn Value: -1\r\nMessage: ",
                         0),
            0u)
      << m.text;
  EXPECT_NE(m.text.find("\r\nEphemeris Location: "), std::string::npos);
  EXPECT_NE(m.text.find("\r\nCalculation Date: 1 Jan 9000"), std::string::npos) << m.text;
  EXPECT_NE(m.text.find("\r\nBodies: Mon to Sun"), std::string::npos) << m.text;
  EXPECT_EQ(t.session.charts.Longitude[kGeocentric][1][kSun], -1.0);
}

TEST(CalcChart, ZoneIsAddedToLocalTimeWithNoDeltaT) {
  TestSession t;
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "19:00", "5", "75W00", "40N00"));
  EXPECT_DOUBLE_EQ(t.session.charts.Slots[1].ChartJD, 2451545.5) << "19:00 at zone 5 is midnight UT next day";
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "", "0", "0E00", "0N00"));
  EXPECT_DOUBLE_EQ(t.session.charts.Slots[1].ChartJD, 2451545.0) << "an empty time is noon";
  EXPECT_TRUE(t.sink.messages.empty());
}

TEST(CalcChart, ATextThatDoesNotParseLeavesTheSlot) {
  TestSession t;
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "12:00", "0", "0E00", "51N30"));
  double jd = t.session.charts.Slots[1].ChartJD;
  EXPECT_FALSE(CalcChart(t.session, 1, "1 Jan 2001", "12:00", "0", "0E00", "95N00"));
  EXPECT_EQ(t.session.charts.Slots[1].ChartJD, jd);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].title, "Error in Latitude");
}

TEST(CalcChart, EquatorialVertexAndThePolarFallback) {
  TestSession t;
  ASSERT_TRUE(CalcChart(t.session, 1, "21 Jun 1990", "6:00", "0", "0E00", "0N00"));
  EXPECT_DOUBLE_EQ(t.session.charts.Longitude[kGeocentric][1][kVertex], 90.0);

  // Koch needs the Midheaven's declination to stay inside the polar
  // circle's complement; at Tromsø in midwinter it does not.
  t.session.prefs.Houses = 2;
  ASSERT_TRUE(CalcChart(t.session, 1, "21 Dec 1990", "12:00", "-1", "18E57", "69N39"));
  const ChartSlot& s = t.session.charts.Slots[1];
  EXPECT_EQ(s.ChartHouseSystem, kEqualHouses) << "beyond the polar circle the chart ends up Equal";
  double asc = t.session.charts.Longitude[kGeocentric][1][kAscendant];
  for (int i = 1; i <= 12; ++i) EXPECT_NEAR(testing::AngleDiff(s.Cusps[i], asc + 30.0 * (i - 1)), 0.0, 1e-9);
  EXPECT_TRUE(t.sink.messages.empty());
}

TEST(CalcChart, AnUnknownHouseSystemIsReported) {
  TestSession t;
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "12:00", "0", "0E00", "51N30"));
  auto cusps = t.session.charts.Slots[1].Cusps;
  CalcHouses(t.session, 1, 10.0, 23.44, 51.5, 15, 0.0);
  EXPECT_EQ(t.session.charts.Slots[1].Cusps, cusps);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].text, "Unrecognised house system");
  EXPECT_EQ(t.sink.messages[0].title, "Sub CalcHouses");
}

TEST(CalcChart, SiderealZodiacShiftsEveryLongitudeAlike) {
  TestSession t;
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "12:00", "0", "0E00", "51N30"));
  const auto tropical = t.session.charts.Longitude;
  const auto tropicalCusps = t.session.charts.Slots[1].Cusps;
  t.session.prefs.Zodiac = 3;  // Lahiri
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "12:00", "0", "0E00", "51N30"));
  const double offset = t.session.charts.Slots[1].SiderealOffset;
  EXPECT_NEAR(offset, -23.86, 0.02) << "the Lahiri ayanamsa of 2000";
  AngleErrorTracker tracker("sidereal shift");
  for (int p : {kMoon, kSun, kMercury, kPluto, kMeanNode, kAscendant, kMidheaven, kVertex, kEastPoint})
    EXPECT_TRUE(tracker.Check(t.session.charts.Longitude[kGeocentric][1][p], tropical[kGeocentric][1][p] + offset,
                              1e-9))
        << "point " << p;
  for (int i = 1; i <= 12; ++i)
    EXPECT_TRUE(tracker.Check(t.session.charts.Slots[1].Cusps[i], tropicalCusps[i] + offset, 1e-9));
}

TEST(AnglesFromMC, GivesBackTheTimeOfTheChart) {
  TestSession t;
  struct Case {
    const char* date;
    const char* time;
    const char* zone;
    const char* longitude;
    const char* latitude;
    double hours;
    double zoneHours;
  } cases[] = {
      {"12 Aug 1958", "15:40", "-1", "1W33", "53N48", 15 + 40 / 60.0, -1},
      {"20 Feb 1979", "17:55", "-11", "151E13", "33S51", 17 + 55 / 60.0, -11},
      {"3 Feb 1932", "13:20", "5", "75W00", "40N00", 13 + 20 / 60.0, 5},
  };
  for (int zodiac : {1, 2}) {
    t.session.prefs.Zodiac = static_cast<int16_t>(zodiac);
    for (const auto& c : cases) {
      ASSERT_TRUE(CalcChart(t.session, 1, c.date, c.time, c.zone, c.longitude, c.latitude));
      const ChartSlot& s = t.session.charts.Slots[1];
      int16_t d, m, y;
      bool failed;
      ParseDate(t.session, c.date, d, m, y, false, failed);
      const auto& lon = t.session.charts.Longitude[kGeocentric][1];
      AnglesFromMCResult r = AnglesFromMC(t.session, lon[kMidheaven], d, m, y, c.hours + c.zoneHours,
                                          c.zoneHours, s.Longitude, s.Latitude);
      EXPECT_NEAR(testing::AngleDiff(r.Ramc, s.Ramc), 0.0, 1e-7) << c.date;
      EXPECT_NEAR(testing::AngleDiff(r.Ascendant, lon[kAscendant]), 0.0, 1e-6) << c.date;
      EXPECT_NEAR(testing::AngleDiff(r.LocalHours * 15.0, c.hours * 15.0), 0.0, 1e-5) << c.date;
    }
  }
}

TEST(SelectChartPoints, DropsTheAnglesThatStandOnCusps) {
  TestSession t;
  ASSERT_TRUE(CalcChart(t.session, 1, "1 Jan 2000", "12:00", "0", "0E00", "51N30"));
  auto& selected = t.session.charts.Selected[kGeocentric][1];
  for (int p : {kSun, kAscendant, kMidheaven, kVertex}) selected[p] = kTrue;
  SelectChartPoints(t.session, 1);
  EXPECT_EQ(t.session.charts.Slots[1].PointsInUse, 2) << "Placidus puts both angles on cusps";
  EXPECT_EQ(t.session.charts.Slots[1].FirstPointInUse, kSun);
  CalcHouses(t.session, 1, t.session.charts.Slots[1].Ramc, t.session.charts.Slots[1].Obliquity, 51.5, 4, 0.0);
  SelectChartPoints(t.session, 1);
  EXPECT_EQ(t.session.charts.Slots[1].PointsInUse, 4) << "Morinus puts neither there";
}

}  // namespace
}  // namespace vintar
