// `vintar group search|report|strips`: the family and group analysis.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>

#include "cli/commands.h"
#include "cli/group_options.h"
#include "core/parse.h"

namespace vintar::cli {

namespace {

// The distinct search pairs of a match, by name.
std::vector<std::string> MatchPointNames(const Session& s, const GroupSearchState& state, int k) {
  std::vector<std::string> names;
  for (const GroupMatchItem& item : MatchItems(state, k)) {
    const std::string name = SearchPairName(s, MatchItemPair(state, state.Matches[k], item));
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return names;
}

int RunSearch(Context& ctx, const GroupSearchArgs& a) {
  GroupSearchState state;
  GroupSearchParams p;
  int code = kExitOk;
  if (!RunGroupSearchArgs(ctx, a, state, p, code)) return code;
  Session& s = ctx.session;

  const std::vector<int> ranked = RankedGroupMatches(state);

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
                         {"score", GroupPatternScore(m)},
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
    char score[32];
    std::snprintf(score, sizeof score, "%.2f", GroupPatternScore(state.Matches[k]));
    std::cout << r + 1 << ". [match " << k << "] " << ForTerminal(state.MatchesList[k - 1]) << "\n     points: "
              << ForTerminal(names) << "; vacant " << state.Matches[k].Vacant << "; score " << score << "\n";
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

  auto a = std::make_shared<GroupSearchArgs>();
  auto* search = group->add_subcommand("search", "Find the harmonic patterns the group's charts share");
  AddGroupSearchOptions(search, *a);
  search->callback([&ctx, &action, a] { action = [&ctx, a] { return RunSearch(ctx, *a); }; });

  AddGroupReportCommand(*group, ctx, action);
  AddGroupStripsCommand(*group, ctx, action);
}

}  // namespace vintar::cli
