// The dynamic search as the command line runs it, shared by `vintar
// rectify search` and `vintar report dynamic`.
#pragma once

#include <string>

#include "cli/cli_support.h"
#include "rectify/search.h"

namespace vintar::cli {

struct DynamicSearchRun {
  int Type = 0;             // the dynamic type searched
  std::string Time;         // the trial birth time (Latin-1)
  std::string OptionsFile;  // a named options file, or empty
  std::string From, To;     // the search window; empty: the defaults, filled in
  std::string OptionsUsed;  // the options file read
};

// The options (the file named, else the search screen's own, else the
// shipped defaults), the trial chart cast at Time from the project's natal
// details, the search over From to To, and each hit scored against the
// nearest event. False after the message.
bool RunDynamicSearchCommand(Context& ctx, SearchState& state, DynamicSearchRun& run);

}  // namespace vintar::cli
