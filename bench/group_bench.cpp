// The group pattern search: a family-sized group (30 charts) over the
// report's harmonics 5 to 12 and over 1 to 16, and a large group (200
// charts), with the thirteen default points, in a combination search (every
// point of every chart on one circle) and a same-point search.
#include <benchmark/benchmark.h>

#include "bench/synthetic_project.h"
#include "groups/group_search.h"

namespace vintar {
namespace {

void Search(benchmark::State& st, int charts, int from, int to, bool combination) {
  bench::SyntheticProject project("vintar_group_bench_" + std::to_string(charts), charts);
  GroupSearchState state;
  for (int p : DefaultSearchPoints(project.session)) AddSearchPair(project.session, state, p, p);
  GroupSearchParams params;
  params.FromHarmonic = from;
  params.ToHarmonic = to;
  params.Orb = 8.0f;
  params.MinMatches = 3;
  params.Combination = combination;
  for (auto _ : st) {
    SearchGroupPatterns(project.session, state, params);
    benchmark::DoNotOptimize(state.MatchCount);
  }
  st.counters["elements"] = static_cast<double>(charts) * state.SearchPoints.size();
  st.counters["matches"] = state.MatchCount;
}

void BM_GroupCombination(benchmark::State& st) {
  Search(st, static_cast<int>(st.range(0)), static_cast<int>(st.range(1)), static_cast<int>(st.range(2)), true);
}
BENCHMARK(BM_GroupCombination)
    ->Args({30, 5, 12})
    ->Args({30, 1, 16})
    ->Args({60, 1, 16})
    ->Args({120, 1, 16})
    ->Args({200, 1, 16})
    ->Args({200, 1, 32})
    ->Unit(benchmark::kMillisecond);

void BM_GroupSamePoint(benchmark::State& st) {
  Search(st, static_cast<int>(st.range(0)), 1, 16, false);
}
BENCHMARK(BM_GroupSamePoint)->Arg(30)->Arg(200)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vintar
