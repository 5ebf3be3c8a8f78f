// The tabulation engine: where the chosen points of every chart of a
// project fall among the cells of a division, counted into a table of
// cells by points. Reads the project's transit position cache (tropical,
// ephemeris time) and casts the research chart of each record into slot 7;
// equatorial, horizon and diurnal values are computed only for the data
// types that need them and cusps only when a point or a division does.
//
// Data types 0 to 11 and division codes 0 to 903 as tabled in
// kDivisionCodes; cells count from 1, cell 0 means no cell. Checked by a
// table of hand-picked values and boundaries for every code and a
// hand-counted project in tests/research/tabulate_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "research/points.h"

namespace vintar {

inline constexpr int kDataTypes = 12;
enum DataTypeCode : int {
  kLongitudeData = 0,
  kHouseData = 1,
  kSeparationData = 2,
  kDignityData = 3,
  kHarmonicData = 4,
  kLatitudeData = 5,
  kDiurnalData = 6,
  kRightAscensionData = 7,
  kDeclinationData = 8,
  kAzimuthData = 9,
  kAltitudeData = 10,
  kNatalDetailsData = 11,
};

struct DataTypeInfo {
  const char* Caption;       // "&Zodiacal Divisions"
  const char* InternalName;  // "Longitude"
  int FirstCode, LastCode;
};
const DataTypeInfo& DataTypeOf(int dataType);  // 0..11; out of range gives type 0

// Division codes of a data type, in list order.
std::vector<int> DivisionCodesOf(int dataType);
bool DivisionBelongs(int dataType, int code);

// The parameters of a run, set by the screen or the command line.
struct TabulateParams {
  int DataType = 0;
  int Code = 0;
  double Harmonic = 1;
  int UserDivisions = 12;  // the cell count of the user-defined codes
  double Anchor = 0;       // anchor point, aspect orb, range or century by code
  double Orb = 0;          // aspect orb (50, 51) and range (402) come from Anchor
  int Scheme = 1;          // 1 Modern, 2 Ancient
  int InexactOption = 0;   // 0 exclude ambiguous points, 1 median time, 2 exclude inexact charts
  std::vector<PointRef> Points;
};

// Cell counts of a code under the run's parameters: the table's cells and
// the real ones (without a trailing "nothing" cell). 0 cells is an error.
struct CellCounts {
  int CellCount = 0;
  int UsedCells = 0;
};
CellCounts CellCountsOf(const TabulateParams& params);

// The result: TallyTable[cell][column], cells 0..CellCount + 1 (row
// CellCount + 1 holds the column totals), columns 0..ColumnCount + 1
// (column ColumnCount + 1 the cell totals); row and column 0 unused.
struct TabulationRun {
  TabulateParams Params;
  int CellCount = 0;
  int UsedCells = 0;
  int ColumnCount = 0;
  std::vector<std::string> ColumnNames;  // 1..ColumnCount; slot 0 unused
  std::vector<std::vector<float>> Tally;
  bool Triangles = false;  // ray weights all 1 (code 11)
  // Charts: read, used, and skipped with the reason.
  int ChartsRead = 0, ChartsUsed = 0, SkippedDisabled = 0, SkippedInexact = 0, SkippedNoPosition = 0;
  int AmbiguousPoints = 0;  // points of inexact charts left out for differing cells
  bool Failed = false;
  bool Cancelled = false;
  float& At(int cell, int column) { return Tally[cell][column]; }
  float At(int cell, int column) const { return Tally[cell][column]; }
};

// Classification of one value. `cusps` may be null when the code needs
// none. The primary cell is returned (0 for none); secondary cells go to
// `extra` (extra[0] is unused, so extra.size() - 1 is the count of them).
struct ClassifyInput {
  int Code = 0;
  int Planet = 0;
  double Value = 0;       // v
  double Secondary = 0;   // y
  double Speed = 0;       // Direction
  const std::array<double, 13>* Cusps = nullptr;
  // Run parameters the classification reads.
  int CellCount = 0;
  double Harmonic = 1;
  double Anchor = 0;
  double Orb = 0;
  int Scheme = 1;
  int Year = 0;   // 901
  int Hour = 0;   // 900
  double PlaceLatitude = 0, PlaceLongitude = 0;  // 902, 903
  const std::array<double, 8>* RayWeight = nullptr;  // 10, 11
};
int ClassifyPoint(const ClassifyInput& in, std::vector<int>& extra);

// The house (1 to 12) of a longitude among twelve cusps.
int HouseOf(double longitude, const std::array<double, 13>& cusps);

// The ray weights of code 10 (weighted) or 11 (triangles).
std::array<double, 8> RayWeights(bool triangles);

// The screen's checks on OK, as messages through the session. Returns false
// (after the message) when the run must not start.
bool CheckTabulateParams(Session& session, const TabulateParams& params);
// Code 8 with a harmonic that does not divide 360: the message, and the
// harmonic set back to 1. Returns false when it changed the harmonic.
bool CheckWholeDegreeHarmonic(Session& session, TabulateParams& params);
// Which controls a code enables, with the anchor's caption and default.
struct DivisionControls {
  bool Harmonic = false, UserDivisions = false, Rulers = false, Anchor = false;
  std::string AnchorCaption, AnchorDefault;
  std::array<bool, 3> InexactEnabled{true, true, true};
  int ForcedInexact = -1;  // the option the data type sets, -1 none
};
DivisionControls ControlsFor(int dataType, int code);
// Leaving the anchor box: the text read as an angle (the parser says what
// is wrong and false is returned) and written back as angle text; Latitude
// holds it to 1..90, Natal Details takes a whole number of 0 to 99.
bool AnchorFromText(Session& session, int dataType, const std::string& text, double& value, std::string& shown);

// The run. Opens (recalculating as needed) the transit cache of the
// session's coordinate, casts each record's chart and counts. In filter
// mode nothing is counted: `extract` is called for a record whose value
// falls in the block's cells once for each column of the block it matches
// (so a record can come more than once). Messages go through the session;
// progress reports every tenth record and a cancel stops the run with what
// it has counted.
struct FilterBlock {
  bool Active = false;
  int FirstCell = 0, LastCell = 0, FirstColumn = 0, LastColumn = 0;
};
TabulationRun TabulateRun(Session& session, ResearchState& state, const TabulateParams& params,
                          Progress* progress = nullptr, const FilterBlock& filter = {},
                          const std::function<void(int record)>& extract = {});

// Casts record n's research chart into the slot from its cache record for
// a pass (1 start, 2 end, 3 the midpoint of the two) and clears the chart's
// flags. Points without a position get -1.
void LoadResearchChart(Session& session, ResearchChart& chart, const EventRecord& event,
                       const EventPositionRecord& cached, int pass);

}  // namespace vintar
