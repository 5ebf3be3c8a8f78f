// Imports at scale: an events list of 100,000 events and an AAF file of
// 100,000 charts, read into records (no place lookup; the atlas and zone
// lookups have benchmarks of their own). The counter `records/s` is the
// rate of records made.
#include <benchmark/benchmark.h>

#include <string>

#include "core/messages.h"
#include "core/session.h"
#include "exchange/aaf.h"
#include "exchange/events_list.h"

namespace {

using namespace vintar;

constexpr int kCount = 100000;

std::string EventsList() {
  std::string text = "DATEORDER DMY\r\n";
  static const char* kMonths[] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
  for (int i = 0; i < kCount; ++i) {
    text += "\"Event " + std::to_string(i) + "\"\r\n";
    text += std::to_string(1 + i % 28) + " " + kMonths[i % 12] + " " + std::to_string(1900 + i % 120);
    if (i % 3 == 0) text += " " + std::to_string(i % 24) + ":" + std::to_string(10 + i % 50);
    text += "\r\n\r\n";
  }
  return text;
}

std::string AafFile() {
  std::string text;
  for (int i = 0; i < kCount; ++i) {
    text += "#A93:Person " + std::to_string(i) + ",*,e," + std::to_string(1 + i % 28) + "." +
            std::to_string(1 + i % 12) + "." + std::to_string(1850 + i % 170) + "," + std::to_string(i % 24) +
            ":" + std::to_string(10 + i % 50) + ",Place,Country\r\n";
    text += "#B93:*,48n24,9e59,1he00,0\r\n#ZNAM:CET\r\n";
  }
  return text;
}

void BM_ImportEventsList(benchmark::State& state) {
  CapturingSink sink;
  Session session(sink);
  session.clock = Clock{2026, 1, 1, 0, 0, 0};  // years up to this one are valid
  const std::string text = EventsList();
  for (auto _ : state) {
    EventsListResult r = ParseEventsList(session, text, {});
    if (r.Imported != kCount) state.SkipWithError("not every event was read");
    benchmark::DoNotOptimize(r.Records.data());
  }
  state.counters["records/s"] = benchmark::Counter(kCount, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ImportEventsList)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ImportAaf(benchmark::State& state) {
  CapturingSink sink;
  Session session(sink);
  const std::string text = AafFile();
  for (auto _ : state) {
    const AafReadResult r = ReadAaf(session, text);
    std::vector<EventRecord> records;
    records.reserve(r.Charts.size());
    for (const AafChart& c : r.Charts) records.push_back(AafChartToRecord(c));
    if (records.size() != static_cast<size_t>(kCount)) state.SkipWithError("not every chart was read");
    benchmark::DoNotOptimize(records.data());
  }
  state.counters["records/s"] = benchmark::Counter(kCount, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_ImportAaf)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
