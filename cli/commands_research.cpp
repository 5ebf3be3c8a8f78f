// `vintar research`: point lists (show, add, save, load), a tabulation of a
// project with its statistics, and the tab-separated export of one.
//
// Points are named as the point list shows them: --point Mars, --point
// "Sun/Moon" (a midpoint), --point "10th House Cusp", --point "Prenatal New
// Moon", --point 15Ar30 (a fixed degree), --part Fortune (by name or
// abbreviation in the parts file), --almuten NAME; --transform "Ruler (New)"
// applies to every point named in the same command.
//
// The statistics of a column: the program's one-cell test of its most
// deviant cell (as the results screen shows it) and, for a research reader,
// the usual goodness-of-fit chi-square over the real cells against an even
// spread, with its degrees of freedom and probability. The top-level
// "chiSquare", "dof" and "pValue" of the JSON are the goodness of fit of
// the only column, or of the TOTAL column when there are several.
#include <iomanip>
#include <iostream>
#include <sstream>

#include "cli/commands.h"
#include "cli/research_options.h"
#include "core/parse.h"
#include "research/dignity.h"
#include "research/extract.h"
#include "research/points.h"
#include "research/results.h"
#include "research/tabulate.h"

namespace vintar::cli {
namespace {

nlohmann::json PointsJson(const Session& s, const ResearchState& state) {
  nlohmann::json list = nlohmann::json::array();
  for (const PointRef& r : state.Selected)
    list.push_back({{"name", J(PointName(s, state, r))},
                    {"type", r.PointType},
                    {"item1", r.Item1},
                    {"item2", r.Item2},
                    {"position", r.Position},
                    {"transform", r.Transform}});
  return {{"points", list},
          {"partsFile", JPath(state.Header.PartsFile)},
          {"almutenFile", JPath(state.Header.AlmutenFile)}};
}

int RunPoints(Context& ctx, const std::string& action, const std::string& file, PointArgs a) {
  Session& s = ctx.session;
  ResearchState state;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  if ((action == "load" || action == "add") && file.empty()) {
    s.ShowMessage("Name the point list file (.vpt).", kIconExclamation, "Vintar");
    return fail();
  }
  if (action == "load" || (action == "add" && FileExists(file))) a.list = file;
  if (action == "save" && file.empty()) {
    s.ShowMessage("Name the point list file (.vpt) to save.", kIconExclamation, "Vintar");
    return fail();
  }
  if (!ComposePoints(ctx, state, a)) return fail();
  if ((action == "save" || action == "add") && !SavePointList(s, file, state)) return fail();
  if (ctx.json) {
    nlohmann::json body = PointsJson(s, state);
    if (!file.empty()) body["file"] = JPath(file);
    ctx.PrintJson(body);
  } else {
    int n = 0;
    for (const PointRef& r : state.Selected) std::cout << ++n << ") " << ForTerminal(PointName(s, state, r)) << "\n";
    if (state.Selected.empty()) std::cout << "No points selected.\n";
    if (action == "save" || action == "add") std::cout << "Saved " << DisplayText(file) << "\n";
  }
  return kExitOk;
}

std::string Fixed(double v, int decimals) {
  std::ostringstream t;
  t << std::fixed << std::setprecision(decimals) << v;
  return t.str();
}

bool Fourier(const TabulationRun& run) { return run.Params.DataType == kHarmonicData; }

nlohmann::json RunJson(const Session& s, const TabulationRun& run) {
  nlohmann::json columns = nlohmann::json::array();
  for (int c = 1; c <= run.ColumnCount; ++c) columns.push_back(J(run.ColumnNames[c]));
  const int all = run.ColumnCount + 1, totalRow = run.CellCount + 1;
  const double grand = run.At(totalRow, all);
  nlohmann::json cells = nlohmann::json::array();
  for (int cell = 1; cell <= run.CellCount; ++cell) {
    nlohmann::json counts = nlohmann::json::array();
    for (int c = 1; c <= run.ColumnCount; ++c) counts.push_back(run.At(cell, c));
    const double expected = run.CellCount > 0 ? grand / run.CellCount : 0;
    nlohmann::json j{{"n", cell},
                     {"name", J(CellName(s, run, cell, false))},
                     {"counts", counts},
                     {"total", run.At(cell, all)}};
    if (!Fourier(run)) {
      j["expected"] = expected;
      j["ratio"] = expected > 0 ? run.At(cell, all) / expected : 0.0;
    }
    cells.push_back(j);
  }
  nlohmann::json stats = nlohmann::json::array();
  for (int c = 1; c <= all; ++c) {
    nlohmann::json col{{"column", c <= run.ColumnCount ? J(run.ColumnNames[c]) : nlohmann::json("TOTAL")},
                       {"total", run.At(totalRow, c)}};
    if (!Fourier(run)) {
      const EvenSpreadFit f = EvenSpreadTest(run, c);
      col["chiSquare"] = f.Chi, col["dof"] = f.Dof, col["pValue"] = f.P;
    }
    const ColumnTest t = PeakTest(run, c);
    if (t.Shown) {
      const ColumnStatistics st = ColumnStats(run, c, false);
      col["peak"] = {{"cell", st.PeakCell},
                     {"name", J(CellName(s, run, st.PeakCell, false))},
                     {"count", st.PeakValue},
                     {"average", st.Average},
                     {"tooSparse", t.TooSparse},
                     {"chiSquare", t.Chi},
                     {"dof", t.Degrees},
                     {"oneIn", t.OneIn}};
    }
    nlohmann::json block = nlohmann::json::array();
    for (const auto& line : StatisticsBlock(s, run, c)) block.push_back(J(line));
    col["block"] = block;
    stats.push_back(col);
  }
  const EvenSpreadFit top = EvenSpreadTest(run, run.ColumnCount == 1 ? 1 : all);
  nlohmann::json body{{"dataType", run.Params.DataType},
                      {"division", run.Params.Code},
                      {"divisionName", J(s.vocab.DivisionName.size() > static_cast<size_t>(run.Params.Code)
                                             ? s.vocab.DivisionName[run.Params.Code]
                                             : "")},
                      {"cellCount", run.CellCount},
                      {"usedCells", run.UsedCells},
                      {"columns", columns},
                      {"cells", cells},
                      {"statistics", stats},
                      {"charts",
                       {{"read", run.ChartsRead},
                        {"used", run.ChartsUsed},
                        {"skipped",
                         {{"disabled", run.SkippedDisabled},
                          {"inexact", run.SkippedInexact},
                          {"noPosition", run.SkippedNoPosition}}},
                        {"ambiguousPoints", run.AmbiguousPoints}}},
                      {"cancelled", run.Cancelled}};
  if (!Fourier(run)) {
    body["chiSquare"] = top.Chi;
    body["dof"] = top.Dof;
    body["pValue"] = top.P;
  }
  return body;
}

std::string RunText(const Session& s, const TabulationRun& run, int style) {
  std::ostringstream t;
  const std::string division =
      s.vocab.DivisionName.size() > static_cast<size_t>(run.Params.Code) ? s.vocab.DivisionName[run.Params.Code] : "";
  t << "Tabulation: " << DataTypeOf(run.Params.DataType).InternalName << ", " << ForTerminal(division) << " ("
    << run.CellCount << " cells)\n";
  t << "Charts: " << run.ChartsUsed << " used of " << run.ChartsRead << " read";
  if (run.SkippedDisabled) t << ", " << run.SkippedDisabled << " disabled";
  if (run.SkippedInexact) t << ", " << run.SkippedInexact << " skipped for inexact time";
  if (run.SkippedNoPosition) t << ", " << run.SkippedNoPosition << " without positions";
  if (run.AmbiguousPoints) t << ", " << run.AmbiguousPoints << " ambiguous points left out";
  t << "\n\n";
  std::vector<std::string> heads = DisplayPoints(run);
  heads.resize(run.ColumnCount + 1, "TOTAL");  // natal details name one column only
  const int all = run.ColumnCount + 1, totalRow = run.CellCount + 1;
  size_t width = 8;
  for (int cell = 1; cell <= run.CellCount; ++cell) width = std::max(width, CellName(s, run, cell, false).size() + 2);
  t << std::left << std::setw(static_cast<int>(width)) << "Cell";
  for (const auto& h : heads) t << std::right << std::setw(std::max<int>(10, static_cast<int>(h.size()) + 2)) << ForTerminal(h);
  if (!Fourier(run)) t << std::setw(10) << "Expected" << std::setw(8) << "Ratio";
  t << "\n";
  const double grand = run.At(totalRow, all);
  auto row = [&](int cell, const std::string& name) {
    t << std::left << std::setw(static_cast<int>(width)) << ForTerminal(name);
    for (int c = 1; c <= all; ++c) {
      const std::string& h = heads[c - 1];
      t << std::right << std::setw(std::max<int>(10, static_cast<int>(h.size()) + 2)) << FormatStyled(run, cell, c, style);
    }
    if (!Fourier(run) && cell <= run.CellCount) {
      const double expected = grand / run.CellCount;
      t << std::setw(10) << Fixed(expected, 2) << std::setw(8) << Fixed(expected > 0 ? run.At(cell, all) / expected : 0, 2);
    }
    t << "\n";
  };
  for (int cell = 1; cell <= run.CellCount; ++cell) row(cell, CellName(s, run, cell, false));
  row(totalRow, "TOTAL");
  t << "\n";
  for (int c = 1; c <= all; ++c) {
    const std::vector<std::string> block = StatisticsBlock(s, run, c);
    if (c == all && run.ColumnCount == 1) break;  // the total of one column is that column
    const std::string fit = EvenSpreadText(run, c);
    if (block.empty() && fit.empty()) continue;
    t << ForTerminal(heads[c - 1]) << ":";
    for (const auto& line : block) t << "  " << ForTerminal(line);
    if (!fit.empty()) t << "\n  " << fit;
    t << "\n";
  }
  return t.str();
}

int RunTabulate(Context& ctx, TabArgs& a, bool exportOnly) {
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  ResearchState state;
  TabulateParams p;
  if (!TabParams(ctx, a, state, p)) return fail();
  TerminalProgress progress(ctx);
  TabulationRun run = TabulateRun(s, state, p, &progress);
  if (run.Failed || run.Cancelled) return fail();
  if (exportOnly) {
    if (!SaveTabulation(s, run, a.style, a.out)) return fail();
    if (ctx.json) ctx.PrintJson({{"file", JPath(a.out)}, {"cells", run.CellCount}, {"columns", run.ColumnCount}});
    else std::cout << "Saved " << DisplayText(a.out) << "\n";
    return kExitOk;
  }
  if (ctx.json) ctx.PrintJson(RunJson(s, run));
  else std::cout << RunText(s, run, a.style);
  return kExitOk;
}

// "A..B" or "A" as a range; false when it is neither.
bool ParseRange(const std::string& text, int& first, int& last) {
  const size_t dots = text.find("..");
  char* end = nullptr;
  const std::string a = dots == std::string::npos ? text : text.substr(0, dots);
  first = static_cast<int>(std::strtol(a.c_str(), &end, 10));
  if (end == a.c_str() || *end != '\0') return false;
  if (dots == std::string::npos) {
    last = first;
    return true;
  }
  const std::string b = text.substr(dots + 2);
  last = static_cast<int>(std::strtol(b.c_str(), &end, 10));
  return end != b.c_str() && *end == '\0';
}

struct FilterArgs {
  TabArgs tab;
  std::string cells, columns = "1..1", out, title;
};

int RunFilter(Context& ctx, FilterArgs& a) {
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}, {"written", 0}});
    return kExitFailed;
  };
  if (!OpenProjectForCommand(ctx, a.tab.project)) return kExitFailed;
  ResearchState state;
  TabulateParams p;
  if (!TabParams(ctx, a.tab, state, p)) return fail();
  FilterBlock block;
  block.Active = true;
  if (!ParseRange(a.cells, block.FirstCell, block.LastCell) ||
      !ParseRange(a.columns, block.FirstColumn, block.LastColumn)) {
    s.ShowMessage("Give the cells and columns as a number or a range such as 1..3.", kIconExclamation,
                  "Cannot Filter");
    return fail();
  }
  const CellCounts counts = CellCountsOf(p);
  const int columns = p.DataType == kSeparationData ? static_cast<int>(p.Points.size() * (p.Points.size() - 1) / 2)
                                                    : (p.DataType == kNatalDetailsData ? 1 : static_cast<int>(p.Points.size()));
  if (block.FirstCell < 1 || block.LastCell > counts.CellCount || block.FirstCell > block.LastCell ||
      block.FirstColumn < 1 || block.LastColumn > columns || block.FirstColumn > block.LastColumn) {
    s.ShowMessage("The block of cells " + a.cells + " and columns " + a.columns +
                      " lies outside the table of " + std::to_string(counts.CellCount) + " cells and " +
                      std::to_string(columns) + " columns.",
                  kIconExclamation, "Cannot Filter");
    return fail();
  }
  std::string title = FromArg(a.title);
  if (title.empty()) title = UCase(PathStem(s.project.ProjectPath)) + " - Filtered Records";
  TerminalProgress progress(ctx);
  const FilterResult r = FilterToProject(s, state, p, block, a.out, title, ctx.yes, &progress);
  if (!r.Done) return fail();
  if (ctx.json) ctx.PrintJson({{"written", r.Written}, {"file", JPath(r.Path)}});
  return kExitOk;
}

}  // namespace

void AddResearchCommands(CLI::App& app, Context& ctx, Action& action) {
  CLI::App* research = app.add_subcommand("research", "Tabulate points over the charts of a project");
  research->require_subcommand(1);

  auto* points = research->add_subcommand("points", "Compose, show, save and load point lists (.vpt)");
  auto pa = std::make_shared<PointArgs>();
  auto pAction = std::make_shared<std::string>("show");
  auto pFile = std::make_shared<std::string>();
  points->add_option("action", *pAction, "show, add, save or load")
      ->check(CLI::IsMember({"show", "add", "save", "load"}));
  points->add_option("file", *pFile, "The point list file (.vpt)");
  points->add_option("--points", pa->list, "Start from this point list (.vpt)");
  AddPointOptions(points, *pa);
  points->callback([&ctx, &action, pa, pAction, pFile] {
    action = [&ctx, pa, pAction, pFile] { return RunPoints(ctx, *pAction, *pFile, *pa); };
  });

  auto* tab = research->add_subcommand("tabulate", "Count where the points fall over the project's charts");
  auto ta = std::make_shared<TabArgs>();
  AddTabOptions(tab, *ta);
  tab->callback([&ctx, &action, ta] { action = [&ctx, ta] { return RunTabulate(ctx, *ta, false); }; });

  auto* exp = research->add_subcommand("export", "Save a tabulation as tab-separated text");
  auto ea = std::make_shared<TabArgs>();
  AddTabOptions(exp, *ea);
  exp->add_option("--out", ea->out, "The file to write")->required();
  exp->callback([&ctx, &action, ea] { action = [&ctx, ea] { return RunTabulate(ctx, *ea, true); }; });

  auto* filter = research->add_subcommand("filter", "Write the charts behind a block of cells to a new project");
  auto fa = std::make_shared<FilterArgs>();
  AddTabOptions(filter, fa->tab, "--divisions");
  filter->add_option("out", fa->out, "The new project (.dat)")->required();
  filter->add_option("--cells", fa->cells, "The cells of the block: N or A..B")->required();
  filter->add_option("--columns", fa->columns, "The columns (points) of the block: N or C..D; default 1");
  filter->add_option("--title", fa->title, "The new project's title (default: the stem and \" - Filtered Records\")");
  filter->callback([&ctx, &action, fa] { action = [&ctx, fa] { return RunFilter(ctx, *fa); }; });

  AddResearchCriteriaCommand(*research, ctx, action);
  AddResearchSelectCommand(*research, ctx, action);
  AddResearchControlCommand(*research, ctx, action);
}

}  // namespace vintar::cli
