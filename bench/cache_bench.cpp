// Benchmarks of the position cache: recalculating the cache of a project of
// 1,000 generated records for each coordinate and dynamic type on one
// thread, beside the bare ephemeris calls that the same recalculation makes,
// so that the cost of everything around the ephemeris shows as a ratio
// (counter "ratio" on the recalculation); recalculating 2,000 records with
// 1, 2 and one worker per core (records per second, and the speed-up over
// one worker as counter "speedup"); and re-checking a current cache of
// 10,000 records.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "calc/cache.h"
#include "calc/chart.h"
#include "core/calendar.h"
#include "calc/dynamic.h"
#include "calc/ephemeris.h"
#include "core/session.h"

namespace {

using namespace vintar;

// A started session with a generated project in a temporary folder.
struct BenchProject {
  CapturingSink sink;
  Session session{sink};
  std::filesystem::path dir;

  explicit BenchProject(int records, bool asteroids = false) {
    dir = std::filesystem::temp_directory_path() /
          ("vintar-cache-bench-" + std::to_string(::getpid()) + "-" + std::to_string(records) +
           (asteroids ? "a" : ""));
    std::filesystem::create_directories(dir);
    StartupOptions options;
    options.ConfigDir = (dir / "config").string();
    StartSession(session, options);
    SetEphemerisPath(session.prefs.SwissEphPath);
    session.cache.AsteroidsOn = asteroids ? kTrue : kFalse;
    ProjectState& p = session.project;
    p.ProjectPath = (dir / "bench.dat").string();
    p.Header.Date = "12 Aug 1950";  // progressions need a natal date
    p.Header.NatalJulianDay = JulDay(12.6, 8, 1950);
    p.Header.RecordCount = records;
    p.Events.assign(records + 1, EventRecord{});
    for (int i = 1; i <= records; ++i) {
      EventRecord& e = p.Events[i];
      e.Description = "Event " + std::to_string(i);
      e.Year = static_cast<int16_t>(1900 + (i * 7) % 180);
      e.Month = static_cast<uint8_t>(1 + i % 12);
      e.Day = static_cast<uint8_t>(1 + (i * 5) % 28);
      e.Hour = static_cast<uint8_t>((i * 3) % 24);
      e.Minute = static_cast<uint8_t>((i * 11) % 60);
      e.DetailLevel = static_cast<uint8_t>(i % 4);
      e.DayRange = static_cast<uint8_t>(i % 5 == 0 ? i % 15 : 0);
      e.ZoneHours = static_cast<float>(6 - i % 12);
      e.Longitude = static_cast<float>((i * 37) % 360 - 180);
      e.Latitude = static_cast<float>((i * 13) % 120 - 60);
      e.JulianDay = RecordJulianDay(e);
    }
  }
  ~BenchProject() {
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
  }
  std::string File(int coordinate, int type) const {
    return CacheFileName(session.project.ProjectPath, coordinate, type);
  }
  // A full recalculation: no file, nothing checked yet.
  bool Recalculate(int coordinate, int type, int workers = 1) {
    std::error_code ec;
    std::filesystem::remove(File(coordinate, type), ec);
    session.cache.Clear();
    bool cancelled = false;
    CalcEvents(session, coordinate, type, kNaibod, cancelled, nullptr, nullptr, workers);
    return !cancelled;
  }
};

struct Call {
  double jd;
  int body, flags;
};

// The ephemeris calls of one moment, as the recalculation makes them.
void MomentCalls(double jd, bool asteroids, std::vector<Call>& calls) {
  const int geo = kFlagSpeed, helio = kFlagSpeed | kFlagHeliocentric;
  calls.push_back({jd, kBodyMoon, geo});
  calls.push_back({jd, kBodyEarth, helio});
  calls.push_back({jd, kBodySun, geo});
  std::vector<int> bodies = {2, 3, 4, 5, 6, 7, 8, 9};
  std::vector<int> more = {kBodyChiron, kBodyVesta, kBodyPallas, kBodyJuno, kBodyCeres, kAsteroidOffset + 10,
                           kAsteroidOffset + 5};
  if (asteroids) bodies.insert(bodies.end(), more.begin(), more.end());
  for (int flags : {helio, geo})
    for (int body : bodies) calls.push_back({jd, body, flags});
  // The nodes are geocentric only: their heliocentric rows are marked
  // without a call.
  for (int body : {kBodyTrueNode, kBodyMeanNode}) calls.push_back({jd, body, geo});
}

// The calls that recalculating the whole cache needs, stations included
// (read back from the finished cache; their moment is taken mid-range, which
// costs the same).
std::vector<Call> RecalculationCalls(BenchProject& b, int coordinate, int type) {
  const ProjectState& p = b.session.project;
  const bool asteroids = b.session.cache.AsteroidsOn != 0;
  const double natal = p.Header.NatalJulianDay;
  std::vector<Call> calls;
  if (type == kSolarArc) MomentCalls(natal, asteroids, calls);
  for (int n = 1; n <= p.Header.RecordCount; ++n) {
    const EventRecord& e = p.Events[n];
    double span = e.DayRange + (e.DetailLevel == 0 ? 1.0 : e.DetailLevel == 1 ? 0.5 : 0.0);
    const double jd = RecordJulianDay(e);
    std::vector<double> moments = {jd - span};
    if (span > 0) moments.push_back(jd + span);
    for (double t : moments) {
      const double progressed = ProgressedJD(type, t, natal);
      if (type == kSolarArc)
        calls.push_back({progressed, kBodySun, kFlagSpeed});
      else
        MomentCalls(progressed, asteroids, calls);
    }
    EventPositionRecord r;
    ReadCacheRecord(b.File(coordinate, type), n, r);
    for (int point = 4; point <= kMeanNode; ++point)
      if (r.Motion[point] == 0) {
        if (point < kTrueNode) calls.push_back({jd, EphemerisBody(point), kFlagSpeed | kFlagHeliocentric});
        calls.push_back({jd, EphemerisBody(point), kFlagSpeed});
      }
  }
  return calls;
}

double BareSeconds(const std::vector<Call>& calls) {
  double xx[6];
  std::string error;
  auto start = std::chrono::steady_clock::now();
  for (const Call& c : calls) benchmark::DoNotOptimize(EphemerisCalc(c.jd, c.body, c.flags, xx, error));
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

constexpr int kRecords = 1000;

// The projects and call lists are made once per coordinate and type and
// shared by the two benchmarks of that pair.
struct Prepared {
  std::unique_ptr<BenchProject> project;
  std::vector<Call> calls;
  uint64_t callsPerRun = 0;
};
Prepared& Prepare(int coordinate, int type, bool asteroids) {
  static std::map<int, Prepared> prepared;
  Prepared& p = prepared[coordinate * 10 + type + (asteroids ? 100 : 0)];
  if (!p.project) {
    p.project = std::make_unique<BenchProject>(kRecords, asteroids);
    const uint64_t before = p.project->session.charts.EphemerisCalls;
    p.project->Recalculate(coordinate, type);
    p.callsPerRun = p.project->session.charts.EphemerisCalls - before;
    p.calls = RecalculationCalls(*p.project, coordinate, type);
  }
  return p;
}

void CacheRecalculate(benchmark::State& state, bool asteroids) {
  const int coordinate = static_cast<int>(state.range(0)), type = static_cast<int>(state.range(1));
  Prepared& p = Prepare(coordinate, type, asteroids);
  if (p.calls.size() != p.callsPerRun) {
    state.SkipWithError("the bare call list does not match the recalculation's calls");
    return;
  }
  double recalculation = 0.0;
  for (auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    if (!p.project->Recalculate(coordinate, type)) state.SkipWithError("recalculation cancelled");
    recalculation += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  // The bare calls timed as often, to put the ratio beside the times.
  double bare = 0.0;
  for (int64_t i = 0; i < state.iterations(); ++i) bare += BareSeconds(p.calls);
  state.counters["calls"] = static_cast<double>(p.callsPerRun);
  state.counters["ratio"] = bare > 0 ? recalculation / bare : 0.0;
  state.SetItemsProcessed(state.iterations() * kRecords);
}

void BM_CacheRecalculate(benchmark::State& state) { CacheRecalculate(state, false); }
BENCHMARK(BM_CacheRecalculate)
    ->ArgNames({"coordinate", "type"})
    ->ArgsProduct({{1, 2}, {0, 1, 2, 3}})
    ->Unit(benchmark::kMillisecond);

void BM_CacheRecalculateAsteroids(benchmark::State& state) { CacheRecalculate(state, true); }
BENCHMARK(BM_CacheRecalculateAsteroids)->ArgNames({"coordinate", "type"})->Args({1, 0})->Unit(benchmark::kMillisecond);

// The bare ephemeris calls of one recalculation, nothing else.
void BM_BareEphemerisCalls(benchmark::State& state) {
  Prepared& p = Prepare(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), false);
  for (auto _ : state) benchmark::DoNotOptimize(BareSeconds(p.calls));
  state.counters["calls"] = static_cast<double>(p.calls.size());
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_BareEphemerisCalls)
    ->ArgNames({"coordinate", "type"})
    ->ArgsProduct({{1, 2}, {0, 1, 2, 3}})
    ->Unit(benchmark::kMillisecond);

// Recalculating a whole cache of 10,000 records, a research project's size
// (at which the fixed cost of starting the workers no longer shows), on
// `workers` threads (0: one per core), geocentric transits. The speed-up is
// measured against one worker timed beside it, so that both see the same
// machine.
void BM_CacheWorkers(benchmark::State& state) {
  constexpr int kWorkerRecords = 10000;
  const int workers = static_cast<int>(state.range(0));
  BenchProject b(kWorkerRecords);
  double many = 0.0, one = 0.0, cpu = 0.0;
  auto timed = [&](int n) {
    auto start = std::chrono::steady_clock::now();
    if (!b.Recalculate(kGeocentric, kTransits, n)) state.SkipWithError("recalculation cancelled");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  for (auto _ : state) {
    const std::clock_t cpuStart = std::clock();
    many += timed(workers);
    cpu += static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    state.PauseTiming();
    one += timed(1);
    state.ResumeTiming();
  }
  state.counters["workers"] = workers > 0 ? workers : static_cast<double>(std::thread::hardware_concurrency());
  state.counters["speedup"] = many > 0 ? one / many : 0.0;
  // Processor time of all threads over the time taken: the cores the run
  // actually had. On a machine busy with other work this, not the number
  // of workers, bounds the speed-up.
  state.counters["cores"] = many > 0 ? cpu / many : 0.0;
  state.SetItemsProcessed(state.iterations() * kWorkerRecords);
}
BENCHMARK(BM_CacheWorkers)->ArgName("workers")->Arg(1)->Arg(2)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();

// Re-checking a current cache of 10,000 records: every record compared,
// nothing recomputed.
class CountingProgress : public Progress {
 public:
  void Status(const std::string& text) override { bytes += text.size(); }
  void Fraction(double done) override { last = done; }
  size_t bytes = 0;
  double last = 0;
};

void BM_CacheRecheck(benchmark::State& state) {
  const int records = static_cast<int>(state.range(0));
  BenchProject b(records);
  if (!b.Recalculate(kGeocentric, kTransits)) {
    state.SkipWithError("building the cache failed");
    return;
  }
  CountingProgress progress;
  const uint64_t before = b.session.charts.EphemerisCalls;
  for (auto _ : state) {
    b.session.cache.Clear();
    CacheRunStats stats;
    bool cancelled = false;
    CalcEvents(b.session, kGeocentric, kTransits, kNaibod, cancelled, &progress, &stats);
    if (cancelled || stats.Current != records) state.SkipWithError("the cache was not current");
  }
  if (b.session.charts.EphemerisCalls != before) state.SkipWithError("a current cache was recomputed");
  state.SetItemsProcessed(state.iterations() * records);
}
BENCHMARK(BM_CacheRecheck)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
