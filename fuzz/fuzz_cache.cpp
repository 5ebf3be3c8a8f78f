// The position cache (464 bytes a record, no header). Four leading bytes
// set up a small project: the harmonic (0 keeps the graph's own), the zodiac
// and user ayanamsa, graph 1's coordinate and dynamic type, records beyond
// the cache's end, disabled records and smoothing. The rest is the cache
// file under the name the graph reads. Every whole record is decoded (and
// must encode back to its bytes), read from the file by number, and the
// project's event graph is built, analysed and its peaks picked.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "calc/cache.h"
#include "fuzz/fuzz_support.h"
#include "rectify/graphs.h"
#include "rectify/peaks.h"

namespace {

constexpr int kControlBytes = 4;
constexpr int kMostRecords = 64;
constexpr float kUserAyanamsas[4] = {0.0f, 23.85f, 359.9f, -12.5f};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < kControlBytes) return 0;
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();

  const int harmonic = (data[0] | (data[1] << 8)) % (vintar::kMaxHarmonic + 1);
  session.prefs.Zodiac = static_cast<int16_t>(1 + data[2] % 9);
  session.prefs.UserAyan = kUserAyanamsas[(data[2] / 9) % 4];
  const int coordinate = data[3] & 3;  // 3 stands for 0, "as geocentric"
  const int dynamicType = (data[3] >> 2) & 3;
  const int extraRecords = (data[3] >> 4) & 3;
  const bool disableSome = (data[3] & 0x40) != 0;
  const bool smooth = (data[3] & 0x80) == 0;
  const std::string cache = vintar::fuzz::AsString(data + kControlBytes, size - kControlBytes);
  const int whole = static_cast<int>(cache.size() / vintar::kCacheRecordSize);

  // Each whole record on its own.
  unsigned char encoded[vintar::kCacheRecordSize];
  for (int n = 0; n < whole; ++n) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(cache.data()) + n * vintar::kCacheRecordSize;
    const vintar::EventPositionRecord record = vintar::DecodeCacheRecord(bytes);
    vintar::EncodeCacheRecord(record, encoded);
    if (std::memcmp(encoded, bytes, vintar::kCacheRecordSize) != 0) __builtin_trap();
  }

  // A project whose graph 1 reads this cache.
  vintar::ProjectState& project = session.project;
  project.ProjectPath = fuzz.Work("graph.dat");
  const int count = std::min(whole + extraRecords, kMostRecords);
  project.Header.RecordCount = count;
  project.Events.assign(static_cast<size_t>(count) + 1, vintar::EventRecord{});
  for (int n = 1; n <= count; ++n) {
    project.Events[n].Year = static_cast<int16_t>(1900 + n);
    project.Events[n].Enabled = disableSome && n % 3 == 0 ? vintar::kFalse : vintar::kTrue;
  }
  const int fileCoordinate = coordinate == vintar::kHeliocentric ? vintar::kHeliocentric : vintar::kGeocentric;
  const std::string cachePath = vintar::CacheFileName(project.ProjectPath, fileCoordinate, dynamicType);
  vintar::fuzz::WriteBytes(cachePath, cache);

  vintar::EventPositionRecord record;
  for (int n : {std::numeric_limits<int>::min(), -1, 0}) vintar::ReadCacheRecord(cachePath, n, record);
  for (int n = 1; n <= whole + 1; ++n) vintar::ReadCacheRecord(cachePath, n, record);
  vintar::ReadCacheRecord(cachePath, std::numeric_limits<int>::max(), record);

  vintar::GraphState graphs;
  vintar::DefaultGraphSettings(graphs, session.prefs);
  graphs.SmoothBars = smooth ? vintar::kTrue : vintar::kFalse;
  graphs.Graph[1].Coordinate = static_cast<int16_t>(coordinate == 3 ? 0 : coordinate);
  graphs.Graph[1].DynamicType = dynamicType;
  bool cancelled = false;
  vintar::CalcHarmDist(session, graphs, 1, harmonic, cancelled);
  if (cancelled) return 0;
  vintar::AnalyseHarmDist(graphs, 1);
  vintar::AutoSelectPeaks(session, graphs, 1);
  vintar::PeakList peaks;
  vintar::ReadPeaks(graphs, 1, peaks);
  return 0;
}
