// Auto Rectify on the bundled Einstein sample, with the position caches
// already built (warm) and built afresh inside the run (cold), on 1 and 2
// threads (the argument). The counter `calls` is the number of ephemeris
// calls one run makes (more on more threads: each worker computes the
// transit positions it reuses between candidates).
#include <benchmark/benchmark.h>

#include <filesystem>

#include "core/project_file.h"
#include "core/session.h"
#include "rectify/auto_rectify.h"
#include "rectify/graphs.h"

namespace {

using namespace vintar;
namespace fs = std::filesystem;

struct SampleRun {
  CapturingSink sink;
  Session session{sink};
  fs::path dir = fs::temp_directory_path() / "vintar-bench-rectify";

  SampleRun() {
    fs::remove_all(dir);
    fs::create_directories(dir);
    for (const char* ext : {".dat", ".nat"})
      fs::copy_file(fs::path(VINTAR_SAMPLES_DIR) / (std::string("einstein") + ext), dir / (std::string("einstein") + ext));
    StartupOptions options;
    options.ConfigDir = (dir / "config").string();
    options.UserDataPath = (dir / "userdata").string();
    StartSession(session, options);
    OpenProjectFiles(session, (dir / "einstein.dat").string(), nullptr);
  }
  ~SampleRun() { fs::remove_all(dir); }

  void DropCaches() {
    for (const auto& entry : fs::directory_iterator(dir)) {
      const auto ext = entry.path().extension().string();
      if (ext.size() == 4 && (ext[1] == 'g' || ext[1] == 'h')) fs::remove(entry.path());
    }
    session.cache.Clear();
  }
};

void RunOnce(benchmark::State& state, SampleRun& run) {
  Rectification rect;
  LoadGraphSettings(run.session, rect.graphs);
  AutoRectifyOptions options;
  options.Threads = static_cast<int>(state.range(0));
  AutoRectifyResult r = RunAutoRectify(run.session, rect, kAutoFromEvents, nullptr, options);
  if (!r.Finished) state.SkipWithError("Auto Rectify did not finish");
  state.counters["calls"] = static_cast<double>(r.EphemerisCalls);
  state.counters["candidates"] = static_cast<double>(r.Rows.size());
}

void BM_AutoRectifyWarm(benchmark::State& state) {
  SampleRun run;
  {
    Rectification rect;
    RunAutoRectify(run.session, rect, kAutoFromEvents);  // builds the caches
  }
  for (auto _ : state) {
    run.session.cache.Clear();  // as after opening the project: checked, not recalculated
    RunOnce(state, run);
  }
}
BENCHMARK(BM_AutoRectifyWarm)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_AutoRectifyCold(benchmark::State& state) {
  SampleRun run;
  for (auto _ : state) {
    state.PauseTiming();
    run.DropCaches();
    state.ResumeTiming();
    RunOnce(state, run);
  }
}
BENCHMARK(BM_AutoRectifyCold)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
