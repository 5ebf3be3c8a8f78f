// The dynamic search options files (dynopts.fil and the shipped defopts.fil
// and autopts.fil): decoded from the bytes, loaded from the user's file, and
// put to use: the search targets of a fixed trial chart and the aspect set of
// each record. A decoded set must encode and decode to itself.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"
#include "rectify/search.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  const std::string bytes = vintar::fuzz::AsString(data, size);

  vintar::DynOptionSet decoded;
  vintar::DecodeDynOptions(bytes, decoded);
  const std::string encoded = vintar::EncodeDynOptions(decoded);
  vintar::DynOptionSet again;
  vintar::DecodeDynOptions(encoded, again);
  if (vintar::EncodeDynOptions(again) != encoded) __builtin_trap();

  // The user's options file, found where the search screen looks for it.
  const std::string path = vintar::OptionsSavePath(session, vintar::OptionsFile::Current);
  vintar::fuzz::WriteBytes(path, bytes);
  vintar::DynOptionSet loaded;
  if (!vintar::LoadDynOptions(loaded, vintar::OptionsLoadPath(session, vintar::OptionsFile::Current))) return 0;

  // A trial chart in slot 1: points spread round the zodiac, the Earth and
  // one asteroid without a position.
  auto& longitude = session.charts.Longitude[vintar::kGeocentric][1];
  for (int p = 1; p <= vintar::kPoints; ++p) longitude[p] = (p * 29 + 7) % 360 + 0.5;
  longitude[vintar::kEarth] = -1.0;
  longitude[15] = -1.0;
  for (const vintar::DynOptions& record : loaded) {
    (void)vintar::BuildTargets(session, 1, record);
    (void)vintar::AspectHarmonicOf(record);
  }
  return 0;
}
