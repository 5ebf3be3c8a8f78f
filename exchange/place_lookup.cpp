#include "exchange/place_lookup.h"

#include "core/parse.h"
#include "core/text.h"

namespace vintar {

EventPlaceLookup EventPlaceFinder::Lookup() {
  return [this](const std::string& city, const std::string& state, int year, int month, int day, int hour, int minute,
                FoundPlace& found) { return Find(city, state, year, month, day, hour, minute, found); };
}

bool EventPlaceFinder::Find(const std::string& city, const std::string& state, int year, int month, int day,
                            int hour, int minute, FoundPlace& found) {
  try {
    if (s_.prefs.UseACS) return FromAtlas(city, state, year, month, day, hour, minute, found);
    return FromPlaces(city, found);
  } catch (...) {
    return false;
  }
}

bool EventPlaceFinder::FromAtlas(const std::string& city, const std::string& state, int year, int month, int day,
                                 int hour, int minute, FoundPlace& found) {
  if (!atlasTried_) {
    atlasTried_ = true;
    std::string error;
    atlas_.Load(EnsureBackslash(s_.paths.SystemDataPath) + kAtlasFileName, error);
  }
  if (!atlas_.Loaded() || city.empty()) return false;
  AtlasQuery query;
  query.city = city;
  query.region = state;
  const std::vector<AtlasPlace> places = atlas_.Find(query);
  if (places.empty()) return false;
  const AtlasPlace& p = places.front();
  const ZoneInForce zone = zones_.ZoneAt(p.zone, year, month, day, hour < 0 ? 12 : hour % 24, hour < 0 ? 0 : minute,
                                         0, p.longitude);
  if (zone.Failed) return false;
  found.Latitude = p.latitude;
  found.Longitude = p.longitude;
  found.ZoneText = FormatZone(zone.Hours);
  found.ZoneName = zone.Abbreviation;
  return true;
}

bool EventPlaceFinder::FromPlaces(const std::string& city, FoundPlace& found) {
  if (!placesRead_) {
    placesRead_ = true;
    ReadPlaceRecords(s_, places_);
  }
  const std::string wanted = UCase(Trim(city));
  if (wanted.empty()) return false;
  for (const PlaceRecord& r : places_) {
    if (UCase(Trim(r.Name)) != wanted) continue;
    double latitude = 0, longitude = 0;
    bool latFailed = false, lonFailed = false;
    ParseLatitude(s_, r.Latitude, latitude, false, latFailed);
    ParseLongitude(s_, r.Longitude, longitude, false, lonFailed);
    if (latFailed || lonFailed) continue;
    found.Latitude = latitude;
    found.Longitude = longitude;
    found.ZoneText = FormatZone(longitude / 15.0);
    found.ZoneName = "LMT";
    return true;
  }
  return false;
}

}  // namespace vintar
