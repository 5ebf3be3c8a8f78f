// `vintar group report PROJECT.dat --type family --out REPORT.rtf`.
#include "cli/commands.h"

namespace vintar::cli {

void AddGroupReportCommand(CLI::App&, Context&, Action&) {}

}  // namespace vintar::cli
