// The graph settings file (.pla): parsed from the bytes, and loaded as the
// file beside a small project, whose three graphs are then built from fixed
// position caches with the settings read. What parses must format and parse
// back to the same settings.
#include <cstddef>
#include <cstdint>
#include <string>

#include "calc/cache.h"
#include "fuzz/fuzz_support.h"
#include "rectify/graphs.h"

namespace {

constexpr int kRecords = 3;

// One cache record per event: Moon, Sun and Mars moving a little, the rest
// spread round the zodiac, a few points not computed.
std::string FixedCache() {
  std::string bytes;
  unsigned char record[vintar::kCacheRecordSize];
  for (int n = 1; n <= kRecords; ++n) {
    vintar::EventPositionRecord r;
    r.Year = static_cast<int16_t>(1950 + n);
    r.Month = 6;
    r.Day = 15;
    r.PrecessionArcsec = 1000 * n;
    for (int p = 1; p <= vintar::kPoints; ++p) {
      const float start = static_cast<float>((p * 37 + n * 11) % 360) + 0.25f;
      const bool moving = p == vintar::kMoon || p == vintar::kSun || p == vintar::kMars;
      r.StartPos[p] = p % 7 == 0 ? -1.0f : start;
      r.EndPos[p] = p % 7 == 0 ? -1.0f : start + (moving ? 1.5f : 0.1f);
      r.Motion[p] = static_cast<int16_t>(p % 5 == 0 ? -1 : 1);
    }
    vintar::EncodeCacheRecord(r, record);
    bytes.append(reinterpret_cast<const char*>(record), sizeof record);
  }
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string cache = FixedCache();
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string bytes = vintar::fuzz::AsString(data, size);

  vintar::GraphState parsed;
  vintar::ParseGraphSettings(bytes, parsed, session.prefs);
  vintar::GraphState again;
  vintar::ParseGraphSettings(vintar::FormatGraphSettings(parsed), again, session.prefs);
  if (vintar::FormatGraphSettings(again) != vintar::FormatGraphSettings(parsed)) __builtin_trap();

  // The same bytes as the .pla of a project with its caches in place.
  vintar::ProjectState& project = session.project;
  project.ProjectPath = fuzz.Work("graphs.dat");
  project.Header.RecordCount = kRecords;
  project.Events.assign(kRecords + 1, vintar::EventRecord{});
  for (int n = 1; n <= kRecords; ++n) project.Events[n].JulianDay = 2433000.0 + 365.25 * n;
  for (int coordinate = vintar::kGeocentric; coordinate <= vintar::kHeliocentric; ++coordinate)
    for (int type = vintar::kTransits; type <= vintar::kSolarArc; ++type)
      vintar::fuzz::WriteBytes(vintar::CacheFileName(project.ProjectPath, coordinate, type), cache);
  vintar::fuzz::WriteBytes(vintar::GraphSettingsFileName(project.ProjectPath), bytes);

  vintar::GraphState graphs;
  if (!vintar::LoadGraphSettings(session, graphs)) return 0;
  for (int g = 1; g <= vintar::kShownGraphs; ++g) {
    (void)vintar::GraphCacheMethod(session, graphs.Graph[g]);
    bool cancelled = false;
    vintar::CalcHarmDist(session, graphs, g, 0, cancelled);
    if (!cancelled) vintar::AnalyseHarmDist(graphs, g);
  }
  return 0;
}
