// Harmonic pattern search over a group of charts. In harmonic H every
// chart point (or midpoint of two points) is reduced to the circle of 360/H
// degrees; a pattern is a run of such elements from the group's charts that
// falls inside a window of twice the orb divided by H. Positions are the
// tropical longitudes of the transit position cache (single precision, as
// cached) with the session's sidereal correction added; degrees throughout.
//
// Checked by tests/groups against groups built for the purpose: charts
// with a planted conjunction in a known harmonic, the window's closing edge,
// the wrap of the circle, and a chart count reached by one chart's two
// points.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "calc/cache.h"
#include "core/progress.h"
#include "core/session.h"

namespace vintar {

inline constexpr int kMaxSearchPairs = 300;

// One search point: a single point when First equals Second, otherwise the
// midpoint of the two. Ordered: (a,b) and (b,a) are different entries.
struct SearchPair {
  int16_t First = 0;
  int16_t Second = 0;
  bool operator==(const SearchPair&) const = default;
};

// One found pattern.
struct GroupMatch {
  int16_t Harmonic = 0;
  int16_t PointIndex = 0;  // 1-based into the search points (same-point search), 0 otherwise
  float Position = 0.0f;   // on the harmonic circle, 0 up to 360/H
  int16_t Vacant = 0;      // sectors of the full circle without an element
  float Score = 0.0f;      // set by the report's scoring only
  int16_t Charts = 0;      // different charts in the run
  int16_t Hits = 0;        // elements in the run
  int32_t FirstItem = 0;   // index in Items of the first element
};

// One element of a run.
struct GroupMatchItem {
  int32_t Chart = 0;    // record number
  int32_t Element = 0;  // index into the element tables
  uint8_t Sector = 0;   // 1 to H, counted from the run's start
};

// What the search screen gathers.
struct GroupSearchParams {
  int FromHarmonic = 1;
  int ToHarmonic = 16;
  float Orb = 8.0f;       // degrees at the first harmonic (the scan orb of a specified position)
  float Position = 0.0f;  // degrees on the harmonic circle, for a specified position
  int MinMatches = 3;
  bool SpecifiedPosition = false;
  bool Combination = true;  // "To C&ombinations"; false: "To S&ame Point"
  bool Detail = false;      // re-run of one match into SecondaryList
  int PatternIndex = 0;     // the match to re-run in Detail mode
};

// The tables of the search, rebuilt by each call and read afterwards by the
// strips, the report and the printed pages. Lists are 1-based (slot 0
// unused) where the matching lines are, so that list line k shows match k.
struct GroupSearchState {
  std::vector<SearchPair> SearchPoints;  // 0-based; SearchPoints[i-1] is pair i
  std::vector<std::string> SearchList;   // their list lines

  std::vector<int> SearchCharts;  // record numbers of the charts taken in, 0-based

  // Element tables, 1-based, n = HarmonicPos.size() - 1.
  std::vector<float> HarmonicPos{0.0f};
  std::vector<float> BasePos{0.0f};
  std::vector<int32_t> ElementChart{0};
  std::vector<int16_t> ElementFirst{0}, ElementSecond{0};

  std::vector<GroupMatch> Matches{GroupMatch{}};  // 1-based
  int MatchCount = 0;
  std::vector<GroupMatchItem> Items{GroupMatchItem{}};  // 1-based
  std::vector<std::string> MatchesList;                 // MatchesList[k-1] shows match k

  std::vector<std::string> SecondaryList;  // lines of a match in detail
  std::vector<int> DetailSlots;            // element number of each line

  GroupSearchParams LastParams;  // what the engine wrote back to the screen
  bool CurrentMatches = false;   // the matches belong to the current search points
  bool Stop = false;             // the engine's stop flag
  std::string Status;            // the last status line
};

// Mod(x, y) floored: 0 up to y for positive y.
double GroupMod(double x, double y);
// The nearer midpoint of two longitudes.
double NearMidpoint(double a, double b);
// The midpoint of two positions on a circle of M degrees.
double HarmonicMidpoint(double m, double a, double b);
// A stable insertion index sort of keys[1..n] (keys[0] unused), ascending,
// or descending; returns the 1-based index order in slots 1..n.
std::vector<int> IndexSort(const std::vector<float>& keys, bool descending = false);

// The points a search can use, 1 to 24, in the session's coordinate and node
// choice.
std::vector<int> SelectablePoints(const Session& session);
// The points of a default search: the selectable ones among the Moon, Sun to
// Pluto, the chosen node, the Ascendant and the Midheaven.
std::vector<int> DefaultSearchPoints(const Session& session);

// Search point list operations. AddSearchPair refuses silently (false) at
// 300 pairs or for a pair already there.
void ClearSearchPoints(GroupSearchState& state);
bool AddSearchPair(const Session& session, GroupSearchState& state, int first, int second);
// The name of a search pair ("Sun", "Sun/Moon") and its glyph text (the
// points' short glyph texts, "/" between).
std::string SearchPairName(const Session& session, const SearchPair& pair);
std::string SearchPairGlyphs(const Session& session, const SearchPair& pair);

// The search points of a command line: "default" (DefaultSearchPoints as
// single points), the path of a grouppnt.fil, or a comma list of names
// ("Sun, Moon, Sun/Moon", names or short names, a leading "The" optional).
// false with the reason in `error`.
bool SearchPointsFromText(const Session& session, GroupSearchState& state, const std::string& text,
                          std::string& error);
// A point's number by name or short name, 0 when none.
int GroupPointByName(const Session& session, const std::string& name);

// grouppnt.fil: pairs of little-endian 16-bit signed point numbers.
std::string GroupPointFilePath(const Session& session);
// Adds the file's pairs (those outside 1 to 24 skipped); false when the file
// cannot be read. Any bytes are safe.
bool ReadGroupPointFile(const Session& session, GroupSearchState& state, const std::string& path);
// Writes the pairs by a staged write; false when it fails.
bool WriteGroupPointFile(const GroupSearchState& state, const std::string& path);

// A chart's adjusted longitudes from its cache record: the longitude of a
// single instant, else the nearer midpoint of the range; the sidereal
// correction added; -1 for a point the record does not know.
std::array<double, kPoints + 1> AdjustedLongitudes(const Session& session, const EventPositionRecord& record);

// The charts a search takes in: enabled records without a range of days.
std::vector<int> GroupSearchCharts(const Session& session);

// The search. Messages go through the session; progress->Cancelled() is
// the stop button (polled after each entry, harmonic and point pass);
// status lines go to progress->Status and to state.Status. Brings the
// transit position cache up to date first.
void SearchGroupPatterns(Session& session, GroupSearchState& state, const GroupSearchParams& params,
                         Progress* progress = nullptr);

// Detail of match k (1-based): re-runs it at its harmonic and position with
// the orb of `params` into SecondaryList and DetailSlots.
void ShowGroupMatchDetail(Session& session, GroupSearchState& state, const GroupSearchParams& params, int k,
                          Progress* progress = nullptr);

// The items of match k, in order.
std::vector<GroupMatchItem> MatchItems(const GroupSearchState& state, int k);
// The search pair of one item of a match. The element tables hold only the
// last harmonic's pass, so the pair is found from the element's number:
// charts outer, points inner in a combination search, the match's point in
// a same-point search.
SearchPair MatchItemPair(const GroupSearchState& state, const GroupMatch& match, const GroupMatchItem& item);

// The search screen's point lists. DisplayList offers the selectable points
// (short glyph text and name) or, with "&Midpoints" chosen, each point's
// "All Midpoints of " line; the counts under SearchList read " Planets" and
// " Midpoints".
inline constexpr const char* kClickToSelect = "Click to Select";
std::vector<std::string> GroupDisplayList(const Session& session, bool midpoints);
// Adds the midpoints of `point` with every other selectable point; the
// number added.
int AddAllMidpointsOf(const Session& session, GroupSearchState& state, int point);
std::string SearchPlanetCount(const GroupSearchState& state);
std::string SearchMidpointCount(const GroupSearchState& state);

// The search screen's rules.
// Field clamps on leaving: a harmonic 1 to 360, matches at least 2; an
// angle field parsed and written back as degrees and minutes.
int ClampHarmonicField(int h);
int ClampMatchesField(int m);
// Checks of the Search button in order; false after the message. `focus`
// names the field to focus ("Harmonic", "Orb", "Position", "DisplayList").
bool CheckGroupSearch(Session& session, const GroupSearchParams& params, int searchPointCount,
                      std::string& focus);
std::string GroupSearchTitle(const Session& session);
std::string GroupStatusPanel(const Session& session, int chartsAvailable);
// The Display button: at most 10 charts.
bool CheckStripChartCount(Session& session, int selected);
// The report button: at least 3 records.
bool CheckReportRecordCount(Session& session);

// The order the matches are ranked in for the user: more charts first, then
// more hits per chart (the report's scoring without its node floor); equal
// scores keep their search order. Match numbers, 1-based.
double GroupPatternScore(const GroupMatch& match);
std::vector<int> RankedGroupMatches(const GroupSearchState& state);

}  // namespace vintar
