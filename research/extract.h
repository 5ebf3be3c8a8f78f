// Filtering to a new project: the charts behind a block of cells of a
// tabulation written as a new project on disk, the open project untouched.
// The records go out in the version 2 project format, once for each column
// of the block they match; the companion .nat carries the open project's
// header with the new title and count. Both files are written whole or not
// at all. Checked by tests/research/extract_test.cpp on a hand-counted
// project.
#pragma once

#include <string>
#include <vector>

#include "core/progress.h"
#include "core/session.h"
#include "research/tabulate.h"

namespace vintar {

// What the screen "Filter Charts from Current Project" shows: the chosen
// columns ("Selected Points"), the chosen cells ("Selected Divisions") and
// the preset title: the project's file stem in upper case and
// " - Filtered Records".
struct ExtractScreen {
  std::vector<std::string> Points;
  std::vector<std::string> Divisions;
  std::string Title;
};
ExtractScreen ExtractScreenFor(const Session& session, const TabulationRun& run, const FilterBlock& block);

struct FilterResult {
  bool Done = false;
  int Written = 0;  // FilteredCount
  std::string Path;
};

// Runs the tabulation of `params` in filter mode over the block and writes
// the charts to `path` (a .dat; the .nat beside it). Refuses, with a
// message and nothing written, the open project's own files and, unless
// `overwrite`, files that exist. Ends with the "Filtering Results" box.
FilterResult FilterToProject(Session& session, ResearchState& state, const TabulateParams& params,
                             const FilterBlock& block, const std::string& path, const std::string& title,
                             bool overwrite, Progress* progress = nullptr);

}  // namespace vintar
