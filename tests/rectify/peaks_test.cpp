// Peaks and angles: automatic selection on constructed bars (runs over the
// segment's end, narrow high runs, bridged gaps, MaxPeaks), peak lists in
// degrees, merging on the common harmonic (12 and 8 on a circle of 90
// degrees, ties, gaps, the wrap), the largest peaks when none is common,
// the angle search against AnglesFromMC, condensing, and the peak settings.
#include "rectify/peaks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "calc/astro.h"
#include "calc/chart.h"
#include "core/preferences.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

// Graph 1 with these bar heights (unsmoothed), Mean 1 and SD 1: T1 = 2 and,
// with ForcePeakSDFactor 3, T3 = 4.
GraphState Bars(const std::vector<std::pair<int, float>>& heights, int harmonic = 12) {
  GraphState g;
  g.SmoothBars = kFalse;
  GraphRecord& r = g.Graph[1];
  r.MasterHarmonic = static_cast<int16_t>(harmonic);
  r.Mean = 1.0f;
  r.SD = 1.0f;
  for (const auto& [bar, height] : heights) r.Bars[bar] = height;
  return g;
}

std::set<int> Flagged(const GraphState& g, int graph = 1) {
  std::set<int> bars;
  for (int b = 0; b < kBars; ++b)
    if (g.Graph[graph].PeakFlags[b]) bars.insert(b);
  return bars;
}

std::vector<std::pair<int, float>> Heights(int first, int last, float height) {
  std::vector<std::pair<int, float>> bars;
  for (int b = first; b <= last; ++b) bars.emplace_back(b % kBars, height);
  return bars;
}

std::vector<std::pair<int, float>> Join(std::initializer_list<std::vector<std::pair<int, float>>> parts) {
  std::vector<std::pair<int, float>> all;
  for (const auto& p : parts) all.insert(all.end(), p.begin(), p.end());
  return all;
}

std::set<int> Range(int first, int last) {
  std::set<int> bars;
  for (int b = first; b <= last; ++b) bars.insert(b % kBars);
  return bars;
}

TEST(AutoSelectPeaks, RunsThatStayAndRunsThatGo) {
  const auto kThreeRuns = Join({Heights(10, 11, 3), Heights(40, 42, 3), Heights(80, 81, 5)});  // areas 2, 3, 6
  struct Case {
    const char* name;
    std::vector<std::pair<int, float>> bars;
    int maxPeaks;
    std::set<int> flagged;
    int kept;
  } const cases[] = {
      {"a wide run", Heights(10, 13, 3), 2, Range(10, 13), 1},
      {"a narrow run below T3 goes", Heights(10, 10, 3), 2, {}, 0},
      {"a narrow run reaching T3 stays", Heights(10, 10, 4.5f), 2, {10}, 1},
      {"a run over bar 119 to bar 0 is one", Heights(118, 121, 3), 1, Range(118, 121), 1},
      {"a gap of two bars is bridged", Join({Heights(10, 11, 3), Heights(14, 15, 3)}), 1, Range(10, 15), 1},
      {"a gap of three is not", Join({Heights(10, 11, 3), Heights(15, 16, 3)}), 2, {10, 11, 15, 16}, 2},
      {"MaxPeaks above the runs keeps all", kThreeRuns, 5, {10, 11, 40, 41, 42, 80, 81}, 3},
      {"MaxPeaks keeps the largest areas", kThreeRuns, 2, {40, 41, 42, 80, 81}, 2},
      {"bars at T1 are not above it", Heights(10, 20, 2), 2, {}, 0},
  };
  TestSession t;
  t.session.prefs.ForcePeakSDFactor = 3.0f;
  t.session.prefs.MinPeakWidth = 2;
  for (const Case& c : cases) {
    t.session.prefs.MaxPeaks = static_cast<int16_t>(c.maxPeaks);
    GraphState g = Bars(c.bars);
    g.Graph[1].PeakFlags[100] = kTrue;  // a flag drawn by hand is replaced
    EXPECT_EQ(AutoSelectPeaks(t.session, g, 1), c.kept) << c.name;
    EXPECT_EQ(Flagged(g), c.flagged) << c.name;
  }
}

TEST(ReadPeaks, RunsInDegreesWithTheirAreas) {
  GraphState g = Bars(Join({Heights(10, 12, 3), {{11, 4}}, Heights(119, 120, 2.5f)}));
  g.Graph[1].PeakFlags.fill(kFalse);
  for (int b : {10, 11, 12, 119, 0}) g.Graph[1].PeakFlags[b] = kTrue;
  PeakList list;
  ReadPeaks(g, 1, list);
  // The walk begins after the last unflagged pair, at bar 118.
  ASSERT_EQ(list.Count(), 2);
  EXPECT_FALSE(list.HasSource);
  EXPECT_FLOAT_EQ(list.Rows[1].Start, 29.75f);  // over the segment's end
  EXPECT_FLOAT_EQ(list.Rows[1].End, 0.25f);
  EXPECT_FLOAT_EQ(list.Rows[1].Area, 1.0f);
  EXPECT_FLOAT_EQ(list.Rows[2].Start, 2.5f);
  EXPECT_FLOAT_EQ(list.Rows[2].End, 3.25f);
  EXPECT_FLOAT_EQ(list.Rows[2].Area, 1 + 2 + 1);

  g.Graph[1].MasterHarmonic = 8;
  g.Graph[1].PeakFlags.fill(kTrue);
  ReadPeaks(g, 1, list);
  ASSERT_EQ(list.Count(), 1);
  EXPECT_FLOAT_EQ(list.Rows[1].Start, 0.0f);
  EXPECT_FLOAT_EQ(list.Rows[1].End, 45.0f);
}

TEST(Peaks, AnEmptyProjectHasMeanAndQualityZeroAndNoPeaks) {
  TestSession t;
  testing::TempDir folder;
  t.session.project.ProjectPath = folder.file("empty.dat");
  GraphState g;
  DefaultGraphSettings(g, t.session.prefs);
  bool cancelled = true;
  BuildGraphs(t.session, g, cancelled);
  ASSERT_FALSE(cancelled);
  PeakList list;
  for (int n = 1; n <= 3; ++n) {
    EXPECT_EQ(g.Graph[n].Mean + g.Graph[n].Quality, 0.0f);
    EXPECT_EQ(AutoSelectPeaks(t.session, g, n), 0);
    ReadPeaks(g, n, list);
    EXPECT_EQ(list.Count(), 0);
  }
  EXPECT_TRUE(t.sink.messages.empty());
}

PeakList List(std::initializer_list<std::pair<float, float>> rows, float area = 1.0f) {
  PeakList list;
  for (const auto& [start, end] : rows) list.Add({start, end, 0.0f, area});
  return list;
}

struct Expected {
  float start, end;
  int source;
};

void ExpectRows(const PeakList& list, const std::vector<Expected>& rows, const char* name) {
  ASSERT_EQ(list.Count(), static_cast<int>(rows.size())) << name;
  EXPECT_TRUE(list.HasSource) << name;
  for (size_t i = 0; i < rows.size(); ++i) {
    EXPECT_NEAR(list.Rows[i + 1].Start, rows[i].start, 1e-4) << name << " row " << i + 1;
    EXPECT_NEAR(list.Rows[i + 1].End, rows[i].end, 1e-4) << name << " row " << i + 1;
    EXPECT_EQ(list.Rows[i + 1].Source, rows[i].source) << name << " row " << i + 1;
  }
}

TEST(CommonPeaks, MergesOnTheCommonHarmonic) {
  // MaxGapBars 4 and AddCommonBars 2: at C = 4 a gap of 3 degrees and 1.5
  // degrees added; at C = 12 a gap of 1 and 0.5 added.
  struct Case {
    const char* name;
    PeakList a;
    int ha;
    PeakList b;
    int hb;
    int gapBars;
    int common;
    std::vector<Expected> rows;
  } const cases[] = {
      // clang-format off
      {"harmonics 12 and 8 repeat 3 and 2 times", List({{10, 11}}), 12, List({{20, 21}}), 8, 4, 4,
       {{10, 11, 1}, {20, 21, 2}, {40, 41, 1}, {65, 66, 2}, {70, 71, 1}}},
      {"rows of two lists within the gap join", List({{10, 11}}), 12, List({{23.5f, 24}}), 8, 4, 4,
       {{10, 11, 1}, {23.5f, 24, 2}, {40, 41, 1}, {67, 72.5f, 0}}},
      {"a tie puts list 1 first", List({{5, 6}}), 12, List({{5, 6}}), 12, 4, 12, {{4.5f, 6.5f, 0}}},
      {"list 2 counts 0.01 later", List({{5.005f, 6}}), 12, List({{5, 6}}), 12, 4, 12, {{4.505f, 6.5f, 0}}},
      {"one list bridges no gap", List({{1, 2}, {2.5f, 3}}), 12, List({}), 12, 4, 12, {{1, 2, 1}, {2.5f, 3, 1}}},
      {"last and first join over the end", List({{0.5f, 1}, {28, 29.5f}}), 12, List({}), 12, 8, 12,
       {{27.5f, 1.5f, 0}}},
      {"harmonics 2 and 3 on the whole circle", List({{1, 2}}), 2, List({{3, 4}}), 3, 0, 1,
       {{1, 2, 1}, {3, 4, 2}, {123, 124, 2}, {181, 182, 1}, {243, 244, 2}}},
      // clang-format on
  };
  TestSession t;
  t.session.prefs.AddCommonBars = 2;
  for (const Case& c : cases) {
    t.session.prefs.MaxGapBars = static_cast<int16_t>(c.gapBars);
    PeakList out;
    int common = 0;
    CommonPeaks(t.session, c.a, c.ha, c.b, c.hb, common, out);
    EXPECT_EQ(common, c.common) << c.name;
    ExpectRows(out, c.rows, c.name);
  }
}

TEST(TopPeaks, LargestRowsBecomeCommonOnlyWhenNoneIs) {
  PeakList list;
  list.HasSource = true;
  for (float area : {1.0f, 5.0f, 3.0f}) list.Add({area, area + 1, 1.0f, area});
  TopPeaks(list, 2);
  ExpectRows(list, {{5, 6, 0}, {3, 4, 0}, {1, 2, 1}}, "top two");
  TopPeaks(list, 3);
  ExpectRows(list, {{5, 6, 0}, {3, 4, 0}, {1, 2, 1}}, "unchanged");
}

TEST(CircularMid, TakesTheShorterSide) {
  const struct {
    double period, a, b, mid;
  } cases[] = {{24, 1, 3, 2},     {24, 23.5, 0.5, 0}, {24, 0.5, 23.5, 0}, {24, 20, 2, 23},
               {360, 350, 10, 0}, {24, 6, 18, 12},    {24, 10, 10, 10}};
  for (const auto& c : cases) EXPECT_NEAR(CircularMid(c.period, c.a, c.b), c.mid, 1e-12) << c.a << " " << c.b;
}

// ---------------------------------------------------------------- angle search

struct Search {
  TestSession t;
  Session& s = t.session;
  GraphState graphs;
  AngleSearchPlace place;
  Search() {
    ProjectHeader& h = s.project.Header;
    h.Date = "12 Aug 1958";
    h.ZoneTime = "-1:00";
    h.Latitude = "53N48";
    h.Longitude = "1W33";
    EXPECT_TRUE(ParseAngleSearchPlace(s, "0:00", "23:59:59", place));
  }
  AnglesFromMCResult Angles(double mc) {
    return AnglesFromMC(s, mc, place.Day, place.Month, place.Year, kAngleSearchHours, place.Zone, place.Longitude,
                        place.Latitude);
  }
};

TEST(SearchAngles, AMidTimeOnALimitIsKeptAndPairsNeedACommonRow) {
  Search f;
  const auto low = f.Angles(100.0), high = f.Angles(101.0);
  const double mid = CircularMid(24.0, low.LocalHours, high.LocalHours);
  const double asc = Mod(low.Ascendant, 360.0);
  // H = 1: row 1 holds the Midheaven, row 2 the Ascendant.
  PeakList list = List({{100, 101}, {static_cast<float>(asc - 0.5), static_cast<float>(asc + 0.5)}});
  const struct {
    double lowLimit, highLimit;
    int count;
  } cases[] = {{mid, mid + 0.01, 1},
               {mid - 0.01, mid, 1},
               {mid, mid, 1},
               {mid + 1e-9, mid + 0.01, 0},
               {mid - 0.01, mid - 1e-9, 0}};
  for (const auto& c : cases) {
    f.place.LowHours = c.lowLimit;
    f.place.HighHours = c.highLimit;
    AngleResult r;
    ASSERT_EQ(SearchAngles(f.s, f.graphs, 0, 1, list, f.place, r), c.count) << c.lowLimit << " " << c.highLimit;
    if (c.count == 0) continue;
    EXPECT_EQ(r.ResultMC[1], (AngleResult::Range{100.0f, 101.0f}));
    EXPECT_EQ(r.ResultAsc[1][kHigh], static_cast<float>(high.Ascendant));
    EXPECT_EQ(r.ResultVertex[1][kHigh], static_cast<float>(high.Vertex));
    EXPECT_EQ(r.ResultTime[1][kLow], static_cast<float>(low.LocalHours));
  }

  // In a merged list row i or row j must be common.
  f.place.LowHours = f.place.HighHours = mid;
  list.HasSource = true;
  list.Rows[1].Source = 1;
  list.Rows[2].Source = 2;
  AngleResult r;
  EXPECT_EQ(SearchAngles(f.s, f.graphs, 0, 1, list, f.place, r), 0);
  list.Rows[2].Source = 0;
  EXPECT_EQ(SearchAngles(f.s, f.graphs, 0, 1, list, f.place, r), 1);
}

TEST(SearchAngles, APeakOverTheSegmentsEndReaches30DegreesOn) {
  Search f;
  // H = 8 (segments of 45 degrees); the peak runs from 44 over the end to 1.
  const double mcHigh = 31.0;
  const double mid = CircularMid(24.0, f.Angles(44.0).LocalHours, f.Angles(mcHigh).LocalHours);
  f.place.LowHours = mid;
  f.place.HighHours = mid;
  PeakList list = List({{44, 1}, {0, 44.99f}});
  AngleResult r;
  ASSERT_EQ(SearchAngles(f.s, f.graphs, 0, 8, list, f.place, r), 1);
  EXPECT_EQ(r.ResultMC[1][kLow], 44.0f);
  EXPECT_EQ(r.ResultMC[1][kHigh], 31.0f);

  // The harmonic may come from a graph instead.
  f.graphs.Graph[2].MasterHarmonic = 8;
  EXPECT_EQ(SearchAngles(f.s, f.graphs, 2, 0, list, f.place, r), 1);
}

TEST(SearchAngles, NothingFoundIsToldUnlessQuiet) {
  Search f;
  AngleResult r;
  EXPECT_TRUE(SearchAngles(f.s, f.graphs, 0, 12, PeakList{}, "1:00", "2:00", r, true));
  EXPECT_TRUE(f.t.sink.messages.empty());
  EXPECT_TRUE(SearchAngles(f.s, f.graphs, 0, 12, PeakList{}, "1:00", "2:00", r, false));
  ASSERT_EQ(f.t.sink.messages.size(), 1u);
  EXPECT_EQ(f.t.sink.messages[0].text, "No possible chart angles were found within the time limits.");
  EXPECT_EQ(f.t.sink.messages[0].title, "Angle Search");
  EXPECT_FALSE(SearchAngles(f.s, f.graphs, 0, 12, PeakList{}, "25:99", "2:00", r, true));
}

AngleResult Candidates(std::initializer_list<double> minutes) {
  AngleResult r;
  for (double m : minutes) {
    r.Resize(r.Count + 1);
    const float h = static_cast<float>(10.0 + m / 60.0), v = static_cast<float>(m);
    r.ResultTime[r.Count] = {h, h};
    r.ResultMC[r.Count] = {v, v + 0.5f};
    r.ResultAsc[r.Count] = {v + 100, v + 100.5f};
    r.ResultVertex[r.Count] = {v + 200, v + 200.5f};
    r.ResultIndex[r.Count] = static_cast<int16_t>(r.Count);
  }
  return r;
}

TEST(SortAndCondense, NeighboursUnderTenMinutesApartFold) {
  const struct {
    const char* name;
    std::initializer_list<double> minutes;
    std::vector<float> lowMC;
  } cases[] = {
      {"nine minutes apart fold", {9, 0}, {0}},
      {"eleven minutes apart stay", {11, 0}, {0, 11}},
      {"a widened candidate is compared again", {0, 6, 12, 30}, {0, 30}},
  };
  for (const auto& c : cases) {
    AngleResult r = Candidates(c.minutes);
    SortAndCondense(r);
    ASSERT_EQ(r.Count, static_cast<int>(c.lowMC.size())) << c.name;
    for (int i = 1; i <= r.Count; ++i) EXPECT_EQ(r.ResultMC[i][kLow], c.lowMC[i - 1]) << c.name;
  }
  AngleResult r = Candidates({9, 0});
  SortAndCondense(r);
  EXPECT_EQ(r.ResultTime[1], (AngleResult::Range{10.0f, static_cast<float>(10.0 + 9 / 60.0)}));
  EXPECT_EQ(r.ResultMC[1], (AngleResult::Range{0.0f, 9.5f}));
  EXPECT_EQ(r.ResultAsc[1], (AngleResult::Range{100.0f, 109.5f}));
  EXPECT_EQ(r.ResultVertex[1], (AngleResult::Range{200.0f, 209.5f}));
  EXPECT_EQ(r.ResultIndex[1], 2);
}

TEST(AngleSearchScreen, SortAndDeleteRows) {
  AngleResult r = Candidates({30, 0, 60, 90});
  r.ResultAsc[1][kLow] = 5;  // the candidate of 10:30 has the lowest Ascendant
  SortAngleResults(r, AngleSortKey::Asc);
  EXPECT_EQ(r.ResultMC[1][kLow], 30.0f);
  SortAngleResults(r, AngleSortKey::Time);
  EXPECT_EQ(r.ResultMC[1][kLow], 0.0f);
  DeleteAngleResults(r, {1, 3, 9});
  ASSERT_EQ(r.Count, 2);
  EXPECT_EQ(r.ResultMC[1][kLow], 30.0f);
  EXPECT_EQ(r.ResultMC[2][kLow], 90.0f);
  EXPECT_EQ(r.ResultTime.size(), 3u);
}

// ---------------------------------------------------------------- settings

TEST(PeakOpt, FieldsAreCheckedStoredAndWritten) {
  TestSession t;
  const PeakOptTexts defaults = PeakOptFieldTexts(t.session.prefs);
  EXPECT_EQ(defaults, (PeakOptTexts{"2", "1.9", "3", "2", "4", "2"}));
  EXPECT_EQ(CheckPeakOpt(t.session, defaults), -1);
  const struct {
    int field;
    const char* text;
  } bad[] = {{0, "0"}, {1, "abc"}, {2, "0"}, {3, "2.5"}, {4, "-1"}, {5, "121"}};
  for (const auto& b : bad) {
    PeakOptTexts texts = defaults;
    texts[b.field] = b.text;
    EXPECT_EQ(CheckPeakOpt(t.session, texts), b.field) << b.text;
    EXPECT_FALSE(ApplyPeakOpt(t.session, texts));
  }
  EXPECT_EQ(t.sink.messages.back().title, "Peak Options");
  ASSERT_TRUE(ApplyPeakOpt(t.session, {"3", "2.25", "4", "5", "0", "1"}));
  t.session.prefs = Preferences{};
  LoadPeakSettings(t.session);
  EXPECT_EQ(PeakOptFieldTexts(t.session.prefs), (PeakOptTexts{"3", "2.25", "4", "5", "0", "1"}));
}

}  // namespace
}  // namespace vintar
