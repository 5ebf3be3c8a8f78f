// `vintar research criteria`.
#include "cli/commands.h"

namespace vintar::cli {

void AddResearchCriteriaCommand(CLI::App& /*research*/, Context& /*ctx*/, Action& /*action*/) {}

}  // namespace vintar::cli
