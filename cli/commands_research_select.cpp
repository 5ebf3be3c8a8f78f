// `vintar research select`.
#include "cli/commands.h"

namespace vintar::cli {

void AddResearchSelectCommand(CLI::App& /*research*/, Context& /*ctx*/, Action& /*action*/) {}

}  // namespace vintar::cli
