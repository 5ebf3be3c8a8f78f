// Tabulation results: the Fourier step of the harmonic data type, the cell
// values in the five display styles, the per-column statistics and the
// one-cell chi-square test with its probability, the cell labels, and the
// tab-separated text of a run (the copy and the saved file alike).
//
// Counts are the floats of the tally; probabilities are those of the
// program's own series (even degrees of freedom exactly, odd ones by
// logarithmic interpolation). Checked against hand-computed cases in
// tests/research/results_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "research/tabulate.h"

namespace vintar {

// Data type 4 only: replaces the 361 degree rows of each column by the 60
// harmonic amplitudes (codes 300, 302) or phase angles (301, 303), with the
// charts' count in row 61, and sets CellCount and UsedCells to 60.
void FourierStep(TabulationRun& run, Progress* progress = nullptr);

// Styles of TabStyles: 0 "Raw Counts", 1 "Proportion of Tot", 2 "% of
// Total", 3 "Proportion of Avg", 4 "% of Average".
inline constexpr int kTabStyles = 5;
double StyledValue(const TabulationRun& run, int cell, int column, int style);
// The value as the table shows it: "12", "0.083", "8.3%". `totalRow` uses
// the totals' formats ("0.00" for styles other than 0, multiplier 1).
std::string FormatStyled(const TabulationRun& run, int cell, int column, int style);

struct ColumnStatistics {
  double Average = 0, Deviation = 0;
  int PeakCell = 0;
  double PeakValue = 0, LowValue = 0;
};
ColumnStatistics ColumnStats(const TabulationRun& run, int column, bool ignoreLow);

// The probability of a chi-square value with `degrees` degrees of freedom.
double ChiSquareProbability(double chi, int degrees);

// The one-cell test of a column's most deviant cell against the mean.
struct ColumnTest {
  bool Shown = false;       // the data type has a chi-square at all
  bool TooSparse = false;   // average not above 5
  double Expected = 0;      // total / CellCount (code 51: * harmonic * orb * 2 / 360)
  double Chi = 0;
  int Degrees = 0;
  double P = 1;
  double OneIn = 0;  // Int(1 / p) + 1
};
bool ChiSquareApplies(const TabulationRun& run);
ColumnTest PeakTest(const TabulationRun& run, int column);
// The same for one cell (the floating label over a bar).
ColumnTest CellTest(const TabulationRun& run, int cell, int column);

// The statistics block of a column as lines ("Avg Count = 8.33", "Division
// = Aries", "Count = 14.0", "Chi Sq (11) = 3.3", "Prob. = 1 in 2"); empty
// when the peak is 0 or the code shows none.
std::vector<std::string> StatisticsBlock(const Session& session, const TabulationRun& run, int column);

// The label of a cell of a code under the run's parameters ("Aries",
// "Leo 10-20", "Conjunction", "3rd House", "Mars", "H5", "None").
std::string CellName(const Session& session, const TabulationRun& run, int cell, bool forPrint);

// Column headings: the point names (pairs for data type 2, "Natal" for 11)
// and the last entry "TOTAL".
std::vector<std::string> DisplayPoints(const TabulationRun& run, const std::string& last = "TOTAL");

// The text of a run: a heading block with the run's parameters, then the
// table, cells separated by tabs, rows by CR LF.
std::string TabulationText(const Session& session, const TabulationRun& run, int style);
// Saves the text: adds ".dat" when the name has no extension; a failure
// shows "Unable to save file: ..." and returns false.
bool SaveTabulation(Session& session, const TabulationRun& run, int style, std::string path);

}  // namespace vintar
