// `vintar group search|report|strips`: the family and group analysis.
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "core/parse.h"
#include "groups/group_search.h"

namespace vintar::cli {

namespace {

struct SearchArgs {
  std::string project;
  std::string harmonics = "1..16";
  std::string points = "default";
  float orb = 8.0f;
  std::string position;
  int min = 3;
  std::string mode = "combination";
  bool samePoint = false;
  int match = 0;
};

// "5..12" or "7".
bool ParseHarmonics(const std::string& text, int& from, int& to) {
  const size_t dots = text.find("..");
  char* end = nullptr;
  const std::string a = dots == std::string::npos ? text : text.substr(0, dots);
  from = static_cast<int>(std::strtol(a.c_str(), &end, 10));
  if (end == a.c_str() || *end) return false;
  to = from;
  if (dots != std::string::npos) {
    const std::string b = text.substr(dots + 2);
    to = static_cast<int>(std::strtol(b.c_str(), &end, 10));
    if (end == b.c_str() || *end) return false;
  }
  return from >= 1 && to <= 360;
}

// The pattern score of the report's ranking: charts first, density next.
double PatternScore(const GroupMatch& m) {
  return m.Charts * 1000.0 + (m.Charts > 0 ? static_cast<double>(m.Hits) / m.Charts : 0.0);
}

// The distinct search pairs of a match, by name.
std::vector<std::string> MatchPointNames(const Session& s, const GroupSearchState& state, int k) {
  std::vector<std::string> names;
  for (const GroupMatchItem& item : MatchItems(state, k)) {
    const std::string name = SearchPairName(s, MatchItemPair(state, state.Matches[k], item));
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return names;
}

int RunSearch(Context& ctx, const SearchArgs& a) {
  if (!OpenProjectForCommand(ctx, a.project)) return kExitFailed;
  Session& s = ctx.session;
  GroupSearchParams p;
  if (!ParseHarmonics(a.harmonics, p.FromHarmonic, p.ToHarmonic)) {
    std::cerr << "--harmonics takes a range such as 1..16 (harmonics 1 to 360)\n";
    return kExitUsage;
  }
  p.Orb = a.orb;
  p.MinMatches = ClampMatchesField(a.min);
  p.Combination = !(a.samePoint || EqualsIgnoreCase(a.mode, "same-point") || EqualsIgnoreCase(a.mode, "same"));
  if (!a.position.empty()) {
    bool failed = false;
    ParseAngle(s, a.position, p.Position, failed);
    if (failed) return kExitFailed;
    p.SpecifiedPosition = true;
    p.ToHarmonic = p.FromHarmonic;
  }
  GroupSearchState state;
  std::string error;
  if (!SearchPointsFromText(s, state, FromArg(a.points), error)) {
    s.ShowMessage(error, kIconExclamation, "No Points Selected");
    return kExitFailed;
  }
  std::string focus;
  if (!CheckGroupSearch(s, p, static_cast<int>(state.SearchPoints.size()), focus)) return kExitFailed;
  TerminalProgress progress(ctx);
  SearchGroupPatterns(s, state, p, &progress);
  if (a.match > 0) ShowGroupMatchDetail(s, state, p, a.match, &progress);

  std::vector<int> ranked(state.MatchCount);
  for (int k = 1; k <= state.MatchCount; ++k) ranked[k - 1] = k;
  std::stable_sort(ranked.begin(), ranked.end(), [&](int x, int y) {
    return PatternScore(state.Matches[x]) > PatternScore(state.Matches[y]);
  });

  if (ctx.json) {
    nlohmann::json matches = nlohmann::json::array();
    for (int k : ranked) {
      const GroupMatch& m = state.Matches[k];
      nlohmann::json points = nlohmann::json::array();
      for (const std::string& name : MatchPointNames(s, state, k)) points.push_back(J(name));
      nlohmann::json charts = nlohmann::json::array();
      for (const GroupMatchItem& item : MatchItems(state, k)) charts.push_back(item.Chart);
      matches.push_back({{"match", k},
                         {"harmonic", m.Harmonic},
                         {"points", points},
                         {"charts", m.Charts},
                         {"hits", m.Hits},
                         {"records", charts},
                         {"position", m.Position},
                         {"orb", p.Orb / m.Harmonic},
                         {"vacant", m.Vacant},
                         {"score", PatternScore(m)},
                         {"line", J(state.MatchesList[k - 1])}});
    }
    nlohmann::json detail = nlohmann::json::array();
    for (const std::string& line : state.SecondaryList) detail.push_back(J(line));
    ctx.PrintJson({{"charts", state.SearchCharts.size()},
                   {"searchPoints", state.SearchList.size()},
                   {"matches", matches},
                   {"detail", detail},
                   {"status", J(state.Status)}});
    return kExitOk;
  }
  std::cout << ForTerminal(GroupSearchTitle(s)) << "\n"
            << ForTerminal(GroupStatusPanel(s, static_cast<int>(state.SearchCharts.size()))) << "\n";
  std::string pts;
  for (const std::string& line : state.SearchList) pts += (pts.empty() ? "" : " ") + Trim(line);
  std::cout << "Search points: " << ForTerminal(pts) << "\n"
            << "Harmonics " << p.FromHarmonic << " to " << p.ToHarmonic << ", "
            << (p.SpecifiedPosition ? "scan orb " : "1st harmonic orb ") << p.Orb << ", "
            << (p.Combination ? "to any combination of search points" : "to the same search point only")
            << ", at least " << p.MinMatches << " hits\n\n";
  if (ranked.empty()) std::cout << "No matches found\n";
  for (size_t r = 0; r < ranked.size(); ++r) {
    const int k = ranked[r];
    std::string names;
    for (const std::string& name : MatchPointNames(s, state, k)) names += (names.empty() ? "" : ", ") + name;
    std::cout << r + 1 << ". [match " << k << "] " << ForTerminal(state.MatchesList[k - 1]) << "\n     points: "
              << ForTerminal(names) << "\n";
  }
  if (!state.SecondaryList.empty()) {
    std::cout << "\nCharts in match " << a.match << ":\n";
    for (const std::string& line : state.SecondaryList) std::cout << "  " << ForTerminal(line) << "\n";
  }
  std::cout << "\n" << ForTerminal(state.Status) << "\n";
  return kExitOk;
}

}  // namespace

void AddGroupCommands(CLI::App& app, Context& ctx, Action& action) {
  auto* group = app.add_subcommand("group", "Harmonic patterns shared by a family or group of charts");
  group->require_subcommand(1);

  auto a = std::make_shared<SearchArgs>();
  auto* search = group->add_subcommand("search", "Find the harmonic patterns the group's charts share");
  search->add_option("project", a->project, "PROJECT.dat")->required();
  search->add_option("--harmonics", a->harmonics, "Harmonic range, e.g. 1..16 (default 1..16)");
  search->add_option("--points", a->points,
                     "Search points: default, a grouppnt.fil, or names such as \"Sun,Moon,Sun/Moon\"");
  search->add_option("--orb", a->orb, "Orb in degrees at the first harmonic (default 8)");
  search->add_option("--position", a->position, "Search at this position of the harmonic circle only");
  search->add_option("--min", a->min, "Least number of hits (default 3)");
  search->add_option("--mode", a->mode, "combination (any points together) or same-point")
      ->check(CLI::IsMember({"combination", "same-point", "same"}, CLI::ignore_case));
  search->add_flag("--same-point", a->samePoint, "Same as --mode same-point");
  search->add_option("--match", a->match, "Also list the charts of this match");
  search->callback([&ctx, &action, a] { action = [&ctx, a] { return RunSearch(ctx, *a); }; });

  AddGroupReportCommand(*group, ctx, action);
  AddGroupStripsCommand(*group, ctx, action);
}

}  // namespace vintar::cli
