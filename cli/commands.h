// Registration of the command groups of the `vintar` program. Each group
// adds its subcommands to the app; the chosen one stores its action, which
// main runs after the options are parsed and the session has started.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

#include "cli/cli_support.h"

namespace vintar::cli {

using Action = std::function<int()>;

void AddParseCommands(CLI::App& app, Context& ctx, Action& action);
void AddProjectCommands(CLI::App& app, Context& ctx, Action& action);
void AddPrefsCommands(CLI::App& app, Context& ctx, Action& action);
void AddChartCommands(CLI::App& app, Context& ctx, Action& action);
void AddRectifyCommands(CLI::App& app, Context& ctx, Action& action);
void AddPlaceCommands(CLI::App& app, Context& ctx, Action& action);
void AddExchangeCommands(CLI::App& app, Context& ctx, Action& action);
void AddAtlasCommands(CLI::App& app, Context& ctx, Action& action);
void AddRecordCommands(CLI::App& app, Context& ctx, Action& action);
void AddResearchCommands(CLI::App& app, Context& ctx, Action& action);
// The subcommands of `vintar research` beyond points, tabulate and export.
void AddResearchCriteriaCommand(CLI::App& research, Context& ctx, Action& action);
void AddResearchSelectCommand(CLI::App& research, Context& ctx, Action& action);
void AddResearchControlCommand(CLI::App& research, Context& ctx, Action& action);
// The subcommands of `vintar rectify`, by module.
void AddRectifyGraphCommands(CLI::App& rectify, Context& ctx, Action& action);
void AddRectifySearchCommands(CLI::App& rectify, Context& ctx, Action& action);
void AddRectifyAutoCommands(CLI::App& rectify, Context& ctx, Action& action);
void AddRectifyValidateCommand(CLI::App& rectify, Context& ctx, Action& action);
// `vintar group`: search and report here; strips draw, in cli/output/.
void AddGroupCommands(CLI::App& app, Context& ctx, Action& action);
void AddGroupStripsCommand(CLI::App& group, Context& ctx, Action& action);
void AddGroupReportCommand(CLI::App& group, Context& ctx, Action& action);
// `vintar report NAME ...`: any printed report to PDF (cli/output/).
void AddReportCommands(CLI::App& app, Context& ctx, Action& action);
// Its group reports, "group-search" and "group-display" (cli/output/).
void AddGroupReportCommands(CLI::App& report, Context& ctx, Action& action);
// The File menu's operations under `vintar project` (new, merge, split, sort, title, delete).
void AddProjectOpsCommands(CLI::App& project, Context& ctx, Action& action);

}  // namespace vintar::cli
