// The time zone table (timezone.fil): loaded, then every mnemonic it defines
// is looked up by the zone parser, which reads the offset text of its row.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/parse.h"
#include "core/zone_table.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string path = fuzz.Work("timezone.fil");
  vintar::fuzz::WriteBytes(path, vintar::fuzz::AsString(data, size));

  session.zones = vintar::ZoneTable{};
  vintar::LoadTimeZones(session, path);
  const vintar::ZoneTable& zones = session.zones;
  for (int i = 1; i <= zones.ZoneCount && i <= vintar::kMaxZones; ++i) {
    float hours = 0.0f;
    std::string mnemonic;
    bool failed = false;
    vintar::ParseZone(session, zones.ZoneMnemonic[i], hours, mnemonic, false, failed);
    if (!failed) (void)vintar::FormatZone(hours);
    (void)zones.Find(zones.ZoneMnemonic[i]);
  }
  return 0;
}
