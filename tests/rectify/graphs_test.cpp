// Event graphs: arcs folded into 120 bars (by hand for instants, ranges, arcs
// over the segment's end, H = 1, the longest-arc rules), smoothing in thirds,
// the statistics and Quality of constructed bar patterns, the ".pla" file
// (layout, round trip, short and damaged files), the event order question,
// and the option screens' rules.
#include "rectify/graphs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>

#include "calc/astro.h"
#include "calc/cache.h"
#include "rectify/peaks.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::ReadBytes;
using testing::TempDir;
using testing::TestSession;
using testing::WriteBytes;


// A cache record with every point missing except those given.
struct Point {
  int point;
  float start, end;
  int16_t motion;
};
EventPositionRecord Positions(std::initializer_list<Point> points, int32_t precession = 0) {
  EventPositionRecord r;
  r.PrecessionArcsec = precession;
  for (int p = 1; p <= kPoints; ++p) {
    r.StartPos[p] = r.EndPos[p] = -1.0f;
    r.Motion[p] = -1;
  }
  for (const Point& p : points) {
    r.StartPos[p.point] = p.start;
    r.EndPos[p.point] = p.end;
    r.Motion[p.point] = p.motion;
  }
  return r;
}

// A project in a folder of its own whose caches are written directly.
struct Project {
  TestSession t;
  TempDir folder;
  Session& s = t.session;
  GraphState graphs;

  Project() {
    s.project.ProjectPath = folder.file("life.dat");
    s.project.Events.assign(1, EventRecord{});
    DefaultGraphSettings(graphs, s.prefs);
  }
  // Adds records with these positions to the cache of (coordinate, type).
  void Cache(const std::vector<EventPositionRecord>& records, int coordinate = kGeocentric, int type = kTransits) {
    std::string bytes;
    unsigned char buffer[kCacheRecordSize];
    for (const auto& r : records) {
      EncodeCacheRecord(r, buffer);
      bytes.append(reinterpret_cast<const char*>(buffer), kCacheRecordSize);
    }
    WriteBytes(CacheFileName(s.project.ProjectPath, coordinate, type), bytes);
    while (static_cast<int>(s.project.Events.size()) <= static_cast<int>(records.size())) {
      EventRecord e;
      e.JulianDay = 2440000.0 + static_cast<double>(s.project.Events.size());
      s.project.Events.push_back(e);
    }
    s.project.Header.RecordCount = static_cast<int32_t>(records.size());
  }
  GraphRecord& Fold(int graph = 1, int harmonic = 12) {
    bool cancelled = true;
    CalcHarmDist(s, graphs, graph, harmonic, cancelled);
    EXPECT_FALSE(cancelled);
    return graphs.Graph[graph];
  }
};

std::map<int, float> NonZeroBars(const GraphRecord& g) {
  std::map<int, float> bars;
  for (int b = 0; b < kBars; ++b)
    if (g.Bars[b] != 0.0f) bars[b] = g.Bars[b];
  return bars;
}

std::vector<int> Selected(const PointSelection& selection, int coordinate, int set) {
  std::vector<int> points;
  for (int p = 1; p <= kPoints; ++p)
    if (selection[coordinate][set][p]) points.push_back(p);
  return points;
}

TEST(CalcHarmDist, ArcsAreSpreadEvenlyOverTheirBars) {
  const std::map<int, float> kOverTheEnd = {{118, 0.1f}, {119, 0.2f}, {0, 0.2f}, {1, 0.2f}, {2, 0.2f}, {3, 0.1f}};
  struct Case {
    const char* name;
    int harmonic;
    float maxOrb12;
    Point mars;
    std::map<int, float> bars;
  } const cases[] = {
      {"instant", 12, 5.0f, {kMars, 10.125f, 10.125f, 1}, {{40, 1.0f}}},
      {"range inside one bar", 12, 5.0f, {kMars, 10.0f, 10.2f, -1}, {{40, 1.0f}}},
      {"range over three bars", 12, 5.0f, {kMars, 10.125f, 10.625f, -1}, {{40, 0.25f}, {41, 0.5f}, {42, 0.25f}}},
      {"retrograde range", 12, 5.0f, {kMars, 10.125f, 10.625f, -2}, {{40, 0.25f}, {41, 0.5f}, {42, 0.25f}}},
      {"over the segment's end", 12, 5.0f, {kMars, 89.625f, 90.875f, -1}, kOverTheEnd},
      {"over 0 Aries, a station", 12, 5.0f, {kMars, 359.625f, 0.875f, 0}, kOverTheEnd},
      {"H = 1 range", 1, 5.0f, {kMars, 99.75f, 105.75f, -1}, {{33, 0.375f}, {34, 0.5f}, {35, 0.125f}}},
      {"arc of MaxOrb12", 12, 5.0f, {kMars, 10.0f, 15.0f, -1}, {}},
      {"MaxOrb12 at H = 24", 24, 5.0f, {kMars, 10.0f, 12.5f, -1}, {}},
      {"0.49999 of a segment", 12, 20.0f, {kMars, 0.0f, 14.9998f, -1}, {}},
      {"not computed", 12, 5.0f, {kMars, -1.0f, -1.0f, -1}, {}},
  };
  for (const Case& c : cases) {
    Project p;
    p.graphs.MaxOrb12 = c.maxOrb12;
    SelectOnlyPoints(p.graphs, 1, kMars, kMars);
    p.Cache({Positions({c.mars})});
    const GraphRecord& g = p.Fold(1, c.harmonic);
    EXPECT_EQ(g.MasterHarmonic, c.harmonic) << c.name;
    const auto bars = NonZeroBars(g);
    EXPECT_EQ(bars.size(), c.bars.size()) << c.name;
    float total = 0.0f;
    for (const auto& [bar, weight] : c.bars) {
      EXPECT_NEAR(g.Bars[bar], weight, 1e-6) << c.name << " bar " << bar;
      total += weight;
    }
    EXPECT_NEAR(g.TotalWeight, total, 1e-6) << c.name;
  }
}

TEST(CalcHarmDist, OnlyEnabledRecordsAndSelectedPointsCount) {
  Project p;
  p.Cache({Positions({{kMars, 10.125f, 10.125f, 1}, {kMoon, 5.125f, 5.125f, 1}}),
           Positions({{kMars, 20.125f, 20.125f, 1}})});
  p.s.project.Events[2].Enabled = kFalse;
  const GraphRecord& g = p.Fold();  // Mars to Pluto and the node: not the Moon
  EXPECT_EQ(NonZeroBars(g), (std::map<int, float>{{40, 1.0f}}));

  // Without its cache file the graph cannot be drawn: a cancel.
  std::filesystem::remove(CacheFileName(p.s.project.ProjectPath, kGeocentric, kTransits));
  bool cancelled = false;
  CalcHarmDist(p.s, p.graphs, 1, 0, cancelled);
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(p.s.cache.NeedsGraphRecalc, kTrue);
}

TEST(CalcHarmDist, SiderealZodiacShiftsEveryComputedPosition) {
  Project p;
  p.s.prefs.Zodiac = 2;
  const int32_t arcsec = 1800;
  SelectOnlyPoints(p.graphs, 1, kMars, kMars + 1);
  p.Cache({Positions({{kMars, 100.0f, 100.0f, 1}, {kMars + 1, -1.0f, -1.0f, 1}}, arcsec)});
  const double shifted = Mod(100.0 + SiderealOffset(2, 0.0, arcsec), 360.0);
  const GraphRecord& g = p.Fold();
  EXPECT_EQ(NonZeroBars(g), (std::map<int, float>{{static_cast<int>(Mod(shifted, 30.0) * 4), 1.0f}}));
}

TEST(BarValue, SmoothingSpreadsOneBarInThirdsOverItsNeighbours) {
  Project p;
  SelectOnlyPoints(p.graphs, 1, kMars, kMars);
  p.Cache({Positions({{kMars, 0.1f, 0.1f, 1}}), Positions({{kMars, 0.2f, 0.2f, 1}}),
           Positions({{kMars, 30.2f, 30.2f, 1}})});
  p.Fold();
  for (int bar : {-1, 0, 1}) EXPECT_FLOAT_EQ(BarValue(p.graphs, 1, bar), 1.0f) << bar;
  EXPECT_FLOAT_EQ(BarValue(p.graphs, 1, 2), 0.0f);
  p.graphs.SmoothBars = kFalse;
  EXPECT_FLOAT_EQ(BarValue(p.graphs, 1, 0), 3.0f);
}

TEST(AnalyseHarmDist, StatisticsAndQualityOfKnownPatterns) {
  // 120 units of weight in two bars of 60: Mean 1, SD sqrt(59).
  const double sd = std::sqrt(59.0);
  struct Case {
    const char* name;
    int secondBar;  // the first is bar 0
    int16_t mode;
    bool squared;
    int runs;
    double quality;
  } const cases[] = {
      {"one run over the segment's end", 119, 2, false, 1, 2 * (59.0 - sd) / 1.6 * 100},
      {"two runs", 60, 2, false, 2, 2 * (59.0 - sd) / 1.4 * 100},
      {"threshold from the mean", 119, 1, false, 1, 2 * 59.0 / 1.6 * 100},
      {"squared excess", 60, 2, true, 2, 2 * (59.0 - sd) * (59.0 - sd) / 1.4 * 100},
  };
  for (const Case& c : cases) {
    GraphState graphs;
    graphs.SmoothBars = kFalse;
    graphs.QualityThresholdMode = c.mode;
    graphs.QualitySquared = c.squared ? kTrue : kFalse;
    GraphRecord& g = graphs.Graph[2];
    g.Bars[0] = g.Bars[c.secondBar] = 60.0f;
    g.TotalWeight = 120.0f;
    AnalyseHarmDist(graphs, 2);
    EXPECT_FLOAT_EQ(g.Mean, 1.0f) << c.name;
    EXPECT_NEAR(g.SD, sd, 1e-5) << c.name;
    EXPECT_FLOAT_EQ(g.MaxHeight, 60.0f) << c.name;
    EXPECT_EQ(CountPeakRuns(graphs, 2, g.Mean + g.SD), c.runs) << c.name;
    EXPECT_NEAR(g.Quality, c.quality, c.quality * 1e-5) << c.name;
  }
}

TEST(BuildGraphs, ReadsCurrentCachesWithTheHarmonicsOfEachGraph) {
  Project p;
  p.s.project.Header.Date = "1 Jan 1960";
  p.graphs.MasterHarmonic1 = 8;
  p.graphs.Harmonic2 = 0;  // as the master
  p.graphs.Harmonic3 = 5;
  p.Cache({Positions({{kMars, 10.125f, 10.125f, 1}})}, kGeocentric, kTransits);
  p.Cache({Positions({{kMars, 20.0f, 20.0f, 1}, {kEarth, 1.0f, 1.0f, 1}})}, kHeliocentric, kTransits);
  p.Cache({Positions({{kSun, 30.0f, 30.0f, 1}, {kMoon, 30.1f, 30.1f, 1}})}, kGeocentric, kSecondary);
  p.s.cache.Valid[kGeocentric][kTransits][kNaibod] = kTrue;
  p.s.cache.Valid[kHeliocentric][kTransits][kNaibod] = kTrue;
  p.s.cache.Valid[kGeocentric][kSecondary][kNaibod] = kTrue;
  p.s.cache.NeedsGraphRecalc = kTrue;
  bool cancelled = true;
  BuildGraphs(p.s, p.graphs, cancelled);
  ASSERT_FALSE(cancelled) << (p.t.sink.messages.empty() ? "" : p.t.sink.messages[0].text);
  EXPECT_EQ(p.graphs.Graph[1].MasterHarmonic, 8);
  EXPECT_EQ(p.graphs.Graph[2].MasterHarmonic, 8);
  EXPECT_EQ(p.graphs.Graph[3].MasterHarmonic, 5);
  EXPECT_FLOAT_EQ(p.graphs.Graph[1].TotalWeight, 1.0f);
  EXPECT_FLOAT_EQ(p.graphs.Graph[2].TotalWeight, 1.0f);  // the Earth is not selected
  EXPECT_FLOAT_EQ(p.graphs.Graph[3].TotalWeight, 2.0f);  // Moon and Sun
  EXPECT_FLOAT_EQ(p.graphs.GraphMaxHeight, 2.0f / 3.0f);
  EXPECT_EQ(p.s.cache.NeedsGraphRecalc, kFalse);
}

TEST(BuildGraphs, EventsOutOfOrderAreSortedOnlyWithConsent) {
  Project p;
  for (double jd : {2440010.0, 2440005.0, 2440020.0, 2440005.0}) {
    EventRecord e;
    e.JulianDay = jd;
    e.Description = std::to_string(p.s.project.Events.size());
    p.s.project.Events.push_back(e);
  }
  p.s.project.Header.RecordCount = 4;
  p.s.cache.Valid[1][0][1] = kTrue;

  p.t.sink.answer = kNo;
  bool cancelled = false;
  BuildGraphs(p.s, p.graphs, cancelled);
  EXPECT_TRUE(cancelled);
  ASSERT_EQ(p.t.sink.messages.size(), 1u);
  EXPECT_EQ(p.t.sink.messages[0].text,
            "Events must be sorted into ascending date order before finding transits. Do you wish to proceed?");
  EXPECT_EQ(p.t.sink.messages[0].title, "Sort Events?");
  EXPECT_EQ(p.s.project.Events[1].Description, "1");
  EXPECT_EQ(p.s.project.Status.DataChanged, 0);

  p.t.sink.answer = kYes;
  EXPECT_TRUE(CheckEventOrder(p.s));
  std::string order;
  for (int n = 1; n <= 4; ++n) order += p.s.project.Events[n].Description;
  EXPECT_EQ(order, "2413");  // equal dates keep their order
  EXPECT_EQ(p.s.project.Status.DataChanged, kTrue);
  EXPECT_EQ(p.s.cache.Valid[1][0][1], 0);  // the caches follow record order
}

// ---------------------------------------------------------------- .pla

TEST(GraphSettings, DefaultsWithoutAFile) {
  Project p;
  p.s.prefs.TrueNode = kTrue;
  p.graphs.Graph[2].Coordinate = 1;
  EXPECT_FALSE(LoadGraphSettings(p.s, p.graphs));
  const PointSelection& s = p.graphs.Selection;
  EXPECT_EQ(Selected(s, 1, 1), (std::vector<int>{6, 7, 8, 9, 10, 11, 19}));
  EXPECT_EQ(Selected(s, 2, 5), (std::vector<int>{6, 7, 8, 9, 10, 11, 19}));
  EXPECT_EQ(Selected(s, 1, 3), (std::vector<int>{1, 3, 4, 5, 6}));
  EXPECT_EQ(Selected(s, 1, 6), std::vector<int>{});
  EXPECT_EQ(FormatGraphSettings(p.graphs).substr(290), std::string("\1\0\0\0\0\0\0\0\0\0"   // geocentric transits
                                                                   "\2\0\0\0\0\0\0\0\0\0"   // heliocentric transits
                                                                   "\1\0\1\0\0\0\1\0\0\0",  // secondary, method 1
                                                                   30));
}

TEST(GraphSettings, FileLayoutAndByteExactRoundTrip) {
  Project p;
  p.graphs.Selection[2][1][2] = kTrue;
  p.graphs.Selection[1][3][24] = kTrue;
  p.graphs.OptionShowing = 2;
  p.graphs.Graph[2].DynamicType = 3;
  p.graphs.Graph[3].ProgressionMethod = 3;
  std::string error;
  ASSERT_TRUE(SaveGraphSettings(p.s, p.graphs, error)) << error;
  const std::string bytes = ReadBytes(p.folder.file("life.pla"));
  ASSERT_EQ(bytes.size(), 320u);
  auto i16 = [&](size_t at) { return static_cast<int16_t>(static_cast<uint8_t>(bytes[at]) | bytes[at + 1] << 8); };
  EXPECT_EQ(i16(6), -1);    // graph 1, Earth, heliocentric
  EXPECT_EQ(i16(284), -1);  // graph 3, EastPoint, geocentric
  EXPECT_EQ(i16(288), 2);   // the option tab
  EXPECT_EQ(i16(300), 2);   // graph 2 coordinate
  EXPECT_EQ(i16(302), 3);   // graph 2 type, low half of an i32
  EXPECT_EQ(i16(316), 3);   // graph 3 method

  Project q;
  WriteBytes(q.folder.file("life.pla"), bytes);
  EXPECT_TRUE(LoadGraphSettings(q.s, q.graphs));
  EXPECT_EQ(FormatGraphSettings(q.graphs), bytes);
  EXPECT_EQ(Selected(q.graphs.Selection, 1, 4), (std::vector<int>{6, 7, 8, 9, 10, 11, 20}));  // not in the file
}

TEST(GraphSettings, ShortAndDamagedFilesNeverFail) {
  Project source;
  source.graphs.Graph[1].Coordinate = 2;
  source.graphs.Graph[1].DynamicType = 2;
  source.graphs.Graph[1].ProgressionMethod = 2;
  const std::string good = FormatGraphSettings(source.graphs);
  struct Case {
    const char* name;
    std::string bytes;
    int coordinate1, type1, coordinate3, type3;
  } const cases[] = {
      {"ends before the graph settings", good.substr(0, 290), 1, 0, 1, 0},
      {"ends inside graph 2", good.substr(0, 305), 2, 2, 1, 0},
      {"empty", "", 1, 0, 1, 0},
      {"one byte", "\x07", 1, 0, 1, 0},
      {"values out of range", std::string(320, '\x7f'), 1, 0, 1, 0},
      {"longer than needed", good + std::string(500, '\xff'), 2, 2, 1, 1},
  };
  for (const Case& c : cases) {
    GraphState g;
    ParseGraphSettings(c.bytes, g, source.s.prefs);
    EXPECT_EQ(g.Graph[1].Coordinate, c.coordinate1) << c.name;
    EXPECT_EQ(g.Graph[1].DynamicType, c.type1) << c.name;
    EXPECT_EQ(g.Graph[3].Coordinate, c.coordinate3) << c.name;
    EXPECT_EQ(g.Graph[3].DynamicType, c.type3) << c.name;
  }
}

// ---------------------------------------------------------------- options

TEST(GraphOptions, HarmonicsAreClampedAndTheNodeFollowsThePreference) {
  const std::pair<const char*, int> texts[] = {{"0", 1}, {"-4", 1}, {"7", 7}, {"360", 360}, {"400", 360}, {"x", 1}};
  for (const auto& [text, value] : texts) EXPECT_EQ(HarmonicFromText(text), value) << text;
  Project p;
  ApplyHarmonics(p.s, p.graphs, 0, 500);
  EXPECT_EQ(p.graphs.Graph[2].MasterHarmonic, 1);
  EXPECT_EQ(p.graphs.Graph[3].MasterHarmonic, 360);

  GraphOptions o = BeginGraphOptions(p.graphs);
  p.s.prefs.TrueNode = kTrue;
  ApplyNodePreference(o.Selection, p.s.prefs);
  EXPECT_EQ(Selected(o.Selection, 1, 1), (std::vector<int>{6, 7, 8, 9, 10, 11, 19}));
  SetAllPoints(o.Selection, 2, 2, p.s.prefs, true);
  EXPECT_EQ(Selected(o.Selection, 2, 2).size(), 23u);  // one node only
  p.s.prefs.Progressions = 3;
  SetGraphDynamicType(p.s, o.Graph[1], 2);
  EXPECT_EQ(o.Graph[1].ProgressionMethod, 3);
  SetGraphDynamicType(p.s, o.Graph[2], 3);
  EXPECT_EQ(o.Graph[2].ProgressionMethod, 0);

  o.Graph[1].MasterHarmonic = 99;  // OK keeps the harmonic
  p.s.cache.NeedsGraphRecalc = kFalse;
  ASSERT_TRUE(ApplyGraphOptions(p.s, p.graphs, o));
  EXPECT_EQ(p.graphs.Graph[1].MasterHarmonic, 12);
  EXPECT_EQ(p.graphs.Graph[1].DynamicType, 2);
  EXPECT_EQ(p.s.cache.NeedsGraphRecalc, kTrue);
  EXPECT_EQ(ReadBytes(p.folder.file("life.pla")), FormatGraphSettings(p.graphs));
}

// The Rectify and AngleSearch screens' texts.
TEST(ScreenTexts, TitlesReadoutAndHeader) {
  TestSession t;
  Session& s = t.session;
  s.project.Header.Title = "Known chart";
  s.project.Header.EarliestTime = "11:00 am";
  s.project.Header.LatestTime = "5:00 pm";
  s.prefs.Zodiac = 3;
  s.prefs.TrueNode = kTrue;
  EXPECT_EQ(RectifyScreenTitle(s), s.vocab.ZodiacName[2] + " Zodiac - True Node");
  EXPECT_EQ(AngleSearchHeading(s), "Angle Search: Known chart");

  GraphState g;
  g.SmoothBars = kFalse;
  g.Graph[1].MasterHarmonic = 4;
  g.Graph[1].Bars[30] = 3.254f;
  for (int b : {5, 6, 30, 31}) g.Graph[1].PeakFlags[b] = kTrue;
  EXPECT_EQ(GraphReadout(g, 1, 30), "22.9  H4 Peak No 2 Height 3.25");
  EXPECT_EQ(GraphReadout(g, 1, 10), "7.9  H4 Peak No 0 Height 0.00");

  g.GraphCount = 2;
  const std::vector<std::string> header = AngleSearchHeader(s, g);
  ASSERT_EQ(header.size(), 5u);
  EXPECT_EQ(header[0], RectifyScreenTitle(s));
  EXPECT_EQ(header[2].find(" (Not Used)"), std::string::npos);
  EXPECT_NE(header[3].find(" (Not Used)"), std::string::npos);
  EXPECT_EQ(header[4], "11:00 am to 5:00 pm");
}

}  // namespace
}  // namespace vintar
