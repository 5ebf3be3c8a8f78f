// `vintar research control`: a control project, always written as a new file.
//
//   vintar research control PROJECT.dat OUT.dat [options]   from a base project
//   vintar research control --independent OUT.dat --count N [options]
//
// The options are those of the Control Data Generator screen: --dates
// random|regular with --from and --to, --replicate years,daymonth,time,place,
// --shift N with --unit, --latitudes A B and --longitudes A B (east and
// south negative), --seed N for a run that can be repeated (otherwise the
// clock's digits seed it), and --shuffle for a shuffled control group of the
// base project. The base project is only read; OUT must not exist. JSON:
// written, output, seed, title, kind, notepad.
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/parse.h"
#include "research/control.h"

namespace vintar::cli {
namespace {

struct ControlArgs {
  std::vector<std::string> paths;
  bool independent = false;
  bool shuffle = false;
  std::string count;
  std::string dates = "random";
  std::string from, to;
  std::string replicate;
  std::string shift;
  std::string unit = "days";
  std::vector<std::string> latitudes, longitudes;
  uint64_t seed = 0;
  bool seedGiven = false;
};

int Usage(const std::string& text) {
  std::cerr << text << "\n";
  return kExitUsage;
}

// Fills the options from the arguments; a usage error text when they do not fit.
std::string ReadArgs(const ControlArgs& a, ControlOptions& o) {
  if (a.independent && a.paths.size() != 1) return "--independent takes one path: the control project to write";
  if (!a.independent && a.paths.size() != 2) return "Give the base project and the control project to write";
  const bool base = !a.independent;
  if (a.shuffle && !base) return "--shuffle needs a base project";
  if (base && !a.count.empty()) return "--count is for --independent data; a base project keeps its record count";
  if (!base && a.count.empty()) return "--independent needs --count N";
  if (!base && (!a.replicate.empty() || !a.shift.empty()))
    return "--replicate and --shift work on a base project, not on --independent data";
  if (!a.shift.empty() && !a.replicate.empty()) return "--shift keeps everything else: leave out --replicate";

  o.FromProject = base;
  o.Shuffle = a.shuffle;
  o.Number = a.count;
  o.RandomDates = EqualsIgnoreCase(a.dates, "regular") ? 2 : 1;
  o.StartDate = FromArg(a.from);
  o.EndDate = FromArg(a.to);
  for (const std::string& item : SplitOnText(a.replicate, ",", 8)) {
    const std::string word = Trim(item);
    static constexpr const char* kWords[] = {"years", "daymonth", "time", "place"};
    int k = 0;
    while (k < 4 && !EqualsIgnoreCase(word, kWords[k])) ++k;
    if (k == 4) return "--replicate takes years, daymonth, time and place, not \"" + word + "\"";
    o.Replicate[k] = true;
  }
  o.Shift = !a.shift.empty();
  o.Period = a.shift;
  for (int k = 0; k < 4; ++k)
    if (EqualsIgnoreCase(a.unit, kShiftUnitNames[k])) o.Unit = static_cast<ShiftUnit>(k);
  if (a.latitudes.size() == 2) o.Latitude1 = FromArg(a.latitudes[0]), o.Latitude2 = FromArg(a.latitudes[1]);
  if (a.longitudes.size() == 2) o.Longitude1 = FromArg(a.longitudes[0]), o.Longitude2 = FromArg(a.longitudes[1]);
  if (a.seedGiven) o.Seed = a.seed;
  return "";
}

int RunControl(Context& ctx, const ControlArgs& a) {
  ControlOptions o;
  const std::string usage = ReadArgs(a, o);
  if (!usage.empty()) return Usage(usage);
  if (o.FromProject && !OpenProjectForCommand(ctx, a.paths[0])) return kExitFailed;
  const std::string& out = a.paths.back();
  ControlProject project;
  if (!GenerateControlData(ctx.session, o, out, &project)) {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  const std::string notepad = ReplaceExtension(RTrim(out), ".txt");
  if (ctx.json) {
    ctx.PrintJson({{"failed", false},
                   {"written", project.Header.RecordCount},
                   {"output", JPath(out)},
                   {"seed", project.Seed},
                   {"title", J(project.Header.Title)},
                   {"kind", J(project.Header.Name)},
                   {"notepad", JPath(notepad)}});
  } else {
    std::cout << "Wrote " << project.Header.RecordCount << " records to " << DisplayText(out) << " (seed "
              << project.Seed << ")\n";
  }
  return kExitOk;
}

}  // namespace

void AddResearchControlCommand(CLI::App& research, Context& ctx, Action& action) {
  auto a = std::make_shared<ControlArgs>();
  auto* cmd = research.add_subcommand("control", "Write a control project: random, regular, replicated, shifted "
                                                 "or shuffled data");
  cmd->add_option("paths", a->paths, "PROJECT.dat OUT.dat, or OUT.dat alone with --independent")->expected(1, 2);
  cmd->add_flag("--independent", a->independent, "Wholly random data, no base project");
  cmd->add_option("--count", a->count, "Number of records (independent data)");
  cmd->add_option("--dates", a->dates, "Date intervals: random or regular")
      ->check(CLI::IsMember({"random", "regular"}, CLI::ignore_case));
  cmd->add_option("--from", a->from, "First date of the range (\"1900\", \"1 Jan 1950\")");
  cmd->add_option("--to", a->to, "Last date of the range");
  cmd->add_option("--replicate", a->replicate, "Keep these of each base record: years,daymonth,time,place");
  cmd->add_option("--shift", a->shift, "Shift the base project's moments by N units (keeps all else)");
  cmd->add_option("--unit", a->unit, "Unit of the shift: days, hours, minutes or seconds")
      ->check(CLI::IsMember({"days", "hours", "minutes", "seconds"}, CLI::ignore_case));
  cmd->add_option("--latitudes", a->latitudes, "Latitude range, south negative: 50S00 50N00")->expected(2);
  cmd->add_option("--longitudes", a->longitudes, "Longitude range, east negative: 180E00 180W00")->expected(2);
  auto* seed = cmd->add_option("--seed", a->seed, "Seed of the generator, for a run that can be repeated");
  cmd->add_flag("--shuffle", a->shuffle, "Deal the base project's dates, times and places out afresh");
  cmd->callback([&ctx, &action, a, seed] {
    a->seedGiven = seed->count() > 0;
    action = [&ctx, a] { return RunControl(ctx, *a); };
  });
}

}  // namespace vintar::cli
