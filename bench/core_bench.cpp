// Benchmarks of the project core: the date parser, the one every typed and
// imported date goes through, reading and writing a large project, and
// opening a project with many categories, which must take time in
// proportion to its size.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "core/file_io.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/session.h"

namespace {

using namespace vintar;

struct QuietSession {
  CapturingSink sink;
  Session session{sink};
  std::filesystem::path dir = std::filesystem::temp_directory_path() / "vintar-bench";
  QuietSession() {
    std::filesystem::create_directories(dir);
    StartupOptions options;
    options.ConfigDir = (dir / "config").string();
    StartSession(session, options);
  }
};

void BM_ParseDate(benchmark::State& state) {
  QuietSession q;
  const char* texts[] = {"12 Jan 1950", "August 3rd 1990", "1/2/03", "15 Jan 100 BC", "12 Jan 1752 NS"};
  int16_t d, m, y;
  bool failed;
  size_t i = 0;
  for (auto _ : state) {
    ParseDate(q.session, texts[i++ % 5], d, m, y, false, failed);
    benchmark::DoNotOptimize(y);
  }
}
BENCHMARK(BM_ParseDate);

// Writes and reads back a project of state.range(0) records.
void BM_ProjectRoundTrip(benchmark::State& state) {
  QuietSession q;
  const int n = static_cast<int>(state.range(0));
  ProjectState& p = q.session.project;
  p.Header.RecordCount = n;
  p.Events.resize(n + 1);
  for (int i = 1; i <= n; ++i) {
    EventRecord& r = p.Events[i];
    r.Description = "Event number " + std::to_string(i);
    r.Year = static_cast<int16_t>(1900 + i % 120);
    r.Month = static_cast<uint8_t>(1 + i % 12);
    r.Day = static_cast<uint8_t>(1 + i % 28);
    r.DetailLevel = 3;
    r.ZoneAbbr = "AEST";
    r.ZoneHours = -10.0f;
    r.Placename = "Sydney";
    r.Longitude = -151.2167f;
    r.Latitude = -33.85f;
  }
  std::string path = (q.dir / "bench.dat").string();
  for (auto _ : state) {
    p.Status.DataChanged = kTrue;
    p.Status.NatChanged = kTrue;
    bool failed = false;
    WriteProject(q.session, path, p.Header, p.Events, failed, false);
    ProjectHeader header = p.Header;
    std::vector<EventRecord> records(101);
    CategoryIndex index;
    ReadDataFile(q.session, path, header, records, index, nullptr, {}, false);
    benchmark::DoNotOptimize(records.data());
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_ProjectRoundTrip)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// Opens a project of 100 records with state.range(0) list categories, each
// record a value of its own in every one: the category index holds
// 100 * range values. Quadratic work here once took a minute for 16,000.
void BM_OpenManyCategories(benchmark::State& state) {
  QuietSession q;
  const int categories = static_cast<int>(state.range(0));
  std::string names, types, dat;
  for (int c = 0; c < categories; ++c) names += "C |", types += "0 |";
  for (int r = 0; r < 100; ++r) {
    std::string list;
    for (int c = 0; c < categories; ++c) list += std::to_string(r) + " |";
    dat += "\"R\",1990,1,2,3,4,5,0,2,\"UT\",0,\"\",0,0,-1,0,\"" + list + "\"\r\n";
  }
  const std::string path = (q.dir / "many.dat").string();
  std::string error;
  WriteFileAtomically(path, dat, error);
  WriteFileAtomically((q.dir / "many.nat").string(),
                      "VINTAR 2\r\n\"M\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\",\"\"\r\n\"" + names + "\",\"" +
                          types + "\"\r\n",
                      error);
  for (auto _ : state) benchmark::DoNotOptimize(OpenProjectFiles(q.session, path, nullptr));
  state.SetItemsProcessed(state.iterations() * categories * 100);
}
BENCHMARK(BM_OpenManyCategories)->Arg(1000)->Arg(16000)->Arg(32767)->Unit(benchmark::kMillisecond);

}  // namespace
