// A build without the drawing layer: the commands that draw are there, and
// say so when used.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"

namespace vintar::cli {

namespace {

void Unavailable(CLI::App& command, Action& action) {
  // Whatever follows is taken, so that the reason is what the user reads.
  auto rest = std::make_shared<std::vector<std::string>>();
  command.add_option("arguments", *rest)->expected(0, -1);
  command.allow_extras();
  command.fallthrough(false);
  command.callback([&action, rest] {
    action = [] {
      std::cerr << "This build of vintar has no drawing layer (built without Qt); reports and pictures are not available.\n";
      return kExitFailed;
    };
  });
}

}  // namespace

void AddReportCommands(CLI::App& app, Context&, Action& action) {
  Unavailable(*app.add_subcommand("report", "A printed report to PDF"), action);
}

void AddGroupStripsCommand(CLI::App& group, Context&, Action& action) {
  Unavailable(*group.add_subcommand("strips", "The charts as strips in a harmonic, to PNG, SVG or PDF"), action);
}

}  // namespace vintar::cli
