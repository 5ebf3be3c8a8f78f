// Tabulation over a warm position cache: 100,000 generated charts with the
// Sun to Pluto and the Moon selected, one division of every data type: the
// longitude types (signs, dignities, aspects of 55 pairs, harmonic degrees,
// latitude), those that compute more per point (houses with their cusps,
// right ascension, declination, the diurnal position, azimuth, altitude)
// and the natal details, which read no positions. The counter `charts/s` is the figure to read; the target for the
// longitude types is 100,000 charts a second.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "calc/cache.h"
#include "core/calendar.h"
#include "core/session.h"
#include "research/tabulate.h"

namespace {

using namespace vintar;
namespace fs = std::filesystem;

constexpr int kCharts = 100000;

struct BigProject {
  CapturingSink sink;
  Session session{sink};
  ResearchState state;
  fs::path dir = fs::temp_directory_path() / "vintar-bench-research";

  BigProject() {
    fs::remove_all(dir);
    fs::create_directories(dir);
    StartupOptions options;
    options.ConfigDir = (dir / "config").string();
    options.UserDataPath = (dir / "userdata").string();
    StartSession(session, options);
    ProjectState& p = session.project;
    p.ProjectPath = (dir / "big.dat").string();
    p.Events.assign(kCharts + 1, EventRecord{});
    p.Header.RecordCount = kCharts;
    p.Open = true;
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> turn(0.0, 360.0), lat(-60.0, 60.0);
    std::vector<unsigned char> bytes(static_cast<size_t>(kCharts) * kCacheRecordSize);
    for (int n = 1; n <= kCharts; ++n) {
      EventRecord& e = p.Events[n];
      e.Description = "Chart " + std::to_string(n);
      e.Year = static_cast<int16_t>(1900 + rng() % 100);
      e.Month = static_cast<uint8_t>(1 + rng() % 12);
      e.Day = static_cast<uint8_t>(1 + rng() % 28);
      e.Hour = static_cast<uint8_t>(rng() % 24);
      e.Minute = static_cast<uint8_t>(rng() % 60);
      e.DetailLevel = 3;
      e.Longitude = static_cast<float>(turn(rng) - 180.0);
      e.Latitude = static_cast<float>(lat(rng));
      e.Enabled = kTrue;
      EventPositionRecord r;
      r.Year = e.Year, r.Month = e.Month, r.Day = e.Day, r.TimeAccuracy = e.DetailLevel;
      r.Hour = e.Hour, r.Minute = e.Minute, r.Second = 0;
      r.Zone = e.ZoneHours, r.Longitude = e.Longitude, r.Latitude = e.Latitude;
      for (int q = 1; q <= kPoints; ++q) {
        r.StartPos[q] = r.EndPos[q] = static_cast<float>(turn(rng));
        r.StartLat[q] = r.EndLat[q] = 0.5f;
        r.Motion[q] = 1;
      }
      EncodeCacheRecord(r, bytes.data() + static_cast<size_t>(n - 1) * kCacheRecordSize);
    }
    std::ofstream(CacheFileName(p.ProjectPath, kGeocentric, kTransits), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    for (auto& method : session.cache.Valid[kGeocentric][kTransits]) method = kTrue;
  }
  ~BigProject() { fs::remove_all(dir); }
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
