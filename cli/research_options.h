// The options that name a tabulation and a criteria list on the command
// line, shared by `vintar research` and `vintar report`: the points (by
// name, parts, almutens, a point list and a transformation), the data
// type, division and its settings, the display style; and the criteria
// of a search, from a .vcr file or from ordered --test/--pair words.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "research/criteria.h"
#include "research/points.h"
#include "research/tabulate.h"

namespace vintar::cli {

struct PointArgs {
  std::string list;                 // --points FILE.vpt
  std::vector<std::string> points;  // --point NAME
  std::vector<std::string> parts;   // --part NAME
  std::vector<std::string> almutens;
  std::string transform;
  std::string partsFile, almutenFile;
};

// --point, --part, --almuten, --transform, --parts-file, --almuten-file.
void AddPointOptions(CLI::App* cmd, PointArgs& a);

// Loads the point list, the parts and almuten files it names (or the
// command gives, else the shipped ones), then adds the named points to
// state.Selected. False after a message when a name is unknown.
bool ComposePoints(Context& ctx, ResearchState& state, const PointArgs& a);

struct TabArgs {
  std::string project;
  PointArgs points;
  int dataType = 0;
  int division = -1;
  double harmonic = 1;
  int cells = 12;
  std::string anchor;
  double orb = 0;
  std::string rulers = "new";
  int inexact = 0;
  int style = 0;
  std::string out;
};

// The project and every option of a tabulation. `cellsName` names the
// option of the user-defined divisions' count: "--cells" for tabulate and
// export, "--divisions" for filter, whose --cells is the block.
void AddTabOptions(CLI::App* cmd, TabArgs& a, const std::string& cellsName = "--cells");

// The run's parameters from the arguments, with the tabulation screen's
// checks. False after a message when the run must not start.
bool TabParams(Context& ctx, TabArgs& a, ResearchState& state, TabulateParams& p);

// One word of a criteria or selection list, in the order given (defined
// with its parser in commands_research_criteria.cpp).
struct OrderedTerm {
  std::string Kind;
  std::string Value;
  int Operator = 0;
  bool Negate = false;
  int Level = 0;
};
bool ParseOrderedTerms(Context& ctx, const std::vector<std::string>& words, const std::set<std::string>& termKinds,
                       std::string& project, std::vector<OrderedTerm>& terms);
void NoteGlobalFlags(Context& ctx, const std::vector<std::string>& words);
// Makes `cmd` a command of ordered words: what CLI11 does not parse lands in
// `words` in the order given, the global flags among them are noted, and
// `run` becomes the action.
void TakeOrderedWords(CLI::App* cmd, Context& ctx, Action& action, std::vector<std::string>& words,
                      std::function<int()> run);
// After a criteria search or a selection: the failures disabled and saved,
// or the passes written as a new project; false after a message.
bool ApplyResultActions(Context& ctx, std::vector<int16_t>& flags, bool disable, const std::string& savePassed,
                        nlohmann::json& body);
// A new project's path must not be the project searched.
bool CheckNewProjectPath(Context& ctx, const std::string& out, const std::string& project);

// The criteria list of a search: read from `criteriaFile`, or built from
// the --test and --pair terms (with the shipped parts and almutens), then
// checked. Both at once, or neither, is refused. False after a message.
bool ComposeCriteria(Context& ctx, ResearchState& state, const std::string& criteriaFile,
                     const std::vector<OrderedTerm>& terms, CriteriaList& list);

}  // namespace vintar::cli
