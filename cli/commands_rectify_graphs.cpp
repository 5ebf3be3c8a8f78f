// Placeholder: the rectify graphs commands are being written.
#include "cli/commands.h"

namespace vintar::cli {

void AddRectifyGraphCommands(CLI::App&, Context&, Action&) {}

}  // namespace vintar::cli
