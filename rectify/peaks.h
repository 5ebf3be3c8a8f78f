// Peaks of the event graphs and the search for chart angles. The bars of a
// graph that stand out are taken as degrees of the harmonic segment on which
// an angle of the chart may fall; peaks are picked automatically (or by
// hand), the peaks of two graphs are merged on their common harmonic circle,
// and each peak is turned into candidate pairs of Midheaven and Ascendant
// with the local birth time that gives them, inside the user's time limits.
//
// Units: peak columns in degrees of the segment (single precision), angle
// results in zodiac degrees with the sidereal offset of the session's zodiac
// in them, times in local decimal hours (0 up to 24). Checked against
// constructed bar patterns (runs over the segment's end, narrow high runs,
// bridged gaps), hand-merged peak lists of harmonics 12 and 8, and angles
// computed directly with AnglesFromMC.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "rectify/graphs.h"

namespace vintar {

// One peak: where it starts and ends within the segment (Start above End
// when it runs over the segment's end) and its area above Mean + SD. A
// merged list also says which graph's list a row came from (1 or 2), 0 when
// it counts as common.
struct PeakRow {
  float Start = 0.0f;
  float End = 0.0f;
  float Source = 0.0f;
  float Area = 0.0f;
};

// Rows 1..Count(); row 0 is unused. HasSource tells a merged (four-column)
// list from one read off a single graph (three columns).
struct PeakList {
  std::vector<PeakRow> Rows = std::vector<PeakRow>(1);
  bool HasSource = false;
  int Count() const { return static_cast<int>(Rows.size()) - 1; }
  void Clear() { Rows.assign(1, PeakRow{}); }
  void Add(const PeakRow& row) { Rows.push_back(row); }
};

// Candidate angles, parallel arrays over candidates 1..Count (index 0
// unused), each with a low end [0] and a high end [1].
inline constexpr int kLow = 0;
inline constexpr int kHigh = 1;
struct AngleResult {
  using Range = std::array<float, 2>;
  std::vector<Range> ResultMC = std::vector<Range>(1);
  std::vector<Range> ResultAsc = std::vector<Range>(1);
  std::vector<Range> ResultVertex = std::vector<Range>(1);
  std::vector<Range> ResultTime = std::vector<Range>(1);  // local hours
  std::vector<int16_t> ResultIndex = std::vector<int16_t>(1);
  int Count = 0;
  void Clear();
  // Sets the number of candidates, keeping the first ones.
  void Resize(int count);
};

// The peak lists of the working graphs 4 and 5, their merged list with its
// harmonic, and the candidates of the last angle search.
struct PeakState {
  PeakList Peaks4;
  PeakList Peaks5;
  PeakList Common;
  int16_t CommonHarmonic = 0;
  AngleResult Results;
};

// Peak selection -------------------------------------------------------------

// Flags the peaks of a graph in its PeakFlags, replacing any flags it had:
// bars above Mean + SD, gaps of two bars bridged, runs narrower than
// MinPeakWidth dropped unless their top reaches Mean + ForcePeakSDFactor *
// SD, and only the MaxPeaks runs of largest area kept. Runs may go over the
// segment's end. Returns the number of runs kept.
int AutoSelectPeaks(const Session& session, GraphState& graphs, int graph);

// Clears all peak flags of a graph (the ClearButton).
void ClearPeakFlags(GraphState& graphs, int graph);

// The flagged runs of a graph as a three-column list, in the order of a
// walk that begins after an unflagged pair of bars: Start and End in
// degrees of the graph's segment (End is the far edge of the run's last
// bar), Area the sum of BarValue - (Mean + SD) over its bars.
void ReadPeaks(const GraphState& graphs, int graph, PeakList& list);

// The common harmonic of two graphs: their greatest common divisor (the
// harmonic itself when they are equal), at least 1.
int CommonHarmonic(int harmonicA, int harmonicB);

// The rows of a list of harmonic `harmonic` on the circle of harmonic
// `common` (360 / common degrees): each row repeated harmonic / common
// times, 360 / harmonic degrees apart, reduced to the circle; Source set to
// `source`. The result is in ascending order of Start (stable).
PeakList SpreadPeaks(const PeakList& list, int harmonic, int common, int source);

// Merges two lists into a four-column list on the common circle of their
// harmonics (returned in `commonHarmonic`). Rows from different lists that
// lie within MaxGapBars (3 / C degrees a bar) of each other join into a
// common row (Source 0; Areas add up); common rows are widened by
// AddCommonBars at both ends.
void CommonPeaks(const Session& session, const PeakList& listA, int harmonicA, const PeakList& listB, int harmonicB,
                 int& commonHarmonic, PeakList& common);

// The same on the flagged peaks of two graphs (ReadPeaks of each, with the
// graphs' own harmonics).
void CommonPeaks(const Session& session, const GraphState& graphs, int graphA, int graphB, int& commonHarmonic,
                 PeakList& common);

// Whether any row of a merged list is common (Source 0).
bool HasCommonRow(const PeakList& list);

// When no row is common: the rows in order of Area, largest first, and the
// first min(count, keep) of them made common.
void TopPeaks(PeakList& list, int keep);

// Rows made common by TopPeaks when two graphs share no peak.
inline constexpr int kTopPeaksKept = 3;

// The peaks of the graph screen as the angle search takes them: the flagged
// runs of graphs 1 to 3 read into lists[1..3], those of graphA and graphB
// merged on their common harmonic, and when no merged row is common the
// kTopPeaksKept rows of largest area made common. Returns whether that
// happened (a merged list without rows stays as it is).
bool CombineGraphPeaks(const Session& session, const GraphState& graphs, int graphA, int graphB,
                       std::array<PeakList, kShownGraphs + 1>& lists, PeakList& common, int& commonHarmonic);

// Angle search -----------------------------------------------------------------

// The midpoint of a and b on a circle of `period`, on the shorter side.
double CircularMid(double period, double a, double b);

// What the search reads from the project header and the time limits.
struct AngleSearchPlace {
  int Day = 1, Month = 1, Year = 2000;
  double Zone = 0.0;       // hours added to local time to reach UT
  double Longitude = 0.0;  // west positive
  double Latitude = 0.0;   // north positive
  double LowHours = 0.0;   // time limits, local decimal hours
  double HighHours = 24.0;
};

// The moment of the radix date at which the angle conversions are made:
// local noon (only obliquity and the sidereal offset depend on it).
inline constexpr double kAngleSearchHours = 12.0;

// Parses the radix date, zone, latitude and longitude of the project header
// and the two time limits; a text that does not parse shows its parser's
// message and gives false.
bool ParseAngleSearchPlace(Session& session, const std::string& from, const std::string& to, AngleSearchPlace& place);

// The candidates of a peak list into `results` (cleared first), sorted by
// time and condensed. `harmonicMode` 0 takes `harmonic` as the harmonic of
// the peaks, any graph number (1 to 5) that graph's MasterHarmonic. Each
// row i stands for H Midheaven arcs, Start(i) + k * 360 / H to End(i) + k *
// 360 / H (a row over the segment's end has its high end 30 degrees on,
// whatever the harmonic); an arc counts when the circular mean of its two
// times lies within the limits (inclusive) and its Ascendant arc meets a
// peak row j (in a merged list row i or row j must be common). Returns the
// number of candidates; a cancel through `progress` keeps those found so far.
int SearchAngles(Session& session, const GraphState& graphs, int harmonicMode, int harmonic, const PeakList& list,
                 const AngleSearchPlace& place, AngleResult& results, Progress* progress = nullptr);

inline constexpr const char* kNoAnglesMessage = "No possible chart angles were found within the time limits.";
inline constexpr const char* kNoAnglesTitle = "Angle Search";

// The search of the AngleSearch screen from texts: parses the header and
// the limits `from` and `to`, searches, and tells when nothing was found
// (unless `quiet`, as Auto Rectify, which has its own message, asks).
// Returns false when a text did not parse.
bool SearchAngles(Session& session, const GraphState& graphs, int harmonicMode, int harmonic, const PeakList& list,
                  const std::string& from, const std::string& to, AngleResult& results, bool quiet,
                  Progress* progress = nullptr);

// Copies candidate `from` over candidate `to` in all arrays.
void CopyResult(AngleResult& results, int from, int to);

// Sorts the candidates by their low time (stable), then folds each pair of
// neighbours whose mid-times ((low + high) / 2, modulo 24) are less than ten
// minutes apart into the first: the low ends of the first, the high ends of
// the second.
void SortAndCondense(AngleResult& results, Progress* progress = nullptr);

// AngleSearch screen: sort keys of the option buttons, on the low end, ascending.
enum class AngleSortKey { Asc, MC, Time };
void SortAngleResults(AngleResult& results, AngleSortKey key);
// DelButton: removes the candidates whose numbers are listed, compacting
// the arrays. Numbers outside 1..Count are ignored.
void DeleteAngleResults(AngleResult& results, const std::vector<int>& rows);
// AutoSelButton: AutoSelectPeaks on graphs 1..GraphCount.
void AutoSelectAllGraphs(const Session& session, GraphState& graphs);

// The AngleSearch screen's texts: the title of its print dialogue, and its
// header: the zodiac and node, each shown graph with " (Not Used)" beside
// one beyond the graphs in use, and the time limits "from to until".
inline constexpr const char* kAnglesPrintTitle = "Print Angles Report";
std::vector<std::string> AngleSearchHeader(const Session& session, const GraphState& graphs);

// Peak settings (PeakOpt) --------------------------------------------------------

// Reads MinPeakWidth, PeakSDFactor, ForcePeakSDFactor, MaxPeaks, MaxGapBars
// and AddCommonBars from section Vintar of the preference file into the
// session, defaults for absent keys.
void LoadPeakSettings(Session& session);
// Writes the six keys; false when the file could not be written.
bool SavePeakSettings(const Session& session);

// The six fields of the screen (Text1), in the order of the keys above.
inline constexpr int kPeakOptFields = 6;
using PeakOptTexts = std::array<std::string, kPeakOptFields>;
PeakOptTexts PeakOptFieldTexts(const Preferences& prefs);

// Checks the fields: the widths, counts and bars whole numbers (MinPeakWidth
// and MaxPeaks 1 to 120, MaxGapBars and AddCommonBars 0 to 120), the two
// factors numbers above 0 up to 100. Returns the index (0 to 5) of the first
// field in error, after its message, or -1 when all are good.
int CheckPeakOpt(Session& session, const PeakOptTexts& texts);

// OK: checks, stores the values in the session and writes them. Returns
// false (nothing stored) when a field is in error.
bool ApplyPeakOpt(Session& session, const PeakOptTexts& texts);

}  // namespace vintar
