// Benchmarks of the open atlas: loading data/atlas.bin (target under 100 ms)
// and the lookups of the place entry (target under 1 ms each).
#include <benchmark/benchmark.h>

#include <string>

#include "places/atlas.h"

namespace {

using namespace vintar;

const std::string kAtlasPath = std::string(VINTAR_SOURCE_DATA_DIR) + "/atlas.bin";

void BM_AtlasLoad(benchmark::State& state) {
  for (auto _ : state) {
    Atlas atlas;
    std::string error;
    if (!atlas.Load(kAtlasPath, error)) state.SkipWithError(error.c_str());
    benchmark::DoNotOptimize(atlas.PlaceCount());
  }
}
BENCHMARK(BM_AtlasLoad)->Unit(benchmark::kMillisecond);

void BM_AtlasFind(benchmark::State& state) {
  Atlas atlas;
  std::string error;
  if (!atlas.Load(kAtlasPath, error)) state.SkipWithError(error.c_str());
  const char* texts[] = {"Ulm, Germany", "Chicago, IL", "London, UK"};
  const AtlasQuery query = SplitPlaceText(texts[state.range(0)]);
  state.SetLabel(texts[state.range(0)]);
  for (auto _ : state) benchmark::DoNotOptimize(atlas.Find(query));
}
BENCHMARK(BM_AtlasFind)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

void BM_AtlasFindFuzzy(benchmark::State& state) {
  Atlas atlas;
  std::string error;
  if (!atlas.Load(kAtlasPath, error)) state.SkipWithError(error.c_str());
  const char* texts[] = {"Olm, Germany", "Sanfrancisco", "Aeiou"};
  const AtlasQuery query = SplitPlaceText(texts[state.range(0)]);
  state.SetLabel(texts[state.range(0)]);
  for (auto _ : state) benchmark::DoNotOptimize(atlas.FindFuzzy(query));
}
BENCHMARK(BM_AtlasFindFuzzy)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

}  // namespace
