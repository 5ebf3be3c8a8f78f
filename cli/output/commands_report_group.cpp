// `vintar report group-search|group-display PROJECT.dat ... --out FILE.pdf`.
#include "cli/commands.h"

namespace vintar::cli {

void AddGroupReportCommands(CLI::App&, Context&, Action&) {}

}  // namespace vintar::cli
