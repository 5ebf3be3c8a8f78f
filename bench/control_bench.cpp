// Benchmarks of the control data generator: 100,000 wholly random records
// built in memory; the same written as a new project (.dat, .nat and the
// notepad); and the same with its geocentric transit position cache built
// by CalcEvents on one worker per core, which is what a control project
// costs before it can be tabulated. Records per second as items.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <filesystem>
#include <string>

#include "calc/cache.h"
#include "calc/ephemeris.h"
#include "core/session.h"
#include "research/control.h"

namespace {

using namespace vintar;

constexpr int kRecords = 100000;

struct BenchSession {
  CapturingSink sink;
  Session session{sink};
  std::filesystem::path dir;

  BenchSession() {
    dir = std::filesystem::temp_directory_path() / ("vintar-control-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    StartupOptions options;
    options.ConfigDir = (dir / "config").string();
    StartSession(session, options);
    SetEphemerisPath(session.prefs.SwissEphPath);
  }
  ~BenchSession() {
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
  }
  static ControlOptions Options() {
    ControlOptions o;
    o.Number = std::to_string(kRecords);
    o.StartDate = "1900";
    o.EndDate = "2000";
    o.Seed = 1;
    return o;
  }
  // A fresh target each time: the generator never writes over a project.
  std::string Target(int n) const { return (dir / ("control" + std::to_string(n) + ".dat")).string(); }
  void Remove(const std::string& datPath) {
    std::error_code ec;
    for (const char* ext : {".dat", ".nat", ".txt", ".geo"})
      std::filesystem::remove(ReplaceExtension(datPath, ext), ec);
  }
};

void BM_ControlBuild(benchmark::State& state) {
  BenchSession b;
  for (auto _ : state) {
    ControlProject project;
    if (!BuildControlProject(b.session, BenchSession::Options(), project)) state.SkipWithError("build failed");
    benchmark::DoNotOptimize(project.Events.data());
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_ControlBuild)->Unit(benchmark::kMillisecond);

void BM_ControlBuildAndWrite(benchmark::State& state) {
  BenchSession b;
  int n = 0;
  for (auto _ : state) {
    const std::string target = b.Target(++n);
    if (!GenerateControlData(b.session, BenchSession::Options(), target)) state.SkipWithError("write failed");
    state.PauseTiming();
    b.Remove(target);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_ControlBuildAndWrite)->Unit(benchmark::kMillisecond);

void BM_ControlWithCache(benchmark::State& state) {
  BenchSession b;
  int n = 0;
  for (auto _ : state) {
    const std::string target = b.Target(++n);
    ControlProject project;
    if (!GenerateControlData(b.session, BenchSession::Options(), target, &project)) {
      state.SkipWithError("write failed");
      break;
    }
    // The new project becomes the open one, as after the screen's reload.
    ProjectState& p = b.session.project;
    p.Header = project.Header;
    p.Events = std::move(project.Events);
    p.ProjectPath = target;
    p.Open = true;
    b.session.cache.Clear();
    bool cancelled = false;
    CalcEvents(b.session, kGeocentric, kTransits, kNaibod, cancelled);
    if (cancelled) {
      state.SkipWithError(b.sink.messages.empty() ? "cache failed" : b.sink.messages.back().text.c_str());
      break;
    }
    state.PauseTiming();
    b.Remove(target);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kRecords);
}
BENCHMARK(BM_ControlWithCache)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

}  // namespace
