#include "rectify/auto_rectify.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "calc/astro.h"
#include "calc/cache.h"
#include "calc/chart.h"
#include "calc/ephemeris.h"
#include "core/parse.h"
#include "core/text.h"
#include "rectify/graphs.h"
#include "rectify/peaks.h"
#include "rectify/search.h"

namespace vintar {
namespace {

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

// Graphs 1 and 2 become transits in both frames at harmonic 12, their
// working copies 4 and 5 are narrowed to the slow planets while they hold
// enough weight, and analysed. The graphs' other settings are the
// project's as they stand.
bool GraphStage(Session& session, GraphState& graphs, RunStatus& status) {
  status.Say("Calculating Event Graphs...");
  if (!CheckEventOrder(session)) {
    status.Say("You will need to use the manual rectification procedure if you wish to proceed any further.");
    return false;
  }
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
    // The request is polled first, so that a stop seen by the cache build
    // marks the run as stopped.
    if (status.Cancelled() || cancelled) return false;
    for (int first = 6; first <= 8; ++first) {
      SelectOnlyPoints(graphs, g, first, kPluto);
      CalcHarmDist(session, graphs, g, 0, cancelled);
      if (status.Cancelled() || cancelled) return false;
      if (graphs.Graph[g].TotalWeight < session.prefs.AutoGraphMinWeight) break;
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

// The search stage's workers. Candidates are independent of one another, so
// each pass hands them out to workers that each own a copy of the session
// (its chart slots, its ephemeris state on its own thread) and a search
// state; the transit positions a worker computed serve its next candidate.
// A worker's messages are kept per candidate and shown afterwards in
// candidate order, so the run says and scores the same on any number of
// threads.
struct Worker {
  CapturingSink sink;
  std::unique_ptr<Session> session;
  SearchState search;
};

struct CandidateResult {
  float Ratio = 0.0f;
  int Total = 0;
  bool Done = false;         // searched and scored
  bool Failed = false;       // the candidate's chart could not be cast
  std::vector<CapturingSink::Entry> Messages;
};

// Forwards a shared stop request to a worker's search.
class StopFlag : public Progress {
 public:
  explicit StopFlag(const std::atomic<bool>& stop) : stop_(stop) {}
  bool Cancelled() override { return stop_.load(std::memory_order_relaxed); }

 private:
  const std::atomic<bool>& stop_;
};

// One candidate of one pass: its chart in slot 1, the search, the scores.
CandidateResult SearchCandidate(Worker& w, int type, double time, const std::string& from, const std::string& to,
                                Progress* cancel) {
  CandidateResult r;
  Session& session = *w.session;
  const ProjectHeader& h = session.project.Header;
  w.sink.Clear();
  try {
    if (CalcChart(session, kRadixSlot, h.Date, AutoTimeText(session, time), h.ZoneTime, h.Longitude, h.Latitude)) {
      DynamicSearchNew(session, w.search, type, from, to, cancel);
      if (!w.search.Cancelled) {
        for (int i = 1; i <= w.search.HitCount(); ++i) {
          DynamicHit& hit = w.search.Hits[i];
          ScoreHit(session, w.search, hit, NearestEvent(session, hit), true);
        }
        const SearchTotalsResult totals = SearchTotals(w.search);
        r.Ratio = totals.Ratio;
        r.Total = totals.Total;
        r.Done = true;
      }
    } else {
      r.Failed = true;
    }
  } catch (...) {
    r = CandidateResult{};
    r.Failed = true;
  }
  r.Messages = std::move(w.sink.messages);
  return r;
}

int WorkerCount(int asked, int candidates) {
  int n = asked > 0 ? asked : static_cast<int>(std::thread::hardware_concurrency());
  return std::clamp(n, 1, std::max(1, candidates));
}

// One pass over candidates 1 to n on the workers' threads. Each worker
// takes the next candidate until none is left or `stop` is set; this thread
// reports each candidate as it is taken up (with the number finished),
// polls the cancel request and waits. Returns the worker that searched the
// highest candidate.
const Worker* PassOnThreads(std::vector<Worker>& workers, int n, std::vector<CandidateResult>& results,
                            std::atomic<bool>& stop, RunStatus& status,
                            const std::function<CandidateResult(Worker&, int, Progress*)>& search,
                            const std::function<void(int candidate, int finished)>& report) {
  StopFlag stopFlag(stop);
  std::mutex m;
  std::condition_variable changed;
  std::vector<int> started;  // candidates taken up, in that order
  int next = 1, finished = 0, highest = 0;
  const Worker* last = nullptr;
  auto work = [&](Worker& w, bool ownThread) {
    w.session->EphemerisPath.clear();  // the ephemeris keeps its path per thread
    for (;;) {
      int c;
      {
        std::lock_guard<std::mutex> lock(m);
        if (next > n || stop) break;
        c = next++;
        started.push_back(c);
      }
      changed.notify_one();
      CandidateResult r = search(w, c, &stopFlag);
      {
        std::lock_guard<std::mutex> lock(m);
        results[c] = std::move(r);
        ++finished;
        if (c > highest) {
          highest = c;
          last = &w;
        }
      }
      changed.notify_one();
    }
    if (ownThread) CloseEphemeris();
  };

  std::vector<std::thread> pool;
  try {
    for (Worker& w : workers) pool.emplace_back(work, std::ref(w), true);
  } catch (...) {
    // No more threads to be had: those started carry on.
  }
  if (pool.empty()) work(workers[0], false);

  std::unique_lock<std::mutex> lock(m);
  size_t reported = 0;
  while (finished < next - 1 || (next <= n && !stop)) {
    for (; reported < started.size(); ++reported) {
      const int c = started[reported], now = finished;
      lock.unlock();
      report(c, now);
      lock.lock();
    }
    const int seen = finished;
    lock.unlock();
    if (!stop && status.Cancelled()) stop = true;
    lock.lock();
    changed.wait_for(lock, std::chrono::milliseconds(50),
                     [&] { return finished != seen || reported < started.size(); });
  }
  lock.unlock();
  for (std::thread& t : pool) t.join();
  return last;
}

// Three searches per candidate, pass by pass; a cancel stops the run.
bool SearchStage(Session& session, Rectification& rect, AutoRectifyResult& result, RunStatus& status,
                 const AutoRectifyOptions& options) {
  const std::string optionsPath = OptionsLoadPath(session, OptionsFile::Auto);
  SearchState& search = rect.search;
  if (!LoadDynOptions(search.Options, optionsPath)) {
    session.ShowMessage("Unable to open rectification options file: " + optionsPath, kIconExclamation, "Vintar");
    return false;
  }
  const std::string from = DefaultSearchStart(session), to = DefaultSearchEnd(session);
  const AngleResult& candidates = rect.peaks.Results;
  const int n = candidates.Count;
  result.Scores.assign(n + 1, {0, 0, 0, 0});
  const double steps = 3.0 * n;
  int done = 0;

  const int threads = WorkerCount(options.Threads, n);
  std::vector<Worker> workers(threads);
  for (Worker& w : workers) {
    w.session = std::make_unique<Session>(session, w.sink);
    w.session->charts.EphemerisCalls = 0;
    w.search = search;
  }
  const Worker* last = nullptr;  // the worker of the last search, whose state the run leaves
  std::atomic<bool> stop{false};

  auto say = [&](const Pass& pass, int c, double time) {
    status.Say(std::string(pass.status) + AutoTimeText(session, time) + "  Searching... " + std::to_string(c) +
               " of " + std::to_string(n));
    status.Fraction(done / steps);
  };
  auto candidateTime = [&](int c) {
    return CircularMid(24.0, candidates.ResultTime[c][kLow], candidates.ResultTime[c][kHigh]);
  };

  bool cancelled = false, failed = false;
  for (const Pass& pass : kPasses) {
    std::vector<CandidateResult> results(n + 1);
    if (threads == 1) {
      Worker& w = workers[0];
      for (int c = 1; c <= n && !cancelled; ++c) {
        say(pass, c, candidateTime(c));
        results[c] = SearchCandidate(w, pass.type, candidateTime(c), from, to, status.Inner());
        last = &w;
        ++done;
        failed = results[c].Failed;
        cancelled = !failed && !results[c].Done;
        if (failed) break;
      }
    } else {
      const int before = static_cast<int>(&pass - kPasses) * n;
      last = PassOnThreads(
          workers, n, results, stop, status,
          [&](Worker& w, int c, Progress* cancel) {
            return SearchCandidate(w, pass.type, candidateTime(c), from, to, cancel);
          },
          [&](int c, int finished) {
            done = before + finished;
            say(pass, c, candidateTime(c));
          });
      done = before + n;
      for (int c = 1; c <= n; ++c) failed = failed || results[c].Failed;
      cancelled = !failed && (stop || std::any_of(results.begin() + 1, results.end(),
                                                  [](const CandidateResult& r) { return !r.Done; }));
    }

    for (int c = 1; c <= n; ++c) {
      for (const auto& m : results[c].Messages) session.ShowMessage(m.text, m.flags, m.title);
      if (!results[c].Done) continue;
      result.Scores[c][pass.type] = results[c].Ratio;
      const auto total = static_cast<float>(results[c].Total);
      if (pass.type == kSecondary) result.MaxSec = std::max(result.MaxSec, total);
      if (pass.type == kSolarArc) result.MaxDir = std::max(result.MaxDir, total);
    }
    if (cancelled || failed) break;
  }

  // The session and the search are left as the last search left them.
  uint64_t calls = session.charts.EphemerisCalls;
  for (const Worker& w : workers) calls += w.session->charts.EphemerisCalls;
  if (last) {
    session.charts = last->session->charts;
    search = last->search;
  }
  session.charts.EphemerisCalls = calls;
  if (failed) return false;
  if (cancelled) {
    result.Cancelled = true;
    return false;
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
  if (session.prefs.AutoScoreMode == 1) {
    // By the transit ratio alone; the sort is stable, so equal ratios stay
    // in the order of the overall score.
    std::vector<float> transits(n + 1, 0.0f);
    for (int c = 1; c <= n; ++c) transits[c] = result.Scores[c][kTransits];
    IndexSortFloat(transits, result.Order, n, /*descending=*/true);
  }

  result.Rows.clear();
  for (int k = 1; k <= n; ++k) {
    const int c = result.Order[k];
    AutoRectifyRow row;
    row.Candidate = c;
    const auto& t = candidates.ResultTime[c];
    row.Time = CircularMid(24.0, t[kLow], t[kHigh]);
    row.TimeText = AutoTimeText(session, row.Time);
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

std::string AutoTimeText(const Session& session, double hours) {
  long seconds = std::lround(Mod(hours, 24.0) * 3600.0) % 86400;
  return FormatTime(static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60),
                    static_cast<int>(seconds % 60), session.prefs.AMPM != 0);
}

std::string CandidateRowText(const Session& session, const AngleResult& candidates, int c) {
  if (c < 1 || c > candidates.Count) return {};
  const auto range = [&](const AngleResult::Range& r) {
    return ZodiacPosition(session, r[kLow], false) + "-" + ZodiacPosition(session, r[kHigh], false);
  };
  const auto& t = candidates.ResultTime[c];
  return AutoTimeText(session, t[kLow]) + "-" + AutoTimeText(session, t[kHigh]) + "   " +
         range(candidates.ResultAsc[c]) + "   " + range(candidates.ResultMC[c]);
}

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

AutoRectifyResult RunAutoRectify(Session& session, Rectification& rect, int mode, Progress* progress,
                                 const AutoRectifyOptions& options) {
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
  if (ok) ok = SearchStage(session, rect, result, status, options);

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
