// `vintar rectify ...`: the rectification jobs, one subcommand each.
#include "cli/commands.h"

namespace vintar::cli {

void AddRectifyCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* rectify = app.add_subcommand("rectify", "Rectification: event graphs, peaks, angles, searches, Auto Rectify");
  rectify->require_subcommand(1);
  AddRectifyGraphCommands(*rectify, ctx, action);
  AddRectifySearchCommands(*rectify, ctx, action);
  AddRectifyAutoCommands(*rectify, ctx, action);
  AddRectifyValidateCommand(*rectify, ctx, action);
}

}  // namespace vintar::cli
