// The tabulation engine: the classifier over every division code on
// hand-picked values and boundaries, the inexact-chart rules and a
// hand-counted project.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/project_file.h"
#include "research/dignity.h"
#include "research/extract.h"
#include "research/tabulate.h"
#include "support/test_support.h"

namespace vintar {
namespace {

struct ClassifyCase {
  int code;
  double value, secondary;
  int expected;
  std::vector<int> extra = {};
  double harmonic = 1, anchor = 0, orb = 0;
  int scheme = 1, planet = 0, cells = 0;  // cells 0: the code's own count
  double speed = 0;
};

TEST(Tabulate, ClassifyPointOverEveryCode) {
  // Cusps of equal houses from 0 Aries, so house n starts at 30 (n - 1).
  std::array<double, 13> cusps{};
  for (int h = 1; h <= 12; ++h) cusps[h] = 30.0 * (h - 1);
  const std::vector<ClassifyCase> cases = {
      {0, 0.0, 0, 1}, {0, 29.999, 0, 1}, {0, 30.0, 0, 2}, {0, 359.99, 0, 12},  // a boundary falls upward
      {1, 200.0, 0, 1}, {2, 100.0, 0, 4}, {3, 100.0, 0, 1}, {4, 45.0, 0, 2},
      {5, 10.0, 0, 2}, {5, 359.0, 0, 36},
      {6, 15.0, 0, 5},    // second decanate of Aries: Leo by triplicity
      {7, 15.0, 0, 2},    // the zodiac repeated: Taurus
      {8, 45.5, 0, 46}, {8, 45.5, 0, 16, {}, 12},  // harmonic 12 folds into 30 degrees
      {9, 0, 0, 1, {}, 1, 0, 0, 1, 0, 0, 0.5}, {9, 0, 0, 2, {}, 1, 0, 0, 1, 0, 0, -0.1}, {9, 0, 0, 3},
      {10, 250.0, 0, 6, {0, 5, 4}},  // Sagittarius: rays 6, 5, 4
      {11, 20.0, 0, 1, {0, 7}},
      {12, 95.0, 0, 1, {}, 1, 90.0, 0, 1, 0, 12},  // 5 past the anchor in 30-degree cells
      {12, 10.0, 0, 12, {}, 1, 15.0, 0, 1, 0, 12},
      // Aspects: a 90-degree orb finds the first aspect in table order.
      {50, 95.0, 0, 2, {}, 1, 0, 90}, {50, 182.0, 0, 2, {}, 1, 0, 3}, {50, 100.0, 0, 10, {}, 1, 0, 3},
      {50, 262.0, 0, 4, {}, 1, 0, 8},  // 360 - 262 = 98 is a square
      {51, 119.0, 0, 2, {}, 3, 0, 2}, {51, 60.0, 0, 4, {}, 3, 0, 2}, {51, 359.0, 0, 1, {}, 3, 0, 2},
      {52, 100.0, 0, 2, {}, 1, 10, 0, 1, 0, 4},
      {100, 75.0, 0, 3}, {101, 75.0, 0, 3}, {102, 75.0, 0, 1}, {103, 75.0, 0, 1}, {103, 200.0, 0, 2},
      {104, 200.0, 0, 2},
      // Houses ruled with equal houses from Aries: Mars rules 1 and, in
      // Ancient, 8; Modern gives Pluto 8.
      {105, 0, 0, 1, {}, 1, 0, 0, 1, kMars}, {105, 0, 0, 1, {0, 8}, 1, 0, 0, 2, kMars},
      {106, 15.0, 0, 2},
      {200, 0, 0, 5, {}, 1, 0, 0, 1, kMars}, {200, 0, 0, 11, {}, 1, 0, 0, 1, kChiron},
      {201, 10.0, 0, 1, {}, 1, 0, 0, 1, kMars},              // Mars in Aries
      {201, 10.0, 0, 3, {}, 1, 0, 0, 1, kSun},               // Sun exalted in Aries
      {201, 190.0, 0, 4, {}, 1, 0, 0, 1, kSun},              // Sun falls in Libra
      {201, 190.0, 0, 2, {}, 1, 0, 0, 1, kMars},             // Mars in detriment in Libra
      {201, 100.0, 0, 1, {0}, 1, 0, 0, 1, kMoon},            // the Moon rules Cancer, exalted elsewhere
      {201, 50.0, 0, 3, {}, 1, 0, 0, 1, kMoon},              // the Moon exalted in Taurus
      {201, 200.0, 0, 5, {}, 1, 0, 0, 1, kJupiter},
      {202, 10.0, 0, 5}, {203, 10.0, 0, 4}, {204, 10.0, 0, 2}, {204, 250.0, 0, 9, {}, 1, 0, 0, 2},
      {206, 15.0, 0, 2}, {207, 15.0, 0, 4},
      {208, 10.0, 0, 2, {}, 1, 0, 0, 2}, {208, 10.0, 0, 6, {}, 1, 0, 0, 3}, {209, 15.0, 0, 2},
      {210, 30.0, 0, 2}, {211, 210.5, 0, 1},
      {400, 0, 0.0, 1}, {400, 0, 1.5, 2}, {400, 0, -1.5, 1}, {401, 0, -0.5, 40}, {401, 0, 50.0, 80},
      // A range of 10 in 4 cells: below 1, inside 2 to 5, above the last cell.
      {402, 0, -11.0, 1, {}, 1, 0, 10, 1, 0, 6}, {402, 0, -10.0, 2, {}, 1, 0, 10, 1, 0, 6},
      {402, 0, 9.9, 5, {}, 1, 0, 10, 1, 0, 6}, {402, 0, 40.0, 6, {}, 1, 0, 10, 1, 0, 6},
      {500, 270.0, 0, 4}, {501, 8.99, 0, 1}, {502, 355.0, 0, 12}, {503, 5.0, 0, 18}, {503, 10.0, 0, 1},
      {504, 360.0, 0, 1}, {504, 345.0, 0, 35},
      {600, 61.0, 0, 3}, {601, 61.0, 0, 1, {}, 2, 10.0, 0, 1, 0, 6},  // anchor 10 at harmonic 2 is 20
      {800, 0, 0.0, 2}, {800, 0, -3.0, 1}, {801, 0, -90.0, 1}, {801, 0, 90.0, 18}, {801, 0, 5.0, 10},
  };
  for (const auto& c : cases) {
    TabulateParams p;
    p.Code = c.code;
    p.Harmonic = c.harmonic;
    p.Scheme = c.scheme;
    p.UserDivisions = c.cells;
    ClassifyInput in;
    in.Code = c.code;
    in.Value = c.value;
    in.Secondary = c.secondary;
    in.Harmonic = c.harmonic;
    in.Anchor = c.anchor;
    in.Orb = c.orb;
    in.Scheme = c.scheme;
    in.Planet = c.planet;
    in.Speed = c.speed;
    in.Cusps = &cusps;
    in.CellCount = c.cells ? c.cells : CellCountsOf(p).CellCount;
    std::vector<int> extra;
    EXPECT_EQ(ClassifyPoint(in, extra), c.expected) << "code " << c.code << " value " << c.value << " y "
                                                    << c.secondary;
    if (!c.extra.empty()) {
      EXPECT_EQ(extra, c.extra) << "code " << c.code;
    }
  }
}

TEST(Tabulate, NatalDetailsAndCellCounts) {
  ClassifyInput in;
  std::vector<int> extra;
  in.Code = 900, in.CellCount = 24, in.Hour = 23;
  EXPECT_EQ(ClassifyPoint(in, extra), 24);
  in.Code = 901, in.CellCount = 10, in.Anchor = 20, in.Year = 1955;  // the 20th century in decades
  EXPECT_EQ(ClassifyPoint(in, extra), 6);
  in.Year = 2001;
  EXPECT_EQ(ClassifyPoint(in, extra), 0);
  in.Code = 902, in.CellCount = 18, in.PlaceLatitude = 51.5;
  EXPECT_EQ(ClassifyPoint(in, extra), 15);
  in.PlaceLatitude = 89.0;  // beyond the table: no cell rather than the totals row
  EXPECT_EQ(ClassifyPoint(in, extra), 0);

  TabulateParams p;
  for (auto [code, scheme, cells, used] : std::vector<std::array<int, 4>>{
           {50, 1, 10, 9}, {200, 1, 11, 10}, {202, 1, 10, 10}, {202, 2, 8, 7}, {204, 1, 11, 11}, {204, 2, 9, 8},
           {201, 1, 5, 4}, {504, 1, 36, 36}}) {
    p.Code = code, p.Scheme = scheme;
    EXPECT_EQ(CellCountsOf(p).CellCount, cells) << code;
    EXPECT_EQ(CellCountsOf(p).UsedCells, used) << code;
  }
  p.Code = 8, p.Harmonic = 7;
  EXPECT_EQ(CellCountsOf(p).CellCount, 0);
}

TEST(Tabulate, ScreenChecksSpeakBeforeARun) {
  testing::TestSession t;
  TabulateParams p;
  p.Code = 8, p.Harmonic = 7;
  EXPECT_FALSE(CheckWholeDegreeHarmonic(t.session, p));
  EXPECT_EQ(p.Harmonic, 1);
  p = {};
  p.DataType = kSeparationData, p.Code = 50, p.Orb = 0;
  EXPECT_FALSE(CheckTabulateParams(t.session, p));
  p.Orb = 5;
  EXPECT_FALSE(CheckTabulateParams(t.session, p));  // no points
  p.Points.resize(1);
  EXPECT_FALSE(CheckTabulateParams(t.session, p));  // one point is no pair
  ASSERT_EQ(t.sink.messages.size(), 4u);
  EXPECT_EQ(t.sink.messages[0].title, "Invalid Harmonic");
  EXPECT_EQ(t.sink.messages[1].title, "Zero Aspect Orb");
  EXPECT_EQ(t.sink.messages[2].title, "No Points Selected");
  EXPECT_EQ(t.sink.messages[3].title, "Insufficient Points Selected");
  EXPECT_EQ(ControlsFor(kHouseData, 100).ForcedInexact, 2);
  EXPECT_EQ(ControlsFor(kSeparationData, 50).AnchorCaption, "Aspect Orb");
}

}  // namespace
}  // namespace vintar

namespace vintar {
namespace {

// Eight charts at Greenwich whose Sun signs are known from the almanac:
// five with a full time, one disabled, and two with the date alone, one of
// them the day of the 1990 equinox (20 March, 21:19 UT), when a day either
// side of noon puts the Sun in Pisces at the start and Aries at the end.
class TabulateProject : public ::testing::Test {
 protected:
  void SetUp() override {
    ProjectState& p = t.session.project;
    p.ProjectPath = t.dir.file("signs.dat");
    p.Events.assign(101, EventRecord{});
    const int dates[8][4] = {{1990, 1, 15, 3}, {1990, 4, 15, 3}, {1990, 7, 15, 3}, {1990, 10, 15, 3},
                             {1991, 4, 10, 3}, {1990, 5, 15, 3}, {1990, 3, 20, 0}, {1990, 6, 10, 0}};
    for (int n = 1; n <= 8; ++n) {
      EventRecord& e = p.Events[n];
      e.Description = "Chart " + std::to_string(n);
      e.Year = static_cast<int16_t>(dates[n - 1][0]);
      e.Month = static_cast<uint8_t>(dates[n - 1][1]);
      e.Day = static_cast<uint8_t>(dates[n - 1][2]);
      e.DetailLevel = static_cast<uint8_t>(dates[n - 1][3]);
      e.Hour = 12;
      e.Latitude = 51.5f;
      e.Enabled = n == 6 ? kFalse : kTrue;
    }
    p.Header.RecordCount = 8;
    p.Open = true;
  }

  TabulationRun Run(int inexact, const FilterBlock& filter = {}, std::vector<int>* extracted = nullptr) {
    TabulateParams params;
    params.DataType = kLongitudeData;
    params.Code = 0;
    params.InexactOption = inexact;
    params.Points = {PointRef{kChartPointType, kSun, 0, 0, 0}, PointRef{kChartPointType, kAscendant, 0, 0, 0}};
    return TabulateRun(t.session, state, params, nullptr, filter, [&](int n) {
      if (extracted) extracted->push_back(n);
    });
  }

  testing::TestSession t;
  ResearchState state;
};

TEST_F(TabulateProject, CountsSunSignsUnderEachInexactRule) {
  struct Expect {
    int option;
    std::array<int, 13> sun;  // by sign
    int ambiguous, skipped;
  };
  const std::vector<Expect> table = {
      // Exclude only ambiguous points: the equinox chart's Sun is left out.
      {0, {0, 2, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0, 0}, 1, 0},
      // The median time, noon of 20 March, still has the Sun in Pisces.
      {1, {0, 2, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0, 1}, 0, 0},
      // Exclude every inexact chart.
      {2, {0, 2, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0}, 0, 2},
  };
  for (const auto& x : table) {
    const TabulationRun run = Run(x.option);
    ASSERT_FALSE(run.Failed);
    ASSERT_EQ(run.CellCount, 12);
    ASSERT_EQ(run.ColumnCount, 2);
    int total = 0;
    for (int sign = 1; sign <= 12; ++sign) {
      EXPECT_EQ(run.At(sign, 1), x.sun[sign]) << "option " << x.option << " sign " << sign;
      total += x.sun[sign];
    }
    EXPECT_EQ(run.At(13, 1), total) << x.option;
    // Only the five charts with time and place have an Ascendant.
    EXPECT_EQ(run.At(13, 2), 5) << x.option;
    EXPECT_EQ(run.At(13, 3), total + 5) << x.option;
    EXPECT_EQ(run.AmbiguousPoints, x.ambiguous) << x.option;
    EXPECT_EQ(run.SkippedInexact, x.skipped) << x.option;
    EXPECT_EQ(run.SkippedDisabled, 1);
  }
}

TEST_F(TabulateProject, FilterWritesEachRecordOncePerMatchingColumn) {
  std::vector<int> extracted;
  const TabulationRun run = Run(0, FilterBlock{true, 1, 1, 1, 1}, &extracted);  // the Sun in Aries
  EXPECT_EQ(extracted, (std::vector<int>{2, 5}));
  EXPECT_EQ(run.At(1, 1), 0);  // filter mode counts nothing

  // The same point twice: a block over both columns writes each chart twice.
  TabulateParams params;
  params.Points = {PointRef{kChartPointType, kSun, 0, 0, 0}, PointRef{kChartPointType, kSun, 0, 0, 0}};
  const std::string out = t.dir.file("aries.dat");
  const FilterResult done = FilterToProject(t.session, state, params, {true, 1, 1, 1, 2}, out, "ARIES", false);
  ASSERT_TRUE(done.Done);
  EXPECT_EQ(done.Written, 4);
  const std::string dat = testing::ReadBytes(out);
  EXPECT_EQ(std::count(dat.begin(), dat.end(), '\n'), 4);
  EXPECT_NE(dat.find("\"Chart 5\""), std::string::npos);
  EXPECT_NE(testing::ReadBytes(t.dir.file("aries.nat")).find("\"ARIES\""), std::string::npos);
  EXPECT_EQ(t.sink.messages.back().title, "Filtering Results");

  // An existing file is refused, and so is the open project itself.
  EXPECT_FALSE(FilterToProject(t.session, state, params, {true, 1, 1, 1, 2}, out, "x", false).Done);
  EXPECT_FALSE(FilterToProject(t.session, state, params, {true, 1, 1, 1, 2}, t.session.project.ProjectPath, "x",
                               true)
                   .Done);
  EXPECT_EQ(testing::ReadBytes(out), dat);
}

}  // namespace
}  // namespace vintar
