#include "cli/group_options.h"

#include <cstdlib>
#include <iostream>

#include "core/parse.h"

namespace vintar::cli {

namespace {

// "5..12" or "7", harmonics 1 to 360.
bool ParseHarmonicRange(const std::string& text, int& from, int& to) {
  const size_t dots = text.find("..");
  const std::string a = dots == std::string::npos ? text : text.substr(0, dots);
  const std::string b = dots == std::string::npos ? a : text.substr(dots + 2);
  if (!IsAllDigits(a) || !IsAllDigits(b) || a.empty() || b.empty() || a.size() > 3 || b.size() > 3) return false;
  from = std::atoi(a.c_str());
  to = std::atoi(b.c_str());
  return from >= 1 && from <= 360 && to >= 1 && to <= 360;
}

}  // namespace

void AddGroupSearchOptions(CLI::App* cmd, GroupSearchArgs& a) {
  cmd->add_option("project", a.project, "PROJECT.dat")->required();
  cmd->add_option("--harmonics", a.harmonics, "Harmonic range, e.g. 5..12 (default 1..16)");
  cmd->add_option("--points", a.points,
                  "Search points: default, a grouppnt.fil, or names such as \"Sun,Moon,Sun/Moon\"");
  cmd->add_option("--orb", a.orb, "Orb in degrees at the first harmonic (default 8)");
  cmd->add_option("--position", a.position, "Search at this position of the harmonic circle only");
  cmd->add_option("--min", a.min, "Least number of hits (default 3)");
  cmd->add_option("--mode", a.mode, "combination (any points together) or same-point")
      ->check(CLI::IsMember({"combination", "same-point", "same"}, CLI::ignore_case));
  cmd->add_flag("--same-point", a.samePoint, "Same as --mode same-point");
  cmd->add_option("--match", a.match, "A match of the search: its charts listed (in a report, the pattern described)");
}

bool RunGroupSearchArgs(Context& ctx, const GroupSearchArgs& a, GroupSearchState& state, GroupSearchParams& p,
                        int& exitCode) {
  exitCode = kExitUsage;
  if (!ParseHarmonicRange(a.harmonics, p.FromHarmonic, p.ToHarmonic)) {
    std::cerr << "--harmonics takes a range such as 5..12 (harmonics 1 to 360)\n";
    return false;
  }
  exitCode = kExitFailed;
  if (!OpenProjectForCommand(ctx, a.project)) return false;
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return false;
  };
  p.Orb = a.orb;
  p.MinMatches = ClampMatchesField(a.min);
  p.Combination = !(a.samePoint || EqualsIgnoreCase(a.mode, "same-point") || EqualsIgnoreCase(a.mode, "same"));
  if (!a.position.empty()) {
    bool failed = false;
    ParseAngle(s, FromArg(a.position), p.Position, failed);
    if (failed) return fail();
    p.SpecifiedPosition = true;
    p.ToHarmonic = p.FromHarmonic;
  }
  std::string error;
  if (!SearchPointsFromText(s, state, FromArg(a.points), error)) {
    s.ShowMessage(error, kIconExclamation, "No Points Selected");
    return fail();
  }
  std::string focus;
  if (!CheckGroupSearch(s, p, static_cast<int>(state.SearchPoints.size()), focus)) return fail();
  TerminalProgress progress(ctx);
  SearchGroupPatterns(s, state, p, &progress);
  if (a.match > 0) {
    if (a.match > state.MatchCount) {
      s.ShowMessage("There is no match " + std::to_string(a.match) + ": the search found " +
                        std::to_string(state.MatchCount) + ".",
                    kIconExclamation, "Group Search");
      return fail();
    }
    ShowGroupMatchDetail(s, state, p, a.match, &progress);
  }
  exitCode = kExitOk;
  return true;
}

void AddStripOptions(CLI::App* cmd, StripRequest& request) {
  cmd->add_option("--harmonic", request.Harmonic, "The harmonic H: the strips are 360/H degrees long (1 to 360)")
      ->required();
  cmd->add_option("--records", request.Records, "Records to show, in order, e.g. 1,4,7 (at most 10)");
  cmd->add_option("--points", request.Points, "Points shown, e.g. Sun,Moon,Asc (default: all)");
  cmd->add_option("--midpoints-of", request.MidpointsOf, "Show each point's midpoint with this point");
  cmd->add_option("--highlight", request.Highlight, "Draw this point in colour on every strip");
  cmd->add_option("--match", request.Match,
                  "The charts of pattern K of a search of the default points in this harmonic (see group search)");
  cmd->add_option("--orb", request.Orb, "The orb of that search at the first harmonic (default 8)");
}

int StripsForCommand(Context& ctx, StripRequest request, StripTable& table) {
  Session& s = ctx.session;
  auto fail = [&] {
    if (ctx.json) ctx.PrintJson({{"failed", true}});
    return kExitFailed;
  };
  for (std::string* text : {&request.Records, &request.Points, &request.MidpointsOf, &request.Highlight})
    *text = FromArg(*text);
  if (Trim(request.Records).empty() && GroupSearchCharts(s).empty()) {
    s.ShowMessage("There are no records switched on in this project.", kIconStop, "Chart Strips");
    return fail();
  }
  std::vector<int> records;
  std::string error;
  if (!StripsFromRequest(s, table, request, records, error)) {
    std::cerr << ForTerminal(error) << "\n";
    return kExitUsage;
  }
  TerminalProgress progress(ctx);
  if (request.Match > 0) {
    // The search screen's Display button: the charts of one pattern.
    GroupSearchState state;
    for (int p : DefaultSearchPoints(s)) AddSearchPair(s, state, p, p);
    GroupSearchParams params;
    params.FromHarmonic = params.ToHarmonic = table.PlotModulus;
    params.Orb = request.Orb;
    std::string focus;
    if (!CheckGroupSearch(s, params, static_cast<int>(state.SearchPoints.size()), focus)) return fail();
    SearchGroupPatterns(s, state, params, &progress);
    if (!StripsFromMatch(table, state, request.Match)) {
      s.ShowMessage("There is no match " + std::to_string(request.Match) + ": the search found " +
                        std::to_string(state.MatchCount) + ".",
                    kIconExclamation, "Chart Strips");
      return fail();
    }
  } else if (!CheckStripChartCount(s, static_cast<int>(records.size()))) {
    return fail();
  }
  if (!RefreshStrips(s, table, &progress)) {
    s.ShowMessage("The positions of the charts could not be read from the position file.", kIconStop,
                  "Chart Strips");
    return fail();
  }
  return kExitOk;
}

}  // namespace vintar::cli
