// The preference file VINTAR2.INI in the configuration folder: loaded, then
// put to the uses that start-up makes of it (node point, user house name,
// glyph tables) and listed as "prefs show" lists it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/preferences.h"
#include "core/vocabulary.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset();
  vintar::fuzz::WriteBytes(session.paths.PreferenceFile, vintar::fuzz::AsString(data, size));

  vintar::LoadPreferences(session);
  vintar::SetNodePoint(session.vocab, session.prefs.NodePoint());
  vintar::SetUserHouseName(session.vocab, session.prefs.PointOnCusp, session.prefs.WhichCusp);
  vintar::BuildGlyphTables(session.vocab, session.prefs);
  (void)vintar::PreferenceListing(session.prefs);
  (void)vintar::GetPreferenceInteger(session, "Houses", 5);
  (void)vintar::GetPreferenceFloat(session, "UserAyan", 0.0);
  (void)vintar::GetProfileNumber(session, "Vintar", "DynInterval", 0.1);
  return 0;
}
