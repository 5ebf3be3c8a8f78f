// `vintar rectify viability` and `vintar rectify auto`: whether the events
// are worth rectifying from, and the automatic ranking of birth times.
#include <iostream>
#include <memory>

#include <iomanip>
#include <sstream>

#include "cli/commands.h"
#include "core/parse.h"
#include "rectify/auto_rectify.h"
#include "rectify/graphs.h"
#include "rectify/search.h"
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

std::string Range(const Session& s, const std::array<float, 2>& r) {
  return ZodiacPosition(s, r[0], false) + " to " + ZodiacPosition(s, r[1], false);
}

int RunAuto(Context& ctx, const std::string& path, int threads) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, path)) return kExitFailed;
  Rectification rect;
  LoadGraphSettings(s, rect.graphs);
  TerminalProgress progress(ctx);
  progress.Caption("Auto Rectify");
  AutoRectifyOptions options;
  options.Threads = threads;
  AutoRectifyResult r = RunAutoRectify(s, rect, kAutoFromEvents, &progress, options);

  if (ctx.json) {
    nlohmann::json rows = nlohmann::json::array();
    for (const auto& row : r.Rows)
      rows.push_back({{"time", row.Time},
                      {"timeText", J(row.TimeText)},
                      {"plusMinusMinutes", row.PlusMinusMinutes},
                      {"ascendant", {row.Asc[0], row.Asc[1]}},
                      {"midheaven", {row.MC[0], row.MC[1]}},
                      {"transits", row.Transits},
                      {"secondaryProgressions", row.Progressions},
                      {"solarArcs", row.SolarArcs},
                      {"overall", row.Overall}});
    nlohmann::json out{{"failed", !r.Finished},
                       {"cancelled", r.Cancelled},
                       {"status", J(r.Status)},
                       {"rows", rows},
                       {"ephemerisCalls", r.EphemerisCalls}};
    out["best"] = r.Rows.empty() ? nlohmann::json(nullptr) : nlohmann::json(r.Rows.front().Time);
    ctx.PrintJson(out);
  } else {
    std::ostringstream t;
    t << "Auto Rectify Report - " << s.project.Header.Title << "\n\n"
      << "Suggested Chart Times and Angles\n"
      << std::left << std::setw(23) << "Time" << std::setw(24) << "Ascendant" << std::setw(24) << "Midheaven"
      << std::right << std::setw(9) << "Transits" << std::setw(10) << "Sec.Progs" << std::setw(11) << "Solar Arcs"
      << std::setw(8) << "OverAll" << "\n";
    for (const auto& row : r.Rows) {
      std::string time = row.TimeText + " +/- " + std::to_string(row.PlusMinusMinutes) + " min";
      t << std::left << std::setw(23) << time << std::setw(24) << Range(s, row.Asc) << std::setw(24)
        << Range(s, row.MC) << std::right << std::setw(9) << ScorePercent(row.Transits) << std::setw(10)
        << ScorePercent(row.Progressions) << std::setw(11) << ScorePercent(row.SolarArcs) << std::setw(8)
        << ScorePercent(row.Overall) << "\n";
    }
    t << "\n" << r.Status << "\n";
    std::cout << ForTerminal(t.str());
  }
  return r.Finished ? kExitOk : kExitFailed;
}

}  // namespace

void AddRectifyAutoCommands(CLI::App& rectify, Context& ctx, Action& action) {
  auto path = std::make_shared<std::string>();
  auto* viability = rectify.add_subcommand("viability", "Print the rectification viability report of a project");
  viability->add_option("project", *path, "The project's .dat file")->required();
  viability->callback([&ctx, &action, path] { action = [&ctx, path] { return RunViability(ctx, *path); }; });

  auto autoPath = std::make_shared<std::string>();
  auto threads = std::make_shared<int>(0);
  auto* autoRun = rectify.add_subcommand("auto", "Run Auto Rectify and print the ranked birth times");
  autoRun->add_option("project", *autoPath, "The project's .dat file")->required();
  autoRun->add_option("--threads", *threads, "Threads for the candidates' searches (0: one per core)")
      ->check(CLI::Range(0, 256));
  autoRun->callback([&ctx, &action, autoPath, threads] {
    action = [&ctx, autoPath, threads] { return RunAuto(ctx, *autoPath, *threads); };
  });
}

}  // namespace vintar::cli
