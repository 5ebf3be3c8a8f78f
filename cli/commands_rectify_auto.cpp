// Placeholder: the rectify auto commands are being written.
#include "cli/commands.h"

namespace vintar::cli {

void AddRectifyAutoCommands(CLI::App&, Context&, Action&) {}

}  // namespace vintar::cli
