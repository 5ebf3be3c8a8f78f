// The dynamic chart: Naibod angles by hand, aspects at the edge of the orb,
// the options and keyword files, the event list, a record's chart.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "calc/astro.h"
#include "calc/chart.h"
#include "core/calendar.h"
#include "core/record_edit.h"
#include "rectify/dynamic_chart.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::AngleDiff;
using testing::ReadBytes;
using testing::TestSession;

constexpr double kPi = 3.14159265358979323846;
double Rad(double d) { return d * kPi / 180.0; }
double Deg(double r) { return r * 180.0 / kPi; }

ChartAdjustState Ulm() {
  ChartAdjustState a;
  a.Day = 14;
  a.Month = 3;
  a.Year = 1879;
  a.Hour = 11;
  a.Minute = 30;
  a.Zone = -0.6656;
  a.Longitude = -9.983;
  a.Latitude = 48.4;
  return a;
}

TEST(DynamicChart, NaibodAnglesMatchAHandComputation) {
  TestSession t;
  Session& s = t.session;
  CastRadix(s, Ulm());
  const ChartSlot radix = s.charts.Slots[kChartRadixSlot];
  const double radixMC = s.charts.Longitude[kGeocentric][kChartRadixSlot][kMidheaven];

  for (int type : {kSecondary, kTertiary, kSolarArc}) {
    for (double years : {0.0, 30.0, 71.5}) {
      DynamicChartState st;
      st.DynamicType = type;
      st.Method = kNaibod;
      const double jd = radix.ChartJD + years * 365.25;
      DynamicChart(s, st, jd);

      // By hand: 0.06569444 hours of sidereal time a year, turned into the
      // Midheaven and Ascendant with the obliquity of the progressed date.
      const double rate = type == kTertiary ? 1.0 / 27.32158648 : 1.0 / 365.24219907;
      const double progressed = radix.ChartJD + (jd - radix.ChartJD) * (type == kSolarArc ? rate * 0.997269566 : rate);
      const double tt = (progressed - 2415020.0) / 36525.0 - 1.0;
      const double eps = 23.4392911 - 0.0130042 * tt - 1.64e-7 * tt * tt + 5.04e-7 * tt * tt * tt;
      const double ramc = radix.Ramc + years * 0.06569444 * 15.0;
      const double mc = Deg(std::atan2(std::sin(Rad(ramc)), std::cos(Rad(ramc)) * std::cos(Rad(eps))));
      const double asc = Deg(std::atan2(std::cos(Rad(ramc)), -(std::sin(Rad(ramc)) * std::cos(Rad(eps)) +
                                                                std::tan(Rad(radix.Latitude)) * std::sin(Rad(eps)))));
      const auto& lon = s.charts.Longitude[kGeocentric][kChartDynamicSlot];
      EXPECT_NEAR(AngleDiff(lon[kMidheaven], mc), 0.0, 1e-6) << type << " " << years;
      EXPECT_NEAR(AngleDiff(lon[kAscendant], asc), 0.0, 1e-6) << type << " " << years;
      if (years == 0.0) {
        EXPECT_NEAR(AngleDiff(lon[kMidheaven], radixMC), 0.0, 1e-6) << type;
      }
      EXPECT_EQ(st.JD, jd);
    }
  }
}

TEST(DynamicChart, TransitsAreTheChartOfTheMomentAtTheRadixPlace) {
  TestSession t;
  Session& s = t.session;
  const ChartAdjustState birth = Ulm();
  CastRadix(s, birth);
  DynamicChartState st;
  st.DynamicType = kTransits;
  const double jd = JulDay(1, 6, 1905) + 0.25;  // 06:00 UT
  DynamicChart(s, st, jd);
  CastChart(s, 3, 1, 6, 1905, 6.0, 0.0, birth.Longitude, birth.Latitude);
  for (int point : {kMoon, kSun, kMars, kPluto, kAscendant, kMidheaven})
    EXPECT_NEAR(AngleDiff(s.charts.Longitude[kGeocentric][kChartDynamicSlot][point],
                          s.charts.Longitude[kGeocentric][3][point]),
                0.0, 1e-5)
        << point;
}

TEST(DynamicChart, AspectsCountUpToTheOrbEdge) {
  struct Case {
    double moving, radix;
    int harmonic;
    bool hit;
    double angle, distance;
  } cases[] = {
      {101.0, 10.0, 4, true, 90.0, 1.0},  // at the edge
      {101.001, 10.0, 4, false, 0, 0},    // just past it
      {9.0, 10.0, 4, true, 0.0, -1.0},
      {190.5, 10.0, 8, true, 180.0, 0.5},
      {56.0, 10.0, 8, true, 45.0, 1.0},   // semi-square: the eighth harmonic only
      {56.0, 10.0, 4, false, 0, 0},
      {341.0, 10.0, 12, true, 30.0, 1.0},  // semi-sextile behind the radix point
      {341.0, 10.0, 4, false, 0, 0},
      {359.5, 0.3, 4, true, 0.0, -0.8},    // across 0 Aries
      {280.0, 10.0, 12, true, 90.0, 0.0},
  };
  for (const Case& c : cases) {
    double angle = -1, distance = -1;
    const bool hit = AspectWithin(c.moving, c.radix, c.harmonic, 1.0, angle, distance);
    EXPECT_EQ(hit, c.hit) << c.moving << " h" << c.harmonic;
    if (!hit || !c.hit) continue;
    EXPECT_NEAR(angle, c.angle, 1e-9) << c.moving;
    EXPECT_NEAR(distance, c.distance, 1e-9) << c.moving;
  }

  TestSession t;
  Session& s = t.session;
  auto& lon = s.charts.Longitude[kGeocentric];
  for (int p = 1; p <= kPoints; ++p) lon[kChartRadixSlot][p] = lon[kChartDynamicSlot][p] = -1.0;
  lon[kChartRadixSlot][kSun] = 10.0;
  lon[kChartRadixSlot][kMoon] = 200.0;
  lon[kChartRadixSlot][kMars] = 100.0;      // not an aspected point
  lon[kChartDynamicSlot][kSaturn] = 100.5;  // square the Sun, 0.5
  lon[kChartDynamicSlot][kJupiter] = 19.9;  // opposite the Moon, 0.1
  lon[kChartDynamicSlot][kUranus] = 40.0;   // a trine to nothing at harmonic 4
  DynamicChartState st;
  st.Harmonic = 4;
  DynOptions& r = st.Options.Records[kTransits];
  r.Orb = 1.0f;
  for (int p : {kSun, kMoon}) r.RadixPoints[p] = kTrue;
  for (int p : {kJupiter, kSaturn, kUranus, kNeptune}) r.DynamicPoints[p] = kTrue;  // Neptune has no position
  const std::vector<ChartAspect> aspects = ChartAspects(s, st);
  ASSERT_EQ(aspects.size(), 2u);
  EXPECT_EQ(aspects[0].Moving, kJupiter);
  EXPECT_EQ(aspects[0].Radix, kMoon);
  EXPECT_NEAR(aspects[0].Angle, 180.0, 1e-9);
  EXPECT_EQ(ChartAspectLine(s, aspects[0]), "Jupiter Opposition The Moon  0\xB0" "06'");
  EXPECT_EQ(aspects[1].Moving, kSaturn);
  EXPECT_EQ(s.vocab.AspectName[aspects[1].AspectIndex], "Square");
}

TEST(DynamicChart, OptionsRoundTripThroughTheChartFile) {
  TestSession t;
  Session& s = t.session;
  // Without a chart file the shipped defaults stand.
  ChartOptions options = LoadChartOptions(s);
  EXPECT_TRUE(options.Records[kTransits].DynamicPoints[kSaturn]);
  EXPECT_EQ(options.StepDays, s.prefs.DynStepDays);

  ChartOptForm form = OpenChartOpt(options, kSecondary);
  form.Orb = "2.5";
  ASSERT_TRUE(ChartOptSelectType(s, form, kSolarArc));
  EXPECT_NEAR(form.Records[kSecondary].Orb, 2.5, 1e-4);
  form.Records[kSolarArc].DynamicPoints.fill(kFalse);
  form.Records[kSolarArc].DynamicPoints[kVenus] = kTrue;
  ApplyAspectHarmonic(form.Records[kSolarArc], 12);
  form.Orb = "0 30";
  form.Interval = "0";  // below 1: one day
  ASSERT_TRUE(ChartOptAccept(s, form, options));
  EXPECT_EQ(options.StepDays, 1);
  EXPECT_EQ(s.prefs.DynStepDays, 1);
  EXPECT_EQ(ReadBytes(OptionsSavePath(s, OptionsFile::Chart)).size(), size_t(kDynOptionFileBytes));

  const ChartOptions back = LoadChartOptions(s);
  EXPECT_EQ(EncodeDynOptions(back.Records), EncodeDynOptions(options.Records));
  EXPECT_NEAR(back.Records[kSolarArc].Orb, 0.5, 1e-4);
  EXPECT_EQ(DefaultChartHarmonic(back.Records[kSolarArc]), 12);
  EXPECT_EQ(DefaultChartHarmonic(back.Records[kTransits]), 4);

  // A bad orb keeps the screen open and writes nothing.
  const std::string before = ReadBytes(OptionsSavePath(s, OptionsFile::Chart));
  form.Orb = "abc";
  EXPECT_FALSE(ChartOptAccept(s, form, options));
  EXPECT_EQ(t.sink.messages.back().title, "Error in Angle");
  EXPECT_EQ(ReadBytes(OptionsSavePath(s, OptionsFile::Chart)), before);

  struct Interval {
    const char* text;
    int days;
  } intervals[] = {{"7", 7}, {"1", 1}, {"0", 1}, {"-5", 1}, {"", 1}, {"x", 1}, {"2.9", 2}, {"99999", 32767}};
  for (const Interval& i : intervals) EXPECT_EQ(IntervalDays(i.text), i.days) << i.text;
}

TEST(DynamicChart, KeywordsFileRoundTrip) {
  TestSession t;
  Session& s = t.session;
  EXPECT_EQ(LoadKeywords(s).Text[0], "");  // no file: empty keywords
  KeywordTable table;
  table.Text[0] = "feelings, mother";
  table.Text[2] = "will \"self\"";
  table.Text[kFirstHouseItem + 9] = "career";
  ASSERT_TRUE(SaveKeywords(s, table));
  const KeywordTable back = LoadKeywords(s);
  EXPECT_EQ(back.Text[0], "feelings, mother");
  EXPECT_EQ(back.Text[2], "will 'self'");
  EXPECT_EQ(back.Text[35], "career");
  EXPECT_EQ(back.Text[1], "");
  // A short file leaves the rest empty; unquoted lines are taken whole.
  const KeywordTable shortFile = DecodeKeywords("\"one\"\r\ntwo words\n");
  EXPECT_EQ(shortFile.Text[0], "one");
  EXPECT_EQ(shortFile.Text[1], "two words");
  EXPECT_EQ(shortFile.Text[37], "");
  // An opposition to the Midheaven reads as the IC.
  EXPECT_EQ(KeywordItemsOfHit(s, kMidheaven, 180.0).front(), kICItem);
  EXPECT_EQ(KeywordItemsOfHit(s, kMidheaven, 90.0).front(), kMidheaven - 1);
}

TEST(DynamicChart, EventListAndNearestEvent) {
  TestSession t;
  Session& s = t.session;
  ProjectState& p = s.project;
  struct Ev {
    const char* text;
    int day, month, year;
  } events[] = {{"Sister born", 18, 11, 1881}, {"Move", 5, 1, 1905}, {"Late", 2, 3, 2007}};
  p.Header.RecordCount = 3;
  for (int i = 0; i < 3; ++i) {
    EventRecord& e = p.Events[i + 1];
    e.Description = events[i].text;
    e.Day = static_cast<uint8_t>(events[i].day);
    e.Month = static_cast<uint8_t>(events[i].month);
    e.Year = static_cast<int16_t>(events[i].year);
    e.JulianDay = 2410000.0 + 1000.0 * i;
  }
  EXPECT_EQ(EventListLine(s, 1), "18 Nov 81  Sister born");
  EXPECT_EQ(EventListLine(s, 3), "2 Mar 07  Late");
  EXPECT_EQ(EventListLine(s, 4), "");
  s.prefs.MonthFirst = kTrue;
  EXPECT_EQ(EventListLine(s, 2), "Jan 5 05  Move");

  const double middle = 2410500.0;
  EXPECT_EQ(EventNearestDate(s, middle), 1);  // a tie keeps the earlier
  EXPECT_EQ(EventNearestDate(s, middle + 1.0), 2);
  EXPECT_EQ(EventNearestDate(s, 1e7), 3);
  p.Header.RecordCount = 0;
  EXPECT_EQ(EventNearestDate(s, middle), 0);
  EXPECT_EQ(ChartAgeText(2451545.0 + 365.25 * 34.2, 2451545.0), "34.2 Years");
}

// A record's chart: its own date, time, zone and place under its own name;
// a record that is missing, undated or without a place gives none, and only
// the placeless one is told.
TEST(DynamicChart, RecordChartsComeFromTheirRecords) {
  TestSession t;
  Session& s = t.session;
  ProjectState& p = s.project;
  p.Events.resize(5);
  p.Header.RecordCount = 4;
  p.Header.Name = "Project";
  auto record = [&](int n, const char* name, int day, int detail) {
    EventRecord& e = p.Events[n];
    e.Description = name;
    e.Day = static_cast<uint8_t>(day), e.Month = 3, e.Year = 1879;
    e.Hour = 11, e.Minute = 30, e.Second = 5;
    e.ZoneHours = -0.6656f, e.Longitude = -9.983f, e.Latitude = 48.4f;
    e.Placename = "Ulm";
    e.DetailLevel = static_cast<uint8_t>(detail);
  };
  record(1, "Albert ", 14, kDetailTimePlace);
  record(2, "Undated", 0, kDetailTimePlace);
  record(3, "Placeless", 14, kDetailExactTime);
  record(4, "Timeless", 14, kDetailNoTime);

  ChartAdjustState state;
  RadixLabel label;
  ASSERT_TRUE(RecordAdjustState(s, 1, state, &label));
  EXPECT_EQ(label.Name, "Albert");
  EXPECT_EQ(label.Place, "Ulm");
  EXPECT_EQ(std::make_tuple(state.Day, state.Month, state.Year, state.Hour, state.Minute, state.Second),
            std::make_tuple(14, 3, 1879, 11, 30, 5));
  EXPECT_NEAR(state.Zone, -0.6656, 1e-6);
  EXPECT_NEAR(state.Longitude, -9.983, 1e-5);
  EXPECT_NEAR(state.Latitude, 48.4, 1e-5);
  CastRadix(s, state, label);
  EXPECT_EQ(s.charts.Slots[kChartRadixSlot].ChartName, "Albert");
  EXPECT_TRUE(t.sink.messages.empty());

  const struct {
    int record;
    bool told;
  } refused[] = {{0, false}, {5, false}, {-1, false}, {2, false}, {3, true}, {4, true}};
  for (const auto& r : refused) {
    t.sink.Clear();
    ChartAdjustState untouched = state;
    EXPECT_FALSE(RecordAdjustState(s, r.record, untouched)) << r.record;
    EXPECT_EQ(untouched.Day, state.Day) << r.record;
    EXPECT_EQ(t.sink.messages.size(), r.told ? 1u : 0u) << r.record;
  }
}

}  // namespace
}  // namespace vintar
