// `vintar rectify search`: the dynamic hits of one trial birth time, each
// matched to the nearest event, with the share of hits that events confirm.
#include <cmath>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "core/calendar.h"
#include "calc/chart.h"
#include "cli/commands.h"
#include "cli/rectify_options.h"
#include "core/parse.h"
#include "core/text.h"
#include "rectify/search.h"

namespace vintar::cli {
namespace {

struct SearchArgs {
  std::string path, time, from, to, options;
  int type = 0;
};

std::string DateText(const Session& s, double jd) {
  float day = 0;
  int month = 1, year = 2000;
  RevJul(jd, day, month, year);
  return FormatDate(s, static_cast<int>(day), month, year);
}

// "Square" for a = 3 and the like: the vocabulary's name of a * 30 degrees.
std::string AspectText(const Session& s, int a) {
  for (int i = 1; i < static_cast<int>(s.vocab.AspectName.size()) && i < static_cast<int>(s.vocab.AspectAngle.size());
       ++i)
    if (std::fabs(s.vocab.AspectAngle[i] - a * 30.0) < 1e-9) return s.vocab.AspectName[i];
  return std::to_string(a * 30);
}

std::string PointText(const Session& s, int point) {
  return point >= 1 && point < static_cast<int>(s.vocab.PointName.size()) ? s.vocab.PointName[point]
                                                                           : std::to_string(point);
}

const char* StatusText(int status) {
  switch (status) {
    case kHitWithinRange: return "within range";
    case kHitWithinOrb: return "within orb";
    default: return "no event";
  }
}

int RunSearch(Context& ctx, const SearchArgs& a) {
  Session& s = ctx.session;
  auto fail = [&ctx] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  if (!OpenProjectForCommand(ctx, a.path)) return kExitFailed;
  SearchState state;
  DynamicSearchRun run;
  run.Type = a.type;
  run.Time = FromArg(a.time);
  run.OptionsFile = a.options;
  run.From = FromArg(a.from);
  run.To = FromArg(a.to);
  if (!RunDynamicSearchCommand(ctx, state, run)) return fail();
  const std::string& optionsPath = run.OptionsUsed;
  const std::string& from = run.From;
  const std::string& to = run.To;
  const SearchTotalsResult totals = SearchTotals(state);

  if (ctx.json) {
    nlohmann::json hits = nlohmann::json::array();
    for (int k = 1; k <= state.HitCount(); ++k) {
      const DynamicHit& hit = state.Hits[state.HitOrder[k]];
      nlohmann::json j = {{"dynamicPoint", hit.DynamicPoint},
                          {"dynamicPointName", J(PointText(s, hit.DynamicPoint))},
                          {"aspect", hit.Aspect},
                          {"aspectName", J(AspectText(s, hit.Aspect))},
                          {"radixPoint", hit.RadixPoint},
                          {"radixPointName", J(PointText(s, hit.RadixPoint))},
                          {"targetLon", hit.TargetLon},
                          {"firstDate", hit.FirstDate},
                          {"lastDate", hit.LastDate},
                          {"firstDateText", J(DateText(s, hit.FirstDate))},
                          {"lastDateText", J(DateText(s, hit.LastDate))},
                          {"sign", hit.Sign},
                          {"houses", {hit.Keyword1, hit.Keyword2, hit.Keyword3}},
                          {"status", hit.Status},
                          {"nearestEvent", hit.NearestEvent}};
      if (hit.NearestEvent > 0) j["nearestEventName"] = J(s.project.Events[hit.NearestEvent].Description);
      hits.push_back(j);
    }
    ctx.PrintJson({{"failed", false},
                   {"type", a.type},
                   {"options", JPath(optionsPath)},
                   {"from", J(from)},
                   {"to", J(to)},
                   {"cancelled", state.Cancelled},
                   {"hits", hits},
                   {"total", totals.Total},
                   {"matched", totals.Matched},
                   {"ratio", totals.Ratio}});
    return kExitOk;
  }

  std::cout << ForTerminal(s.vocab.DynamicMethodName[a.type]) << " from " << ForTerminal(from) << " to "
            << ForTerminal(to) << " (options " << DisplayText(optionsPath) << ")\n\n";
  for (int k = 1; k <= state.HitCount(); ++k) {
    const DynamicHit& hit = state.Hits[state.HitOrder[k]];
    std::ostringstream row;
    row << std::left << std::setw(12) << DateText(s, hit.FirstDate) << " - " << std::setw(12)
        << DateText(s, hit.LastDate) << "  " << std::setw(10) << PointText(s, hit.DynamicPoint) << " "
        << std::setw(12) << AspectText(s, hit.Aspect) << " " << std::setw(10) << PointText(s, hit.RadixPoint) << " "
        << std::setw(13) << StatusText(hit.Status);
    if (hit.NearestEvent > 0)
      row << "#" << hit.NearestEvent << " " << s.project.Events[hit.NearestEvent].Description;
    std::cout << ForTerminal(row.str()) << "\n";
  }
  std::cout << "\nHits: " << totals.Total << "  Matched: " << totals.Matched
            << "  Score: " << ScorePercent(totals.Ratio) << (state.Cancelled ? "  (stopped)" : "") << "\n";
  return kExitOk;
}

}  // namespace

bool RunDynamicSearchCommand(Context& ctx, SearchState& state, DynamicSearchRun& run) {
  Session& s = ctx.session;
  // The options: the file named, else the search screen's own, else the
  // shipped defaults.
  if (!run.OptionsFile.empty()) {
    run.OptionsUsed = run.OptionsFile;
    if (!LoadDynOptions(state.Options, run.OptionsUsed)) {
      s.ShowMessage("Unable to open rectification options file: " + run.OptionsUsed, kIconExclamation, "Vintar");
      return false;
    }
  } else {
    run.OptionsUsed = LoadSearchScreenOptions(s, state.Options);
  }
  const ProjectHeader& h = s.project.Header;
  if (!CalcChart(s, 1, h.Date, run.Time, h.ZoneTime, h.Longitude, h.Latitude, h.Name, h.Place)) return false;
  if (run.From.empty()) run.From = DefaultSearchStart(s);
  if (run.To.empty()) run.To = DefaultSearchEnd(s);
  TerminalProgress progress(ctx);
  progress.Caption("Searching " + s.vocab.DynamicMethodName[run.Type]);
  if (!DynamicSearchNew(s, state, run.Type, run.From, run.To, &progress)) {
    TellEmptySearchWindow(s, state, run.From, run.To);
    return false;
  }
  for (int i = 1; i <= state.HitCount(); ++i) ScoreHit(s, state, state.Hits[i], NearestEvent(s, state.Hits[i]), true);
  return true;
}

void AddRectifySearchCommands(CLI::App& rectify, Context& ctx, Action& action) {
  auto a = std::make_shared<SearchArgs>();
  auto* search = rectify.add_subcommand("search", "Search the dynamic hits of a trial birth time and score them");
  search->add_option("project", a->path, "The project's .dat file")->required();
  search->add_option("--time", a->time, "Trial birth time, local, e.g. \"11:30 am\"")->required();
  search->add_option("--type", a->type, "0 transits, 1 secondary, 2 tertiary, 3 solar arc")->check(CLI::Range(0, 3));
  search->add_option("--from", a->from, "Start of the search (default: two years before the first event)");
  search->add_option("--to", a->to, "End of the search (default: two years after the last event)");
  search->add_option("--options", a->options, "Options file (default: dynopts.fil, else the shipped defopts.fil)");
  search->callback([&ctx, &action, a] { action = [&ctx, a] { return RunSearch(ctx, *a); }; });
}

}  // namespace vintar::cli
