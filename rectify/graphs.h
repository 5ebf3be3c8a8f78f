// Event graphs for rectification: the longitudes of moving bodies at every
// dated event of a life, folded into one harmonic segment (360 / H degrees)
// and piled into a histogram of 120 bars. The angles of the true chart tend
// to stand under the highest piles.
//
// Units: degrees of the zodiac; a bar is 360 / H / 120 degrees wide (a
// quarter of a degree at the usual harmonic 12). Bar values, weights and
// statistics are single precision, as they are kept. Positions come from the
// position cache (calc/cache.h) only; nothing here calls the ephemeris.
// Also here: the per-project graph settings file (".pla"), the event order
// check that the graphs need, and the logic of the graph option screens.
//
// Checked against hand-computed histograms (arcs spread over bars and over
// the segment's end, smoothing in thirds), the statistics of constructed bar
// patterns and byte-exact round trips of the settings file.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/chart_slots.h"
#include "core/progress.h"
#include "core/records.h"
#include "core/session.h"

namespace vintar {

inline constexpr int kBars = 120;
inline constexpr int kGraphRecords = 5;   // 1 to 3 shown, 4 and 5 working copies
inline constexpr int kSelectionSets = 8;  // point selection sets per coordinate
inline constexpr int kShownGraphs = 3;

// One histogram with its settings and statistics.
struct GraphRecord {
  float TotalWeight = 0.0f;  // 1.0 for every event-point that fell on the graph
  float MaxHeight = 0.0f;    // highest smoothed bar
  float Quality = 0.0f;      // peakedness, see AnalyseHarmDist
  float Mean = 0.0f;         // TotalWeight / 120
  float SD = 0.0f;           // population standard deviation of the smoothed bars
  int16_t MasterHarmonic = 12;
  int16_t Coordinate = kGeocentric;  // 0 counts as geocentric
  int32_t DynamicType = kTransits;
  int32_t ProgressionMethod = 0;  // 0 for the types that do not use it
  std::array<float, kBars> Bars{};
  std::array<int16_t, kBars> PeakFlags{};  // kTrue where a bar belongs to a selected peak
};

// Which points each graph folds: [coordinate 1..2][set 1..8][point 1..24],
// 16-bit flags (any non-zero value counts as selected). Set g belongs to graph g.
using PointSelection = std::array<std::array<std::array<int16_t, kPoints + 1>, kSelectionSets + 1>, kHeliocentric + 1>;

// The graphs of the open project and their options. Lives in the
// Rectification beside the Session.
struct GraphState {
  std::array<GraphRecord, kGraphRecords + 1> Graph{};  // 1..5, 0 unused
  PointSelection Selection{};
  int16_t GraphCount = kShownGraphs;
  // The harmonic of graph 1 (the master) and of graphs 2 and 3; 0 for
  // graphs 2 and 3 means "as the master".
  int16_t MasterHarmonic1 = 12;
  int16_t Harmonic2 = 12;
  int16_t Harmonic3 = 12;
  // The longest arc (degrees at harmonic 12) an event may span and count.
  float MaxOrb12 = 5.0f;
  int16_t SmoothBars = kTrue;
  float GraphMaxHeight = 0.0f;  // highest bar of all graphs, for a common scale
  // How Quality is measured: mode 1 takes QualityMeanFactor * Mean as its
  // threshold, any other mode Mean + SD.
  int16_t QualityThresholdMode = 2;
  float QualityMeanFactor = 1.0f;
  float QualityIdealPeaks = 4.0f;
  float QualityPeakPenalty = 0.2f;
  int16_t QualitySquared = kFalse;
  // The graph option tab that was showing when the options were closed.
  int16_t OptionShowing = 0;
};

// Settings -------------------------------------------------------------------

// Sets 1 to 5 of both coordinates: Mars to Pluto (6 to 11) and the node of
// the preference (19 true, 20 mean). Sets 6 to 8 are cleared.
void InitialisePointSelection(GraphState& graphs, const Preferences& prefs);

// The settings of a project without a ".pla" file: the initial selection;
// harmonic 12 for all three graphs; graph 1 geocentric transits, graph 2
// heliocentric transits, graph 3 geocentric secondary progressions with
// method 1 and the points Moon, Sun, Mercury, Venus and Mars.
void DefaultGraphSettings(GraphState& graphs, const Preferences& prefs);

// The ".pla" file beside a project: the .dat path with the extension ".pla".
std::string GraphSettingsFileName(const std::string& datPath);

// The ".pla" bytes, little-endian, no header: the point flags of graphs 1
// to 3 (for each graph, for each point 1 to 24: geocentric flag,
// heliocentric flag, i16 each), the option tab (i16), then per graph
// Coordinate (i16), DynamicType (i32), ProgressionMethod (i32). 320 bytes.
std::string FormatGraphSettings(const GraphState& graphs);

// Reads ".pla" bytes over the initial selection. Values past the end of the
// bytes are missing: a missing flag is clear, a missing coordinate is 1 and
// a missing type or method 0, so a file that ends before its graph settings
// is valid. Values no graph can take (a coordinate other than 0 to 2, a type
// or method other than 0 to 3) are replaced the same way. Never fails.
void ParseGraphSettings(const std::string& bytes, GraphState& graphs, const Preferences& prefs);

// Loads the ".pla" of the session's project into `graphs`; without the file
// (or without a project path) the defaults above. Returns whether the file
// was read.
bool LoadGraphSettings(Session& session, GraphState& graphs);

// Writes the ".pla" of the session's project. False, with `error`, when the
// project has no path or the file cannot be written (the old file stays).
bool SaveGraphSettings(const Session& session, const GraphState& graphs, std::string& error);
// The same as the graph screen closes: nothing to do without a project
// path; a failed write says "Error whilst writing file:" with the reason.
bool SaveGraphSettingsOnClose(Session& session, const GraphState& graphs);

// Event order ----------------------------------------------------------------

// Whether records 1..RecordCount stand in ascending order of JulianDay.
bool EventsInDateOrder(const Session& session);

// Sorts records 1..RecordCount by JulianDay with the shared stable index
// sort. When any record moved: DataChanged and ReCalculate are set and the
// cache validity table is cleared (the caches follow record order).
void SortEventsByDate(Session& session);

// The graphs need events in date order. When they are not, asks "Sort
// Events?"; Yes sorts them and returns true, No returns false.
bool CheckEventOrder(Session& session);

// Calculation ------------------------------------------------------------------

// The coordinate a graph is folded in: 2 for heliocentric, 1 otherwise.
int GraphCoordinate(const GraphRecord& graph);

// The progression method handed to the position cache for a graph: its own
// method when it has one (1 to 3), otherwise the session's preference.
int GraphCacheMethod(const Session& session, const GraphRecord& graph);

// Makes the position cache of one graph's settings current (CalcEvents).
// A coordinate of 0 is first replaced by 1.
void CalcGraphEvents(Session& session, GraphState& graphs, int graph, bool& cancelled, Progress* progress = nullptr);

// Folds the events of the session's project into the bars of `graph` (1 to
// 5) and sets its TotalWeight. A non-zero `harmonic` is first stored in the
// graph's MasterHarmonic; the harmonic used is always the graph's own. Only
// enabled records count. Each selected point of a record adds weight 1,
// spread evenly over the bars its arc from StartPos to EndPos covers (an arc
// may run over the segment's end); a point not computed (-1.0), or whose arc
// reaches MaxArc (MaxOrb12 * 12 / H, kept below half a segment), adds
// nothing. Positions are turned sidereal with the record's precession term
// when the session's zodiac is not tropical. Sets `cancelled` when the
// cache file cannot be read or `progress` asks to stop; a project without
// records gives empty bars.
void CalcHarmDist(Session& session, GraphState& graphs, int graph, int harmonic, bool& cancelled,
                  Progress* progress = nullptr);

// The height of a bar (any integer, taken modulo 120) as all readers see
// it: with SmoothBars the mean of the bar and its two neighbours, else the
// bar itself.
float BarValue(const GraphState& graphs, int graph, int bar);

// The number of runs of bars whose BarValue is above `threshold`; a run
// over bar 119 into bar 0 counts once.
int CountPeakRuns(const GraphState& graphs, int graph, float threshold);

// MaxHeight (raising GraphMaxHeight), Mean, SD and Quality of a graph. An
// empty graph (Mean 0) has SD 0 and Quality 0.
void AnalyseHarmDist(GraphState& graphs, int graph);

// The whole calculation of graphs 1 to 3: the event order check (a No is a
// cancel), the harmonics (graph 1 the master, graphs 2 and 3 their own or
// the master), the position caches, the bars and their statistics. On
// success the session's graph rebuild flag is cleared; a cancel at any step
// ends the build and sets it.
void BuildGraphs(Session& session, GraphState& graphs, bool& cancelled, Progress* progress = nullptr);

// Marks the graphs for rebuilding (the session's rebuild flag).
void MarkGraphsStale(Session& session);

// Working copies --------------------------------------------------------------

// Copies graph `from`'s record and its point selection (both coordinates)
// to graph `to`, as the working graphs 4 and 5 are made.
void CopyGraph(GraphState& graphs, int from, int to);

// Selects exactly the points first..last in the selection set of `graph`
// for the graph's coordinate.
void SelectOnlyPoints(GraphState& graphs, int graph, int first, int last);

// Graph options screen (RectOpt) -----------------------------------------------

// What the screen edits: the three graphs' records and their selection.
struct GraphOptions {
  std::array<GraphRecord, kShownGraphs + 1> Graph{};  // 1..3
  PointSelection Selection{};
  int16_t OptionShowing = 0;
};

GraphOptions BeginGraphOptions(const GraphState& graphs);

// A choice in cmbDynType: the type, and the method of the session for the
// progression types (1 and 2), 0 for the others.
void SetGraphDynamicType(const Session& session, GraphRecord& graph, int dynamicType);

// The node check box: the node of the preference is set or cleared, the
// other node is always cleared.
void SetNodeSelected(PointSelection& selection, int coordinate, int set, const Preferences& prefs, bool on);

// "All On" selects every point, with the node of the preference only;
// "All Off" clears them all.
void SetAllPoints(PointSelection& selection, int coordinate, int set, const Preferences& prefs, bool on);

// After a change of the node preference: in every set that holds either
// node, the node of the preference is set and the other cleared.
void ApplyNodePreference(PointSelection& selection, const Preferences& prefs);

// OK: each graph's settings and selection go to the session's graphs with
// the harmonic kept (a coordinate outside 1 to 2 becomes 1, a type outside 0
// to 3 becomes 0), the graphs are marked for rebuilding and the ".pla" is
// written when the project has a path. Returns false only when that write
// failed.
bool ApplyGraphOptions(Session& session, GraphState& graphs, const GraphOptions& options);

// Master Harmonic screen (SelHarms) ------------------------------------------

inline constexpr int kMinHarmonic = 1;
inline constexpr int kMaxHarmonic = 360;

// Values below 1 become 1 and values above 360 become 360.
int ClampHarmonic(long value);
// The number in a harmonic field, clamped.
int HarmonicFromText(const std::string& text);
// Reset: the master into both fields.
void ResetHarmonics(const GraphState& graphs, int& harmonic2, int& harmonic3);
// OK: the clamped harmonics into graphs 2 and 3, and the graphs are marked
// for rebuilding.
void ApplyHarmonics(Session& session, GraphState& graphs, int harmonic2, int harmonic3);

// The Rectify screen's texts ------------------------------------------------

// The title of the point selection (RectOpt) opened from the screen.
inline constexpr const char* kSelectPlanetsTitle = "Select Planets";
// The screen's title: the zodiac's name, " Zodiac - ", the node's kind and
// " Node" ("Tropical Zodiac - Mean Node").
std::string RectifyScreenTitle(const Session& session);
// The mouse read-out over bar `bar` (0 to 119) of a graph: the degrees
// within the graph's segment of 360 / harmonic at the bar's middle, the
// harmonic, the number of the selected peak under the bar (counted from
// the start of the graph, 0 when none) and the bar's height with two
// decimals: "7.6  H12 Peak No 2 Height 3.25".
std::string GraphReadout(const GraphState& graphs, int graph, int bar);
// The heading the angle search opens with: "Angle Search: " and the title.
std::string AngleSearchHeading(const Session& session);

// The rectification commands need the natal details (date, place, zone) of
// the open project. False, after a message, when they do not pass the
// natal check.
bool CheckNatalForRectify(Session& session);

}  // namespace vintar
