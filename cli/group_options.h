// The options of a group pattern search on the command line, shared by
// `vintar group search` and `vintar report group-search`.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

#include "cli/cli_support.h"
#include "groups/group_search.h"
#include "groups/strips.h"

namespace vintar::cli {

struct GroupSearchArgs {
  std::string project;
  std::string harmonics = "1..16";
  std::string points = "default";
  float orb = 8.0f;
  std::string position;
  int min = 3;
  std::string mode = "combination";
  bool samePoint = false;
  int match = 0;
};

void AddGroupSearchOptions(CLI::App* cmd, GroupSearchArgs& a);

// Opens the project and runs the search (and the detail of --match) with
// the search screen's checks. On failure returns false with `exitCode` set,
// after the message.
bool RunGroupSearchArgs(Context& ctx, const GroupSearchArgs& a, GroupSearchState& state, GroupSearchParams& p,
                        int& exitCode);

// The strips' options: --harmonic, --records, --points, --midpoints-of,
// --highlight.
void AddStripOptions(CLI::App* cmd, StripRequest& request);

// The strips the options ask for, with their positions, for an open
// project: kExitOk, a usage error (kExitUsage) or a failure already told
// (kExitFailed).
int StripsForCommand(Context& ctx, StripRequest request, StripTable& table);

}  // namespace vintar::cli
