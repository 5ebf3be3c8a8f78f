// A build without the drawing layer: the commands that draw are there, and
// say so when used.
#include <iostream>

#include "cli/commands.h"

namespace vintar::cli {

namespace {

void Unavailable(CLI::App& command, Action& action) {
  command.allow_extras();
  command.callback([&action] {
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
