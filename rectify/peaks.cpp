#include "rectify/peaks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

#include "calc/astro.h"
#include "calc/chart.h"
#include "core/parse.h"
#include "core/preferences.h"
#include "core/text.h"

namespace vintar {
namespace {

int BarIndex(long long i) { return static_cast<int>(((i % kBars) + kBars) % kBars); }
bool ValidGraph(int graph) { return graph >= 1 && graph <= kGraphRecords; }

// The rows of a list put in the order of `index` (1-based).
void ReorderRows(PeakList& list, const std::vector<int32_t>& index) {
  std::vector<PeakRow> rows(1);
  for (int i = 1; i <= list.Count(); ++i) rows.push_back(list.Rows[index[i]]);
  list.Rows = std::move(rows);
}

void SortRowsByStart(PeakList& list) {
  const int n = list.Count();
  std::vector<float> keys(n + 1);
  std::vector<int32_t> index(n + 1);
  for (int i = 1; i <= n; ++i) {
    keys[i] = list.Rows[i].Start;
    index[i] = i;
  }
  IndexSortFloat(keys, index, n, false);
  ReorderRows(list, index);
}

// A flagged run found by the walk of AutoSelectPeaks; positions count from
// the walk's start and are taken modulo 120.
struct Run {
  long long First = 0, Last = 0;
  float Height = 0.0f;
  float Area = 0.0f;
};

}  // namespace

// ---------------------------------------------------------------- results

void AngleResult::Clear() { Resize(0); }

void AngleResult::Resize(int count) {
  count = std::max(0, count);
  ResultMC.resize(count + 1);
  ResultAsc.resize(count + 1);
  ResultVertex.resize(count + 1);
  ResultTime.resize(count + 1);
  ResultIndex.resize(count + 1);
  Count = count;
}

void CopyResult(AngleResult& r, int from, int to) {
  if (from < 1 || to < 1 || from > r.Count || to > r.Count) return;
  r.ResultMC[to] = r.ResultMC[from];
  r.ResultAsc[to] = r.ResultAsc[from];
  r.ResultVertex[to] = r.ResultVertex[from];
  r.ResultTime[to] = r.ResultTime[from];
  r.ResultIndex[to] = r.ResultIndex[from];
}

// ---------------------------------------------------------------- peak selection

void ClearPeakFlags(GraphState& graphs, int graph) {
  if (ValidGraph(graph)) graphs.Graph[graph].PeakFlags.fill(kFalse);
}

int AutoSelectPeaks(const Session& session, GraphState& graphs, int graph) {
  if (!ValidGraph(graph)) return 0;
  GraphRecord& g = graphs.Graph[graph];
  auto& flag = g.PeakFlags;
  flag.fill(kFalse);
  std::array<float, kBars> v{};
  for (int b = 0; b < kBars; ++b) v[b] = BarValue(graphs, graph, b);
  const float t1 = g.Mean + g.SD;
  const float t3 = g.Mean + session.prefs.ForcePeakSDFactor * g.SD;

  // Every bar above Mean + SD, with its neighbours when they are above too.
  for (int i = 0; i < kBars; ++i) {
    if (v[i] > t1) flag[i] = kTrue;
    if (v[BarIndex(i + 1)] > t1) flag[BarIndex(i + 1)] = kTrue;
    if (v[BarIndex(i - 1)] > t1) flag[BarIndex(i - 1)] = kTrue;
  }
  // Gaps of two bars are bridged.
  for (int i = 0; i < kBars; ++i)
    if (flag[BarIndex(i - 1)] && flag[BarIndex(i + 2)]) flag[i] = flag[BarIndex(i + 1)] = kTrue;

  // The walk begins after the last pair of unflagged bars, so that no run
  // is cut in two by its start.
  long long start = 0;
  for (int i = 0; i < kBars; ++i)
    if (!flag[i] && !flag[BarIndex(i + 1)]) start = i + 1;

  std::vector<Run> runs(1);
  bool open = false;
  long long runStart = 0;
  float runMax = 0.0f;
  auto close = [&](long long position) {
    const long long width = position - runStart;
    if (width < session.prefs.MinPeakWidth && runMax < t3) {
      for (long long k = runStart; k < position; ++k) flag[BarIndex(k)] = kFalse;
    } else {
      Run run;
      run.First = runStart;
      run.Last = position - 1;
      run.Height = runMax;
      for (long long k = runStart; k < position; ++k) run.Area += v[BarIndex(k)] - t1;
      runs.push_back(run);
    }
    open = false;
    runMax = 0.0f;
  };
  for (long long position = start; position < start + kBars; ++position) {
    const int b = BarIndex(position);
    if (flag[b]) {
      if (!open) {
        open = true;
        runStart = position;
      }
      runMax = std::max(runMax, v[b]);
    } else if (open) {
      close(position);
    }
  }
  if (open) close(start + kBars);

  const int count = static_cast<int>(runs.size()) - 1;
  if (count == 0) return 0;
  std::vector<float> areas(count + 1);
  std::vector<int32_t> order(count + 1);
  for (int r = 1; r <= count; ++r) {
    areas[r] = runs[r].Area;
    order[r] = r;
  }
  IndexSortFloat(areas, order, count, true);
  const int keep = std::clamp<int>(session.prefs.MaxPeaks, 0, count);
  for (int r = keep + 1; r <= count; ++r)
    for (long long k = runs[order[r]].First; k <= runs[order[r]].Last; ++k) flag[BarIndex(k)] = kFalse;
  return keep;
}

void AutoSelectAllGraphs(const Session& session, GraphState& graphs) {
  const int count = std::clamp<int>(graphs.GraphCount, 0, kGraphRecords);
  for (int g = 1; g <= count; ++g) AutoSelectPeaks(session, graphs, g);
}

void ReadPeaks(const GraphState& graphs, int graph, PeakList& list) {
  list.Clear();
  list.HasSource = false;
  if (!ValidGraph(graph)) return;
  const GraphRecord& g = graphs.Graph[graph];
  const int h = g.MasterHarmonic;
  if (h < 1) return;
  const auto& flag = g.PeakFlags;
  const float barDeg = 360.0f / static_cast<float>(h * kBars);
  const float threshold = g.Mean + g.SD;

  long long start = 0;
  for (int i = 0; i < kBars; ++i)
    if (!flag[i] && !flag[BarIndex(i + 1)]) start = BarIndex(i + 1);
  if (!flag[kBars - 1] && !flag[kBars - 2]) start = 0;

  bool open = false;
  PeakRow row;
  for (long long position = start; position < start + kBars; ++position) {
    const int b = BarIndex(position);
    if (!flag[b]) continue;
    const float low = static_cast<float>(b) * barDeg;
    const float high = low + barDeg;
    const float excess = BarValue(graphs, graph, b) - threshold;
    if (!open) {
      open = true;
      row = PeakRow{};
      row.Start = low;
      row.Area = excess;
    } else {
      row.Area += excess;
    }
    if (!flag[BarIndex(b + 1)] || position == start + kBars - 1) {
      row.End = high;
      list.Add(row);
      open = false;
    }
  }
}

// ---------------------------------------------------------------- common peaks

int CommonHarmonic(int harmonicA, int harmonicB) {
  if (harmonicA == harmonicB) return std::max(1, harmonicA);
  return std::max(1, std::gcd(std::max(0, harmonicA), std::max(0, harmonicB)));
}

PeakList SpreadPeaks(const PeakList& list, int harmonic, int common, int source) {
  PeakList spread;
  spread.HasSource = true;
  if (harmonic < 1 || common < 1) return spread;
  const double circle = 360.0 / common;
  const double step = 360.0 / harmonic;
  const int repeats = std::max(1, harmonic / common);
  for (int i = 1; i <= list.Count(); ++i)
    for (int k = 0; k < repeats; ++k) {
      PeakRow row = list.Rows[i];
      row.Start = static_cast<float>(Mod(row.Start + k * step, circle));
      row.End = static_cast<float>(Mod(row.End + k * step, circle));
      row.Source = static_cast<float>(source);
      spread.Add(row);
    }
  SortRowsByStart(spread);
  return spread;
}

namespace {

void CommonPeaksUnguarded(const Session& session, const PeakList& listA, int harmonicA, const PeakList& listB,
                          int harmonicB, int& commonHarmonic, PeakList& common) {
  common.Clear();
  common.HasSource = true;
  const int c = CommonHarmonic(harmonicA, harmonicB);
  commonHarmonic = c;
  const PeakList a = SpreadPeaks(listA, harmonicA, c, 1);
  const PeakList b = SpreadPeaks(listB, harmonicB, c, 2);
  const double circle = 360.0 / c;
  const double gap = session.prefs.MaxGapBars * 3.0 / c;
  const double extra = session.prefs.AddCommonBars * 3.0 / c;

  // One sweep over both lists in order of Start; in a tie list 1 goes first.
  int ia = 1, ib = 1;
  double last = -99.0;
  int previous = 0;
  while (ia <= a.Count() || ib <= b.Count()) {
    int from;
    if (ia > a.Count())
      from = 2;
    else if (ib > b.Count())
      from = 1;
    else
      from = a.Rows[ia].Start <= b.Rows[ib].Start + 0.01 ? 1 : 2;
    const PeakRow& row = from == 1 ? a.Rows[ia++] : b.Rows[ib++];
    const double allowance = from == previous ? 0.0 : gap;
    if (common.Count() > 0 && last + allowance >= row.Start) {
      PeakRow& current = common.Rows.back();
      if (row.End > current.End) current.End = row.End;
      if (from != previous) current.Source = 0.0f;
      current.Area += row.Area;
    } else {
      PeakRow added = row;
      added.Source = static_cast<float>(from);
      common.Add(added);
    }
    last = row.End + (row.Start > row.End ? circle : 0.0);
    previous = from;
  }

  // The last row and the first may meet over the circle's end.
  if (common.Count() > 1) {
    PeakRow& first = common.Rows[1];
    const PeakRow lastRow = common.Rows.back();
    if (Mod(first.Start - lastRow.End, circle) < gap) {
      first.Start = lastRow.Start;
      first.Source = 0.0f;
      first.Area += lastRow.Area;
      common.Rows.pop_back();
    }
  }

  for (int i = 1; i <= common.Count(); ++i) {
    PeakRow& row = common.Rows[i];
    if (row.Source != 0.0f) continue;
    row.Start = static_cast<float>(Mod(row.Start - extra, circle));
    row.End = static_cast<float>(Mod(row.End + extra, circle));
  }
}

}  // namespace

void CommonPeaks(const Session& session, const PeakList& listA, int harmonicA, const PeakList& listB, int harmonicB,
                 int& commonHarmonic, PeakList& common) {
  try {
    CommonPeaksUnguarded(session, listA, harmonicA, listB, harmonicB, commonHarmonic, common);
  } catch (...) {
    common.Clear();
  }
}

void CommonPeaks(const Session& session, const GraphState& graphs, int graphA, int graphB, int& commonHarmonic,
                 PeakList& common) {
  PeakList a, b;
  ReadPeaks(graphs, graphA, a);
  ReadPeaks(graphs, graphB, b);
  const int ha = ValidGraph(graphA) ? graphs.Graph[graphA].MasterHarmonic : 1;
  const int hb = ValidGraph(graphB) ? graphs.Graph[graphB].MasterHarmonic : 1;
  CommonPeaks(session, a, ha, b, hb, commonHarmonic, common);
}

bool HasCommonRow(const PeakList& list) {
  for (int i = 1; i <= list.Count(); ++i)
    if (list.Rows[i].Source == 0.0f) return true;
  return false;
}

void TopPeaks(PeakList& list, int keep) {
  if (HasCommonRow(list)) return;
  const int n = list.Count();
  std::vector<float> keys(n + 1);
  std::vector<int32_t> index(n + 1);
  for (int i = 1; i <= n; ++i) {
    keys[i] = list.Rows[i].Area;
    index[i] = i;
  }
  IndexSortFloat(keys, index, n, true);
  ReorderRows(list, index);
  for (int i = 1; i <= std::min(n, keep); ++i) list.Rows[i].Source = 0.0f;
}

bool CombineGraphPeaks(const Session& session, const GraphState& graphs, int graphA, int graphB,
                       std::array<PeakList, kShownGraphs + 1>& lists, PeakList& common, int& commonHarmonic) {
  for (int g = 1; g <= kShownGraphs; ++g) ReadPeaks(graphs, g, lists[g]);
  graphA = std::clamp(graphA, 1, kShownGraphs);
  graphB = std::clamp(graphB, 1, kShownGraphs);
  CommonPeaks(session, lists[graphA], graphs.Graph[graphA].MasterHarmonic, lists[graphB],
              graphs.Graph[graphB].MasterHarmonic, commonHarmonic, common);
  if (HasCommonRow(common)) return false;
  TopPeaks(common, kTopPeaksKept);
  return common.Count() > 0;
}

// ---------------------------------------------------------------- angle search

double CircularMid(double period, double a, double b) {
  double m = Mod((a + b) * 0.5, period);
  if (Mod(std::fabs(a - m), period) > period / 4.0) m = Mod(m + period / 2.0, period);
  return m;
}

bool ParseAngleSearchPlace(Session& session, const std::string& from, const std::string& to, AngleSearchPlace& place) {
  const ProjectHeader& h = session.project.Header;
  bool failed = false;
  int16_t day = 0, month = 0, year = 0;
  ParseDate(session, h.Date, day, month, year, true, failed);
  if (failed) return false;
  float zone = 0.0f;
  std::string mnemonic;
  ParseZone(session, h.ZoneTime, zone, mnemonic, true, failed);
  if (failed) return false;
  double latitude = 0.0, longitude = 0.0;
  ParseLatitude(session, h.Latitude, latitude, true, failed);
  if (failed) return false;
  ParseLongitude(session, h.Longitude, longitude, true, failed);
  if (failed) return false;
  double limits[2] = {0.0, 0.0};
  const std::string* texts[2] = {&from, &to};
  for (int i = 0; i < 2; ++i) {
    int16_t hours = 0, minutes = 0, seconds = 0;
    ParseTime(session, *texts[i], hours, minutes, seconds, true, failed);
    if (failed) return false;
    limits[i] = hours + minutes / 60.0 + seconds / 3600.0;
  }
  place.Day = day;
  place.Month = month;
  place.Year = year;
  place.Zone = zone;
  place.Latitude = latitude;
  place.Longitude = longitude;
  place.LowHours = limits[0];
  place.HighHours = limits[1];
  return true;
}

namespace {

int SearchAnglesUnguarded(Session& session, const GraphState& graphs, int harmonicMode, int harmonic,
                          const PeakList& list, const AngleSearchPlace& place, AngleResult& results,
                          Progress* progress) {
  results.Clear();
  const int h =
      harmonicMode == 0 ? harmonic : (ValidGraph(harmonicMode) ? graphs.Graph[harmonicMode].MasterHarmonic : 0);
  if (h < 1) return 0;
  const double seg = 360.0 / h;
  const auto& rows = list.Rows;
  const int n = list.Count();
  auto angles = [&](double mc) {
    return AnglesFromMC(session, mc, place.Day, place.Month, place.Year, kAngleSearchHours, place.Zone, place.Longitude,
                        place.Latitude);
  };

  for (int i = 1; i <= n; ++i) {
    if (progress) {
      progress->Fraction(static_cast<double>(i - 1) / n);
      if (progress->Cancelled()) break;
    }
    for (int k = 0; k < h; ++k) {
      const double mcLow = rows[i].Start + k * seg;
      const AnglesFromMCResult low = angles(mcLow);
      double mcHigh = rows[i].End + k * seg;
      // A peak over the segment's end reaches 30 degrees on.
      if (rows[i].Start > rows[i].End) mcHigh = Mod(mcHigh + 30.0, 360.0);
      const AnglesFromMCResult high = angles(mcHigh);
      const double mid = CircularMid(24.0, low.LocalHours, high.LocalHours);
      if (mid < place.LowHours || mid > place.HighHours) continue;

      double a = Mod(low.Ascendant, seg), b = Mod(high.Ascendant, seg);
      if (b < a) b += seg;
      for (int j = 1; j <= n; ++j) {
        if (list.HasSource && rows[i].Source != 0.0f && rows[j].Source != 0.0f) continue;
        const double l = rows[j].Start;
        double r = rows[j].End;
        if (r < l) r += seg;
        const bool meets = (a > l && a < r) || (b > l && b < r) || (a < l && b > r);
        if (!meets) continue;
        results.Resize(results.Count + 1);
        const int c = results.Count;
        results.ResultMC[c] = {static_cast<float>(mcLow), static_cast<float>(mcHigh)};
        results.ResultAsc[c] = {static_cast<float>(low.Ascendant), static_cast<float>(high.Ascendant)};
        results.ResultVertex[c] = {static_cast<float>(low.Vertex), static_cast<float>(high.Vertex)};
        results.ResultTime[c] = {static_cast<float>(low.LocalHours), static_cast<float>(high.LocalHours)};
        results.ResultIndex[c] = static_cast<int16_t>(std::min(c, 32767));
      }
    }
  }
  SortAndCondense(results, progress);
  if (progress) progress->Fraction(1.0);
  return results.Count;
}

}  // namespace

int SearchAngles(Session& session, const GraphState& graphs, int harmonicMode, int harmonic, const PeakList& list,
                 const AngleSearchPlace& place, AngleResult& results, Progress* progress) {
  try {
    return SearchAnglesUnguarded(session, graphs, harmonicMode, harmonic, list, place, results, progress);
  } catch (...) {
    results.Clear();
    return 0;
  }
}

bool SearchAngles(Session& session, const GraphState& graphs, int harmonicMode, int harmonic, const PeakList& list,
                  const std::string& from, const std::string& to, AngleResult& results, bool quiet,
                  Progress* progress) {
  results.Clear();
  try {
    AngleSearchPlace place;
    if (!ParseAngleSearchPlace(session, from, to, place)) return false;
    SearchAngles(session, graphs, harmonicMode, harmonic, list, place, results, progress);
  } catch (...) {
    results.Clear();
  }
  if (results.Count == 0 && !quiet) session.ShowMessage(kNoAnglesMessage, kIconExclamation, kNoAnglesTitle);
  return true;
}

namespace {

// Puts the candidates in the order of `index` (1-based).
void ReorderResults(AngleResult& r, const std::vector<int32_t>& index) {
  AngleResult sorted;
  sorted.Resize(r.Count);
  for (int i = 1; i <= r.Count; ++i) {
    sorted.ResultMC[i] = r.ResultMC[index[i]];
    sorted.ResultAsc[i] = r.ResultAsc[index[i]];
    sorted.ResultVertex[i] = r.ResultVertex[index[i]];
    sorted.ResultTime[i] = r.ResultTime[index[i]];
    sorted.ResultIndex[i] = r.ResultIndex[index[i]];
  }
  r = std::move(sorted);
}

void SortResultsBy(AngleResult& r, const std::vector<AngleResult::Range>& key) {
  std::vector<float> keys(r.Count + 1);
  std::vector<int32_t> index(r.Count + 1);
  for (int i = 1; i <= r.Count; ++i) {
    keys[i] = key[i][kLow];
    index[i] = i;
  }
  IndexSortFloat(keys, index, r.Count, false);
  ReorderResults(r, index);
}

double MidTime(const AngleResult& r, int i) {
  return Mod((static_cast<double>(r.ResultTime[i][kLow]) + r.ResultTime[i][kHigh]) / 2.0, 24.0);
}

}  // namespace

void SortAndCondense(AngleResult& r, Progress* progress) {
  SortResultsBy(r, r.ResultTime);
  if (progress) progress->Status("Condensing ");
  int i = 1;
  while (i < r.Count) {
    if (std::fabs(MidTime(r, i) - MidTime(r, i + 1)) < 10.0 / 60.0) {
      r.ResultMC[i][kHigh] = r.ResultMC[i + 1][kHigh];
      r.ResultAsc[i][kHigh] = r.ResultAsc[i + 1][kHigh];
      r.ResultVertex[i][kHigh] = r.ResultVertex[i + 1][kHigh];
      r.ResultTime[i][kHigh] = r.ResultTime[i + 1][kHigh];
      for (int k = i + 1; k < r.Count; ++k) CopyResult(r, k + 1, k);
      r.Resize(r.Count - 1);
    } else {
      ++i;
    }
  }
}

void SortAngleResults(AngleResult& results, AngleSortKey key) {
  switch (key) {
    case AngleSortKey::Asc:
      SortResultsBy(results, results.ResultAsc);
      break;
    case AngleSortKey::MC:
      SortResultsBy(results, results.ResultMC);
      break;
    case AngleSortKey::Time:
      SortResultsBy(results, results.ResultTime);
      break;
  }
}

void DeleteAngleResults(AngleResult& results, const std::vector<int>& rows) {
  std::vector<bool> remove(results.Count + 1, false);
  for (int row : rows)
    if (row >= 1 && row <= results.Count) remove[row] = true;
  int kept = 0;
  for (int i = 1; i <= results.Count; ++i) {
    if (remove[i]) continue;
    ++kept;
    if (kept != i) CopyResult(results, i, kept);
  }
  results.Resize(kept);
}

// ---------------------------------------------------------------- peak settings

namespace {

struct PeakField {
  const char* key;
  const char* label;
  bool whole;
  double low, high;
};

constexpr PeakField kPeakFields[kPeakOptFields] = {
    {"MinPeakWidth", "The minimum peak width", true, 1, 120},
    {"PeakSDFactor", "The peak SD factor", false, 0, 100},
    {"ForcePeakSDFactor", "The forced peak SD factor", false, 0, 100},
    {"MaxPeaks", "The number of peaks per graph", true, 1, 120},
    {"MaxGapBars", "The largest gap between common peaks", true, 0, 120},
    {"AddCommonBars", "The number of bars added to common peaks", true, 0, 120},
};

std::string FloatText(float value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%g", static_cast<double>(value));
  return buffer;
}

// The number a field holds, when the whole text is one.
bool FieldNumber(const std::string& text, double& value) {
  const std::string t = Trim(text);
  if (t.empty()) return false;
  char* end = nullptr;
  value = std::strtod(t.c_str(), &end);
  return end != nullptr && *end == '\0' && std::isfinite(value);
}

}  // namespace

void LoadPeakSettings(Session& session) {
  Preferences& p = session.prefs;
  const Preferences d;
  auto integer = [&](const char* key, int16_t def) { return ClampToInt16(GetPreferenceInteger(session, key, def)); };
  p.MinPeakWidth = integer("MinPeakWidth", d.MinPeakWidth);
  p.PeakSDFactor = static_cast<float>(GetPreferenceFloat(session, "PeakSDFactor", d.PeakSDFactor));
  p.ForcePeakSDFactor = static_cast<float>(GetPreferenceFloat(session, "ForcePeakSDFactor", d.ForcePeakSDFactor));
  p.MaxPeaks = integer("MaxPeaks", d.MaxPeaks);
  p.MaxGapBars = integer("MaxGapBars", d.MaxGapBars);
  p.AddCommonBars = integer("AddCommonBars", d.AddCommonBars);
}

bool SavePeakSettings(const Session& session) {
  const Preferences& p = session.prefs;
  const double values[kPeakOptFields] = {static_cast<double>(p.MinPeakWidth),
                                         p.PeakSDFactor,
                                         p.ForcePeakSDFactor,
                                         static_cast<double>(p.MaxPeaks),
                                         static_cast<double>(p.MaxGapBars),
                                         static_cast<double>(p.AddCommonBars)};
  bool ok = true;
  for (int i = 0; i < kPeakOptFields; ++i)
    ok = PutProfileNumber(session, "Vintar", kPeakFields[i].key, values[i]) && ok;
  return ok;
}

PeakOptTexts PeakOptFieldTexts(const Preferences& p) {
  return {std::to_string(p.MinPeakWidth), FloatText(p.PeakSDFactor),    FloatText(p.ForcePeakSDFactor),
          std::to_string(p.MaxPeaks),     std::to_string(p.MaxGapBars), std::to_string(p.AddCommonBars)};
}

int CheckPeakOpt(Session& session, const PeakOptTexts& texts) {
  for (int i = 0; i < kPeakOptFields; ++i) {
    const PeakField& f = kPeakFields[i];
    double value = 0.0;
    const bool number = FieldNumber(texts[i], value);
    bool good;
    std::string rule;
    if (f.whole) {
      good = number && value == std::floor(value) && value >= f.low && value <= f.high;
      rule = " must be a whole number from " + std::to_string(static_cast<int>(f.low)) + " to " +
             std::to_string(static_cast<int>(f.high)) + ".";
    } else {
      good = number && value > f.low && value <= f.high;
      rule = " must be a number above " + std::to_string(static_cast<int>(f.low)) + " and not over " +
             std::to_string(static_cast<int>(f.high)) + ".";
    }
    if (!good) {
      session.ShowMessage(f.label + rule, kIconExclamation, "Peak Options");
      return i;
    }
  }
  return -1;
}

bool ApplyPeakOpt(Session& session, const PeakOptTexts& texts) {
  if (CheckPeakOpt(session, texts) >= 0) return false;
  double v[kPeakOptFields];
  for (int i = 0; i < kPeakOptFields; ++i) FieldNumber(texts[i], v[i]);
  Preferences& p = session.prefs;
  p.MinPeakWidth = static_cast<int16_t>(v[0]);
  p.PeakSDFactor = static_cast<float>(v[1]);
  p.ForcePeakSDFactor = static_cast<float>(v[2]);
  p.MaxPeaks = static_cast<int16_t>(v[3]);
  p.MaxGapBars = static_cast<int16_t>(v[4]);
  p.AddCommonBars = static_cast<int16_t>(v[5]);
  SavePeakSettings(session);
  return true;
}

std::vector<std::string> AngleSearchHeader(const Session& session, const GraphState& graphs) {
  std::vector<std::string> lines{RectifyScreenTitle(session)};
  const Vocabulary& v = session.vocab;
  for (int g = 1; g <= kShownGraphs; ++g) {
    const GraphRecord& r = graphs.Graph[g];
    const int coordinate = r.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
    const int type = ClampInteger(r.DynamicType, kTransits, kSolarArc);
    std::string line = "Graph " + std::to_string(g) + ": " +
                       (coordinate < static_cast<int>(v.CoordName.size()) ? v.CoordName[coordinate] : "") + " " +
                       (type < static_cast<int>(v.DynamicMethodName.size()) ? v.DynamicMethodName[type] : "") +
                       ", Harmonic " + std::to_string(r.MasterHarmonic);
    if (g > graphs.GraphCount) line += " (Not Used)";
    lines.push_back(line);
  }
  const ProjectHeader& h = session.project.Header;
  lines.push_back(h.EarliestTime + " to " + h.LatestTime);
  return lines;
}

}  // namespace vintar
