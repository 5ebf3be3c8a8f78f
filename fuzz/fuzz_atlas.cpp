// The open atlas (atlas.bin): loaded whole, then, when it loads, looked up
// the ways the place entry does: exact and fuzzy searches with and without
// a region, the country and division lists.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_support.h"
#include "places/atlas.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  fuzz.Reset();
  const std::string path = fuzz.Work("atlas.bin");
  // The checksum is put right, so that mutations reach the checks of the
  // tables behind it rather than all stopping at the sum.
  std::string bytes = vintar::fuzz::AsString(data, size);
  if (bytes.size() >= 48) {
    uint32_t sum = 0;
    for (size_t i = 48; i < bytes.size(); ++i) sum += static_cast<unsigned char>(bytes[i]);
    for (int k = 0; k < 4; ++k) bytes[40 + k] = static_cast<char>(sum >> (8 * k));
  }
  vintar::fuzz::WriteBytes(path, bytes);

  vintar::Atlas atlas;
  std::string error;
  if (!atlas.Load(path, error)) return 0;
  for (const char* text : {"Tokyo", "Delhi, India", "Sao Paulo Brazil", "Shanghai, CN", "Olm, Germany", "A"}) {
    const vintar::AtlasQuery query = vintar::SplitPlaceText(text);
    (void)atlas.Find(query);
    (void)atlas.FindFuzzy(query);
  }
  for (const vintar::AtlasCountry& country : atlas.Countries()) (void)atlas.Divisions(country.code);
  return 0;
}
