// Tabulation results: the Fourier step of the harmonic data type, the cell
// values in the five display styles, the per-column statistics and the
// one-cell chi-square test with its probability, the cell labels, and the
// tab-separated text of a run (the copy and the saved file alike).
//
// Counts are the floats of the tally; probabilities are those of the
// program's own series (even degrees of freedom exactly, odd ones by
// logarithmic interpolation). Angles and ranges in cell labels are degrees
// of the data type's own coordinate. Checked against hand-computed cases in
// tests/research/results_test.cpp.
//
// The text of a run (TabulationText), single-byte, CR LF line ends:
//   one "Label<TAB>value" line for each of "Zodiac:", "Houses:", "Coords:",
//   "Node Type:", "Divisions of:", "Division Type:", "No. Divisions:",
//   "Harmonic:", "Modulus:", "Aspect:", "Aspect Orb:", "Angle Range:",
//   "Anchor Point:", "Total Charts", "Points Used:", in that order, with
//   "n/a" where the run has no such value (houses only for house divisions;
//   harmonic and modulus for codes 8, 12, 51, 601, 701; the aspect angle for
//   51; the orb for 50 and 51; the range for 402; the anchor for 12, 52, 601,
//   701 and "Century 20" for 901); angles as degrees and minutes (5°00');
//   an empty line;
//   the heading row: the division name, each column's name, "TOTAL ";
//   one row per cell 1..CellCount: CellName, each column, the TOTAL column;
//   the "TOTAL" row of the column totals.
// Cells are separated by a tab; values are those of FormatStyled.
#pragma once

#include <string>
#include <vector>

#include "core/session.h"
#include "research/tabulate.h"

namespace vintar {

// Data type 4 only: replaces the 361 degree rows of each column by the 60
// harmonic amplitudes (codes 300, 302) or phase angles (301, 303), with the
// charts' count in row 61, and sets CellCount and UsedCells to 60. The
// degree rows 1 to 360 and their count in row 361 are read; the table is
// left with 62 rows. A cancel marks the run Cancelled and leaves the
// columns not yet reached at 0 (their counts still in row 61).
void FourierStep(TabulationRun& run, Progress* progress = nullptr);

// Styles of TabStyles: 0 "Raw Counts", 1 "Proportion of Tot", 2 "% of
// Total", 3 "Proportion of Avg", 4 "% of Average".
inline constexpr int kTabStyles = 5;
double StyledValue(const TabulationRun& run, int cell, int column, int style);
// The value as the table shows it: "12", "0.083", "8.3%". The totals row
// (cell CellCount + 1) has the multiplier 1 and the format "0.00" in every
// style but 0. A column total of 0 gives 0 in every style.
std::string FormatStyled(const TabulationRun& run, int cell, int column, int style);

struct ColumnStatistics {
  double Average = 0, Deviation = 0;
  int PeakCell = 0;
  double PeakValue = 0, LowValue = 0;
};
ColumnStatistics ColumnStats(const TabulationRun& run, int column, bool ignoreLow);

// The probability of a chi-square value with `degrees` degrees of freedom;
// never below 1E-10. Fewer than one degree of freedom gives 1.
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
// The same for one cell (the floating label over a bar). For the harmonic
// aspect (code 51) the expected count is scaled by harmonic * orb * 2 / 360,
// the share of the circle its orbs cover, and the test is shown too.
ColumnTest CellTest(const TabulationRun& run, int cell, int column);

// The usual goodness of fit of a column against an even spread over its
// real cells (1..UsedCells): the sum of (count - mean)^2 / mean, with
// UsedCells - 1 degrees of freedom and the probability of the series above.
// Not valid with fewer than two cells or nothing counted. A research reader's
// figure beside the one-cell test; an even spread is rarely the right
// expectation, which is what control data are for.
struct EvenSpreadFit {
  double Chi = 0;
  int Dof = 0;
  double P = 1;
  bool Valid = false;
};
EvenSpreadFit EvenSpreadTest(const TabulationRun& run, int column);
// The fit as one line, "goodness of fit over 36 cells: chi-square 57.04, 35
// degrees of freedom, p = 0.0110"; empty where it does not apply (harmonic
// amplitudes, natal details, nothing counted).
std::string EvenSpreadText(const TabulationRun& run, int column);

// The statistics block of a column as lines ("Avg Count = 8.33", "Division
// = Aries", "Count = 14.0", "Chi Sq (11) = 3.3", "Prob. = 1 in 2"); empty
// when the peak is 0 or the code shows none.
std::vector<std::string> StatisticsBlock(const Session& session, const TabulationRun& run, int column);

// The label of a cell of a code under the run's parameters ("Aries",
// "Leo 10-20", "Conjunction", "3rd House", "Mars", "H5", "None"). Numeric
// divisions name their range in the coordinate's degrees ("30-60",
// "-10 to 0"), latitude and longitude bands their sides ("5S-5N",
// "165W-175W"), years their inclusive span ("1900-1909"), hours
// "07:00-08:00", Gauquelin sectors their own numbers counted from the
// rising point ("Sector 1"). `forPrint` gives the narrow form of the
// printed table: sign and planet names abbreviated ("Le 10-20", "Mar");
// everything else is the same. Empty for a cell out of 1..CellCount.
std::string CellName(const Session& session, const TabulationRun& run, int cell, bool forPrint);

// Column headings, entry i for column i + 1: the point names and the last
// entry `last`; for data type 2 the pairs "A/B" (built from the point names
// when ColumnNames holds the points rather than the pairs) and "All Points";
// for data type 11 the single entry "Natal".
std::vector<std::string> DisplayPoints(const TabulationRun& run, const std::string& last = "TOTAL");

// The text of a run: a heading block with the run's parameters, then the
// table, cells separated by tabs, rows by CR LF.
std::string TabulationText(const Session& session, const TabulationRun& run, int style);
// Saves the text: adds ".dat" when the name has no extension; a failure
// shows "Unable to save file: ..." and returns false.
bool SaveTabulation(Session& session, const TabulationRun& run, int style, std::string path);

// An angle as the screens write it back: whole degrees and minutes,
// "5\xB000'" (Latin-1), which the angle parser reads again.
std::string AngleText(double degrees);

// The floating label over a bar or polar sector: the cell's name, then its
// value lines ("Phase Angle = ", "Angle of Peak = "; "Amplitude = "; or
// "Count = ", "Chi Sq(" d ") = ", "Prob = 1 in " / "Too Sparse"). Empty for
// a cell outside 1..UsedCells.
std::vector<std::string> CellPointerLabel(const Session& session, const TabulationRun& run, int cell, int column);
// The cell under the pointer. Bar graph: `fraction` is the position along
// the cell axis, 0 to 1. Polar graph: `angle` is the pointer's direction
// about the centre in screen degrees (0 to the right, 90 down) and
// `radius` its distance over the picture's height; beyond 0.42 no cell.
// 0 when no cell is under it.
int BarCellAt(const TabulationRun& run, double fraction);
int PolarCellAt(const TabulationRun& run, double angle, double radius);

// Display styles of the results screen (DisplayStyles).
inline constexpr int kBarGraph = 0, kPolarGraph = 1, kTabulationDisplay = 2;
// The screen's two remembered settings, held to their lists.
struct ResultsSettings {
  int TabulateStyle = 0;
  int LastGraphType = 0;
  void Clamp();
};

// "Filter Selected Records into New Project": only from the table. With
// another display shows "To filter data into a new file you must choose to
// view the data as a tabulation, and then to select a range of cells."
// (title "Cannot Filter") and returns false. Otherwise the grid's selection
// (rows and columns from 1) becomes the block, held to the table.
bool FilterBlockFor(Session& session, const TabulationRun& run, int display, int firstCell, int lastCell,
                    int firstColumn, int lastColumn, FilterBlock& block);

}  // namespace vintar
