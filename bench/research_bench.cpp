// Tabulation over a warm position cache: 100,000 generated charts with the
// Sun to Pluto and the Moon selected, one division of every data type: the
// longitude types (signs, dignities, aspects of 55 pairs, harmonic degrees,
// latitude), those that compute more per point (houses with their cusps,
// right ascension, declination, the diurnal position, azimuth, altitude)
// and the natal details, which read no positions. The counter `charts/s`
// is the figure to read; the target for the longitude types is 100,000
// charts a second.
#include <benchmark/benchmark.h>

#include "bench/synthetic_project.h"
#include "calc/cache.h"
#include "core/calendar.h"
#include "core/session.h"
#include "research/tabulate.h"

namespace {

using namespace vintar;
constexpr int kCharts = 100000;

struct BigProject {
  bench::SyntheticProject generated{"vintar-bench-research", kCharts};
  Session& session = generated.session;
  ResearchState state;
};

BigProject& Project() {
  static BigProject project;
  return project;
}

void Tabulate(benchmark::State& bench, int dataType, int code) {
  BigProject& p = Project();
  TabulateParams params;
  params.DataType = dataType;
  params.Code = code;
  params.Orb = 5;
  for (int q = kSun; q <= kPluto; ++q) params.Points.push_back(PointRef{0, static_cast<uint8_t>(q), 0, 0, 0});
  params.Points.push_back(PointRef{0, kMoon, 0, 0, 0});
  for (auto _ : bench) {
    TabulationRun run = TabulateRun(p.session, p.state, params);
    if (run.Failed || run.ChartsUsed != kCharts) bench.SkipWithError("the run did not use every chart");
  }
  bench.counters["charts/s"] =
      benchmark::Counter(static_cast<double>(kCharts) * bench.iterations(), benchmark::Counter::kIsRate);
}

void BM_TabulateSigns(benchmark::State& s) { Tabulate(s, 0, 0); }
void BM_TabulateDignity(benchmark::State& s) { Tabulate(s, 3, 201); }
void BM_TabulateAspects(benchmark::State& s) { Tabulate(s, 2, 50); }
void BM_TabulateHouses(benchmark::State& s) { Tabulate(s, 1, 100); }
void BM_TabulateDiurnal(benchmark::State& s) { Tabulate(s, 6, 504); }
void BM_TabulateAzimuth(benchmark::State& s) { Tabulate(s, 9, 700); }
void BM_TabulateDeclination(benchmark::State& s) { Tabulate(s, 8, 401); }
void BM_TabulateHarmonics(benchmark::State& s) { Tabulate(s, 4, 300); }
void BM_TabulateLatitude(benchmark::State& s) { Tabulate(s, 5, 401); }
void BM_TabulateRightAscension(benchmark::State& s) { Tabulate(s, 7, 600); }
void BM_TabulateAltitude(benchmark::State& s) { Tabulate(s, 10, 801); }
void BM_TabulateNatalDetails(benchmark::State& s) { Tabulate(s, 11, 900); }

BENCHMARK(BM_TabulateSigns)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateDignity)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateAspects)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateHouses)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateDiurnal)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateAzimuth)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateDeclination)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateHarmonics)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateLatitude)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateRightAscension)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateAltitude)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TabulateNatalDetails)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
