// Placeholder: the rectify search commands are being written.
#include "cli/commands.h"

namespace vintar::cli {

void AddRectifySearchCommands(CLI::App&, Context&, Action&) {}

}  // namespace vintar::cli
