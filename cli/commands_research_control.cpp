// `vintar research control`.
#include "cli/commands.h"

namespace vintar::cli {

void AddResearchControlCommand(CLI::App& /*research*/, Context& /*ctx*/, Action& /*action*/) {}

}  // namespace vintar::cli
