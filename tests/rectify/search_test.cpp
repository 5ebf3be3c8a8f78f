// The dynamic event search: the options file layout, targets and houses,
// the scoring rules, the default window, the options screen's rules, and
// real searches checked against the ephemeris called directly.
#include <gtest/gtest.h>

#include <cmath>

#include "calc/astro.h"
#include "core/calendar.h"
#include "calc/chart.h"
#include "calc/dynamic.h"
#include "calc/ephemeris.h"
#include "core/parse.h"
#include "core/progress.h"
#include "rectify/search.h"
#include "calc/oracle.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::AngleDiff;
using testing::ReadBytes;
using testing::TestSession;
using testing::WriteBytes;


struct Fixture {
  TestSession t;
  Session& s = t.session;
  SearchState state;
  Fixture() {
    s.paths.UserDataPath = t.dir.file("user") + "/";
    SetEphemerisPath(s.prefs.SwissEphPath);
  }
  // The trial chart: 1 June 1960, noon UT, London.
  void Cast() { CastChart(s, 1, 1, 6, 1960, 12.0, 0.0, 0.0, 51.5); }
  double Radix(int point) const { return s.charts.Longitude[kGeocentric][1][point]; }
  void Events(const std::vector<double>& jds, bool enabled = true) {
    s.project.Events.assign(jds.size() + 1, EventRecord{});
    for (size_t i = 0; i < jds.size(); ++i) {
      EventRecord& e = s.project.Events[i + 1];
      float day = 0;
      int month = 1, year = 2000;
      RevJul(jds[i], day, month, year);
      e.Description = "Event " + std::to_string(i + 1);
      e.Year = static_cast<int16_t>(year);
      e.Month = static_cast<uint8_t>(month);
      e.Day = static_cast<uint8_t>(day);
      e.DetailLevel = 2;
      e.Enabled = enabled ? kTrue : kFalse;
      e.JulianDay = jds[i];
    }
    s.project.Header.RecordCount = static_cast<int32_t>(jds.size());
  }
  DynOptions& Only(int type, std::initializer_list<int> moving, std::initializer_list<int> targets,
                   std::initializer_list<int> aspects = {0}) {
    ResetDynOptions(state.Options);
    DynOptions& o = state.Options[type];
    for (int p : moving) o.DynamicPoints[p] = kTrue;
    for (int p : targets) o.RadixPoints[p] = kTrue;
    for (int a : aspects) o.Aspects[a] = kTrue;
    return o;
  }
};

// Geocentric tropical longitude straight from the library.
double Oracle(int body, double jd) { return testing::LibraryLongitude(body, jd); }

// The first date after `from` on which a body reaches `target`: daily scan
// and bisection.
double OraclePass(int body, double target, double from) {
  double a = from, da = AngleDiff(Oracle(body, a), target);
  for (double b = from + 1.0; b < from + 40000.0; b += 1.0) {
    const double db = AngleDiff(Oracle(body, b), target);
    if (std::signbit(da) != std::signbit(db) && std::fabs(da) < 90 && std::fabs(db) < 90) {
      for (int i = 0; i < 60; ++i) {
        const double m = (a + b) / 2, dm = AngleDiff(Oracle(body, m), target);
        (std::signbit(dm) == std::signbit(da) ? a : b) = m;
      }
      return (a + b) / 2;
    }
    a = b;
    da = db;
  }
  return 0.0;
}

TEST(DynOptionsFile, ByteLayoutAndRoundTrip) {
  Fixture f;
  DynOptionSet set;
  ResetDynOptions(set);
  set[0].RadixPoints[1] = kTrue;
  set[0].RadixPoints[24] = kTrue;
  set[1].Orb = 2.5f;
  set[2].DynamicPoints[8] = kTrue;
  set[3].Aspects[6] = kTrue;
  const std::string bytes = EncodeDynOptions(set);
  ASSERT_EQ(bytes.size(), 456u);
  struct Byte {
    size_t at;
    unsigned char value;
  } expected[] = {
      {0, 0xFF},       {1, 0xFF},        {46, 0xFF},       {47, 0xFF},       // RadixPoints 1 and 24
      {48, 0x00},      {110, 0x00},      {112, 0x80},      {113, 0x3F},      // record 0: orb 1.0
      {114 + 112, 0x20}, {114 + 113, 0x40},                                    // record 1: orb 2.5
      {228 + 48 + 14, 0xFF}, {228 + 48 + 15, 0xFF},                            // record 2: DynamicPoints 8
      {342 + 96 + 12, 0xFF}, {342 + 96 + 13, 0xFF}, {342 + 96 + 10, 0x00},     // record 3: Aspects 6 only
  };
  for (const Byte& b : expected) EXPECT_EQ(static_cast<unsigned char>(bytes[b.at]), b.value) << "byte " << b.at;

  std::string error;
  const std::string path = f.t.dir.file("new/folder/dynopts.fil");
  ASSERT_TRUE(SaveDynOptions(set, path, error)) << error;
  EXPECT_EQ(ReadBytes(path), bytes);
  DynOptionSet back;
  ASSERT_TRUE(LoadDynOptions(back, path));
  EXPECT_EQ(EncodeDynOptions(back), bytes);
}

TEST(DynOptionsFile, ShortMissingAndGarbageFiles) {
  Fixture f;
  DynOptionSet full;
  ResetDynOptions(full);
  for (auto& r : full) {
    r.RadixPoints.fill(kTrue);
    r.Orb = 3.0f;
  }
  struct Case {
    const char* name;
    std::string bytes;
    bool exists;
    int recordsRead;  // records that take the file's values
  } cases[] = {
      {"missing", "", false, 0},
      {"empty", "", true, 0},
      {"one record and a half", EncodeDynOptions(full).substr(0, 114 + 60), true, 1},
      {"three records", EncodeDynOptions(full).substr(0, 342), true, 3},
      {"longer than four", EncodeDynOptions(full) + "trailing", true, 4},
  };
  for (const Case& c : cases) {
    const std::string path = f.t.dir.file(std::string(c.name) + ".fil");
    if (c.exists) WriteBytes(path, c.bytes);
    DynOptionSet got;
    ResetDynOptions(got);
    for (auto& r : got) {
      r.Orb = 9.0f;  // every orb is set to 1.0 first
      r.DynamicPoints[7] = kTrue;  // flags the file does not hold stay as they were
    }
    EXPECT_EQ(LoadDynOptions(got, path), c.exists) << c.name;
    for (int type = 0; type < 4; ++type) {
      const bool read = type < c.recordsRead;
      EXPECT_EQ(got[type].Orb, read ? 3.0f : 1.0f) << c.name << " " << type;
      EXPECT_EQ(got[type].RadixPoints[5], read ? kTrue : kFalse) << c.name << " " << type;
      EXPECT_EQ(got[type].DynamicPoints[7], read ? kFalse : kTrue) << c.name << " " << type;
    }
  }

  // Garbage: an orb that is no number (all bits set) or negative reads as 1.0.
  DynOptionSet got;
  DecodeDynOptions(std::string(456, '\xFF'), got);
  EXPECT_EQ(got[3].Orb, 1.0f);
  EXPECT_EQ(got[3].Aspects[6], -1);
  full[2].Orb = -2.0f;
  DecodeDynOptions(EncodeDynOptions(full), got);
  EXPECT_EQ(got[2].Orb, 1.0f);
}

TEST(DynOptionsFile, ShippedDefaultsMakeTheAnglesTargets) {
  Fixture f;
  // The user has no files yet: the shipped defaults are read; the options
  // in use have no fallback.
  EXPECT_EQ(OptionsLoadPath(f.s, OptionsFile::Defaults), f.s.paths.SystemDataPath + "defopts.fil");
  EXPECT_EQ(OptionsLoadPath(f.s, OptionsFile::Auto), f.s.paths.SystemDataPath + "autopts.fil");
  EXPECT_EQ(OptionsLoadPath(f.s, OptionsFile::Current), f.s.paths.UserDataPath + "dynopts.fil");
  EXPECT_EQ(OptionsSavePath(f.s, OptionsFile::Chart), f.s.paths.UserDataPath + "chtopts.fil");

  for (OptionsFile file : {OptionsFile::Defaults, OptionsFile::Auto}) {
    DynOptionSet set;
    ASSERT_TRUE(LoadDynOptions(set, OptionsLoadPath(f.s, file)));
    for (int type : {kTransits, kSecondary, kSolarArc}) {  // the types Auto Rectify searches
      const DynOptions& r = set[type];
      EXPECT_TRUE(r.RadixPoints[kAscendant] && r.RadixPoints[kMidheaven]) << type;
      EXPECT_TRUE(r.Aspects[0]) << type;
      EXPECT_EQ(r.Orb, 1.0f);
      int moving = 0;
      for (int p = 1; p <= kPoints; ++p) moving += r.DynamicPoints[p] != 0;
      EXPECT_GT(moving, 0) << type;
    }
  }

  // A user's own file wins.
  std::string error;
  ASSERT_TRUE(SaveDynOptions(DynOptionSet{}, OptionsSavePath(f.s, OptionsFile::Auto), error));
  EXPECT_EQ(OptionsLoadPath(f.s, OptionsFile::Auto), f.s.paths.UserDataPath + "autopts.fil");
}

TEST(DynamicSearch, TargetsAndRuledHouses) {
  Fixture f;
  ChartTables& c = f.s.charts;
  c.Longitude[kGeocentric][1].fill(-1.0);
  c.Longitude[kGeocentric][1][kMidheaven] = 10.0;
  struct Case {
    std::vector<int> aspects;
    std::vector<double> longitudes;
  } cases[] = {
      {{0}, {10.0}},                 // one record for the conjunction
      {{6}, {190.0}},                // and one for the opposition
      {{3}, {100.0, 280.0}},         // a square on either side
      {{0, 1, 6}, {10.0, 40.0, 340.0, 190.0}},
  };
  for (const Case& k : cases) {
    DynOptions o;
    o.RadixPoints[kMidheaven] = kTrue;
    o.RadixPoints[kSun] = kTrue;  // no position: no targets
    for (int a : k.aspects) o.Aspects[a] = kTrue;
    const std::vector<TargetRec> t = BuildTargets(f.s, 1, o);
    ASSERT_EQ(t.size(), k.longitudes.size());
    for (size_t i = 0; i < t.size(); ++i) {
      EXPECT_EQ(t[i].Point, kMidheaven);
      EXPECT_NEAR(t[i].Longitude, k.longitudes[i], 1e-9);
    }
  }

  // Cusps with Taurus, Leo, Scorpio and Aquarius intercepted in houses 1, 4, 7 and 10.
  const double cusps[] = {25, 65, 95, 115, 150, 175, 205, 245, 275, 295, 330, 355};
  for (int i = 1; i <= 12; ++i) c.Slots[1].Cusps[i] = cusps[i - 1];
  struct Rules {
    int point;
    std::vector<int> houses;
  } rules[] = {{5, {1, 7}}, {1, {3, 4}}, {3, {4}}, {11, {7}}, {9, {10}}, {4, {2, 5, 6}},
               {10, {11, 12}}, {6, {1}}, {8, {9, 10}}, {7, {8}}, {19, {}}};
  for (const Rules& r : rules) EXPECT_EQ(RuledHouses(f.s, 1, r.point), r.houses) << r.point;
}

TEST(DynamicSearch, NearestEventTiesAndDisabledRecords) {
  Fixture f;
  f.Events({2450000.0, 2450010.0, 2450020.0, 2450005.0});
  f.s.project.Events[4].Enabled = kFalse;
  struct Case {
    double first, last;
    int nearest;
  } cases[] = {
      {2450004.0, 2450006.0, 4},   // every record counts, the disabled record 4 too
      {2450014.0, 2450016.0, 2},   // a tie between 2 and 3 keeps 2
      {2450030.0, 2450040.0, 3},
  };
  for (const Case& c : cases) {
    DynamicHit h;
    h.FirstDate = c.first;
    h.LastDate = c.last;
    EXPECT_EQ(NearestEvent(f.s, h), c.nearest) << c.first;
  }
  f.Events({2450000.0}, false);
  EXPECT_EQ(NearestEvent(f.s, DynamicHit{}), 1);
  f.s.project.Header.RecordCount = 0;
  EXPECT_EQ(NearestEvent(f.s, DynamicHit{}), 0);
}

TEST(DynamicSearch, ScoreRulesAndTotals) {
  Fixture f;
  f.Cast();
  const double x = JulDay(15, 3, 1985) + 0.5;
  f.Events({x, x});
  f.s.project.Events[2].DayRange = 5;
  f.state.DynamicType = kTransits;
  f.state.Options[kTransits].Orb = 1.0f;
  const double saturn = Oracle(6, x);  // Saturn's body number

  EXPECT_EQ(SearchTotals(f.state).Total, 0);
  EXPECT_EQ(SearchTotals(f.state).Ratio, 0.0f);

  struct Case {
    const char* what;
    double first, last, target;
    int event, status, nearest;
  } cases[] = {
      {"event inside the hit, point far away", x - 10, x + 10, saturn + 90, 1, 2, 1},
      {"within the orb at the event", x + 30, x + 40, saturn + 0.5, 1, 1, 1},
      {"outside the orb", x + 30, x + 40, saturn + 3.0, 1, 0, 0},
      {"no event", x - 10, x + 10, saturn, 0, 0, 0},
      // A five-day range: the hit must start by the event's moment and last past its range.
      {"range inside from its middle", x - 3, x + 10, saturn + 90, 2, 2, 2},
      {"range past the hit's end", x - 10, x + 3, saturn + 90, 2, 0, 0},
  };
  for (const Case& c : cases) {
    DynamicHit h;
    h.DynamicPoint = kSaturn;
    h.FirstDate = c.first;
    h.LastDate = c.last;
    h.TargetLon = Mod(c.target, 360.0);
    h.NearestEvent = 99;
    const HitScoreText text = ScoreHit(f.s, f.state, h, c.event, false);
    EXPECT_EQ(h.Status, c.status) << c.what;
    EXPECT_EQ(h.NearestEvent, c.nearest) << c.what;
    EXPECT_NE(text.Age.find(" Years"), std::string::npos);
    if (c.status == 2) {
      EXPECT_EQ(text.Caption, "Within Range");
    }
    if (c.status == 1) {
      EXPECT_EQ(text.Caption, "30 Days Before, Event 1");
    }
    f.state.Hits.push_back(h);
  }
  const SearchTotalsResult totals = SearchTotals(f.state);
  EXPECT_EQ(totals.Total, 6);
  EXPECT_EQ(totals.Matched, 3);
  EXPECT_FLOAT_EQ(totals.Ratio, 0.5f);
  EXPECT_EQ(ScorePercent(totals.Ratio), "50%");
}

TEST(DynamicSearch, DefaultWindow) {
  Fixture f;
  Session& s = f.s;
  s.project.Header.Date = "14 Mar 1879";
  struct Case {
    const char* what;
    std::vector<double> events;
    bool enabled;
    std::string start, end;
  } cases[] = {
      {"events out of order", {JulDay(1, 5, 1990), JulDay(1, 3, 1985), JulDay(31, 12, 2001)}, true,
       FormatDate(s, 1, 1, 1983), FormatDate(s, 1, 1, 2003)},
      {"no records", {}, true, FormatDate(s, 14, 3, 1879), FormatDate(s, 22, 11, 2026)},
      // Only the start speaks of enabled events.
      {"every record disabled", {JulDay(1, 5, 1990)}, false, FormatDate(s, 14, 3, 1879),
       FormatDate(s, 1, 1, 1992)},
  };
  for (const Case& c : cases) {
    f.Events(c.events, c.enabled);
    EXPECT_EQ(DefaultSearchStart(s), c.start) << c.what;
    EXPECT_EQ(DefaultSearchEnd(s), c.end) << c.what;
  }
  f.Events({JulDay(1, 5, 1990), JulDay(1, 3, 1985), JulDay(31, 12, 2001)});
  s.project.Events[3].Enabled = kFalse;
  EXPECT_EQ(DefaultSearchStart(s), FormatDate(s, 1, 1, 1983));
  EXPECT_EQ(DefaultSearchEnd(s), FormatDate(s, 1, 1, 2003));
}

TEST(TranOpt, AspectHarmonics) {
  struct Case {
    int harmonic;
    std::array<int16_t, 7> flags;
  } cases[] = {
      {1, {-1, 0, 0, 0, 0, 0, 0}},     {2, {-1, 0, 0, 0, 0, 0, -1}},    {3, {-1, 0, 0, 0, 0, 0, -1}},
      {4, {-1, 0, 0, -1, 0, 0, -1}},   {8, {-1, 0, 0, -1, 0, 0, -1}},   {12, {-1, -1, -1, -1, -1, -1, -1}},
  };
  for (const Case& c : cases) {
    DynOptions r;
    r.Aspects.fill(kTrue);
    ApplyAspectHarmonic(r, c.harmonic);
    EXPECT_EQ(r.Aspects, c.flags) << c.harmonic;
  }
  for (const AspectSetChoice& choice : AspectSetChoices()) {
    DynOptions r;
    ApplyAspectHarmonic(r, choice.Harmonic);
    EXPECT_EQ(AspectHarmonicOf(r), choice.Harmonic) << choice.Name;
  }
  DynOptions trinesOnly;
  trinesOnly.Aspects[4] = kTrue;
  EXPECT_EQ(AspectHarmonicOf(trinesOnly), 0);
}

TEST(TranOpt, QuestionsAndFiles) {
  Fixture f;
  const double from = JulDay(1, 1, 1900);
  f.t.sink.answer = kNo;
  EXPECT_TRUE(ConfirmSearchPeriod(f.s, from, from + 36525.0));  // 100 years: no question
  EXPECT_TRUE(f.t.sink.messages.empty());
  EXPECT_FALSE(ConfirmSearchPeriod(f.s, from, from + 36526.0));
  ASSERT_EQ(f.t.sink.messages.size(), 1u);
  EXPECT_EQ(f.t.sink.messages[0].text,
            "The time period that you are attempting to search is greater than 100 years.\r\n"
            "Do you wish to continue anyway?");
  EXPECT_EQ(f.t.sink.messages[0].title, "Verify Period");
  f.t.sink.answer = kYes;
  EXPECT_TRUE(ConfirmSearchPeriod(f.s, from, from + 40000.0));

  f.t.sink.Clear();
  f.t.sink.answer = kCancel;
  TranOptForm form = OpenTranOpt(f.s, f.state);
  EXPECT_FALSE(TranOptRestoreDefaults(f.s, form));
  ASSERT_EQ(f.t.sink.messages.size(), 1u);
  EXPECT_EQ(f.t.sink.messages[0].text, "The current options will be overwritten with the original Vintar defauls.");
  EXPECT_EQ(f.t.sink.messages[0].title, "Restore Default?");
  EXPECT_EQ(EncodeDynOptions(form.Records), EncodeDynOptions(f.state.Options));
  f.t.sink.answer = kOk;
  ASSERT_TRUE(TranOptRestoreDefaults(f.s, form));
  EXPECT_EQ(EncodeDynOptions(form.Records), ReadBytes(f.s.paths.SystemDataPath + "defopts.fil"));

  f.t.sink.Clear();
  form.DynType = 1;
  form.Orb = "2.5";
  ASSERT_TRUE(TranOptSaveForAuto(f.s, form));
  EXPECT_EQ(f.t.sink.messages[0].text,
            "The current options will be saved for use whenever the Auto-Rectify facility is used.");
  EXPECT_EQ(f.t.sink.messages[0].title, "Save Options?");
  DynOptionSet saved;
  ASSERT_TRUE(LoadDynOptions(saved, f.s.paths.UserDataPath + "autopts.fil"));
  EXPECT_NEAR(saved[1].Orb, 2.5f, 1e-3);

  // OK: a date that does not parse keeps the screen; good values are saved.
  form.StartDate = "31 Foo 1990";
  EXPECT_FALSE(TranOptAccept(f.s, form, f.state));
  EXPECT_FALSE(FileExists(f.s.paths.UserDataPath + "dynopts.fil"));
  form.StartDate = "1 Jan 1990";
  form.EndDate = "1 Jan 2000";
  ASSERT_TRUE(TranOptAccept(f.s, form, f.state));
  EXPECT_EQ(f.state.StartDate, "1 Jan 1990");
  EXPECT_EQ(ReadBytes(f.s.paths.UserDataPath + "dynopts.fil"), EncodeDynOptions(form.Records));
}

// A Saturn transit over the trial chart's Midheaven with an event placed
// on the pass: exactly one hit, holding the pass, matched to the event.
TEST(DynamicSearch, FindsAndMatchesASaturnTransitToTheMidheaven) {
  Fixture f;
  f.Cast();
  const double mc = f.Radix(kMidheaven);
  const double pass = OraclePass(6, mc, JulDay(1, 1, 1975));
  ASSERT_GT(pass, 0.0);
  f.Events({pass - 4000.0, pass});
  f.Only(kTransits, {kSaturn}, {kMidheaven});
  ASSERT_TRUE(DynamicSearchNew(f.s, f.state, kTransits, "1 Jan 1975", "1 Jan 2004"));
  ASSERT_EQ(f.state.HitCount(), 1);
  DynamicHit& h = f.state.Hits[1];
  EXPECT_EQ(h.DynamicPoint, kSaturn);
  EXPECT_EQ(h.RadixPoint, kMidheaven);
  EXPECT_EQ(h.Aspect, 0);
  EXPECT_LE(h.FirstDate, pass);
  EXPECT_GE(h.LastDate, pass);
  EXPECT_LT(h.LastDate - h.FirstDate, 600.0);
  EXPECT_EQ(NearestEvent(f.s, h), 2);
  ScoreHit(f.s, f.state, h, 2, true);
  EXPECT_EQ(h.Status, kHitWithinRange);
  EXPECT_EQ(HitsOfEvent(f.state, 2), std::vector<int>{1});
  EXPECT_TRUE(HitsOfEvent(f.state, 1).empty());
  const SearchTotalsResult totals = SearchTotals(f.state);
  EXPECT_EQ(totals.Matched, 1);
  EXPECT_FLOAT_EQ(totals.Ratio, 1.0f);
}

// Forty years of transits (stations and retrograde loops included) over the
// four hard aspects to the Midheaven: one hit per group of passes that a
// two-day scan of the ephemeris finds, no more and no fewer.
TEST(DynamicSearch, TransitHitsAgreeWithAScan) {
  struct Case {
    int point, body;
  } cases[] = {
      {kSaturn, 6},
      {11, 9},  // Pluto: slow, most of its targets never reached
      {6, 4},   // Mars turns too often to be sampled: searched pass by pass
  };
  for (const Case& c : cases) {
    Fixture f;
    f.Cast();
    f.Only(kTransits, {c.point}, {kMidheaven}, {0, 3, 6});
    const double from = JulDay(1, 1, 1960), to = JulDay(1, 1, 2000);
    ASSERT_TRUE(DynamicSearchWindow(f.s, f.state, kTransits, from, to));
    int scanned = 0;
    for (const TargetRec& t : BuildTargets(f.s, 1, f.state.Options[kTransits])) {
      int groups = 0;
      double last = 0.0, previous = AngleDiff(Oracle(c.body, from), t.Longitude);
      for (double jd = from + 2.0; jd <= to; jd += 2.0) {
        const double d = AngleDiff(Oracle(c.body, jd), t.Longitude);
        if (std::signbit(d) != std::signbit(previous) && std::fabs(d) < 90) {
          // Passes with the planet staying near the target between them are one loop.
          if (last == 0.0 || std::fabs(AngleDiff(Oracle(c.body, (last + jd) / 2), t.Longitude)) > 30) ++groups;
          last = jd;
        }
        previous = d;
      }
      int hits = 0;
      for (int k = 1; k <= f.state.HitCount(); ++k) hits += f.state.Hits[k].TargetLon == t.Longitude;
      EXPECT_EQ(hits, groups) << c.point << " target " << t.Longitude;
      scanned += groups;
    }
    EXPECT_EQ(f.state.HitCount(), scanned);
    EXPECT_GE(scanned, 1);
  }
}

// A target a hundredth of a degree short of Saturn's station: the two
// passes days apart around the station fall between two samples of the
// path and must still be found, so that the hit begins before the station.
TEST(DynamicSearch, APassNextToAStationIsFound) {
  Fixture f;
  f.Cast();
  double a = JulDay(1, 1, 1975), station = 0.0;
  double previous = AngleDiff(Oracle(6, a + 0.5), Oracle(6, a));
  for (double t = a + 1.0; t < a + 800.0 && station == 0.0; t += 1.0) {
    const double step = AngleDiff(Oracle(6, t + 0.5), Oracle(6, t));
    if (previous > 0.0 && step <= 0.0) station = t;
    previous = step;
  }
  ASSERT_GT(station, 0.0);
  f.s.charts.Longitude[kGeocentric][1][kMidheaven] = Mod(Oracle(6, station) - 0.01, 360.0);
  f.Only(kTransits, {kSaturn}, {kMidheaven});
  // The window puts no sample of the path within ten days of the station.
  ASSERT_TRUE(DynamicSearchWindow(f.s, f.state, kTransits, station - 217.0, station + 400.0));
  ASSERT_EQ(f.state.HitCount(), 1);
  EXPECT_LT(f.state.Hits[1].FirstDate, station - 1.0);
  EXPECT_GT(f.state.Hits[1].LastDate, station + 100.0);  // the direct pass after the loop
  // The range runs the orb on either side at the speed of the pass, however
  // slowly the point moves so near its station.
  const double target = f.s.charts.Longitude[kGeocentric][1][kMidheaven];
  const double first = OraclePass(6, target, station - 217.0);
  const double speed = std::fabs(AngleDiff(Oracle(6, first + 0.01), Oracle(6, first - 0.01))) / 0.02;
  EXPECT_NEAR(f.state.Hits[1].FirstDate, first - 1.0 / speed, 0.01 / speed);
}

// Every hit of progressions and directions lies on the scale of life: the
// point stands on its target at the hit's middle (single passes only: the
// Sun, the Moon, and every directed point). Directed angles are their radix
// places moved by the solar arc, as every other directed point.
TEST(DynamicSearch, ProgressedHitsAreOnTheScaleOfLife) {
  struct Case {
    int type;
    std::initializer_list<int> moving;
  } cases[] = {{kSecondary, {kSun, kMoon}},
               {kSolarArc, {kMoon, kSun, 6, kJupiter, kSaturn, kAscendant, kMidheaven}}};
  for (const Case& c : cases) {
    Fixture f;
    f.Cast();
    f.Only(c.type, c.moving, {kSun, kAscendant, kMidheaven}, {0, 3, 6});
    ASSERT_TRUE(DynamicSearchNew(f.s, f.state, c.type, "1 Jan 1960", "1 Jan 2040"));
    ASSERT_GT(f.state.HitCount(), 5) << c.type;
    const double radixJD = f.s.charts.Slots[1].ChartJD;
    const double radixSun = f.Radix(kSun);
    for (int k = 1; k <= f.state.HitCount(); ++k) {
      const DynamicHit& h = f.state.Hits[f.state.HitOrder[k]];
      if (k > 1) {
        EXPECT_LE(f.state.Hits[f.state.HitOrder[k - 1]].FirstDate, h.FirstDate);
      }
      const double eph = ProgressedJD(c.type, (h.FirstDate + h.LastDate) / 2.0, radixJD);
      const double position = c.type == kSolarArc
                                  ? f.Radix(h.DynamicPoint) + Oracle(0, eph) - radixSun
                                  : Oracle(EphemerisBody(h.DynamicPoint), eph);
      EXPECT_NEAR(AngleDiff(position, h.TargetLon), 0.0, 0.02) << c.type << " hit " << k;
    }
  }
}

// The window's two dates are its ends: a pass later on the end date is out.
TEST(DynamicSearch, TheWindowEndsOnItsLastDate) {
  Fixture f;
  f.Cast();
  f.Only(kTransits, {kSun}, {kSun});
  const double pass = OraclePass(0, f.Radix(kSun), JulDay(1, 1, 1970));
  float day = 0;
  int month = 1, year = 2000;
  RevJul(pass, day, month, year);
  ASSERT_GT(pass - JulDay(static_cast<int>(day), month, year), 0.01);
  const std::string end = FormatDate(f.s, static_cast<int>(day), month, year);
  ASSERT_TRUE(DynamicSearchNew(f.s, f.state, kTransits, "1 Jan 1970", end));
  EXPECT_EQ(f.state.HitCount(), 0);
  ASSERT_TRUE(DynamicSearchNew(f.s, f.state, kTransits, "1 Jan 1970", FormatDate(f.s, 1, 1, 1971)));
  EXPECT_EQ(f.state.HitCount(), 1);
}

// In a sidereal zodiac each moving position carries the offset of its own
// moment: over a century the offset grows by more than a degree.
TEST(DynamicSearch, SiderealPositionsCarryTheirOwnOffset) {
  Fixture f;
  f.s.prefs.Zodiac = 2;
  f.Cast();
  f.Only(kTransits, {kJupiter}, {kMidheaven}, {0, 3, 6});
  ASSERT_TRUE(DynamicSearchNew(f.s, f.state, kTransits, "1 Jan 1900", "1 Jan 2000"));
  int checked = 0;
  for (int k = 1; k <= f.state.HitCount(); ++k) {
    const DynamicHit& h = f.state.Hits[k];
    if (h.LastDate - h.FirstDate > 30.0) continue;  // loops: the middle is no pass
    const double mid = (h.FirstDate + h.LastDate) / 2.0;
    const double position = Oracle(5, mid) + SessionSiderealOffset(f.s, CenturiesFrom1900(mid));
    EXPECT_NEAR(AngleDiff(position, h.TargetLon), 0.0, 1e-4) << k;
    ++checked;
  }
  EXPECT_GE(checked, 5);
}

TEST(DynamicSearch, ATargetBehindThePointWaitsAWholeTurn) {
  Fixture f;
  f.Cast();
  const double radixJD = f.s.charts.Slots[1].ChartJD;
  f.Only(kTransits, {kSun}, {kSun});
  ASSERT_TRUE(DynamicSearchWindow(f.s, f.state, kTransits, radixJD + 5.0, radixJD + 400.0));
  ASSERT_EQ(f.state.HitCount(), 1);
  const DynamicHit& h = f.state.Hits[1];
  EXPECT_NEAR((h.FirstDate + h.LastDate) / 2.0 - radixJD, 365.25, 1.0);
  EXPECT_NEAR(h.LastDate - h.FirstDate, 2.0, 0.1);  // a degree either side at about a degree a day
}

TEST(DynamicSearch, TheListStopsAtFiveHundred) {
  Fixture f;
  f.Cast();
  f.Only(kTransits, {kMoon}, {kMidheaven});
  ASSERT_TRUE(DynamicSearchNew(f.s, f.state, kTransits, "1 Jan 1960", "1 Jan 2060"));
  EXPECT_EQ(f.state.HitCount(), kMaxHits);
  EXPECT_EQ(f.state.HitOrder.size(), static_cast<size_t>(kMaxHits + 1));
}

struct CancelAfterFirst : Progress {
  std::vector<std::string> statuses;
  void Status(const std::string& text) override { statuses.push_back(text); }
  bool Cancelled() override { return true; }
};

TEST(DynamicSearch, BadInputGivesAnEmptyResult) {
  struct Case {
    const char* what;
    bool cast;
    int type;
    std::initializer_list<int> moving;
    const char *from, *to;
    bool ok;
    bool message;
  } cases[] = {
      {"no trial chart", false, kTransits, {kSaturn}, "1 Jan 1970", "1 Jan 2000", false, false},
      {"from after to", true, kTransits, {kSaturn}, "1 Jan 2000", "1 Jan 1970", false, false},
      {"a date that does not parse", true, kTransits, {kSaturn}, "31 Foo 1970", "1 Jan 2000", false, true},
      {"no such type", true, 7, {kSaturn}, "1 Jan 1970", "1 Jan 2000", false, false},
      {"a geocentric Earth", true, kTransits, {kEarth}, "1 Jan 1970", "1 Jan 2000", true, false},
      {"a transiting Ascendant", true, kTransits, {kAscendant}, "1 Jan 1970", "1 Jan 2000", true, false},
  };
  for (const Case& c : cases) {
    Fixture f;
    if (c.cast) f.Cast();
    f.Only(ClampInteger(c.type, 0, 3), c.moving, {kMidheaven});
    f.state.Hits.resize(3);  // a previous list goes
    EXPECT_EQ(DynamicSearchNew(f.s, f.state, c.type, c.from, c.to), c.ok) << c.what;
    EXPECT_EQ(f.state.HitCount(), 0) << c.what;
    EXPECT_EQ(!f.t.sink.messages.empty(), c.message) << c.what;
  }

  // A cancel after the first moving point (Saturn, searched before Jupiter).
  Fixture f;
  f.Cast();
  f.Only(kTransits, {kJupiter, kSaturn}, {kMidheaven, kAscendant}, {0, 3, 6});
  CancelAfterFirst progress;
  ASSERT_TRUE(DynamicSearchNew(f.s, f.state, kTransits, "1 Jan 1960", "1 Jan 2020", &progress));
  EXPECT_TRUE(f.state.Cancelled);
  EXPECT_EQ(progress.statuses, (std::vector<std::string>{"0%", "50%"}));
  ASSERT_GT(f.state.HitCount(), 0);
  for (int k = 1; k <= f.state.HitCount(); ++k) EXPECT_EQ(f.state.Hits[k].DynamicPoint, kSaturn);
}

}  // namespace
}  // namespace vintar
