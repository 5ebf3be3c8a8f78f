// `vintar rectify validate`: how often Auto Rectify finds a birth time that
// is known, on seeded synthetic lives or on a folder of real projects.
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "cli/commands.h"
#include "rectify/validate.h"

namespace vintar::cli {
namespace {

struct ValidateArgs {
  int lives = 20;
  uint64_t seed = 1;
  int events = 30;
  std::string mix = "slow";
  double windowHours = 6.0;
  std::string corpus;
  int threads = 0;
};

double Percent(int count, int of) { return of > 0 ? 100.0 * count / of : 0.0; }

nlohmann::json Share(int count, int of) { return {{"count", count}, {"percent", Percent(count, of)}}; }

nlohmann::json LifeJson(const ValidateLife& l) {
  auto ifTimed = [&](const nlohmann::json& v) { return l.GotTime ? v : nlohmann::json(nullptr); };
  return {{"name", JPath(l.Name)},
          {"date", J(l.Date)},
          {"trueTime", J(l.TrueTime)},
          {"trueHours", l.TrueHours},
          {"window", {J(l.Earliest), J(l.Latest)}},
          {"bestTime", ifTimed(J(l.BestTime))},
          {"bestHours", ifTimed(l.BestHours)},
          {"errorMinutes", ifTimed(l.ErrorMinutes)},
          {"events", l.Events},
          {"noAngles", l.NoAngles},
          {"failed", l.Failed},
          {"message", J(l.Message)}};
}

std::string Minutes(double m) {
  std::ostringstream t;
  t << std::fixed << std::setprecision(1) << m;
  return t.str();
}

std::string Text(const ValidateArgs& a, const ValidateReport& r) {
  std::ostringstream t;
  if (a.corpus.empty())
    t << "Auto Rectify validation: synthetic lives, seed " << a.seed << ", " << a.events << " events each ("
      << (a.mix == "crossings" ? "slow transits and Mars" : "slow transits") << "), " << a.windowHours
      << "-hour window\n\n";
  else
    t << "Auto Rectify validation: the projects of " << DisplayText(a.corpus) << ", " << a.windowHours
      << "-hour window, seed " << a.seed << "\n\n";

  t << std::left << std::setw(18) << "Life" << std::setw(14) << "Date" << std::setw(11) << "True"
    << std::setw(22) << "Window" << std::setw(13) << "Best" << std::right << std::setw(9) << "Error" << std::setw(8)
    << "Events" << "\n";
  for (const ValidateLife& l : r.Lives) {
    std::string best = l.GotTime ? l.BestTime : l.NoAngles ? "no angles" : "failed";
    std::string error = l.GotTime ? Minutes(l.ErrorMinutes) + "m" : "";
    t << std::left << std::setw(18) << DisplayText(l.Name).substr(0, 17) << std::setw(14) << ForTerminal(l.Date)
      << std::setw(11) << ForTerminal(l.TrueTime) << std::setw(22) << ForTerminal(l.Earliest + " - " + l.Latest)
      << std::setw(13) << ForTerminal(best) << std::right << std::setw(9) << error << std::setw(8) << l.Events
      << "\n";
    if (l.Failed && !l.Message.empty()) t << "    " << ForTerminal(l.Message) << "\n";
  }

  const int n = static_cast<int>(r.Lives.size());
  auto share = [&](const char* label, int count) {
    t << std::left << std::setw(22) << label << std::right << std::setw(5) << count << "  (" << std::fixed
      << std::setprecision(1) << Percent(count, n) << "%)\n";
  };
  t << "\nLives run:            " << std::setw(5) << n << "\n";
  share("Within 5 minutes:", r.Within5);
  share("Within 15 minutes:", r.Within15);
  share("Within 60 minutes:", r.Within60);
  if (r.Timed > 0) {
    t << "Median error:         " << Minutes(r.MedianMinutes) << " minutes (" << r.Timed
      << " lives got a time)\n";
    t << "90th percentile:      " << Minutes(r.Percentile90Minutes) << " minutes\n";
  }
  t << "No angles found:      " << std::setw(5) << r.NoAngles << "\n";
  if (r.Failed > 0) t << "Could not be run:     " << std::setw(5) << r.Failed << "\n";
  if (!r.Skipped.empty()) t << "Skipped (no known time): " << r.Skipped.size() << "\n";
  t << "Time taken:           " << std::fixed << std::setprecision(1) << r.Seconds << " s\n";
  if (r.Cancelled) t << "\nStopped by the user: the figures cover the lives finished.\n";
  return t.str();
}

int RunValidate(Context& ctx, const ValidateArgs& a) {
  ValidateOptions o;
  o.Lives = a.lives;
  o.Seed = a.seed;
  o.Events = a.events;
  o.Mix = a.mix == "crossings" ? EventMix::Crossings : EventMix::Slow;
  o.WindowHours = a.windowHours;
  o.Corpus = a.corpus;
  o.Threads = a.threads;

  ValidateReport r;
  {
    TerminalProgress progress(ctx);
    progress.Caption("Validate");
    r = RunValidation(ctx.session, o, &progress);
  }
  if (!r.Ok) ctx.session.ShowMessage(r.Error, kIconStop, "Validate");

  if (ctx.json) {
    const int n = static_cast<int>(r.Lives.size());
    nlohmann::json lives = nlohmann::json::array();
    for (const ValidateLife& l : r.Lives) lives.push_back(LifeJson(l));
    nlohmann::json skipped = nlohmann::json::array();
    for (const std::string& name : r.Skipped) skipped.push_back(JPath(name));
    auto ifTimed = [&](double v) { return r.Timed > 0 ? nlohmann::json(v) : nlohmann::json(nullptr); };
    ctx.PrintJson({{"failed", !r.Ok},
                   {"cancelled", r.Cancelled},
                   {"mode", a.corpus.empty() ? "synthetic" : "corpus"},
                   {"seed", a.seed},
                   {"eventsPerLife", a.events},
                   {"mix", a.mix},
                   {"windowHours", a.windowHours},
                   {"livesRun", n},
                   {"within5", Share(r.Within5, n)},
                   {"within15", Share(r.Within15, n)},
                   {"within60", Share(r.Within60, n)},
                   {"timed", r.Timed},
                   {"medianMinutes", ifTimed(r.MedianMinutes)},
                   {"percentile90Minutes", ifTimed(r.Percentile90Minutes)},
                   {"noAngles", r.NoAngles},
                   {"failedLives", r.Failed},
                   {"skipped", skipped},
                   {"seconds", r.Seconds},
                   {"lives", lives}});
  } else if (r.Ok) {
    std::cout << Text(a, r);
  }
  return r.Ok && !r.Cancelled ? kExitOk : kExitFailed;
}

}  // namespace

void AddRectifyValidateCommand(CLI::App& rectify, Context& ctx, Action& action) {
  auto a = std::make_shared<ValidateArgs>();
  auto* cmd = rectify.add_subcommand(
      "validate",
      "Measure how often Auto Rectify finds a known birth time. Synthetic lives have events placed exactly "
      "where transits hit the true angles; real data behaves very differently from synthetic lives, so use "
      "--corpus on projects of known time to see what to expect in practice");
  cmd->add_option("--lives", a->lives, "Synthetic lives to run (default 20)")->check(CLI::Range(1, 100000));
  cmd->add_option("--seed", a->seed, "Seed of the synthetic lives and of the hidden windows (default 1)");
  cmd->add_option("--events", a->events, "Events per synthetic life (default 30)")->check(CLI::Range(1, 1000));
  cmd->add_option("--mix", a->mix, "Transits that date the events: slow (Jupiter to Pluto) or crossings "
                                   "(half of them Mars); default slow")
      ->check(CLI::IsMember({"slow", "crossings"}));
  cmd->add_option("--window-hours", a->windowHours, "Hours of the window that hides the birth time (default 6)")
      ->check(CLI::Range(1.0 / 60.0, 24.0));
  cmd->add_option("--corpus", a->corpus,
                  "A folder of projects (.dat with .nat) to use instead of synthetic lives: each one with a known "
                  "birth time is run with that time hidden; --lives does not apply");
  cmd->add_option("--threads", a->threads, "Threads for Auto Rectify's searches (0: one per core)")
      ->check(CLI::Range(0, 256));
  cmd->callback([&ctx, &action, a] { action = [&ctx, a] { return RunValidate(ctx, *a); }; });
}

}  // namespace vintar::cli
