// Research points: coordinates against the ephemeris library's own
// conversions, the list file and its editing rules, names, and the values of
// a list in a cast chart (transformations, midpoints, parts, almutens,
// prenatal lunations).
#include <gtest/gtest.h>
#include <swephexp.h>

#include <cmath>
#include <cstring>
#include <set>

#include "calc/astro.h"
#include "calc/chart.h"
#include "research/dignity.h"
#include "research/points.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::AngleErrorTracker;
using testing::TestSession;

// Longitude, latitude, obliquity, RAMC and geographic latitude for the
// single-value conversions: all quadrants, both hemispheres, high latitudes.
struct SkyCase {
  double lon, lat, eps, ramc, geoLat;
};
constexpr SkyCase kSky[] = {
    {0.0, 0.0, 23.44, 0.0, 51.5},     {45.0, 2.5, 23.44, 300.0, 40.7},  {95.0, -4.9, 23.45, 123.4, -33.9},
    {181.0, 5.1, 23.43, 200.0, 0.0},  {250.5, -1.0, 23.44, 45.0, 64.1}, {300.0, 0.3, 23.44, 359.9, -54.8},
    {359.5, -5.0, 23.44, 270.0, 35.0}, {120.0, 8.0, 23.44, 10.0, 10.0},  {210.0, -7.5, 23.44, 170.0, -15.0},
};

TEST(PointsOracle, EquatorialMatchesCotrans) {
  // The library rotates by a positive angle from equator to ecliptic, so
  // the ecliptic-to-equator turn takes the obliquity with a minus sign.
  AngleErrorTracker raError("right ascension vs swe_cotrans"), decError("declination vs swe_cotrans");
  for (const SkyCase& c : kSky) {
    double in[3] = {c.lon, c.lat, 1.0}, out[3] = {};
    swe_cotrans(in, out, -c.eps);
    double ra = 0, dec = 0;
    EclipticToEquatorial(c.lon, c.lat, c.eps, ra, dec);
    EXPECT_TRUE(raError.Check(ra, out[0], 1e-9)) << c.lon;
    EXPECT_TRUE(decError.Check(dec, out[1], 1e-9)) << c.lon;
  }
}

TEST(PointsOracle, HorizonMatchesAzalt) {
  // swe_azalt measures azimuth from the south point towards the west; ours
  // runs from the north through the east, so ours = library + 180. With no
  // pressure the true altitude is the geometric one. The library finds the
  // RAMC from its own sidereal time and an east-positive longitude.
  AngleErrorTracker azError("azimuth vs swe_azalt"), altError("altitude vs swe_azalt");
  const double jd = 2451545.0;
  for (const SkyCase& c : kSky) {
    double ra = 0, dec = 0;
    EclipticToEquatorial(c.lon, c.lat, c.eps, ra, dec);
    const double eastLongitude = Mod(c.ramc - swe_sidtime(jd) * 15.0 + 180.0, 360.0) - 180.0;
    double geopos[3] = {eastLongitude, c.geoLat, 0.0}, in[3] = {ra, dec, 1.0}, out[3] = {};
    swe_azalt(jd, SE_EQU2HOR, geopos, 0.0, 0.0, in, out);
    double az = 0, alt = 0;
    EquatorialToHorizon(ra, dec, Mod(swe_sidtime(jd) * 15.0 + eastLongitude, 360.0), c.geoLat, az, alt);
    EXPECT_TRUE(azError.Check(az, Mod(out[0] + 180.0, 360.0), 1e-7)) << c.lon;
    EXPECT_TRUE(altError.Check(alt, out[1], 1e-7)) << c.lon;
  }
}

TEST(PointsOracle, DiurnalMatchesGauquelinSectors) {
  // Method 0 of swe_gauquelin_sector is the semi-arc proportion by right
  // ascension of the body with its ecliptic latitude, as ours. Its float
  // sector g runs 1 to 37 with the diurnal motion from the rising point, so
  // v = 370 - 10 g: sector s holds v in (360 - 10 s, 370 - 10 s], and apart
  // from the boundaries the 36-cell division's cell c is sector 37 - c. The
  // library's own positions, sidereal time and true obliquity are fed to ours.
  struct Place {
    double jd, eastLon, lat;
  };
  const Place places[] = {{2447892.0, -0.1, 51.5}, {2451545.3, 151.2, -33.9}, {2444240.8, -74.0, 40.7},
                          {2455197.6, 18.1, 59.3}, {2436934.1, 77.2, 28.6}};
  const int bodies[] = {SE_SUN, SE_MOON, SE_MERCURY, SE_VENUS, SE_MARS, SE_JUPITER, SE_SATURN, SE_PLUTO};
  AngleErrorTracker error("diurnal position vs swe_gauquelin_sector");
  int compared = 0;
  for (const Place& p : places) {
    char serr[256] = {};
    double nut[6] = {};
    swe_calc_ut(p.jd, SE_ECL_NUT, SEFLG_MOSEPH, nut, serr);
    const double ramc = Mod(swe_sidtime(p.jd) * 15.0 + p.eastLon, 360.0);
    for (int body : bodies) {
      double x[6] = {};
      ASSERT_GE(swe_calc_ut(p.jd, body, SEFLG_MOSEPH, x, serr), 0) << serr;
      double ra = 0, dec = 0;
      EclipticToEquatorial(x[0], x[1], nut[0], ra, dec);
      const double v = DiurnalPositionOf(ra, dec, ramc, p.lat);
      if (v < 0) continue;  // circumpolar: the library numbers it another way
      double geopos[3] = {p.eastLon, p.lat, 0.0}, g = 0;
      ASSERT_GE(swe_gauquelin_sector(p.jd, body, nullptr, SEFLG_MOSEPH, 0, geopos, 0, 0, &g, serr), 0) << serr;
      EXPECT_TRUE(error.Check(v, 370.0 - 10.0 * g, 1e-6)) << body << " at " << p.jd;
      const int cell = static_cast<int>(v / 10.0) + 1, sector = static_cast<int>(g);
      if (std::fabs(g - std::round(g)) > 1e-6) {
        EXPECT_EQ(cell, 37 - sector);
      }
      ++compared;
    }
  }
  EXPECT_GT(compared, 30);
  // Never setting, never rising, the pole: circumpolar.
  EXPECT_EQ(DiurnalPositionOf(50.0, 23.0, 0.0, 70.0), -1.0);
  EXPECT_EQ(DiurnalPositionOf(50.0, -23.0, 0.0, 70.0), -1.0);
  EXPECT_EQ(DiurnalPositionOf(50.0, 90.0, 0.0, 45.0), -1.0);
}

// ------------------------------------------------------------------ a cast chart

// Hand-made dignity tables, so that every transformation names a planet of
// its own and the expected values read straight off the tables.
DignityData HandTables() {
  DignityData d;
  d.Loaded = true;
  RulerSet set;
  set.Name = "Hand";
  for (int sign = 1; sign <= 12; ++sign) {
    set.Signs[sign].Ruler = RulerOf(sign, kAncientDayScheme);
    set.Signs[sign].Exaltation = SignExaltation(sign, kAncientDayScheme);
    set.Signs[sign].Faces = {kSun, kVenus, kMercury};
  }
  set.Signs[8].Faces = {kMercury, kSun, kVenus};
  d.RulerSets.push_back(set);
  d.ActiveRulerSet = 1;
  // Water: Ptolemy day Venus, night Mars, extra Moon; Lilly Jupiter, Saturn;
  // Dorothean Mercury, Sun, Uranus.
  d.Triplicity[4] = {kVenus, kJupiter, kMercury, kMars, kSaturn, kSun, kMoon, 0, kUranus};
  d.Degrees[216].TermPtolemy = kJupiter;
  d.Degrees[216].TermEgyptian = kSaturn;
  return d;
}

struct PointsChart : ::testing::Test {
  void SetUp() override {
    // 5 January 1990, noon UT, London: a day chart, Sun in Capricorn.
    CastChart(session, kResearchSlot, 5, 1, 1990, 12.0, 0.0, 0.1, 51.5);
    state.Dignity = HandTables();
    chart.NewChart(false);
    chart.IsDay = true;
  }
  double Lon(int point) const { return session.charts.Longitude[kGeocentric][kResearchSlot][point]; }
  PointValue Evaluate(const PointRef& ref) {
    std::vector<PointValue> values;
    EvaluatePoints(session, state, chart, {ref}, values);
    return values.at(0);
  }
  TestSession ts;
  Session& session = ts.session;
  ResearchState state;
  ResearchChart chart;
};

PointRef Ref(int type, int item1, int item2 = 0, float position = 0, int transform = 0) {
  PointRef r;
  r.PointType = type;
  r.Item1 = static_cast<uint8_t>(item1);
  r.Item2 = static_cast<uint8_t>(item2);
  r.Position = position;
  r.Transform = transform;
  return r;
}

TEST_F(PointsChart, PointsTransformationsNameTheTablesPlanet) {
  struct Row {
    int transform;
    bool day;
    int planet;
  };
  const Row rows[] = {
      {3, true, kPluto},     {4, true, kMars},       {5, true, kVenus},   {5, false, kMars},  {6, true, kMars},
      {6, false, kVenus},    {7, true, kMoon},       {8, true, kMercury}, {9, true, kSun},    {10, false, kUranus},
      {11, true, kJupiter},  {11, false, kSaturn},   {12, true, kSaturn}, {13, true, kJupiter}, {14, true, kSaturn},
      {15, true, kMercury},
  };
  for (const Row& r : rows) {
    chart.IsDay = r.day;
    const PointValue v = Evaluate(Ref(kFixedPositionType, 0, 0, 215.5f, r.transform));  // 5 Scorpio 30
    EXPECT_EQ(v.Planet, r.planet) << "transform " << r.transform;
    EXPECT_DOUBLE_EQ(v.Longitude, Lon(r.planet)) << "transform " << r.transform;
  }
}

TEST_F(PointsChart, PointsValuesOfSimpleKinds) {
  const double sun = Lon(kSun), moon = Lon(kMoon);
  double mid = (sun + moon) / 2;
  if (std::fabs(sun - moon) > 180) mid = Mod(mid + 180, 360);
  struct Row {
    PointRef ref;
    double expected;
    int planet;
  };
  const Row rows[] = {
      {Ref(kFixedPositionType, 0, 0, 0.0f, 1), 180.0, 0},    // antiscion of 0 Aries
      {Ref(kFixedPositionType, 0, 0, 0.0f, 2), 0.0, 0},      // contra-antiscion of 0 Aries
      {Ref(kFixedPositionType, 0, 0, 100.0f, 1), 80.0, 0},
      {Ref(kMidpointType, kSun, kMoon), mid, 0},
  };
  for (const Row& r : rows) {
    const PointValue v = Evaluate(r.ref);
    EXPECT_NEAR(v.Longitude, r.expected, 1e-9) << PointName(session, state, r.ref);
    EXPECT_EQ(v.Planet, r.planet) << PointName(session, state, r.ref);
  }
}

TEST_F(PointsChart, PointsWithoutValue) {
  session.charts.Longitude[kGeocentric][kResearchSlot][kChiron] = -1.0;
  struct Row {
    PointRef ref;
    bool noHouses;
  };
  const Row rows[] = {
      {Ref(kMidpointType, kSun, kChiron), false},
      {Ref(kMidpointType, kSun, kAscendant), true},
      {Ref(kChartPointType, kMidheaven), true},
      {Ref(kHouseCuspType, 1), true},
      {Ref(kArabicPartType, 1), false},   // no parts loaded
      {Ref(kChartPointType, kChiron, 0, 0, 3), false},  // a transformation of nothing
  };
  for (const Row& r : rows) {
    chart.NewChart(r.noHouses);
    EXPECT_LT(Evaluate(r.ref).Longitude, 0) << PointName(session, state, r.ref);
  }
  // A degree almuten of a point without value stays in place, without value.
  std::vector<PointRef> expanded;
  std::vector<int> origin;
  const PointRef ref = Ref(kMidpointType, kSun, kChiron, 0, 16);
  ExpandPoints(session, state, chart, {ref}, expanded, origin);
  ASSERT_EQ(expanded.size(), 1u);
  EXPECT_EQ(expanded[0], ref);
  EXPECT_LT(Evaluate(expanded[0]).Longitude, 0);
}

TEST_F(PointsChart, PointsPartSectRules) {
  PartDef fortune;  // Ascendant + Moon - Sun
  fortune.Terms = {PartTerm{1, kAscendant, 0}, PartTerm{1, kMoon, 0}, PartTerm{1, kSun, 0}};
  fortune.Name = "Part of Fortune";
  fortune.Abbrev = "Fort";
  const double expected = Mod(Lon(kAscendant) + Lon(kMoon) - Lon(kSun), 360);
  struct Row {
    int sectRule;
    bool day;
    bool hasValue;
  };
  const Row rows[] = {{0, true, true}, {0, false, true}, {1, true, true},
                      {1, false, false}, {2, true, false}, {2, false, true}};
  for (const Row& r : rows) {
    fortune.SectRule = static_cast<int16_t>(r.sectRule);
    state.Parts = {fortune};
    chart.IsDay = r.day;
    const double lon = Evaluate(Ref(kArabicPartType, 1)).Longitude;
    if (r.hasValue)
      EXPECT_NEAR(lon, expected, 1e-9) << r.sectRule << r.day;
    else
      EXPECT_LT(lon, 0) << r.sectRule << r.day;
  }
  // A part made of itself ends at the depth guard with no value.
  PartDef loop = fortune;
  loop.SectRule = 0;
  loop.Terms[0] = PartTerm{5, 1, 0};
  state.Parts = {loop};
  EXPECT_LT(Evaluate(Ref(kArabicPartType, 1)).Longitude, 0);
}

TEST_F(PointsChart, PointsTiedAlmutensShareTheirOrigin) {
  // One item, the Sun in Capricorn, scored by ruler and exaltation alone:
  // Saturn and Mars tie.
  AlmutenDef def;
  def.Name = "Sun tie";
  def.Weights[1] = 1;
  def.Weights[2] = 1;
  def.Points[1] = 1000 + PointFileCode(kSun);
  def.RulerSetIndex = 1;
  def.HouseSystem = session.prefs.Houses;
  state.Almutens = {def};
  std::vector<PointRef> expanded;
  std::vector<int> origin;
  ExpandPoints(session, state, chart, {Ref(kChartPointType, kVenus), Ref(kChartAlmutenType, 1, 0, 0, 0)}, expanded,
               origin);
  ASSERT_EQ(expanded.size(), 3u);
  EXPECT_EQ(origin, (std::vector<int>{0, 1, 1}));
  std::set<int> planets{expanded[1].Item1, expanded[2].Item1};
  EXPECT_EQ(planets, (std::set<int>{kMars, kSaturn}));
  EXPECT_EQ(expanded[1].PointType, kChartPointType);
}

TEST_F(PointsChart, PointsPrenatalLunationsMatchTheLibrary) {
  // New moon 6 January 2000 18:14 UT, full moon 21 January 2000 04:40 UT.
  // The search hands its JD to the ephemeris as it stands, so the library is
  // asked at the same JD.
  struct Row {
    double from;
    double target;
    bool syzygy;
    double expected;
  };
  const Row rows[] = {
      {2451553.5, 0.0, false, 2451550.2597},    // 10 January back to the new moon
      {2451569.5, 0.0, true, 2451564.6944},     // 26 January back to the full moon
      {2451569.5, 180.0, false, 2451564.6944},
      {2451556.0, 0.0, true, 2451550.2597},
  };
  for (const Row& r : rows) {
    const PrenatalResult found = PrenatalSearch(session, r.from, -1.0, r.target, true, r.syzygy);
    EXPECT_NEAR(found.JD, r.expected, 0.003) << r.from;
    char serr[256] = {};
    double moon[6] = {}, sun[6] = {};
    swe_calc(found.JD, SE_MOON, 0, moon, serr);
    swe_calc(found.JD, SE_SUN, 0, sun, serr);
    const double elongation = Mod(moon[0] - sun[0] + 90.0, 180.0) - 90.0;
    EXPECT_NEAR(elongation, 0.0, 1e-4) << r.from;
    EXPECT_NEAR(found.Moon, moon[0], 1e-3);
  }
  // The chart's prenatal new moon through the point list.
  CastChart(session, kResearchSlot, 10, 1, 2000, 0.0, 0.0, 0.0, 51.5);
  chart.NewChart(false);
  std::vector<PointRef> expanded;
  std::vector<int> origin;
  ExpandPoints(session, state, chart, {Ref(kPrenatalType, 4)}, expanded, origin);
  ASSERT_EQ(expanded.size(), 1u);
  EXPECT_EQ(expanded[0].PointType, kFixedPositionType);
  EXPECT_EQ(expanded[0].Item1, kMoon);
  EXPECT_NEAR(expanded[0].Position, chart.Prenatal[1].Moon, 1e-3);
  EXPECT_NEAR(Mod(expanded[0].Position, 360), 285.8, 0.2);  // 15 Capricorn 48
}

TEST_F(PointsChart, PointsFillSubtractsTheSiderealOffset) {
  ChartSlot& slot = session.charts.Slots[kResearchSlot];
  slot.SiderealOffset = -24.0;
  std::vector<PointValue> values(2);
  values[0].Longitude = 76.0;
  values[0].Latitude = 1.5;
  FillDiurnal(session, chart, values);
  double ra = 0, dec = 0;
  EclipticToEquatorial(100.0, 1.5, slot.Obliquity, ra, dec);
  EXPECT_NEAR(values[0].RightAscension, ra, 1e-12);
  EXPECT_NEAR(values[0].DiurnalPosition, DiurnalPositionOf(ra, dec, slot.Ramc, slot.Latitude), 1e-12);
  EXPECT_EQ(values[1].DiurnalPosition, -1.0);  // no value, nothing filled
}

// ------------------------------------------------------------------ names and the list

TEST(PointsNames, DisplayNamesAndLookUp) {
  TestSession ts;
  ResearchState state;
  PartDef part;
  part.Name = "Part of Fortune";
  part.Abbrev = "Fort";
  state.Parts = {part};
  struct Row {
    PointRef ref;
    const char* name;
  };
  const Row rows[] = {
      {Ref(kChartPointType, kMars), "Mars"},
      {Ref(kChartPointType, kTrueNode), "True Node"},
      {Ref(kChartPointType, kMeanNode, 0, 0, 16), "Deg. Almuten of Mean Node"},
      {Ref(kMidpointType, kSun, kMoon), "The Sun/The Moon"},
      {Ref(kHouseCuspType, 10, 0, 0, 3), "Ruler (New) of 10th House Cusp"},
      {Ref(kArabicPartType, 1, 0, 0, 2), "C.Antiscia of Part of Fortune"},
      {Ref(kPrenatalType, 4), "Prenatal New Moon"},
      {Ref(kFixedPositionType, 0, 0, 15.5f), "15\xB0" "30' Ar"},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(PointName(ts.session, state, r.ref), r.name);
    PointRef back;
    if (r.ref.PointType == kFixedPositionType) continue;
    ASSERT_TRUE(PointByName(ts.session, state, r.name, back)) << r.name;
    EXPECT_EQ(back, r.ref) << r.name;
  }
  EXPECT_EQ(PointName(ts.session, state, Ref(kArabicPartType, 2)), "*Invalid Part*");
  EXPECT_EQ(PointName(ts.session, state, Ref(kChartAlmutenType, 1)), "*Invalid Almuten*");

  PointRef ref;
  ASSERT_TRUE(PointByName(ts.session, state, "Sun/Moon", ref));
  EXPECT_EQ(ref, Ref(kMidpointType, kSun, kMoon));
  ASSERT_TRUE(PointByName(ts.session, state, "fortune", ref));
  EXPECT_EQ(ref, Ref(kArabicPartType, 1));
  ASSERT_TRUE(PointByName(ts.session, state, "15Ar30", ref));
  EXPECT_EQ(ref.PointType, kFixedPositionType);
  EXPECT_NEAR(ref.Position, 15.5, 1e-4);
  EXPECT_FALSE(PointByName(ts.session, state, "Vulcan", ref));
  EXPECT_TRUE(ts.sink.messages.empty());
  EXPECT_EQ(TransformByName(ts.session, "Ruler (New)"), 3);
  EXPECT_EQ(TransformByName(ts.session, "degree almuten"), 16);
  EXPECT_EQ(TransformByName(ts.session, "Ruler"), -1);
}

TEST(PointsList, LimitDuplicatesAndMidpoints) {
  TestSession ts;
  std::vector<PointRef> list;
  for (int i = 0; i < kMaxSelectedPoints; ++i)
    ASSERT_EQ(AddPoint(ts.session, list, Ref(kFixedPositionType, 0, 0, static_cast<float>(i))), i);
  EXPECT_EQ(AddPoint(ts.session, list, Ref(kChartPointType, kSun)), -1);
  EXPECT_EQ(list.size(), 124u);
  ASSERT_EQ(ts.sink.messages.size(), 1u);
  EXPECT_EQ(ts.sink.messages[0].text,
            "The limit of 124 has been reached. You cannot add any more points unless you remove some others first.");
  EXPECT_EQ(ts.sink.messages[0].title, "Cannot Add");
  EXPECT_EQ(ts.sink.messages[0].flags, 16);

  list.resize(120);
  EXPECT_EQ(AddPoint(ts.session, list, Ref(kFixedPositionType, 0, 0, 7.0f)), 7);  // already listed
  AddAllMidpoints(ts.session, list, kSun, 0);
  EXPECT_EQ(list.size(), 124u);
  EXPECT_EQ(list.back(), Ref(kMidpointType, kSun, kVenus));  // Moon, Earth, Mercury, Venus: the Sun skipped
  EXPECT_EQ(ts.sink.messages.size(), 2u);
  EXPECT_EQ(ChangeFileWarning(3),
            "If you select a different file, then the 3 existing selected points from the old file may be changed or "
            "invalidated!");
}

TEST(PointsList, FileRoundTripAndCorruptFiles) {
  TestSession ts;
  ResearchState state;
  state.PartsFileName = "/somewhere/vintar.arp";
  state.AlmutenFileName = "/somewhere/vintar.alm";
  state.Selected = {Ref(kChartPointType, kMars, 0, 0, 3), Ref(kFixedPositionType, 0, 0, 123.456f, 1),
                    Ref(kMidpointType, kSun, kMoon, 0, 16), Ref(kPrenatalType, 6)};
  const std::string path = ts.dir.file("list.vpt");
  ASSERT_TRUE(SavePointList(ts.session, path, state));
  const std::string bytes = testing::ReadBytes(path);
  ASSERT_EQ(bytes.size(), 1536u + 4 * 14);
  EXPECT_EQ(bytes[254], ' ');  // space padded
  EXPECT_EQ(bytes.substr(1536 + 14, 6), std::string("\x01\0\0\0\0\0", 6));  // i32 type 1, items 0

  ResearchState opened;
  ASSERT_TRUE(OpenPointList(ts.session, opened, path));
  EXPECT_EQ(opened.Selected, state.Selected);
  EXPECT_EQ(opened.Header.PartsFile, state.PartsFileName);
  EXPECT_EQ(EncodePointList(opened.Header, opened.Selected), bytes);

  auto withCount = [&](int count) {
    std::string b = bytes;
    b[510] = static_cast<char>(count & 0xFF);
    b[511] = static_cast<char>((count >> 8) & 0xFF);
    return b;
  };
  auto patched = [&](size_t at, const std::string& with) { return bytes.substr(0, at) + with + bytes.substr(at + with.size()); };
  const float nan = std::nanf("");
  std::string nanBytes(4, '\0');
  std::memcpy(nanBytes.data(), &nan, 4);  // little-endian host
  const std::string corrupt[] = {
      "", bytes.substr(0, 1535), bytes.substr(0, bytes.size() - 1), withCount(-1), withCount(125), withCount(5),
      patched(1536, std::string("\x07\0\0\0", 4)), patched(1536 + 10, std::string("\x11\0\0\0", 4)),
      patched(1536 + 14 + 6, nanBytes),
  };
  for (const std::string& b : corrupt) {
    PointListHeader h;
    std::vector<PointRef> refs;
    std::string error;
    EXPECT_FALSE(DecodePointList(b, h, refs, error)) << b.size();
    EXPECT_FALSE(error.empty());
    testing::WriteBytes(path, b);
    ts.sink.Clear();
    EXPECT_FALSE(OpenPointList(ts.session, opened, path));
    EXPECT_EQ(ts.sink.messages.size(), 1u);
    EXPECT_EQ(opened.Selected, state.Selected);  // nothing changed
  }
  // A list longer than its count keeps the extra bytes out of the list.
  PointListHeader h;
  std::vector<PointRef> refs;
  std::string error;
  EXPECT_TRUE(DecodePointList(withCount(2), h, refs, error));
  EXPECT_EQ(refs.size(), 2u);
}

}  // namespace
}  // namespace vintar
