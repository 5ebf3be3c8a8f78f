#include "groups/group_search.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "calc/astro.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/text.h"

namespace vintar {

namespace {

constexpr float kUnusable = -10.0f;
constexpr char kPlusMinus = '\xB1';

// Degrees and minutes, "12°30'".
std::string DegMin(double degrees) {
  if (!std::isfinite(degrees)) degrees = 0;
  const long minutes = std::lround(std::fabs(degrees) * 60.0);
  std::string text = degrees < 0 && minutes > 0 ? "-" : "";
  const long d = minutes / 60, m = minutes % 60;
  return text + std::to_string(d) + "\xB0" + (m < 10 ? "0" : "") + std::to_string(m) + "'";
}

std::string ShortGlyph(const Session& session, int point) {
  if (point < 1 || point >= static_cast<int>(session.vocab.PointShort.size())) return "?";
  return Trim(session.vocab.PointShort[point]);
}

std::string NameOf(const Session& session, int point) {
  if (point < 1 || point >= static_cast<int>(session.vocab.PointName.size())) return "?";
  return Trim(session.vocab.PointName[point]);
}

// The sector (1 to H) of a base position measured from `reference`.
int SectorOf(double base, double m, double reference, int h) {
  const long cell = static_cast<long>(GroupMod(base + m / 2.0 - reference, 360.0) / m);
  return static_cast<int>(cell % h) + 1;
}

// One run through the sorted elements: its entries in order, hits, charts
// and the sector tally.
struct Run {
  std::vector<int> entries;  // positions in the sorted index, in run order
  int hits = 0;
  int charts = 0;
  std::vector<int> tally;  // 1..H
};

class Searcher {
 public:
  Searcher(Session& session, GroupSearchState& state, const GroupSearchParams& params, Progress* progress)
      : session_(session), state_(state), p_(params), progress_(progress) {}

  void Run(bool detail);

 private:
  bool Stopped() {
    if (!state_.Stop && progress_ && progress_->Cancelled()) state_.Stop = true;
    return state_.Stop;
  }
  void Status(const std::string& text) {
    state_.Status = text;
    if (progress_) progress_->Status(text);
  }
  void Fill(const std::vector<int>& pairs, float m);
  void Walk(::vintar::Run& run, int start, int h, float m, float orbH, double windowStart, double sectorRef,
            bool specified);
  void Emit(const ::vintar::Run& run, int h, float m, float orbH, int pointIndex, const std::string& glyphs);
  void DetailLines(const ::vintar::Run& run);

  Session& session_;
  GroupSearchState& state_;
  const GroupSearchParams& p_;
  Progress* progress_;
  std::vector<std::array<double, kPoints + 1>> longitudes_;  // per search chart
  std::vector<int> order_;                                   // sorted index, 1-based
  int n_ = 0;
  std::vector<unsigned> seenInRun_;  // by record number: the stamp of the last run that met the chart
  unsigned runStamp_ = 0;
};

}  // namespace

double GroupMod(double x, double y) {
  if (y == 0.0 || !std::isfinite(x) || !std::isfinite(y)) return 0.0;
  double r = x - y * std::floor(x / y);
  if (r >= y) r -= y;  // rounding of a tiny negative x
  return r < 0.0 ? 0.0 : r;
}

double NearMidpoint(double a, double b) {
  const double m = GroupMod((a + b) * 0.5, 360.0);
  const double d = GroupMod(std::fabs(a - m), 360.0);
  return d > 90.0 ? GroupMod(m + 180.0, 360.0) : m;
}

double HarmonicMidpoint(double m, double a, double b) {
  const double mid = GroupMod((a + b) * 0.5, m);
  const double d = GroupMod(std::fabs(a - mid), m);
  return m / 4.0 >= d ? mid : GroupMod(mid + m / 2.0, m);
}

std::vector<int> IndexSort(const std::vector<float>& keys, bool descending) {
  const int n = keys.empty() ? 0 : static_cast<int>(keys.size()) - 1;
  std::vector<int> index(n + 1, 0);
  std::iota(index.begin() + 1, index.end(), 1);
  // A stable sort keeps equal keys in their order, as the insertion sort of
  // the negated keys does for a descending order.
  if (descending)
    std::stable_sort(index.begin() + 1, index.end(), [&](int a, int b) { return keys[a] > keys[b]; });
  else
    std::stable_sort(index.begin() + 1, index.end(), [&](int a, int b) { return keys[a] < keys[b]; });
  return index;
}

std::vector<int> SelectablePoints(const Session& session) {
  std::vector<int> points;
  const bool helio = session.cache.Coordinate == kHeliocentric;
  for (int p = 1; p <= kPoints; ++p) {
    if (helio) {
      if (p == kMoon || p == kSun || p == kTrueNode || p == kMeanNode) continue;
    } else {
      if (p == kEarth) continue;
      if ((p == kTrueNode || p == kMeanNode) && p != session.vocab.NodePoint) continue;
    }
    points.push_back(p);
  }
  return points;
}

std::vector<int> DefaultSearchPoints(const Session& session) {
  std::vector<int> points;
  for (int p : SelectablePoints(session)) {
    if (p == kMoon || (p >= kSun && p <= kPluto) || p == kTrueNode || p == kMeanNode || p == kAscendant ||
        p == kMidheaven)
      points.push_back(p);
  }
  return points;
}

void ClearSearchPoints(GroupSearchState& state) {
  state.SearchPoints.clear();
  state.SearchList.clear();
  state.CurrentMatches = false;
}

std::string SearchPairName(const Session& session, const SearchPair& pair) {
  if (pair.First == pair.Second) return NameOf(session, pair.First);
  return NameOf(session, pair.First) + "/" + NameOf(session, pair.Second);
}

std::string SearchPairGlyphs(const Session& session, const SearchPair& pair) {
  if (pair.First == pair.Second) return ShortGlyph(session, pair.First);
  return ShortGlyph(session, pair.First) + "/" + ShortGlyph(session, pair.Second);
}

bool AddSearchPair(const Session& session, GroupSearchState& state, int first, int second) {
  if (first < 1 || first > kPoints || second < 1 || second > kPoints) return false;
  if (static_cast<int>(state.SearchPoints.size()) >= kMaxSearchPairs) return false;
  const SearchPair pair{static_cast<int16_t>(first), static_cast<int16_t>(second)};
  if (std::find(state.SearchPoints.begin(), state.SearchPoints.end(), pair) != state.SearchPoints.end())
    return false;
  state.SearchPoints.push_back(pair);
  state.SearchList.push_back(first == second ? SearchPairGlyphs(session, pair) + "  "
                                             : SearchPairGlyphs(session, pair));
  state.CurrentMatches = false;
  return true;
}

int GroupPointByName(const Session& session, const std::string& name) {
  std::string wanted = Trim(name);
  if (wanted.size() > 4 && EqualsIgnoreCase(wanted.substr(0, 4), "the ")) wanted = Trim(wanted.substr(4));
  for (int p : SelectablePoints(session)) {
    std::string full = NameOf(session, p);
    if (full.size() > 4 && EqualsIgnoreCase(full.substr(0, 4), "the ")) full = full.substr(4);
    if (EqualsIgnoreCase(wanted, full) || EqualsIgnoreCase(wanted, ShortGlyph(session, p))) return p;
  }
  if (EqualsIgnoreCase(wanted, "Node")) return session.vocab.NodePoint;
  if (EqualsIgnoreCase(wanted, "MC")) return kMidheaven;
  return 0;
}

bool SearchPointsFromText(const Session& session, GroupSearchState& state, const std::string& text,
                          std::string& error) {
  ClearSearchPoints(state);
  const std::string t = Trim(text);
  if (EqualsIgnoreCase(t, "default")) {
    for (int p : DefaultSearchPoints(session)) AddSearchPair(session, state, p, p);
    return true;
  }
  if (FileExists(t)) {
    if (!ReadGroupPointFile(session, state, t) || state.SearchPoints.empty()) {
      error = "The search point file " + t + " holds no points.";
      return false;
    }
    return true;
  }
  for (const std::string& item : SplitOnAny(t, ",", 1000)) {
    if (Trim(item).empty()) continue;
    const size_t slash = item.find('/');
    const int a = GroupPointByName(session, slash == std::string::npos ? item : item.substr(0, slash));
    const int b = slash == std::string::npos ? a : GroupPointByName(session, item.substr(slash + 1));
    if (a == 0 || b == 0) {
      error = "\"" + Trim(item) + "\" is not a point of this search (nor a file).";
      return false;
    }
    AddSearchPair(session, state, a, b);
  }
  if (state.SearchPoints.empty()) {
    error = "No search points were given.";
    return false;
  }
  return true;
}

std::string GroupPointFilePath(const Session& session) {
  const std::string folder =
      session.paths.UserDataPath.empty() ? session.paths.SystemDataPath : session.paths.UserDataPath;
  return EnsureBackslash(folder) + "grouppnt.fil";
}

bool ReadGroupPointFile(const Session& session, GroupSearchState& state, const std::string& path) {
  std::string bytes;
  if (ReadFileBytes(path, bytes, 1 << 20) != 0) return false;
  auto i16 = [&](size_t at) {
    return static_cast<int16_t>(static_cast<uint8_t>(bytes[at]) | (static_cast<uint8_t>(bytes[at + 1]) << 8));
  };
  for (size_t at = 0; at + 4 <= bytes.size(); at += 4) {
    const int first = i16(at), second = i16(at + 2);
    if (first < 1 || first > kPoints || second < 1 || second > kPoints) continue;
    AddSearchPair(session, state, first, second);
  }
  return true;
}

bool WriteGroupPointFile(const GroupSearchState& state, const std::string& path) {
  std::string bytes;
  for (const SearchPair& pair : state.SearchPoints) {
    for (int16_t v : {pair.First, pair.Second}) {
      bytes += static_cast<char>(static_cast<uint16_t>(v) & 0xFF);
      bytes += static_cast<char>(static_cast<uint16_t>(v) >> 8);
    }
  }
  std::string error;
  return WriteFileAtomically(path, bytes, error);
}

std::array<double, kPoints + 1> AdjustedLongitudes(const Session& session, const EventPositionRecord& r) {
  std::array<double, kPoints + 1> lon{};
  lon.fill(-1.0);
  const bool sidereal = session.prefs.Zodiac != 1;
  const double correction =
      sidereal ? SiderealOffset(session.prefs.Zodiac, session.prefs.UserAyan, r.PrecessionArcsec) : 0.0;
  for (int p = 1; p <= kPoints; ++p) {
    const double first = r.StartPos[p], second = r.EndPos[p];
    if (!(first >= 0.0) || !std::isfinite(first)) continue;  // not known in this chart
    double pos = first;
    if (r.Motion[p] <= 0) {
      if (!(second >= 0.0) || !std::isfinite(second)) continue;
      pos = NearMidpoint(second, first);
    }
    lon[p] = GroupMod(pos + correction, 360.0);
  }
  return lon;
}

std::vector<int> GroupSearchCharts(const Session& session) {
  std::vector<int> charts;
  const ProjectState& project = session.project;
  const int count = static_cast<int>(
      std::min<long long>(project.Header.RecordCount, static_cast<long long>(project.Events.size()) - 1));
  for (int i = 1; i <= count; ++i) {
    const EventRecord& e = project.Events[i];
    if (e.Enabled && e.DayRange == 0) charts.push_back(i);
  }
  return charts;
}

namespace {

void Searcher::Fill(const std::vector<int>& pairs, float m) {
  const int points = static_cast<int>(pairs.size());
  n_ = static_cast<int>(state_.SearchCharts.size()) * points;
  state_.HarmonicPos.assign(n_ + 1, 0.0f);
  state_.BasePos.assign(n_ + 1, 0.0f);
  state_.ElementChart.assign(n_ + 1, 0);
  state_.ElementFirst.assign(n_ + 1, 0);
  state_.ElementSecond.assign(n_ + 1, 0);
  int e = 0;
  for (size_t c = 0; c < state_.SearchCharts.size(); ++c) {
    const auto& lon = longitudes_[c];
    for (int k : pairs) {
      const SearchPair& pair = state_.SearchPoints[k - 1];
      ++e;
      const double a = lon[pair.First], b = lon[pair.Second];
      if (a < 0.0 || b < 0.0) {
        state_.BasePos[e] = state_.HarmonicPos[e] = kUnusable;
      } else {
        const double pos = pair.First == pair.Second ? a : NearMidpoint(b, a);
        state_.BasePos[e] = static_cast<float>(pos);
        state_.HarmonicPos[e] = static_cast<float>(GroupMod(pos, m));
      }
      state_.ElementChart[e] = state_.SearchCharts[c];
      state_.ElementFirst[e] = pair.First;
      state_.ElementSecond[e] = pair.Second;
    }
  }
  order_ = IndexSort(state_.HarmonicPos);
}

// Extends a run that starts at sorted entry `start` for as long as the next
// entry lies inside the window [windowStart, windowStart + 2*orbH].
void Searcher::Walk(::vintar::Run& run, int start, int h, float m, float orbH, double windowStart, double sectorRef,
                    bool specified) {
  run.entries.assign(1, start);
  run.hits = 1;
  run.charts = 1;
  run.tally.assign(h + 1, 0);
  run.tally[1] = 1;
  // Charts met by this run are stamped with its number: no clearing between runs.
  if (++runStamp_ == 0) {
    std::fill(seenInRun_.begin(), seenInRun_.end(), 0u);
    runStamp_ = 1;
  }
  const int32_t first = state_.ElementChart[order_[start]];
  if (first >= 0 && first < static_cast<int32_t>(seenInRun_.size())) seenInRun_[first] = runStamp_;
  const float width = 2.0f * orbH;
  int k = start;
  while (run.hits < n_) {
    const int next = k % n_ + 1;
    const int e = order_[next];
    const float x = state_.HarmonicPos[e];
    if (x < 0.0f) break;
    const float a = static_cast<float>(GroupMod(static_cast<double>(x) - windowStart, m));
    if (!(width >= a)) break;
    ++run.hits;
    const int32_t chart = state_.ElementChart[e];
    if (chart >= 0 && chart < static_cast<int32_t>(seenInRun_.size()) && seenInRun_[chart] != runStamp_) {
      seenInRun_[chart] = runStamp_;
      ++run.charts;
    }
    const double ref = specified ? sectorRef : state_.BasePos[order_[start]];
    run.tally[SectorOf(state_.BasePos[e], m, ref, h)] += 1;
    run.entries.push_back(next);
    k = next;
  }
}

void Searcher::Emit(const ::vintar::Run& run, int h, float m, float orbH, int pointIndex,
                    const std::string& glyphs) {
  const int firstE = order_[run.entries.front()], lastE = order_[run.entries.back()];
  const double position = p_.SpecifiedPosition
                              ? GroupMod(p_.Position, m)
                              : HarmonicMidpoint(m, state_.HarmonicPos[firstE], state_.HarmonicPos[lastE]);
  const std::string ordinal = FormatOrdinal(h);
  std::string line;
  if (p_.Combination) {
    line = ordinal + " Hm - " + std::to_string(run.hits) + " Hits - " + std::to_string(run.charts) + " Charts - ";
  } else if (p_.SpecifiedPosition) {
    line = glyphs + " - " + ordinal + " Hm (Mod " + DegMin(m) + ") - " + std::to_string(run.hits) + " Hits - ";
  } else {
    line = glyphs + " - " + ordinal + " Hm - " + std::to_string(run.hits) + " Hits - ";
  }
  line += DegMin(position) + " " + kPlusMinus + DegMin(orbH) + " - ";
  const double reference = p_.SpecifiedPosition ? p_.Position : state_.BasePos[firstE];
  GroupMatch match;
  match.Harmonic = static_cast<int16_t>(h);
  match.PointIndex = static_cast<int16_t>(p_.Combination ? 0 : pointIndex);
  match.Position = static_cast<float>(position);
  match.Charts = static_cast<int16_t>(run.charts);
  match.Hits = static_cast<int16_t>(run.hits);
  match.FirstItem = static_cast<int32_t>(state_.Items.size());
  match.Vacant = static_cast<int16_t>(std::count(run.tally.begin() + 1, run.tally.end(), 0));
  for (int entry : run.entries) {
    const int e = order_[entry];
    line += " " + std::to_string(state_.ElementChart[e]);
    GroupMatchItem item;
    item.Chart = state_.ElementChart[e];
    item.Element = e;
    item.Sector = static_cast<uint8_t>(SectorOf(state_.BasePos[e], m, GroupMod(reference, m), h));
    state_.Items.push_back(item);
  }
  state_.MatchesList.push_back(line);
  const int index = static_cast<int>(state_.MatchesList.size());
  if (static_cast<int>(state_.Matches.size()) <= index) state_.Matches.resize(index + 1);
  state_.Matches[index] = match;
  state_.MatchCount = index;
}

void Searcher::DetailLines(const ::vintar::Run& run) {
  const ProjectState& project = session_.project;
  for (int entry : run.entries) {
    const int e = order_[entry];
    const SearchPair pair{state_.ElementFirst[e], state_.ElementSecond[e]};
    const int record = state_.ElementChart[e];
    const std::string name =
        record >= 1 && record < static_cast<int>(project.Events.size()) ? Trim(project.Events[record].Description) : "";
    state_.SecondaryList.push_back("Chart " + std::to_string(record) + " - " + SearchPairGlyphs(session_, pair) +
                                   " at " + DegMin(state_.HarmonicPos[e]) + " (" +
                                   Trim(ZodiacPosition(session_, state_.BasePos[e], false)) + ") " + name);
    state_.DetailSlots.push_back(e);
  }
}

void Searcher::Run(bool detail) {
  if (!detail) {
    state_.LastParams = p_;
    state_.Matches.assign(1, GroupMatch{});
    state_.Items.assign(1, GroupMatchItem{});
    state_.MatchesList.clear();
    state_.MatchCount = 0;
  }
  state_.SecondaryList.clear();
  state_.DetailSlots.clear();
  state_.SearchCharts = GroupSearchCharts(session_);
  if (state_.SearchCharts.empty()) {
    session_.ShowMessage("There are no records switched on in this project.", kIconStop, "Cannot Search");
    return;
  }
  const int pointCount = static_cast<int>(state_.SearchPoints.size());
  if (pointCount == 0) return;
  if (p_.Combination && static_cast<long long>(state_.SearchCharts.size()) * pointCount > 32767) {
    session_.ShowMessage(
        "There are too many records to search. Either reduce the size of the project, or reduce the number of "
        "points selected.",
        kIconStop, "Cannot Search");
    return;
  }
  if (detail && !p_.Combination && (p_.PatternIndex < 1 || p_.PatternIndex > pointCount)) return;

  // The positions, read once: the transit cache brought up to date first.
  const int coordinate = session_.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
  const int method = std::clamp<int>(session_.cache.ProgressionMethod, kNaibod, kMeanQuotidian);
  bool cancelled = false;
  CalcEvents(session_, coordinate, kTransits, method, cancelled, progress_);
  if (cancelled) return;
  CacheReader cache;
  const int count = state_.SearchCharts.back();
  if (!cache.Open(CacheFileName(session_.project.ProjectPath, coordinate, kTransits), count)) return;
  longitudes_.clear();
  seenInRun_.assign(count + 1, 0);
  for (int record : state_.SearchCharts) {
    const unsigned char* bytes = cache.Record(record);
    std::array<double, kPoints + 1> lon{};
    lon.fill(-1.0);
    if (bytes) {
      const EventPositionRecord r = DecodeCacheRecord(bytes);
      if (CacheRecordUsable(r)) lon = AdjustedLongitudes(session_, r);
    }
    longitudes_.push_back(lon);
  }

  // The point passes: all points at once, or one per search point.
  std::vector<std::vector<int>> passes;
  std::vector<int> all(pointCount);
  std::iota(all.begin(), all.end(), 1);
  if (p_.Combination) {
    passes.push_back(all);
  } else if (detail) {
    passes.push_back({p_.PatternIndex});
  } else {
    for (int k : all) passes.push_back({k});
  }

  state_.Stop = false;
  for (const std::vector<int>& pass : passes) {
    const std::string glyphs = p_.Combination ? "" : SearchPairGlyphs(session_, state_.SearchPoints[pass[0] - 1]);
    for (int h = p_.FromHarmonic; h <= p_.ToHarmonic && !state_.Stop; ++h) {
      Status("Searching for matches: " + FormatOrdinal(h) +
             (p_.Combination ? " Harmonic - All Selected Points" : " Harmonic - " + glyphs));
      const float m = 360.0f / static_cast<float>(h);
      const float orbH = p_.Orb / static_cast<float>(h);
      const float width = 2.0f * orbH;
      Fill(pass, m);
      if (n_ < 1 || state_.HarmonicPos[order_[n_]] < 0.0f) {
        // No chart knows this point: the whole search ends, silently.
        state_.Stop = true;
        break;
      }
      ::vintar::Run run;
      if (p_.SpecifiedPosition || detail) {
        int start = 0;
        for (int k = n_; k >= 1; --k) {
          const float x = state_.HarmonicPos[order_[k]];
          if (x < 0.0f) break;
          const float a = static_cast<float>(GroupMod(static_cast<double>(orbH) + p_.Position - x, m));
          if (width >= a)
            start = k;
          else if (start > 0)
            break;
        }
        if (start > 0) {
          Walk(run, start, h, m, orbH, static_cast<double>(p_.Position) - orbH, p_.Position, true);
          if (detail)
            DetailLines(run);
          else
            Emit(run, h, m, orbH, pass[0], glyphs);
        }
      } else {
        int best = 0;
        for (int round = 1; round <= 2 && !state_.Stop; ++round) {
          for (int k = 1; k <= n_; ++k) {
            const float x = state_.HarmonicPos[order_[k]];
            if (!(x > 0.0f)) continue;
            Walk(run, k, h, m, orbH, x, 0.0, false);
            if (run.hits >= p_.MinMatches && run.hits >= best) {
              if (round == 1)
                best = run.hits;
              else
                Emit(run, h, m, orbH, pass[0], glyphs);
            }
            if (Stopped()) break;
          }
        }
      }
      if (Stopped()) break;
    }
    if (state_.Stop) break;
  }
  state_.Stop = false;
  if (!detail) Status("Finished Search: " + std::to_string(state_.MatchesList.size()) + " Items Found");
}

}  // namespace

void SearchGroupPatterns(Session& session, GroupSearchState& state, const GroupSearchParams& params,
                         Progress* progress) {
  GroupSearchParams p = params;
  p.Detail = false;
  Searcher(session, state, p, progress).Run(false);
  state.CurrentMatches = true;
}

void ShowGroupMatchDetail(Session& session, GroupSearchState& state, const GroupSearchParams& params, int k,
                          Progress* progress) {
  state.SecondaryList.clear();
  state.DetailSlots.clear();
  if (k < 1 || k > state.MatchCount || !state.CurrentMatches) return;
  const GroupMatch& match = state.Matches[k];
  GroupSearchParams p = params;
  p.Detail = true;
  p.FromHarmonic = p.ToHarmonic = match.Harmonic;
  p.Position = match.Position;
  p.SpecifiedPosition = true;
  p.Combination = match.PointIndex == 0;
  p.PatternIndex = match.PointIndex;
  const std::string status = state.Status;  // the search's own last line stays
  Searcher(session, state, p, progress).Run(true);
  state.Status = status;
}

std::vector<GroupMatchItem> MatchItems(const GroupSearchState& state, int k) {
  if (k < 1 || k > state.MatchCount || k >= static_cast<int>(state.Matches.size())) return {};
  const GroupMatch& m = state.Matches[k];
  std::vector<GroupMatchItem> items;
  for (int i = 0; i < m.Hits; ++i) {
    const long long at = static_cast<long long>(m.FirstItem) + i;
    if (at >= 1 && at < static_cast<long long>(state.Items.size())) items.push_back(state.Items[at]);
  }
  return items;
}

SearchPair MatchItemPair(const GroupSearchState& state, const GroupMatch& match, const GroupMatchItem& item) {
  const int points = static_cast<int>(state.SearchPoints.size());
  if (points == 0) return {};
  const int index = match.PointIndex > 0 ? match.PointIndex : (item.Element - 1) % points + 1;
  if (index < 1 || index > points) return {};
  return state.SearchPoints[index - 1];
}

std::vector<std::string> GroupDisplayList(const Session& session, bool midpoints) {
  std::vector<std::string> lines;
  for (int p : SelectablePoints(session))
    lines.push_back(midpoints ? "All Midpoints of " + NameOf(session, p) : ShortGlyph(session, p) + "  " + NameOf(session, p));
  return lines;
}

int AddAllMidpointsOf(const Session& session, GroupSearchState& state, int point) {
  int added = 0;
  for (int q : SelectablePoints(session))
    if (q != point && AddSearchPair(session, state, point, q)) ++added;
  return added;
}

std::string SearchPlanetCount(const GroupSearchState& state) {
  const auto n = std::count_if(state.SearchPoints.begin(), state.SearchPoints.end(),
                               [](const SearchPair& p) { return p.First == p.Second; });
  return std::to_string(n) + " Planets";
}

std::string SearchMidpointCount(const GroupSearchState& state) {
  const auto n = std::count_if(state.SearchPoints.begin(), state.SearchPoints.end(),
                               [](const SearchPair& p) { return p.First != p.Second; });
  return std::to_string(n) + " Midpoints";
}

// The screen's rules ---------------------------------------------------------

int ClampHarmonicField(int h) { return std::clamp(h, 1, 360); }
int ClampMatchesField(int m) { return std::max(m, 2); }

bool CheckGroupSearch(Session& session, const GroupSearchParams& p, int searchPointCount, std::string& focus) {
  if (p.ToHarmonic < p.FromHarmonic) {
    session.ShowMessage(
        "Second harmonic value must be greater then the first. Please re-enter the harmonic range.",
        kIconExclamation, "Invalid Harmonic Range");
    focus = "Harmonic";
    return false;
  }
  if (!(p.Orb < 90.0f)) {
    session.ShowMessage("Orb is too large. Orb must be less than 90.", kIconExclamation, "Invalid Orb");
    focus = "Orb";
    return false;
  }
  if (p.SpecifiedPosition && p.ToHarmonic > 0 && p.Position > 360.0f / static_cast<float>(p.ToHarmonic)) {
    session.ShowMessage(
        "Position is too large for maximum harmonic. Either change the harmonic range or reset the position to "
        "be less than " +
            DegMin(360.0 / p.ToHarmonic),
        kIconExclamation, "Invalid Position");
    focus = "Position";
    return false;
  }
  if (searchPointCount < 1) {
    session.ShowMessage("At least one point must be selected. Please select one or more search points.",
                        kIconExclamation, "No Points Selected");
    focus = "DisplayList";
    return false;
  }
  focus.clear();
  return true;
}

std::string GroupSearchTitle(const Session& session) {
  return "Group/Family Search - " + session.project.Header.Title;
}

std::string GroupStatusPanel(const Session& session, int chartsAvailable) {
  return "Charts available for search: " + std::to_string(chartsAvailable) + " out of a total of " +
         std::to_string(session.project.Header.RecordCount);
}

bool CheckStripChartCount(Session& session, int selected) {
  constexpr int kMaxStrips = 10;
  if (selected <= kMaxStrips) return true;
  session.ShowMessage(std::to_string(kMaxStrips) + " charts only may be selected for display. Please select no more than " +
                          std::to_string(kMaxStrips) + " charts and try again.",
                      kIconExclamation, "Too Many Charts");
  return false;
}

bool CheckReportRecordCount(Session& session) {
  if (session.project.Header.RecordCount >= 3) return true;
  session.ShowMessage("The Project must contain at least 3 data records before a report can be produced.",
                      kIconExclamation, "Insufficient Records");
  return false;
}

double GroupPatternScore(const GroupMatch& match) {
  return match.Charts * 1000.0 + (match.Charts > 0 ? static_cast<double>(match.Hits) / match.Charts : 0.0);
}

std::vector<int> RankedGroupMatches(const GroupSearchState& state) {
  const int count = std::min(state.MatchCount, static_cast<int>(state.Matches.size()) - 1);
  std::vector<int> ranked;
  for (int k = 1; k <= count; ++k) ranked.push_back(k);
  std::stable_sort(ranked.begin(), ranked.end(), [&](int x, int y) {
    return GroupPatternScore(state.Matches[x]) > GroupPatternScore(state.Matches[y]);
  });
  return ranked;
}

}  // namespace vintar
