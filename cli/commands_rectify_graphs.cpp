// `vintar rectify graphs`, `vintar rectify peaks` and `vintar rectify angles`:
// the event graphs of a project, their peaks, and the candidate chart angles
// that the peaks give inside the project's time limits.
//
// All three build graphs 1 to 3 from the project's ".pla" settings (the
// defaults when it has none), as the graph screen does. Peaks are picked
// automatically on each of the three graphs; the merged list is that of two
// of them (graphs 1 and 2 unless --pair says otherwise) on their common
// harmonic, and when no row of it is common the three largest rows are made
// common, as Auto Rectify does. The angle search runs over that merged list.
#include <cmath>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>

#include "calc/astro.h"
#include "cli/commands.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"
#include "rectify/rectification.h"

namespace vintar::cli {
namespace {

struct GraphArgs {
  std::string path;
  std::vector<int> pair{1, 2};
  std::string from, to;
};

// Opens the project and builds graphs 1 to 3. Returns kExitOk when the
// graphs stand, otherwise the exit code (after the JSON, with --json).
int PrepareGraphs(Context& ctx, const std::string& path, Rectification& r) {
  Session& s = ctx.session;
  if (!OpenProjectForCommand(ctx, path)) return kExitFailed;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  if (ProjectTooLarge(s)) return fail();
  LoadGraphSettings(s, r.graphs);
  TerminalProgress progress(ctx);
  bool cancelled = false;
  BuildGraphs(s, r.graphs, cancelled, &progress);
  if (cancelled) {
    if (ctx.json) ctx.PrintJson({{"failed", true}, {"cancelled", true}});
    return kExitFailed;
  }
  return kExitOk;
}

std::string Fixed(double value, int decimals) {
  std::ostringstream out;
  out << std::fixed << std::setprecision(decimals) << value;
  return out.str();
}

std::string TimeText(const Session& s, double hours) {
  const long seconds = std::lround(Mod(hours, 24.0) * 3600.0) % 86400;
  return FormatTime(static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                    static_cast<int>(seconds % 60), s.prefs.AMPM != 0);
}

std::vector<int> SelectedPoints(const GraphState& graphs, int g) {
  std::vector<int> points;
  const auto& set = graphs.Selection[GraphCoordinate(graphs.Graph[g])][g];
  for (int p = 1; p <= kPoints; ++p)
    if (set[p]) points.push_back(p);
  return points;
}

std::string GraphHeading(const Session& s, const GraphState& graphs, int g) {
  const GraphRecord& r = graphs.Graph[g];
  std::string text = "Graph " + std::to_string(g) + ": " + s.vocab.CoordName[GraphCoordinate(r)] + " " +
                     s.vocab.DynamicMethodName[ClampInteger(r.DynamicType, 0, 3)];
  if (r.ProgressionMethod >= 1 && r.ProgressionMethod <= 3)
    text += " (" + s.vocab.ProgressionMethodName[r.ProgressionMethod] + ")";
  text += ", harmonic " + std::to_string(r.MasterHarmonic);
  return text;
}

// ---------------------------------------------------------------- graphs

int RunGraphs(Context& ctx, const GraphArgs& a) {
  Rectification r;
  if (int code = PrepareGraphs(ctx, a.path, r); code != kExitOk) return code;
  const Session& s = ctx.session;
  const GraphState& graphs = r.graphs;
  if (ctx.json) {
    nlohmann::json list = nlohmann::json::array();
    for (int g = 1; g <= kShownGraphs; ++g) {
      const GraphRecord& rec = graphs.Graph[g];
      nlohmann::json bars = nlohmann::json::array();
      for (int b = 0; b < kBars; ++b) bars.push_back(BarValue(graphs, g, b));
      list.push_back({{"graph", g},
                      {"coordinate", GraphCoordinate(rec)},
                      {"dynamicType", rec.DynamicType},
                      {"progressionMethod", rec.ProgressionMethod},
                      {"harmonic", rec.MasterHarmonic},
                      {"points", SelectedPoints(graphs, g)},
                      {"totalWeight", rec.TotalWeight},
                      {"maxHeight", rec.MaxHeight},
                      {"mean", rec.Mean},
                      {"sd", rec.SD},
                      {"quality", rec.Quality},
                      {"bars", bars}});
    }
    ctx.PrintJson({{"failed", false}, {"graphMaxHeight", graphs.GraphMaxHeight}, {"graphs", list}});
    return kExitOk;
  }
  for (int g = 1; g <= kShownGraphs; ++g) {
    const GraphRecord& rec = graphs.Graph[g];
    std::string points;
    for (int p : SelectedPoints(graphs, g)) points += " " + Trim(s.vocab.PointShort[p]);
    std::cout << ForTerminal(GraphHeading(s, graphs, g)) << "\n"
              << "  Points:" << ForTerminal(points) << "\n"
              << "  TotalWeight " << Fixed(rec.TotalWeight, 3) << "  MaxHeight " << Fixed(rec.MaxHeight, 3) << "  Mean "
              << Fixed(rec.Mean, 3) << "  SD " << Fixed(rec.SD, 3) << "  Quality " << Fixed(rec.Quality, 2) << "\n";
    const double barDeg = 360.0 / (rec.MasterHarmonic * kBars);
    for (int b = 0; b < kBars; b += 10) {
      std::cout << "  " << std::setw(7) << Fixed(b * barDeg, 2) << ":";
      for (int k = b; k < b + 10; ++k) std::cout << std::setw(7) << Fixed(BarValue(graphs, g, k), 3);
      std::cout << "\n";
    }
    std::cout << "\n";
  }
  return kExitOk;
}

// ---------------------------------------------------------------- peaks

struct PeakRun {
  std::array<PeakList, kShownGraphs + 1> lists;
  PeakList common;
  int commonHarmonic = 0;
  bool topPeaks = false;
};

void FindPeaks(Context& ctx, Rectification& r, const GraphArgs& a, PeakRun& run) {
  for (int g = 1; g <= kShownGraphs; ++g) AutoSelectPeaks(ctx.session, r.graphs, g);
  run.topPeaks = CombineGraphPeaks(ctx.session, r.graphs, a.pair[0], a.pair[1], run.lists, run.common,
                                   run.commonHarmonic);
  r.peaks.Common = run.common;
  r.peaks.CommonHarmonic = static_cast<int16_t>(run.commonHarmonic);
}

nlohmann::json PeakRowsJson(const PeakList& list) {
  nlohmann::json rows = nlohmann::json::array();
  for (int i = 1; i <= list.Count(); ++i) {
    const PeakRow& p = list.Rows[i];
    nlohmann::json row = {{"start", p.Start}, {"end", p.End}, {"area", p.Area}};
    if (list.HasSource) row["source"] = static_cast<int>(p.Source);
    rows.push_back(row);
  }
  return rows;
}

void PrintPeakRows(const PeakList& list) {
  if (list.Count() == 0) std::cout << "  none\n";
  for (int i = 1; i <= list.Count(); ++i) {
    const PeakRow& p = list.Rows[i];
    std::cout << "  " << std::setw(8) << Fixed(p.Start, 2) << " to " << std::setw(8) << Fixed(p.End, 2) << "   area "
              << std::setw(8) << Fixed(p.Area, 3);
    if (list.HasSource)
      std::cout << (p.Source == 0.0f ? "   common" : "   graph list " + std::to_string(static_cast<int>(p.Source)));
    std::cout << "\n";
  }
}

int RunPeaks(Context& ctx, const GraphArgs& a) {
  Rectification r;
  if (int code = PrepareGraphs(ctx, a.path, r); code != kExitOk) return code;
  PeakRun run;
  FindPeaks(ctx, r, a, run);
  if (ctx.json) {
    nlohmann::json peaks = nlohmann::json::array();
    for (int g = 1; g <= kShownGraphs; ++g)
      peaks.push_back(
          {{"graph", g}, {"harmonic", r.graphs.Graph[g].MasterHarmonic}, {"rows", PeakRowsJson(run.lists[g])}});
    ctx.PrintJson({{"failed", false},
                   {"peaks", peaks},
                   {"pair", a.pair},
                   {"common", PeakRowsJson(run.common)},
                   {"commonHarmonic", run.commonHarmonic},
                   {"topPeaks", run.topPeaks}});
    return kExitOk;
  }
  for (int g = 1; g <= kShownGraphs; ++g) {
    std::cout << "Peaks for Graph " << g << " (harmonic " << r.graphs.Graph[g].MasterHarmonic << ")\n";
    PrintPeakRows(run.lists[g]);
  }
  std::cout << "Combined Peaks... graphs " << a.pair[0] << " and " << a.pair[1] << ", harmonic " << run.commonHarmonic
            << (run.topPeaks ? " (no common peak: largest rows taken)" : "") << "\n";
  PrintPeakRows(run.common);
  return kExitOk;
}

// ---------------------------------------------------------------- angles

int RunAngles(Context& ctx, const GraphArgs& a) {
  Rectification r;
  if (int code = PrepareGraphs(ctx, a.path, r); code != kExitOk) return code;
  Session& s = ctx.session;
  PeakRun run;
  FindPeaks(ctx, r, a, run);
  const std::string from = a.from.empty() ? s.project.Header.EarliestTime : FromArg(a.from);
  const std::string to = a.to.empty() ? s.project.Header.LatestTime : FromArg(a.to);
  TerminalProgress progress(ctx);
  progress.Caption("Searching For Angles...");
  AngleResult& res = r.peaks.Results;
  if (!SearchAngles(s, r.graphs, 0, run.commonHarmonic, run.common, from, to, res, false, &progress)) {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  }
  if (ctx.json) {
    nlohmann::json list = nlohmann::json::array();
    for (int i = 1; i <= res.Count; ++i)
      list.push_back({{"index", res.ResultIndex[i]},
                      {"timeLow", res.ResultTime[i][kLow]},
                      {"timeHigh", res.ResultTime[i][kHigh]},
                      {"ascLow", res.ResultAsc[i][kLow]},
                      {"ascHigh", res.ResultAsc[i][kHigh]},
                      {"mcLow", res.ResultMC[i][kLow]},
                      {"mcHigh", res.ResultMC[i][kHigh]},
                      {"vertexLow", res.ResultVertex[i][kLow]},
                      {"vertexHigh", res.ResultVertex[i][kHigh]}});
    ctx.PrintJson({{"failed", false},
                   {"from", J(from)},
                   {"to", J(to)},
                   {"commonHarmonic", run.commonHarmonic},
                   {"common", PeakRowsJson(run.common)},
                   {"candidates", list}});
    return kExitOk;
  }
  std::cout << "Time limits " << ForTerminal(from) << " to " << ForTerminal(to) << ", harmonic " << run.commonHarmonic
            << ", " << res.Count << " candidate" << (res.Count == 1 ? "" : "s") << "\n";
  for (int i = 1; i <= res.Count; ++i) {
    std::ostringstream row;
    row << std::setw(3) << i << "  " << TimeText(s, res.ResultTime[i][kLow]) << " to "
        << TimeText(s, res.ResultTime[i][kHigh]) << "   Asc " << ZodiacPosition(s, res.ResultAsc[i][kLow], false)
        << " to " << ZodiacPosition(s, res.ResultAsc[i][kHigh], false) << "   MC "
        << ZodiacPosition(s, res.ResultMC[i][kLow], false) << " to "
        << ZodiacPosition(s, res.ResultMC[i][kHigh], false);
    std::cout << ForTerminal(row.str()) << "\n";
  }
  return kExitOk;
}

}  // namespace

void AddRectifyGraphCommands(CLI::App& rectify, Context& ctx, Action& action) {
  const char* const kSortNote = " Events out of date order are sorted first (in memory only; --no refuses, exit 1).";

  auto g = std::make_shared<GraphArgs>();
  auto* graphs = rectify.add_subcommand(
      "graphs", std::string("Build the three event graphs from the project's .pla settings (defaults without one) "
                            "and print their statistics and 120 smoothed bars.") +
                    kSortNote);
  graphs->add_option("project", g->path, "The project's .dat file")->required();
  graphs->callback([&ctx, &action, g] { action = [&ctx, g] { return RunGraphs(ctx, *g); }; });

  auto p = std::make_shared<GraphArgs>();
  auto* peaks = rectify.add_subcommand(
      "peaks", std::string("Pick the peaks of graphs 1 to 3 automatically and merge those of two graphs on their "
                           "common harmonic; when no merged row is common, the three of largest area are taken.") +
                   kSortNote);
  peaks->add_option("project", p->path, "The project's .dat file")->required();
  peaks->add_option("--pair", p->pair, "The two graphs whose peaks are merged, e.g. 1,3 (default 1,2)")
      ->expected(2)
      ->delimiter(',')
      ->check(CLI::Range(1, kShownGraphs));
  peaks->callback([&ctx, &action, p] {
    action = [&ctx, p] {
      if (p->pair.size() != 2 || p->pair[0] == p->pair[1]) {
        std::cerr << "--pair needs two different graphs\n";
        return kExitUsage;
      }
      return RunPeaks(ctx, *p);
    };
  });

  auto a = std::make_shared<GraphArgs>();
  auto* angles = rectify.add_subcommand(
      "angles", std::string("Search the merged peaks (as `rectify peaks` makes them) for Midheaven and Ascendant "
                            "pairs whose local time lies within the time limits.") +
                    kSortNote);
  angles->add_option("project", a->path, "The project's .dat file")->required();
  angles->add_option("--from", a->from, "Earliest birth time (default: the project's earliest time)");
  angles->add_option("--to", a->to, "Latest birth time (default: the project's latest time)");
  angles->add_option("--pair", a->pair, "The two graphs whose peaks are merged (default 1,2)")
      ->expected(2)
      ->delimiter(',')
      ->check(CLI::Range(1, kShownGraphs));
  angles->callback([&ctx, &action, a] {
    action = [&ctx, a] {
      if (a->pair.size() != 2 || a->pair[0] == a->pair[1]) {
        std::cerr << "--pair needs two different graphs\n";
        return kExitUsage;
      }
      return RunAngles(ctx, *a);
    };
  });
}

}  // namespace vintar::cli
