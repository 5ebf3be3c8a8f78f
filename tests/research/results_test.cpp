// Tabulation results: chi-square probabilities, display styles, column
// statistics, the Fourier step, cell labels and the exported text, on
// tables built by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "research/results.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

// A run with the given cells per column; fills the totals row, the TOTAL
// column and the grand total as the engine does.
TabulationRun MakeRun(int dataType, int code, int usedCells, const std::vector<std::vector<float>>& columns,
                      std::vector<std::string> names = {}) {
  TabulationRun run;
  run.Params.DataType = dataType;
  run.Params.Code = code;
  run.CellCount = static_cast<int>(columns.at(0).size());
  run.UsedCells = usedCells ? usedCells : run.CellCount;
  run.ColumnCount = static_cast<int>(columns.size());
  run.ColumnNames.assign(1, "");
  run.ColumnNames.insert(run.ColumnNames.end(), names.begin(), names.end());
  run.Tally.assign(run.CellCount + 2, std::vector<float>(run.ColumnCount + 2, 0.0f));
  for (int column = 1; column <= run.ColumnCount; ++column)
    for (int cell = 1; cell <= run.CellCount; ++cell) {
      float x = columns[column - 1][cell - 1];
      run.At(cell, column) += x;
      run.At(cell, run.ColumnCount + 1) += x;
      run.At(run.CellCount + 1, column) += x;
      run.At(run.CellCount + 1, run.ColumnCount + 1) += x;
    }
  return run;
}

TEST(ResultsChiSquare, ProbabilitiesOfTheSeries) {
  struct Case {
    double chi;
    int degrees;
    double p;
  } cases[] = {
      {2, 2, 0.3678794179559},   // e^-x exactly for two degrees
      {2, 4, 0.7357588359118},   // (1 + x) e^-x
      {4, 6, 0.6766763307779},   // (1 + x + x^2 / 2) e^-x
      {2, 3, 0.5202600621912},   // geometric mean of 2 and 4
      {2, 1, 0.1430715171026},   // extrapolated with the factor 0.55
      {0, 1, 0.55},              // not 1
      {0, 11, 1.0},
      {100, 2, 1E-10},           // the floor
      {10000, 2, 1E-10},
      {20000, 7, 1E-10},
      {0, 0, 1.0},               // no degrees of freedom
  };
  for (const Case& c : cases)
    EXPECT_NEAR(ChiSquareProbability(c.chi, c.degrees), c.p, c.p * 1e-9) << c.chi << " / " << c.degrees;
}

TEST(ResultsStyles, ValuesAndFormatsOfEveryStyle) {
  TabulationRun run = MakeRun(0, 0, 0, {std::vector<float>(12, 2.0f), std::vector<float>(12, 0.0f)});
  const int totals = run.CellCount + 1;
  struct Case {
    int cell, column, style;
    const char* text;
  } cases[] = {
      {1, 1, 0, "2"},      {1, 1, 1, "0.083"},   {1, 1, 2, "8.3%"},  {1, 1, 3, "1.000"},  {12, 1, 4, "100.0%"},
      {totals, 1, 0, "24"}, {totals, 1, 1, "1.00"}, {totals, 1, 3, "1.00"}, {totals, 1, 4, "1.00"},
      // An empty column: 0 in every style, no division by zero.
      {5, 2, 0, "0"},      {5, 2, 1, "0.000"},   {5, 2, 2, "0.0%"},   {5, 2, 3, "0.000"},  {5, 2, 4, "0.0%"},
      {totals, 2, 3, "0.00"},
      // The TOTAL column against the grand total.
      {1, 3, 3, "1.000"},  {totals, 3, 0, "24"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(FormatStyled(run, c.cell, c.column, c.style), c.text) << c.cell << "/" << c.column << "/" << c.style;
  for (int style = 0; style < kTabStyles; ++style) EXPECT_EQ(StyledValue(run, 3, 2, style), 0.0);

  // A run with no table at all reads as zeros and never crashes.
  TabulationRun empty;
  empty.CellCount = 12;
  empty.ColumnCount = 1;
  EXPECT_EQ(FormatStyled(empty, 1, 1, 3), "0.000");
  EXPECT_EQ(ColumnStats(empty, 1, false).PeakValue, 0.0);
  FourierStep(empty);
  EXPECT_EQ(empty.At(61, 1), 0.0f);
}

TEST(ResultsStatistics, BlockOfAHandBuiltTable) {
  TestSession t;
  struct Case {
    int code;
    std::vector<float> cells;
    std::vector<std::string> lines;
  } cases[] = {
      // Leo stands out: chi = (32 - 11.8333)^2 / 11.8333 with 11 degrees.
      {0,
       {10, 10, 10, 10, 32, 10, 10, 10, 10, 10, 10, 10},
       {"Avg Count = 11.83", "Division = Leo", "Count = 32.0", "Chi Sq (11) = 34.4", "Prob. = 1 in 3256"}},
      // The low cell is the more deviant one.
      {0,
       {10, 2, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10},
       {"Avg Count = 9.33", "Division = Taurus", "Count = 2.0", "Chi Sq (11) = 5.8", "Prob. = 1 in 2"}},
      // An average of exactly 5 is too sparse; 5.01 is not.
      {0, std::vector<float>(12, 5.0f), {"Avg Count = 5.00", "Division = Aries", "Count = 5.0", "Chi Sq (11) = Too Sparse"}},
      {0,
       {5.12f, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5},
       {"Avg Count = 5.01", "Division = Aries", "Count = 5.1", "Chi Sq (11) = 0.0", "Prob. = 1 in 2"}},
      // The floor of the probability: ten thousand million and one.
      {0,
       {1000, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10},
       {"Avg Count = 92.50", "Division = Aries", "Count = 1000.0", "Chi Sq (11) = 8903.3",
        "Prob. = 1 in 10000000001"}},
      // No chi-square for houses ruled; no block for an empty column.
      {105, {0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {"Avg Count = 0.25", "Division = 2nd House", "Count = 3.0"}},
      {0, std::vector<float>(12, 0.0f), {}},
  };
  for (const Case& c : cases) {
    TabulationRun run = MakeRun(c.code >= 100 ? 1 : 0, c.code, 0, {c.cells});
    EXPECT_EQ(StatisticsBlock(t.session, run, 1), c.lines) << c.code << " " << c.cells[0];
  }

  // Amplitudes show the peak only and never the low cell; phases show nothing.
  TabulationRun amplitude = MakeRun(4, 300, 0, {{1, 150, 0.5f}});
  EXPECT_EQ(StatisticsBlock(t.session, amplitude, 1), (std::vector<std::string>{"Division = H2", "Count = 150.0"}));
  amplitude.Params.Code = 301;
  EXPECT_TRUE(StatisticsBlock(t.session, amplitude, 1).empty());

  // The label's one-cell test: code 51 scales the expectation by its orbs.
  TabulationRun aspects = MakeRun(2, 51, 4, {{60, 10, 20, 10, 300}});
  aspects.Params.Harmonic = 4;
  aspects.Params.Orb = 9;
  ColumnTest cell = CellTest(aspects, 1, 1);
  EXPECT_TRUE(cell.Shown);
  EXPECT_NEAR(cell.Expected, 400.0 / 5 * 4 * 9 * 2 / 360, 1e-9);
  EXPECT_NEAR(cell.Chi, (60 - 16.0) * (60 - 16.0) / 16.0, 1e-9);
  EXPECT_EQ(cell.Degrees, 4);
}

TEST(ResultsFourier, EvenAndConcentratedSamples) {
  auto harmonicRun = [](int code, int degree) {
    TabulationRun run;
    run.Params.DataType = 4;
    run.Params.Code = code;
    run.CellCount = run.UsedCells = 60;
    run.ColumnCount = 1;
    run.ColumnNames = {"", "Sun"};
    run.Tally.assign(362, std::vector<float>(3, 0.0f));
    for (int row = 1; row <= 360; ++row) {
      float x = degree < 0 ? 1.0f : (row == degree + 1 ? 5.0f : 0.0f);
      run.At(row, 1) = run.At(row, 2) = x;
    }
    run.At(361, 1) = run.At(361, 2) = degree < 0 ? 360.0f : 5.0f;
    return run;
  };
  struct Lines : Progress {
    std::vector<std::string> lines;
    void Status(const std::string& text) override { lines.push_back(text); }
  } progress;

  TabulationRun even = harmonicRun(300, -1);
  FourierStep(even, &progress);
  ASSERT_EQ(even.Tally.size(), 62u);
  EXPECT_EQ(even.CellCount, 60);
  EXPECT_EQ(even.UsedCells, 60);
  EXPECT_EQ(even.At(61, 1), 360.0f);
  EXPECT_EQ(progress.lines.front(), "Calculating Fourier Transform for Sun");
  EXPECT_EQ(progress.lines.back(), "Totalling...");

  const int p = 40;
  TabulationRun amplitude = harmonicRun(302, p);
  TabulationRun phase = harmonicRun(301, p);
  FourierStep(amplitude);
  FourierStep(phase);
  testing::AngleErrorTracker phases("Fourier phase h p + 270");
  double largest = 0;
  for (int h = 1; h <= 60; ++h) {
    EXPECT_NEAR(even.At(h, 1), 0.0, 1e-3) << h;
    largest = std::max(largest, std::fabs(amplitude.At(h, 1) - 200.0));
    EXPECT_TRUE(phases.Check(phase.At(h, 1), std::fmod(h * p + 270.0, 360.0), 1e-3)) << h;
  }
  EXPECT_LT(largest, 1e-3);
  EXPECT_EQ(phase.At(61, 2), 5.0f);

  // Cancelled before the first column: marked, nothing transformed.
  struct Cancel : Progress {
    bool Cancelled() override { return true; }
  } cancel;
  TabulationRun cancelled = harmonicRun(300, p);
  FourierStep(cancelled, &cancel);
  EXPECT_TRUE(cancelled.Cancelled);
  EXPECT_EQ(cancelled.At(1, 1), 0.0f);
}

TEST(ResultsCellNames, LabelsOfTheDivisions) {
  TestSession t;
  struct Case {
    int code, cells, used;
    double harmonic, anchor;
    int cell;
    bool forPrint;
    const char* name;
  } cases[] = {
      {0, 12, 12, 1, 0, 5, false, "Leo"},
      {5, 36, 36, 1, 0, 14, true, "Le 10-20"},
      {8, 30, 30, 12, 0, 15, false, "Degree 15"},
      {12, 12, 12, 1, 15, 12, false, "345-15"},
      {12, 4, 4, 3, 0, 2, false, "30-60"},
      {50, 10, 9, 1, 5, 10, false, "None"},
      {51, 5, 4, 4, 5, 2, false, "90\xB0"},
      {100, 12, 12, 1, 0, 3, false, "3rd House"},
      {200, 11, 10, 1, 0, 6, false, "Jupiter"},
      {200, 11, 10, 1, 0, 11, false, "None"},
      {301, 60, 60, 1, 0, 3, false, "H3"},
      {400, 2, 2, 1, 0, 1, false, "South"},
      {402, 6, 6, 1, 10, 2, false, "-10 to -5"},
      {402, 6, 6, 1, 10, 6, false, "Above 10"},
      {502, 12, 12, 1, 0, 12, false, "Sector 1"},
      {503, 18, 18, 1, 0, 18, false, "Sector 1"},
      {504, 36, 36, 1, 0, 1, false, "Sector 36"},
      {801, 18, 18, 1, 0, 1, false, "-90 to -80"},
      {900, 24, 24, 1, 0, 8, false, "07:00-08:00"},
      {901, 3, 3, 1, 20, 2, false, "1934-1966"},
      {902, 18, 18, 1, 0, 10, false, "5S-5N"},
      {903, 36, 36, 1, 0, 19, false, "5E-5W"},
      {0, 12, 12, 1, 0, 13, false, ""},
  };
  for (const Case& c : cases) {
    TabulationRun run;
    run.Params.Code = c.code;
    run.Params.Harmonic = c.harmonic;
    run.Params.Anchor = c.anchor;
    run.CellCount = c.cells;
    run.UsedCells = c.used;
    EXPECT_EQ(CellName(t.session, run, c.cell, c.forPrint), c.name) << c.code << " cell " << c.cell;
  }
}

TEST(ResultsText, ExportAndSave) {
  TestSession t;
  TabulationRun run = MakeRun(0, 4, 0, {{3, 1}, {2, 2}}, {"Sun", "Moon"});
  run.ChartsUsed = 4;
  const std::string text = TabulationText(t.session, run, 0);
  for (const char* line : {"Zodiac:\tTropical\r\n", "Houses:\tn/a\r\n", "Divisions of:\tLongitude\r\n",
                           "Division Type:\tPolarity\r\n", "No. Divisions:\t2\r\n", "Harmonic:\tn/a\r\n",
                           "Total Charts\t4\r\n", "Points Used:\tSun, Moon\r\n"}) {
    EXPECT_NE(text.find(line), std::string::npos) << line;
  }
  const std::string table = "\r\nPolarity\tSun\tMoon\tTOTAL \r\nYang\t3\t2\t5\r\nYin\t1\t2\t3\r\nTOTAL\t4\t4\t8\r\n";
  ASSERT_GE(text.size(), table.size());
  EXPECT_EQ(text.substr(text.size() - table.size()), table);
  for (size_t i = 0; i < text.size(); ++i) EXPECT_TRUE(text[i] != '\n' || text[i - 1] == '\r') << i;

  // Pairs and the natal column.
  TabulationRun pairs = MakeRun(2, 50, 9, {std::vector<float>(10, 1.0f)}, {"Sun/Moon"});
  EXPECT_EQ(DisplayPoints(pairs), (std::vector<std::string>{"Sun/Moon", "All Points"}));
  TabulationRun natal = MakeRun(11, 900, 0, {std::vector<float>(24, 1.0f)}, {"Natal"});
  EXPECT_EQ(DisplayPoints(natal), std::vector<std::string>{"Natal"});

  // Saving adds ".dat"; a folder in the file's place is refused with a message.
  ASSERT_TRUE(SaveTabulation(t.session, run, 0, t.dir.file("VT_Data")));
  EXPECT_EQ(testing::ReadBytes(t.dir.file("VT_Data.dat")), text);
  std::filesystem::create_directory(t.dir.file("busy.dat"));
  EXPECT_FALSE(SaveTabulation(t.session, run, 0, t.dir.file("busy.dat")));
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_EQ(t.sink.messages[0].text.rfind("Unable to save file: " + t.dir.file("busy.dat") + "\r\nReason: ", 0), 0u);
  EXPECT_TRUE(std::filesystem::is_directory(t.dir.file("busy.dat")));
}

// The results screen's own rules: which cell is under the pointer, its
// label, the anchor box, and the block that filtering starts from.
TEST(ResultsScreen, PointerLabelsAnchorAndFilterBlock) {
  TestSession t;
  // Twelve signs, 120 charts, Aries crowded.
  std::vector<float> counts(12, 9.0f);
  counts[0] = 21.0f;
  const TabulationRun run = MakeRun(0, 0, 0, {counts}, {"Mars"});
  EXPECT_EQ(BarCellAt(run, 0.0), 1);
  EXPECT_EQ(BarCellAt(run, 0.999), 12);
  EXPECT_EQ(BarCellAt(run, 1.0), 0);
  EXPECT_EQ(PolarCellAt(run, -90.0, 0.3), 1);  // straight up is the start of the first sector
  EXPECT_EQ(PolarCellAt(run, 0.0, 0.3), 4);    // to the right, a quarter round
  EXPECT_EQ(PolarCellAt(run, 0.0, 0.5), 0);    // outside the rings
  const std::vector<std::string> label = CellPointerLabel(t.session, run, 1, 1);
  ASSERT_EQ(label.size(), 4u);
  EXPECT_EQ(label[1], "Count = 21.0");
  EXPECT_EQ(label[2], "Chi Sq(11) = 12.1");  // (21 - 10)^2 / 10
  EXPECT_TRUE(CellPointerLabel(t.session, run, 13, 1).empty());
  // The even-spread fit sums every cell: (21 - 10)^2 / 10 + 11 * (9 - 10)^2 / 10.
  const EvenSpreadFit fit = EvenSpreadTest(run, 1);
  EXPECT_NEAR(fit.Chi, 13.2, 1e-9);
  EXPECT_EQ(fit.Dof, 11);
  EXPECT_NEAR(fit.P, ChiSquareProbability(13.2, 11), 1e-12);

  double value = 0;
  std::string shown;
  EXPECT_TRUE(AnchorFromText(t.session, kLongitudeData, "15Ar30", value, shown));
  EXPECT_NEAR(value, 15.5, 1e-4);
  EXPECT_EQ(shown, "15\xB0" "30'");
  EXPECT_TRUE(AnchorFromText(t.session, kLatitudeData, "120", value, shown));
  EXPECT_EQ(value, 90);
  EXPECT_TRUE(AnchorFromText(t.session, kNatalDetailsData, "250", value, shown));
  EXPECT_EQ(shown, "99");
  EXPECT_FALSE(AnchorFromText(t.session, kLongitudeData, "north", value, shown));

  FilterBlock block;
  EXPECT_FALSE(FilterBlockFor(t.session, run, kBarGraph, 1, 2, 1, 1, block));
  EXPECT_EQ(t.sink.messages.back().title, "Cannot Filter");
  ASSERT_TRUE(FilterBlockFor(t.session, run, kTabulationDisplay, 3, 14, 1, 2, block));  // the totals row and column
  EXPECT_EQ(block.FirstCell, 3);
  EXPECT_EQ(block.LastCell, 12);
  EXPECT_EQ(block.LastColumn, 1);
}

}  // namespace
}  // namespace vintar
