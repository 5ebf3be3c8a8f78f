#include "rectify/auto_rectify.h"

#include <cmath>

#include "calc/astro.h"
#include "calc/cache.h"
#include "calc/chart.h"
#include "core/parse.h"
#include "core/text.h"
#include "rectify/graphs.h"
#include "rectify/peaks.h"
#include "rectify/search.h"

namespace vintar {
namespace {

constexpr float kMinGraphWeight = 100.0f;
constexpr int kAutoGraphs[2] = {4, 5};
constexpr int kRadixSlot = 1;

struct Pass {
  int type;
  const char* status;
};
constexpr Pass kPasses[3] = {{kTransits, "Transit Search for Chart Time "},
                             {kSecondary, "Secondary Progressions Search for Chart Time "},
                             {kSolarArc, "Solar Arc Directions Search for Chart Time "}};

// Hands the run's cancel request to the steps inside it (cache builds,
// searches) without letting them overwrite the run's own status line.
class CancelOnly : public Progress {
 public:
  explicit CancelOnly(Progress* inner) : inner_(inner) {}
  bool Cancelled() override { return inner_ && inner_->Cancelled(); }

 private:
  Progress* inner_;
};

class RunStatus {
 public:
  RunStatus(AutoRectifyResult& result, Progress* progress)
      : result_(result), progress_(progress), cancelOnly_(progress) {}
  Progress* Inner() { return &cancelOnly_; }
  void Say(const std::string& text) {
    result_.Status = text;
    if (progress_) progress_->Status(text);
  }
  void Fraction(double done) {
    if (progress_) progress_->Fraction(done);
  }
  bool Cancelled() {
    if (progress_ && progress_->Cancelled()) result_.Cancelled = true;
    return result_.Cancelled;
  }

 private:
  AutoRectifyResult& result_;
  Progress* progress_;
  CancelOnly cancelOnly_;
};

std::string HoursText(const Session& session, double hours) {
  long seconds = std::lround(Mod(hours, 24.0) * 3600.0) % 86400;
  return FormatTime(static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                    static_cast<int>(seconds % 60), session.prefs.AMPM != 0);
}

// Graphs 1 and 2 become transits in both frames at harmonic 12, their
// working copies 4 and 5 are narrowed to the slow planets while they hold
// enough weight, and analysed.
bool GraphStage(Session& session, GraphState& graphs, RunStatus& status) {
  status.Say("Calculating Event Graphs...");
  if (!CheckEventOrder(session)) {
    status.Say("You will need to use the manual rectification procedure if you wish to proceed any further.");
    return false;
  }
  LoadGraphSettings(session, graphs);
  graphs.GraphCount = 2;
  for (int g = 1; g <= 2; ++g) {
    GraphRecord& r = graphs.Graph[g];
    r.Coordinate = static_cast<int16_t>(g == 1 ? kGeocentric : kHeliocentric);
    r.DynamicType = kTransits;
    r.ProgressionMethod = 0;
    r.MasterHarmonic = 12;
    CopyGraph(graphs, g, kAutoGraphs[g - 1]);
  }
  for (int g : kAutoGraphs) {
    bool cancelled = false;
    CalcGraphEvents(session, graphs, g, cancelled, status.Inner());
    if (cancelled || status.Cancelled()) return false;
    for (int first = 6; first <= 8; ++first) {
      SelectOnlyPoints(graphs, g, first, kPluto);
      CalcHarmDist(session, graphs, g, 0, cancelled);
      if (cancelled) return false;
      if (graphs.Graph[g].TotalWeight < kMinGraphWeight) break;
    }
    AnalyseHarmDist(graphs, g);
  }
  return true;
}

void PeakStage(Session& session, Rectification& rect, RunStatus& status) {
  status.Say("Finding Peaks on Event Graphs...");
  GraphState& graphs = rect.graphs;
  PeakState& peaks = rect.peaks;
  AutoSelectPeaks(session, graphs, 4);
  AutoSelectPeaks(session, graphs, 5);
  ReadPeaks(graphs, 4, peaks.Peaks4);
  ReadPeaks(graphs, 5, peaks.Peaks5);
  int common = 0;
  CommonPeaks(session, graphs, 4, 5, common, peaks.Common);
  peaks.CommonHarmonic = static_cast<int16_t>(common);
  if (!HasCommonRow(peaks.Common)) TopPeaks(peaks.Common, 3);
}

bool AngleStage(Session& session, Rectification& rect, RunStatus& status) {
  status.Say("Searching For Angles...");
  if (status.Cancelled()) return false;
  const ProjectHeader& h = session.project.Header;
  SearchAngles(session, rect.graphs, 0, rect.peaks.CommonHarmonic, rect.peaks.Common, h.EarliestTime, h.LatestTime,
               rect.peaks.Results, /*quiet=*/true);
  if (rect.peaks.Results.Count == 0) {
    session.ShowMessage("No possible chart angles were found. The auto-rectify option cannot find any chart times.",
                        kIconStop, "Unable to Rectify");
    return false;
  }
  return true;
}

// Three searches per candidate; each pass stops the run on a cancel.
bool SearchStage(Session& session, Rectification& rect, AutoRectifyResult& result, RunStatus& status) {
  const std::string optionsPath = OptionsLoadPath(session, OptionsFile::Auto);
  SearchState& search = rect.search;
  if (!LoadDynOptions(search.Options, optionsPath)) {
    session.ShowMessage("Unable to open rectification options file: " + optionsPath, kIconExclamation, "Vintar");
    return false;
  }
  const ProjectHeader& h = session.project.Header;
  const std::string from = DefaultSearchStart(session), to = DefaultSearchEnd(session);
  const AngleResult& candidates = rect.peaks.Results;
  const int n = candidates.Count;
  result.Scores.assign(n + 1, {0, 0, 0, 0});
  const double steps = 3.0 * n;
  int done = 0;

  for (const Pass& pass : kPasses) {
    for (int c = 1; c <= n; ++c) {
      const double time = CircularMid(24.0, candidates.ResultTime[c][kLow], candidates.ResultTime[c][kHigh]);
      status.Say(std::string(pass.status) + HoursText(session, time) + "  Searching... " + std::to_string(c) +
                 " of " + std::to_string(n));
      status.Fraction(done++ / steps);
      if (!CalcChart(session, kRadixSlot, h.Date, HoursText(session, time), h.ZoneTime, h.Longitude, h.Latitude))
        return false;
      DynamicSearchNew(session, search, pass.type, from, to, status.Inner());
      if (search.Cancelled || status.Cancelled()) {
        result.Cancelled = true;
        return false;
      }
      for (int i = 1; i <= search.HitCount(); ++i) {
        DynamicHit& hit = search.Hits[i];
        ScoreHit(session, search, hit, NearestEvent(session, hit), true);
      }
      const SearchTotalsResult totals = SearchTotals(search);
      result.Scores[c][pass.type] = totals.Ratio;
      if (pass.type == kSecondary) result.MaxSec = std::max(result.MaxSec, static_cast<float>(totals.Total));
      if (pass.type == kSolarArc) result.MaxDir = std::max(result.MaxDir, static_cast<float>(totals.Total));
    }
  }
  status.Fraction(1.0);
  return true;
}

void Rank(const Session& session, const AngleResult& candidates, AutoRectifyResult& result) {
  const int n = static_cast<int>(result.Scores.size()) - 1;
  result.Overall.assign(n + 1, 0.0f);
  result.Order.assign(n + 1, 0);
  for (int c = 1; c <= n; ++c) {
    const auto& s = result.Scores[c];
    result.Overall[c] = OverallScore(s[kTransits], s[kSecondary] / result.MaxSec, s[kSolarArc]);
    result.Order[c] = c;
  }
  IndexSortFloat(result.Overall, result.Order, n, /*descending=*/true);

  result.Rows.clear();
  for (int k = 1; k <= n; ++k) {
    const int c = result.Order[k];
    AutoRectifyRow row;
    row.Candidate = c;
    const auto& t = candidates.ResultTime[c];
    row.Time = CircularMid(24.0, t[kLow], t[kHigh]);
    row.TimeText = HoursText(session, row.Time);
    row.PlusMinusMinutes = static_cast<int>(Mod(t[kHigh] + 24.0 - t[kLow], 24.0) / 2.0 * 60.0);
    row.Asc = candidates.ResultAsc[c];
    row.MC = candidates.ResultMC[c];
    row.Transits = result.Scores[c][kTransits];
    row.Progressions = result.Scores[c][kSecondary] / result.MaxSec;
    row.SolarArcs = result.Scores[c][kSolarArc] / result.MaxDir;
    row.Overall = result.Overall[c];
    result.Rows.push_back(row);
  }
}

}  // namespace

float OverallScore(float transits, float progressions, float solarArcs) {
  const float t = transits, s = progressions, d = solarArcs;
  float sum;
  if (t < s && t < d)
    sum = s + d;
  else if (s < t && s < d)
    sum = t + d;
  else
    sum = t + s;
  return sum / 2.0f;
}

AutoRectifyResult RunAutoRectify(Session& session, Rectification& rect, int mode, Progress* progress) {
  AutoRectifyResult result;
  RunStatus status(result, progress);
  const uint64_t callsBefore = session.charts.EphemerisCalls;
  if (mode != kAutoFromPeaks && mode != kAutoFromCandidates) mode = kAutoFromEvents;

  bool ok = true;
  if (mode == kAutoFromEvents) ok = GraphStage(session, rect.graphs, status);
  if (ok && mode != kAutoFromCandidates) {
    PeakStage(session, rect, status);
    ok = AngleStage(session, rect, status);
  }
  if (ok) ok = SearchStage(session, rect, result, status);

  if (!result.Scores.empty()) Rank(session, rect.peaks.Results, result);
  result.Finished = ok && !result.Cancelled;
  if (result.Cancelled)
    status.Say("Search Terminated by User");
  else if (result.Finished && !result.Rows.empty())
    status.Say("Finished - Best Scoring Birth Time: " + result.Rows.front().TimeText);
  result.EphemerisCalls = session.charts.EphemerisCalls - callsBefore;
  return result;
}

}  // namespace vintar
