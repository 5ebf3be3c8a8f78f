// The automatic group report: a finished RTF document about a family or
// group, written without search parameters from the user. It runs the
// pattern search with fixed settings (harmonics 5 to 12, an orb of 10
// degrees at the first harmonic, three hits at least), keeps the patterns
// that the scoring picks (charts first, density next, the share of the
// harmonic's nodes filled as a floor that is lowered round by round), and
// weaves them with the prepared paragraphs of the interpretation files.
// Sign and house emphasis count every primary point and midpoint of each
// chart; houses come from the house system of the preferences.
//
// Checked by tests/groups/group_report_test.cpp on a planted group: the
// chapters and headings of each group type, the scoring's ties and
// duplicates, and the document's RTF structure.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "groups/group_search.h"

namespace vintar {

inline constexpr int kGroupTypes = 6;

struct GroupType {
  const char* Option;  // the screen's option caption
  const char* Title;   // the report's title of the type
  const char* File;    // its interpretation file
};
// Family, Hunting Group, Gathering Group, Play/Peer Group, Tribal Elders,
// Undefined; index 0 to 5. Type 5 writes no interpretive text.
const std::array<GroupType, kGroupTypes>& GroupTypes();
// A type by its index or by a word of its title ("family", "hunt",
// "gather", "play", "tribe", "other"); -1 when none.
int GroupTypeByName(const std::string& name);

// The scorings of the patterns in state.Matches[1..MatchCount]; they write
// each match's Score.
void ScorePatterns(GroupSearchState& state, float& bestScore, int& bestCount, float minChartRatio, int totalCharts);
void ScoreChartRatio(GroupSearchState& state, float& bestScore, int& bestCount, float minChartRatio,
                     int totalCharts);

// The primary points of a report, 1..24: the Sun to Pluto and the chosen
// node, the Moon when no chart is untimed, the Ascendant and Midheaven when
// no chart is unlocated.
std::array<bool, kPoints + 1> PrimaryPoints(const Session& session, const std::vector<int>& charts);

// Sign (1..12) and house (1..12) scores of every primary point and midpoint
// of the charts; `longitudes` are the charts' adjusted longitudes, in the
// order of `charts`.
void TallyEmphasis(Session& session, const std::vector<int>& charts,
                   const std::vector<std::array<double, kPoints + 1>>& longitudes,
                   const std::array<bool, kPoints + 1>& primary, std::array<int, 13>& signScores,
                   std::array<int, 13>& houseScores);

struct GroupReportOptions {
  int GroupType = 0;      // 0 to 5
  int SelectedMatch = 0;  // 0: the full report; k: match k of the state
  std::string Path;       // the document; empty: GroupRep.rtf in the user data folder
  std::string UserName;   // "Report produced by "
  std::string ProgramName = "Vintar";
  std::string ProgramVersion = "0.1";
  bool OpenWordProcessor = true;
  // Starts the word processor (SystemNotepadHooks().launch for the system's).
  std::function<bool(const std::vector<std::string>&)> Launch;
};

enum class GroupReportResult { Written, Declined, Stopped, NoFile, Failed };

struct GroupReportOutcome {
  GroupReportResult Result = GroupReportResult::Failed;
  std::string Path;
  std::string MainLine, StepLine;  // the two status lines as they ended
  int RolePatterns = 0, GroupPatterns = 0;
};

// The report. Progress gets the main line as Caption and the step as
// Status; its Cancelled() is the Stop button. `state` is the search
// screen's: the full report replaces its search points and matches, a
// selected match is read from it.
GroupReportOutcome WriteGroupReport(Session& session, GroupSearchState& state, const GroupReportOptions& options,
                                    Progress* progress = nullptr);

// The report screen's rules. Its caption; the word processor as it loads
// (the WordProc and UseOtherWP preferences); and the choice of the report
// button, taken into the preferences and written to the preference file:
// another word processor is in use only with a path that is not blank.
inline constexpr const char* kGroupReportCaption = "Kinfold Analysis Report";
inline constexpr const char* kWordProcessorFilter = "Applications (*)";
inline constexpr const char* kWordProcessorDialogTitle = "Select Word Processor";
struct WordProcessorChoice {
  bool UseOther = false;
  std::string Path;
};
WordProcessorChoice LoadWordProcessorChoice(const Session& session);
// False when the preference file could not be written (the session keeps
// the choice all the same).
bool ApplyWordProcessorChoice(Session& session, bool useOther, const std::string& path);

// Where the report is written by default.
std::string GroupReportPath(const Session& session);

}  // namespace vintar
