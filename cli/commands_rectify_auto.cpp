// `vintar rectify viability` and `vintar rectify auto`: whether the events
// are worth rectifying from, and the automatic ranking of birth times.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "rectify/viability.h"

namespace vintar::cli {
namespace {

int RunViability(Context& ctx, const std::string& path) {
  if (!OpenProjectForCommand(ctx, path)) return kExitFailed;
  std::string text;
  bool problems = false;
  ViabilityCounts n = ViabilityReport(ctx.session, text, problems);
  if (ctx.json) {
    nlohmann::json bins = nlohmann::json::array();
    for (int b = 1; b <= 4; ++b) bins.push_back(n.Bins[b]);
    ctx.PrintJson({{"failed", false},
                   {"problems", problems},
                   {"total", n.Total},
                   {"disabled", n.Disabled},
                   {"invalid", n.Invalid},
                   {"intervalWarnings", n.IntervalWarnings},
                   {"usable", n.Usable},
                   {"bins", bins},
                   {"text", J(text)}});
  } else {
    std::string shown;
    for (char c : text)
      if (c != '\r') shown += c;
    std::cout << ForTerminal(shown);
  }
  return kExitOk;
}

}  // namespace

void AddRectifyAutoCommands(CLI::App& rectify, Context& ctx, Action& action) {
  auto path = std::make_shared<std::string>();
  auto* viability = rectify.add_subcommand("viability", "Print the rectification viability report of a project");
  viability->add_option("project", *path, "The project's .dat file")->required();
  viability->callback([&ctx, &action, path] { action = [&ctx, path] { return RunViability(ctx, *path); }; });
}

}  // namespace vintar::cli
