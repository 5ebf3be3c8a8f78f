// The criteria search over a warm position cache: 100,000 generated charts
// and a list of ten tests with brackets and every connective (signs,
// elements, houses, an aspect between two points, dignities, declination,
// a Gauquelin sector and the hour of birth). The counter `records/s` is the
// figure to read; the target is 100,000 records a second.
#include <benchmark/benchmark.h>

#include "bench/synthetic_project.h"
#include "calc/cache.h"
#include "core/session.h"
#include "research/criteria.h"

namespace {

using namespace vintar;
constexpr int kCharts = 100000;

struct BigProject {
  bench::SyntheticProject generated{"vintar-bench-criteria", kCharts};
  Session& session = generated.session;
  ResearchState state;
  CriteriaList list;

  BigProject() {
    // Sun in fire And (Moon in houses 1-6 Or Not Mars in Aries) Xor ((Venus
    // square Saturn And Jupiter in dignity) Or Mercury declination north)
    // Or Mars in sector 34-36 And born 6-12 h Or Saturn in Capricorn.
    auto add = [&](int point, int dataType, int code, std::vector<int> cells, int op, int level, bool negate = false,
                   int second = 0) {
      NewCriterion in;
      in.DataType = dataType, in.Code = code, in.Cells = std::move(cells), in.Orb = 5;
      if (point) in.Selected.push_back(PointRef{0, static_cast<uint8_t>(point), 0, 0, 0});
      if (second) in.Selected.push_back(PointRef{0, static_cast<uint8_t>(second), 0, 0, 0});
      TabulateParams params;
      params.DataType = dataType, params.Code = code;
      in.CellCount = CellCountsOf(params).CellCount;
      AddCriterion(session, list, in);
      list.Criteria.back().Operator = op;
      list.Criteria.back().NestLevel = static_cast<int16_t>(level);
      list.Criteria.back().Negate = negate ? kTrue : kFalse;
    };
    add(kSun, 0, 2, {1}, 0, 0);
    add(kMoon, 1, 100, {1, 2, 3, 4, 5, 6}, 0, 1);
    add(kMars, 0, 0, {1}, 1, 1, true);
    add(kVenus, 2, 50, {4}, 2, 2, false, kSaturn);
    add(kJupiter, 3, 201, {1, 3}, 0, 2);
    add(kMercury, 8, 400, {2}, 1, 1);
    add(kMars, 6, 504, {34, 35, 36}, 1, 0);
    add(0, 11, 900, {7, 8, 9, 10, 11, 12}, 0, 0);
    add(kSaturn, 0, 0, {10}, 1, 0);
    add(kMoon, 0, 3, {2}, 0, 0);
  }
};

BigProject& Project() {
  static BigProject project;
  return project;
}

void BM_CriteriaSearchTenTests(benchmark::State& bench) {
  BigProject& p = Project();
  if (p.list.Count() != 10) bench.SkipWithError("the list did not build");
  int passed = 0;
  for (auto _ : bench) {
    const CriteriaRun run = RunSearch(p.session, p.state, p.list);
    if (run.Failed || run.Enabled != kCharts) bench.SkipWithError("the run did not test every chart");
    passed = run.Passed;
  }
  bench.counters["records/s"] =
      benchmark::Counter(static_cast<double>(kCharts) * bench.iterations(), benchmark::Counter::kIsRate);
  bench.counters["passed"] = passed;
}

BENCHMARK(BM_CriteriaSearchTenTests)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
