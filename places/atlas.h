// The open atlas: the world's populated places (GeoNames, places of at least
// 1,000 inhabitants) with country, first-level division (state, province),
// coordinates, population and IANA time zone name, read from data/atlas.bin
// (made by tools/atlas/make_atlas.js), and the lookups of the place entry:
// the split of a typed place text, exact and fuzzy searches, the country and
// division lists, and the user's own places kept beside the atlas.
//
// Units: degrees, latitude north positive, longitude WEST positive (the
// system's convention), to 1e-5 degree. Texts of the atlas are UTF-8; a
// query may be UTF-8 or the files' single-byte code page, both are folded
// to ASCII before comparing. Checked against the GeoNames figures for known
// places and against damaged files (tests/places/atlas_test.cpp,
// fuzz/fuzz_atlas.cpp).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vintar {

class Session;

inline constexpr const char* kAtlasFileName = "atlas.bin";
inline constexpr const char* kPersonalPlacesFileName = "myplaces.txt";

// Screen titles of the place entry.
inline constexpr const char* kSelectCountryTitle = "Select Country or State";
std::string SelectPlaceTitle(const std::string& state);         // "Select Place in " + state
std::string SelectCountryForTitle(const std::string& place);    // ... for "place"

enum class AtlasStatus { kFound, kCityNotFound, kRegionNotFound, kCountyNotFound, kNotRecognised };
// The message of a status; empty for kFound.
std::string AtlasStatusMessage(AtlasStatus status);
// Shows the status's message (nothing for kFound) with the exclamation icon.
void ReportAtlasStatus(Session& session, AtlasStatus status);

struct AtlasPlace {
  std::string name;          // UTF-8, as the place spells itself
  std::string asciiName;
  std::vector<std::string> alternates;  // ASCII
  std::string countryCode;   // ISO 3166-1 alpha-2
  std::string countryName;
  std::string divisionCode;  // empty when the place has no known division
  std::string divisionName;
  double latitude = 0.0;     // north positive
  double longitude = 0.0;    // west positive
  uint32_t population = 0;
  std::string zone;          // IANA name, e.g. "Europe/Berlin"
  bool personal = false;     // one of the user's own places
};

struct AtlasCountry {
  std::string code;
  std::string name;
};
struct AtlasDivision {
  std::string code;
  std::string name;
};

// A typed place split into city and country-or-state. `region` is empty when
// the text named none: the caller then puts the last used one in (see
// KeepRegion). `atBlank` marks a split at the last blank rather than a comma.
struct AtlasQuery {
  std::string city;
  std::string region;
  bool atBlank = false;
};

// Splits at the first comma, else at the last blank; Australian state
// abbreviations become "Australia"; the old code page's special letters are
// spelled out (131 f, 138 S, 140 OE, 154 s, 156 oe, 159 Y).
AtlasQuery SplitPlaceText(std::string_view text);
// A query that names a region makes it the last used one; one without takes it.
void KeepRegion(AtlasQuery& query, std::string& lastRegion);

// Lower-case ASCII form of a UTF-8 or single-byte text: accents dropped,
// special letters spelled out ("München" -> "munchen", "Œ" -> "oe"), blanks
// trimmed and runs of blanks made one.
std::string FoldPlaceText(std::string_view text);
// The fuzzy pattern of a first search from the first three letters of a
// city: vowels "[aeiou]", c/k "[ck]", n/m "[nm]", j/g "[jg]", then "*".
std::string FuzzyPattern(std::string_view city);

inline constexpr size_t kFuzzyLimit = 50;

class Atlas {
 public:
  // Reads and checks the whole file; on failure the atlas is empty and
  // `error` says why.
  bool Load(const std::string& path, std::string& error);
  bool Loaded() const { return !places_.empty(); }
  size_t PlaceCount() const { return places_.size(); }

  // Exact matches on name or alternate names (ignoring case and accents)
  // within the region when one is given, most populous first.
  std::vector<AtlasPlace> Find(const AtlasQuery& query, AtlasStatus* status = nullptr) const;
  // Places whose name fits FuzzyPattern(city), within the region, most
  // populous first, at most `limit`.
  std::vector<AtlasPlace> FindFuzzy(const AtlasQuery& query, AtlasStatus* status = nullptr,
                                    size_t limit = kFuzzyLimit) const;

  std::vector<AtlasCountry> Countries() const;  // by name
  // The divisions of a country given by code or name, by name.
  std::vector<AtlasDivision> Divisions(const std::string& country) const;

  // The countries and divisions a region text names; both empty when none.
  struct Scope {
    std::vector<uint16_t> countries;
    std::vector<uint16_t> divisions;
    bool Empty() const { return countries.empty() && divisions.empty(); }
  };
  Scope ResolveRegion(std::string_view region) const;
  // Whether a place of the user's (country code and division name or code)
  // lies in a scope.
  bool InScope(const Scope& scope, const std::string& countryCode, const std::string& division) const;

 private:
  struct Country {
    std::string code, name;
    std::vector<std::string> keys;  // folded name, code and aliases
  };
  struct Division {
    uint16_t country = 0;
    std::string code, name;
    std::vector<std::string> keys;
  };
  struct Place {
    uint32_t name = 0, ascii = 0, alternates = 0;
    uint8_t alternateCount = 0;
    uint16_t zone = 0, country = 0, division = 0;
    int32_t latitude = 0, longitude = 0;
    uint32_t population = 0;
  };
  struct Key {
    uint32_t text = 0, place = 0;
  };

  std::string_view Text(uint32_t offset) const;
  AtlasPlace Make(uint32_t index) const;
  bool PlaceInScope(const Place& place, const Scope& scope) const;
  template <class Collect>
  void KeyRange(std::string_view prefix, bool wholeKey, Collect&& collect) const;

  std::vector<Country> countries_;
  std::vector<Division> divisions_;
  std::vector<uint32_t> zones_;
  std::vector<Place> places_;
  std::vector<Key> keys_;
  std::string strings_;
};

// The user's own places, beside the atlas: a UTF-8 text file of one place a
// line, tab-separated: name, country code, country name, division, latitude,
// longitude (west positive), IANA zone. Lines that cannot be read are
// skipped and counted.
class PersonalPlaces {
 public:
  // A missing file is an empty list, not an error.
  bool Load(const std::string& path, std::string& error);
  const std::vector<AtlasPlace>& Places() const { return places_; }
  int SkippedLines() const { return skipped_; }
  // Adds (or replaces the place of the same name and country) and saves.
  bool Add(const AtlasPlace& place, std::string& error);
  // Removes every place of that name (ignoring case and accents) and saves;
  // the number removed.
  int Remove(const std::string& name, std::string& error);
  std::vector<AtlasPlace> Find(const Atlas& atlas, const AtlasQuery& query) const;

 private:
  bool Save(std::string& error) const;
  std::string path_;
  std::vector<AtlasPlace> places_;
  int skipped_ = 0;
};

// The user's places first, then the atlas's; the status of the whole search.
std::vector<AtlasPlace> FindPlace(const Atlas& atlas, const PersonalPlaces& personal, const AtlasQuery& query,
                                  AtlasStatus* status = nullptr);

}  // namespace vintar
