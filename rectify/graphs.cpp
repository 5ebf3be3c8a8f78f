#include "rectify/graphs.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "calc/astro.h"
#include "calc/cache.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr int kPlutoPoint = 11;
constexpr int kSettingsFlagsBytes = 2 * kPoints * kHeliocentric * kShownGraphs;
constexpr int kSettingsBytes = kSettingsFlagsBytes + 2 + kShownGraphs * (2 + 4 + 4);
static_assert(kSettingsBytes == 320);

// How often the long loops look at the cancel request.
constexpr int kPollEvery = 256;

int BarIndex(long long i) { return static_cast<int>(((i % kBars) + kBars) % kBars); }

bool ValidGraph(int graph) { return graph >= 1 && graph <= kGraphRecords; }

int ProjectRecordCount(const Session& session) {
  const ProjectState& project = session.project;
  return static_cast<int>(std::max<long long>(
      0, std::min<long long>(project.Header.RecordCount, static_cast<long long>(project.Events.size()) - 1)));
}

// Little-endian field writing and reading.
void PutI16(std::string& out, int16_t v) {
  const auto u = static_cast<uint16_t>(v);
  out += static_cast<char>(u & 0xFF);
  out += static_cast<char>(u >> 8);
}
void PutI32(std::string& out, int32_t v) {
  const auto u = static_cast<uint32_t>(v);
  for (int i = 0; i < 4; ++i) out += static_cast<char>((u >> (8 * i)) & 0xFF);
}

// Reads fields from a byte string; a field that the bytes do not hold in
// full is missing.
class FieldReader {
 public:
  explicit FieldReader(const std::string& bytes) : bytes_(bytes) {}
  bool I16(int16_t& v) {
    if (at_ + 2 > bytes_.size()) return Miss();
    v = static_cast<int16_t>(static_cast<uint16_t>(Byte(0) | Byte(1) << 8));
    at_ += 2;
    return true;
  }
  bool I32(int32_t& v) {
    if (at_ + 4 > bytes_.size()) return Miss();
    uint32_t u = 0;
    for (int i = 0; i < 4; ++i) u |= static_cast<uint32_t>(Byte(i)) << (8 * i);
    v = static_cast<int32_t>(u);
    at_ += 4;
    return true;
  }

 private:
  unsigned Byte(int i) const { return static_cast<unsigned char>(bytes_[at_ + i]); }
  bool Miss() {
    at_ = bytes_.size();
    return false;
  }
  const std::string& bytes_;
  size_t at_ = 0;
};

void AddWeight(GraphRecord& g, int bar, double weight) {
  g.Bars[BarIndex(bar)] += static_cast<float>(weight);
  g.TotalWeight += static_cast<float>(weight);
}

}  // namespace

// ---------------------------------------------------------------- settings

void InitialisePointSelection(GraphState& graphs, const Preferences& prefs) {
  graphs.Selection = {};
  for (int c = kGeocentric; c <= kHeliocentric; ++c)
    for (int set = 1; set <= kGraphRecords; ++set) {
      for (int p = kMars; p <= kPlutoPoint; ++p) graphs.Selection[c][set][p] = kTrue;
      graphs.Selection[c][set][prefs.NodePoint()] = kTrue;
    }
}

void DefaultGraphSettings(GraphState& graphs, const Preferences& prefs) {
  InitialisePointSelection(graphs, prefs);
  graphs.MasterHarmonic1 = graphs.Harmonic2 = graphs.Harmonic3 = 12;
  struct Setting {
    int coordinate, type, method;
  } const settings[kShownGraphs + 1] = {
      {}, {kGeocentric, kTransits, 0}, {kHeliocentric, kTransits, 0}, {kGeocentric, kSecondary, kNaibod}};
  for (int g = 1; g <= kShownGraphs; ++g) {
    GraphRecord& r = graphs.Graph[g];
    r.MasterHarmonic = 12;
    r.Coordinate = static_cast<int16_t>(settings[g].coordinate);
    r.DynamicType = settings[g].type;
    r.ProgressionMethod = settings[g].method;
  }
  auto& set3 = graphs.Selection[kGeocentric][3];
  set3 = {};
  for (int p : {kMoon, kSun, kMercury, kVenus, kMars}) set3[p] = kTrue;
  graphs.OptionShowing = 0;
}

std::string GraphSettingsFileName(const std::string& datPath) { return ReplaceExtension(RTrim(datPath), ".pla"); }

std::string FormatGraphSettings(const GraphState& graphs) {
  std::string out;
  out.reserve(kSettingsBytes);
  for (int g = 1; g <= kShownGraphs; ++g)
    for (int p = 1; p <= kPoints; ++p) {
      PutI16(out, graphs.Selection[kGeocentric][g][p]);
      PutI16(out, graphs.Selection[kHeliocentric][g][p]);
    }
  PutI16(out, graphs.OptionShowing);
  for (int g = 1; g <= kShownGraphs; ++g) {
    const GraphRecord& r = graphs.Graph[g];
    PutI16(out, r.Coordinate);
    PutI32(out, r.DynamicType);
    PutI32(out, r.ProgressionMethod);
  }
  return out;
}

void ParseGraphSettings(const std::string& bytes, GraphState& graphs, const Preferences& prefs) {
  InitialisePointSelection(graphs, prefs);
  FieldReader in(bytes);
  for (int g = 1; g <= kShownGraphs; ++g)
    for (int p = 1; p <= kPoints; ++p)
      for (int c = kGeocentric; c <= kHeliocentric; ++c) {
        int16_t flag = 0;
        in.I16(flag);
        graphs.Selection[c][g][p] = flag;
      }
  int16_t option = 0;
  in.I16(option);
  graphs.OptionShowing = option;
  for (int g = 1; g <= kShownGraphs; ++g) {
    GraphRecord& r = graphs.Graph[g];
    int16_t coordinate = kGeocentric;
    int32_t type = kTransits, method = 0;
    if (!in.I16(coordinate) || coordinate < 0 || coordinate > kHeliocentric) coordinate = kGeocentric;
    if (!in.I32(type) || type < kTransits || type > kSolarArc) type = kTransits;
    if (!in.I32(method) || method < 0 || method > kMeanQuotidian) method = 0;
    r.Coordinate = coordinate;
    r.DynamicType = type;
    r.ProgressionMethod = method;
  }
}

namespace {

bool LoadGraphSettingsUnguarded(Session& session, GraphState& graphs) {
  const std::string& datPath = session.project.ProjectPath;
  std::string bytes;
  if (Trim(datPath).empty() || ReadFileBytes(GraphSettingsFileName(datPath), bytes, kMaxSmallFileBytes) != 0) {
    DefaultGraphSettings(graphs, session.prefs);
    return false;
  }
  ParseGraphSettings(bytes, graphs, session.prefs);
  return true;
}

}  // namespace

bool LoadGraphSettings(Session& session, GraphState& graphs) {
  try {
    return LoadGraphSettingsUnguarded(session, graphs);
  } catch (...) {
    DefaultGraphSettings(graphs, session.prefs);
    return false;
  }
}

namespace {

bool SaveGraphSettingsUnguarded(const Session& session, const GraphState& graphs, std::string& error) {
  const std::string& datPath = session.project.ProjectPath;
  if (Trim(datPath).empty()) {
    error = "The project has no file name.";
    return false;
  }
  return WriteFileAtomically(GraphSettingsFileName(datPath), FormatGraphSettings(graphs), error);
}

}  // namespace

bool SaveGraphSettings(const Session& session, const GraphState& graphs, std::string& error) {
  try {
    return SaveGraphSettingsUnguarded(session, graphs, error);
  } catch (...) {
    error = "Out of memory.";
    return false;
  }
}

bool SaveGraphSettingsOnClose(Session& session, const GraphState& graphs) {
  if (Trim(session.project.ProjectPath).empty()) return true;
  std::string error;
  if (SaveGraphSettings(session, graphs, error)) return true;
  session.ShowMessage(std::string("Error whilst writing file:") + kLineEnd + kLineEnd + error, kIconExclamation,
                      "Vintar");
  return false;
}

// ---------------------------------------------------------------- event order

bool EventsInDateOrder(const Session& session) {
  const auto& events = session.project.Events;
  const int count = ProjectRecordCount(session);
  for (int n = 2; n <= count; ++n)
    if (events[n].JulianDay < events[n - 1].JulianDay) return false;
  return true;
}

namespace {

void SortEventsByDateUnguarded(Session& session) {
  ProjectState& project = session.project;
  const int count = ProjectRecordCount(session);
  std::vector<double> keys(count + 1);
  std::vector<int32_t> index(count + 1);
  for (int n = 1; n <= count; ++n) {
    keys[n] = project.Events[n].JulianDay;
    index[n] = n;
  }
  IndexSortDouble(keys, index, count, false);
  bool moved = false;
  std::vector<EventRecord> sorted(count + 1);
  for (int n = 1; n <= count; ++n) {
    sorted[n] = std::move(project.Events[index[n]]);
    moved = moved || index[n] != n;
  }
  for (int n = 1; n <= count; ++n) project.Events[n] = std::move(sorted[n]);
  if (moved) {
    project.Status.DataChanged = kTrue;
    project.Status.ReCalculate = -1;
    session.cache.Clear();
  }
}

}  // namespace

void SortEventsByDate(Session& session) {
  try {
    SortEventsByDateUnguarded(session);
  } catch (...) {
    // The records move only after every allocation has been made.
  }
}

bool CheckEventOrder(Session& session) {
  if (EventsInDateOrder(session)) return true;
  const int answer = session.ShowMessage(
      "Events must be sorted into ascending date order before finding transits. Do you wish to proceed?",
      kYesNo + kIconQuestion, "Sort Events?");
  if (answer != kYes) return false;
  SortEventsByDate(session);
  return true;
}

// ---------------------------------------------------------------- calculation

int GraphCoordinate(const GraphRecord& graph) {
  return graph.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
}

int GraphCacheMethod(const Session& session, const GraphRecord& graph) {
  if (graph.ProgressionMethod >= kNaibod && graph.ProgressionMethod <= kMeanQuotidian) return graph.ProgressionMethod;
  return ClampInteger(session.prefs.Progressions, kNaibod, kMeanQuotidian);
}

void CalcGraphEvents(Session& session, GraphState& graphs, int graph, bool& cancelled, Progress* progress) {
  cancelled = false;
  if (!ValidGraph(graph)) {
    cancelled = true;
    return;
  }
  GraphRecord& g = graphs.Graph[graph];
  if (g.Coordinate == 0) g.Coordinate = kGeocentric;
  const int type = ClampInteger(g.DynamicType, kTransits, kSolarArc);
  CalcEvents(session, GraphCoordinate(g), type, GraphCacheMethod(session, g), cancelled, progress);
}

namespace {

void CalcHarmDistUnguarded(Session& session, GraphState& graphs, int graph, int harmonic, bool& cancelled,
                           Progress* progress) {
  cancelled = false;
  if (!ValidGraph(graph)) {
    cancelled = true;
    return;
  }
  GraphRecord& g = graphs.Graph[graph];
  g.TotalWeight = 0.0f;
  g.Bars.fill(0.0f);
  if (harmonic != 0) g.MasterHarmonic = static_cast<int16_t>(harmonic);
  const int h = g.MasterHarmonic;
  if (h < 1) {
    cancelled = true;
    return;
  }
  const int count = ProjectRecordCount(session);
  if (count == 0) return;

  const int coordinate = GraphCoordinate(g);
  std::string bytes;
  const std::string path = CacheFileName(session.project.ProjectPath, coordinate, g.DynamicType);
  // The project's records only: whatever else the file holds is not read.
  if (Trim(session.project.ProjectPath).empty() ||
      ReadFilePrefix(path, bytes, static_cast<uint64_t>(count) * kCacheRecordSize) != 0) {
    cancelled = true;
    MarkGraphsStale(session);
    return;
  }

  const double seg = 360.0 / h;
  const double barsPerDegree = kBars / seg;
  // The longest arc that counts, never half a segment or more.
  float maxArc = graphs.MaxOrb12 * 12.0f / static_cast<float>(h);
  if (0.5 * seg < maxArc) maxArc = static_cast<float>(0.49999 * seg);
  const bool sidereal = session.prefs.Zodiac != 1;
  const auto& selection = graphs.Selection[coordinate][graph];
  const long long present = static_cast<long long>(bytes.size()) / kCacheRecordSize;

  for (int n = 1; n <= count; ++n) {
    if (progress && n % kPollEvery == 0) {
      progress->Fraction(static_cast<double>(n) / count);
      if (progress->Cancelled()) {
        cancelled = true;
        MarkGraphsStale(session);
        return;
      }
    }
    if (!session.project.Events[n].Enabled) continue;
    // A record that the cache does not hold adds nothing.
    if (n > present) break;
    EventPositionRecord r =
        DecodeCacheRecord(reinterpret_cast<const unsigned char*>(bytes.data()) + (n - 1LL) * kCacheRecordSize);
    // A damaged record (CalcEvents recalculates it) adds nothing.
    if (!CacheRecordUsable(r)) continue;
    if (sidereal) {
      const double offset = SiderealOffset(session.prefs.Zodiac, session.prefs.UserAyan, r.PrecessionArcsec);
      // A body that was not computed stays marked as such.
      for (int p = 1; p <= kPoints; ++p) {
        if (r.StartPos[p] >= 0.0f) r.StartPos[p] = static_cast<float>(Mod(r.StartPos[p] + offset, 360.0));
        if (r.EndPos[p] >= 0.0f) r.EndPos[p] = static_cast<float>(Mod(r.EndPos[p] + offset, 360.0));
      }
    }
    for (int p = 1; p <= kPoints; ++p) {
      if (!selection[p]) continue;
      const double start = r.StartPos[p], end = r.EndPos[p];
      const auto arc = static_cast<float>(Mod(end - start, 360.0));
      if (arc >= maxArc || end < 0.0) continue;
      const double x0 = Mod(start, seg) * barsPerDegree;
      const double x1 = Mod(end, seg) * barsPerDegree;
      const auto i0 = static_cast<long long>(std::floor(x0));
      const auto i1 = static_cast<long long>(std::floor(x1));
      const int b0 = BarIndex(i0);
      const int b1 = r.Motion[p] > 0 ? b0 : BarIndex(i1);
      if (b1 == b0) {
        AddWeight(g, b0, 1.0);
      } else if (i1 == i0) {
        AddWeight(g, BarIndex(i1), 1.0);
      } else {
        // Weight 1 spread evenly along the arc, over the segment's end if need be.
        const double w = Mod(x1 - x0, kBars);
        const long long first = i0;
        const int bars = BarIndex(i1 - i0);
        for (long long k = first; k <= first + bars; ++k) {
          double weight = 1.0 / w;
          if (k == first)
            weight = (1.0 - Mod(x0, 1.0)) / w;
          else if (k == first + bars)
            weight = Mod(x1, 1.0) / w;
          AddWeight(g, static_cast<int>(BarIndex(k)), weight);
        }
      }
    }
  }
  if (progress) progress->Fraction(1.0);
}

}  // namespace

void CalcHarmDist(Session& session, GraphState& graphs, int graph, int harmonic, bool& cancelled, Progress* progress) {
  try {
    CalcHarmDistUnguarded(session, graphs, graph, harmonic, cancelled, progress);
  } catch (...) {
    cancelled = true;
    MarkGraphsStale(session);
  }
}

float BarValue(const GraphState& graphs, int graph, int bar) {
  if (!ValidGraph(graph)) return 0.0f;
  const auto& bars = graphs.Graph[graph].Bars;
  const int b = BarIndex(bar);
  if (!graphs.SmoothBars) return bars[b];
  return (bars[BarIndex(b - 1)] + bars[b] + bars[BarIndex(b + 1)]) / 3.0f;
}

int CountPeakRuns(const GraphState& graphs, int graph, float threshold) {
  int runs = 0;
  bool inRun = false;
  for (int b = 0; b < kBars; ++b) {
    const bool above = BarValue(graphs, graph, b) > threshold;
    if (above && !inRun) ++runs;
    inRun = above;
  }
  // A run into bar 119 goes on in bar 0.
  if (runs > 1 && BarValue(graphs, graph, 0) > threshold && BarValue(graphs, graph, kBars - 1) > threshold) --runs;
  return runs;
}

void AnalyseHarmDist(GraphState& graphs, int graph) {
  if (!ValidGraph(graph)) return;
  GraphRecord& g = graphs.Graph[graph];
  std::array<float, kBars> v{};
  float highest = 0.0f;
  for (int b = 0; b < kBars; ++b) {
    v[b] = BarValue(graphs, graph, b);
    highest = std::max(highest, v[b]);
  }
  g.MaxHeight = highest;
  graphs.GraphMaxHeight = std::max(graphs.GraphMaxHeight, highest);
  g.Mean = g.TotalWeight / static_cast<float>(kBars);
  if (g.Mean <= 0.0f) {
    g.SD = 0.0f;
    g.Quality = 0.0f;
    return;
  }
  double squares = 0.0;
  for (float x : v) squares += (static_cast<double>(x) - g.Mean) * (static_cast<double>(x) - g.Mean);
  g.SD = static_cast<float>(std::sqrt(squares / kBars));

  const int peakCount = CountPeakRuns(graphs, graph, g.Mean + g.SD);
  const float threshold = graphs.QualityThresholdMode == 1 ? graphs.QualityMeanFactor * g.Mean : g.Mean + g.SD;
  const double divisor = 1.0 + std::fabs(peakCount - graphs.QualityIdealPeaks) * graphs.QualityPeakPenalty;
  double sum = 0.0;
  for (float x : v) {
    if (!(x > threshold)) continue;
    double excess = static_cast<double>(x) - threshold;
    if (graphs.QualitySquared) excess *= excess;
    sum += excess / divisor;
  }
  g.Quality = static_cast<float>(sum * 100.0);
}

void MarkGraphsStale(Session& session) { session.cache.NeedsGraphRecalc = kTrue; }

void BuildGraphs(Session& session, GraphState& graphs, bool& cancelled, Progress* progress) {
  cancelled = false;
  try {
    if (!CheckEventOrder(session)) {
      cancelled = true;
      MarkGraphsStale(session);
      return;
    }
    auto show = [&](const std::string& status) {
      if (!progress) return;
      progress->Caption("Calculating Harmonic Graphs");
      progress->Status(status);
    };
    show("Reading Events...");

    graphs.Graph[1].MasterHarmonic = graphs.MasterHarmonic1;
    graphs.Graph[2].MasterHarmonic = graphs.Harmonic2 != 0 ? graphs.Harmonic2 : graphs.MasterHarmonic1;
    graphs.Graph[3].MasterHarmonic = graphs.Harmonic3 != 0 ? graphs.Harmonic3 : graphs.MasterHarmonic1;
    graphs.GraphCount = kShownGraphs;

    for (int g = 1; g <= kShownGraphs; ++g) {
      CalcGraphEvents(session, graphs, g, cancelled, progress);
      if (cancelled) {
        MarkGraphsStale(session);
        return;
      }
    }
    show("Reading Events...");
    graphs.GraphMaxHeight = 0.0f;
    for (int g = 1; g <= kShownGraphs; ++g) {
      CalcHarmDist(session, graphs, g, 0, cancelled, progress);
      if (cancelled) {
        MarkGraphsStale(session);
        return;
      }
      AnalyseHarmDist(graphs, g);
    }
    for (int g = 1; g <= kShownGraphs; ++g) show("Calculating Graph " + std::to_string(g) + "...");
    session.cache.NeedsGraphRecalc = kFalse;
  } catch (...) {
    cancelled = true;
    MarkGraphsStale(session);
  }
}

// ---------------------------------------------------------------- working copies

void CopyGraph(GraphState& graphs, int from, int to) {
  if (!ValidGraph(from) || !ValidGraph(to) || from == to) return;
  graphs.Graph[to] = graphs.Graph[from];
  for (int c = kGeocentric; c <= kHeliocentric; ++c) graphs.Selection[c][to] = graphs.Selection[c][from];
}

void SelectOnlyPoints(GraphState& graphs, int graph, int first, int last) {
  if (!ValidGraph(graph)) return;
  auto& set = graphs.Selection[GraphCoordinate(graphs.Graph[graph])][graph];
  for (int p = 1; p <= kPoints; ++p) set[p] = p >= first && p <= last ? kTrue : kFalse;
}

// ---------------------------------------------------------------- graph options

GraphOptions BeginGraphOptions(const GraphState& graphs) {
  GraphOptions options;
  for (int g = 1; g <= kShownGraphs; ++g) options.Graph[g] = graphs.Graph[g];
  options.Selection = graphs.Selection;
  options.OptionShowing = graphs.OptionShowing;
  return options;
}

void SetGraphDynamicType(const Session& session, GraphRecord& graph, int dynamicType) {
  graph.DynamicType = ClampInteger(dynamicType, kTransits, kSolarArc);
  const bool progressed = graph.DynamicType == kSecondary || graph.DynamicType == kTertiary;
  graph.ProgressionMethod = progressed ? ClampInteger(session.prefs.Progressions, kNaibod, kMeanQuotidian) : 0;
}

namespace {

bool ValidSet(int coordinate, int set) {
  return coordinate >= kGeocentric && coordinate <= kHeliocentric && set >= 1 && set <= kSelectionSets;
}

int OtherNode(int node) { return node == kTrueNode ? kMeanNode : kTrueNode; }

}  // namespace

void SetNodeSelected(PointSelection& selection, int coordinate, int set, const Preferences& prefs, bool on) {
  if (!ValidSet(coordinate, set)) return;
  const int node = prefs.NodePoint();
  selection[coordinate][set][node] = on ? kTrue : kFalse;
  selection[coordinate][set][OtherNode(node)] = kFalse;
}

void SetAllPoints(PointSelection& selection, int coordinate, int set, const Preferences& prefs, bool on) {
  if (!ValidSet(coordinate, set)) return;
  for (int p = 1; p <= kPoints; ++p) selection[coordinate][set][p] = on ? kTrue : kFalse;
  SetNodeSelected(selection, coordinate, set, prefs, on);
}

void ApplyNodePreference(PointSelection& selection, const Preferences& prefs) {
  for (int c = kGeocentric; c <= kHeliocentric; ++c)
    for (int set = 1; set <= kSelectionSets; ++set)
      if (selection[c][set][kTrueNode] || selection[c][set][kMeanNode]) SetNodeSelected(selection, c, set, prefs, true);
}

bool ApplyGraphOptions(Session& session, GraphState& graphs, const GraphOptions& options) {
  for (int g = 1; g <= kShownGraphs; ++g) {
    GraphRecord record = options.Graph[g];
    record.MasterHarmonic = graphs.Graph[g].MasterHarmonic;
    if (record.Coordinate != kGeocentric && record.Coordinate != kHeliocentric) record.Coordinate = kGeocentric;
    if (record.DynamicType < kTransits || record.DynamicType > kSolarArc) record.DynamicType = kTransits;
    if (record.ProgressionMethod < 0 || record.ProgressionMethod > kMeanQuotidian) record.ProgressionMethod = 0;
    graphs.Graph[g] = record;
    for (int c = kGeocentric; c <= kHeliocentric; ++c) graphs.Selection[c][g] = options.Selection[c][g];
  }
  graphs.OptionShowing = options.OptionShowing;
  MarkGraphsStale(session);
  if (Trim(session.project.ProjectPath).empty()) return true;
  std::string error;
  return SaveGraphSettings(session, graphs, error);
}

// ---------------------------------------------------------------- master harmonic

int ClampHarmonic(long value) { return static_cast<int>(std::clamp<long>(value, kMinHarmonic, kMaxHarmonic)); }

int HarmonicFromText(const std::string& text) {
  const double v = Val(text);
  if (!(v > kMinHarmonic)) return kMinHarmonic;
  if (v > kMaxHarmonic) return kMaxHarmonic;
  return ClampHarmonic(static_cast<long>(v));
}

void ResetHarmonics(const GraphState& graphs, int& harmonic2, int& harmonic3) {
  harmonic2 = harmonic3 = graphs.MasterHarmonic1;
}

void ApplyHarmonics(Session& session, GraphState& graphs, int harmonic2, int harmonic3) {
  graphs.Harmonic2 = static_cast<int16_t>(ClampHarmonic(harmonic2));
  graphs.Harmonic3 = static_cast<int16_t>(ClampHarmonic(harmonic3));
  graphs.Graph[2].MasterHarmonic = graphs.Harmonic2;
  graphs.Graph[3].MasterHarmonic = graphs.Harmonic3;
  MarkGraphsStale(session);
}

// ---------------------------------------------------------------- screen texts

std::string RectifyScreenTitle(const Session& session) {
  const Vocabulary& v = session.vocab;
  const int z = ClampInteger(session.prefs.Zodiac, 1, static_cast<int>(v.ZodiacName.size())) - 1;
  const std::string zodiac = z >= 0 && z < static_cast<int>(v.ZodiacName.size()) ? v.ZodiacName[z] : "";
  const std::string node = session.prefs.TrueNode ? "True" : "Mean";
  return zodiac + " Zodiac - " + node + " Node";
}

std::string GraphReadout(const GraphState& graphs, int graph, int bar) {
  if (!ValidGraph(graph)) return {};
  const GraphRecord& g = graphs.Graph[graph];
  const int b = BarIndex(bar);
  const int harmonic = std::max<int>(1, g.MasterHarmonic);
  const double degrees = (b + 0.5) * (360.0 / harmonic) / kBars;
  int peak = 0, run = 0;
  for (int i = 0; i <= b; ++i) {
    if (g.PeakFlags[i] && (i == 0 || !g.PeakFlags[i - 1])) ++run;
    if (i == b && g.PeakFlags[i]) peak = run;
  }
  char text[96];
  std::snprintf(text, sizeof text, "%.1f  H%d Peak No %d Height %.2f", degrees, harmonic, peak,
                static_cast<double>(BarValue(graphs, graph, b)));
  return text;
}

std::string AngleSearchHeading(const Session& session) {
  return "Angle Search: " + session.project.Header.Title;
}

bool CheckNatalForRectify(Session& session) {
  if (NatalCheck(session, session.project.Header)) return true;
  session.ShowMessage(
      std::string("The natal details of the current project are incomplete.") + kLineEnd +
          "Please enter the name, date, place, latitude, longitude and time zone of the birth before using "
          "this function.",
      kIconExclamation, "Natal Details Required");
  return false;
}

}  // namespace vintar
