#include "places/atlas_entry.h"

#include <algorithm>

#include "core/parse.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

// An atlas text (UTF-8) in the project files' single-byte text: as it is
// when Latin-1 holds every letter, else its ASCII spelling.
std::string FileText(const std::string& utf8, const std::string& ascii) {
  const std::string latin1 = Utf8ToLatin1(utf8);
  const auto marks = [](const std::string& t) { return std::count(t.begin(), t.end(), '?'); };
  return marks(latin1) > marks(utf8) && !ascii.empty() ? ascii : latin1;
}

}  // namespace

bool PrepareAtlasLookup(Session& session, AtlasLookupState& state) {
  if (state.loaded) return true;
  std::string error;
  if (!state.atlas.Load(EnsureBackslash(session.paths.SystemDataPath) + kAtlasFileName, error)) {
    session.ShowMessage(error, kIconExclamation, "Vintar");
    return false;
  }
  std::string personalError;
  state.personal.Load(EnsureBackslash(session.paths.UserDataPath) + kPersonalPlacesFileName, personalError);
  state.loaded = true;
  return true;
}

AtlasCandidates FindEntryPlace(Session& session, AtlasLookupState& state, const std::string& text) {
  AtlasCandidates c;
  if (!PrepareAtlasLookup(session, state)) return c;
  AtlasQuery query = SplitPlaceText(text);
  KeepRegion(query, state.lastRegion);
  if (Trim(query.city).empty()) return c;
  c.Places = FindPlace(state.atlas, state.personal, query, &c.Status);
  if (c.Places.empty()) {
    AtlasStatus fuzzyStatus = AtlasStatus::kCityNotFound;
    c.Places = state.atlas.FindFuzzy(query, &fuzzyStatus);
    c.Fuzzy = !c.Places.empty();
    if (c.Fuzzy)
      c.Title = query.region.empty() ? SelectCountryForTitle(query.city) : SelectPlaceTitle(query.region);
    else
      c.Title = kSelectCountryTitle;
  }
  return c;
}

AtlasEntryFields FillEntryFields(Session& session, AtlasLookupState& state, const AtlasPlace& place, int year,
                                 int month, int day, int hour, int minute) {
  AtlasEntryFields f;
  f.PlaceName = FileText(place.name, place.asciiName) +
                (place.countryName.empty() ? "" : ", " + FileText(place.countryName, ""));
  f.Latitude = FormatLatitude(place.latitude);
  f.Longitude = FormatLongitude(place.longitude);
  const ZoneInForce z = state.zones.ZoneAt(place.zone, year, month, day, hour, minute, 0, place.longitude);
  if (z.Failed) {
    f.Failed = true;
    session.ShowMessage(z.Message, kIconExclamation, "Vintar");
    return f;
  }
  f.ZoneHours = z.Hours;
  f.ZoneTime = FormatZone(z.Hours);
  f.ZoneMnemonic = z.Abbreviation;
  f.IsLmt = z.IsLmt;
  f.InGap = z.InGap;
  f.InOverlap = z.InOverlap;
  if (session.prefs.IllinoisWarning && IllinoisStandardTimeRule(place.divisionCode, place.countryCode, year, month, day))
    session.ShowMessage(std::string(kIllinoisStandardTimeMessage) + kLineEnd + kIllinoisRecordedTimeMessage,
                        kIconInformation, "Vintar");
  return f;
}

}  // namespace vintar
