// Benchmarks of the historical time zones: the first use of the database
// (the date library reads the index of the zone folder once per process),
// the first reading of every zone's file, and 10,000 lookups of random
// zones and local times from 1850 to 2050 on a warm database (target: under
// 100 ms for the 10,000). The first two run once and only mean something
// when nothing has touched the zone database before them in the process.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "places/zone_history.h"

namespace {

using namespace vintar;

void BM_ZoneFirstLoad(benchmark::State& state) {
  for (auto _ : state) {
    ZoneDatabase db;
    std::string message;
    benchmark::DoNotOptimize(db.Load(message));
    benchmark::DoNotOptimize(db.ZoneAt("Europe/Berlin", 1879, 3, 14, 12, 0, 0, -9.98));
  }
}
BENCHMARK(BM_ZoneFirstLoad)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_ZoneEveryFileFirstRead(benchmark::State& state) {
  for (auto _ : state) {
    ZoneDatabase db;
    for (const std::string& name : db.ZoneNames())
      benchmark::DoNotOptimize(db.ZoneAt(name, 1950, 6, 1, 12, 0, 0, 0.0));
  }
}
BENCHMARK(BM_ZoneEveryFileFirstRead)->Iterations(1)->Unit(benchmark::kMillisecond);

struct Lookup {
  size_t zone;
  int year, month, day, hour, minute;
  double longitude;
};

void BM_ZoneLookups10k(benchmark::State& state) {
  ZoneDatabase db;
  std::vector<std::string> names = db.ZoneNames();
  if (names.empty()) {
    state.SkipWithError("no zone database");
    return;
  }
  std::mt19937 random(20261122);
  std::vector<Lookup> lookups(10000);
  for (Lookup& l : lookups) {
    l.zone = std::uniform_int_distribution<size_t>(0, names.size() - 1)(random);
    l.year = std::uniform_int_distribution<int>(1850, 2050)(random);
    l.month = std::uniform_int_distribution<int>(1, 12)(random);
    l.day = std::uniform_int_distribution<int>(1, 28)(random);
    l.hour = std::uniform_int_distribution<int>(0, 23)(random);
    l.minute = std::uniform_int_distribution<int>(0, 59)(random);
    l.longitude = std::uniform_real_distribution<double>(-180.0, 180.0)(random);
  }
  for (auto _ : state) {
    for (const Lookup& l : lookups) {
      ZoneInForce z = db.ZoneAt(names[l.zone], l.year, l.month, l.day, l.hour, l.minute, 0, l.longitude);
      benchmark::DoNotOptimize(z.Hours);
    }
  }
  state.counters["lookups/s"] =
      benchmark::Counter(static_cast<double>(lookups.size()) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ZoneLookups10k)->Unit(benchmark::kMillisecond);

}  // namespace
