// The open atlas: reading data/atlas.bin field by field, folding typed place
// names to ASCII, and the exact and fuzzy lookups over the sorted key table.
#include "places/atlas.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "core/file_io.h"
#include "core/messages.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr uint64_t kMaxAtlasBytes = 64ull << 20;
constexpr size_t kHeaderBytes = 48;
constexpr uint32_t kAtlasVersion = 1;
constexpr uint16_t kNone = 0xFFFF;

// Lower-case ASCII of the letters U+00C0..U+00FF.
constexpr const char* kLatin1Letters[64] = {
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i", "i", "i", "i",   //
    "d", "n", "o", "o", "o", "o", "o",  "",  "o", "u", "u", "u", "u", "y", "th", "ss",  //
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i", "i", "i", "i",   //
    "d", "n", "o", "o", "o", "o", "o",  "",  "o", "u", "u", "u", "u", "y", "th", "y"};
// Lower-case ASCII of the letters U+0100..U+017F, two to a pair of capital
// and small letter where the block has them.
constexpr const char* kLatinExtendedA[128] = {
    "a", "a", "a", "a", "a", "a", "c", "c", "c", "c", "c", "c", "c", "c", "d", "d",    //
    "d", "d", "e", "e", "e", "e", "e", "e", "e", "e", "e", "e", "g", "g", "g", "g",    //
    "g", "g", "g", "g", "h", "h", "h", "h", "i", "i", "i", "i", "i", "i", "i", "i",    //
    "i", "i", "ij", "ij", "j", "j", "k", "k", "k", "l", "l", "l", "l", "l", "l", "l",  //
    "l", "l", "l", "n", "n", "n", "n", "n", "n", "n", "n", "n", "o", "o", "o", "o",    //
    "o", "o", "oe", "oe", "r", "r", "r", "r", "r", "r", "s", "s", "s", "s", "s", "s",  //
    "s", "s", "t", "t", "t", "t", "t", "t", "u", "u", "u", "u", "u", "u", "u", "u",    //
    "u", "u", "u", "u", "w", "w", "y", "y", "y", "z", "z", "z", "z", "z", "z", "s"};

// The old code page's letters in 128..159, spelled out with their case.
const char* CodePageSpelling(unsigned char c) {
  switch (c) {
    case 131: return "f";
    case 138: return "S";
    case 140: return "OE";
    case 142: return "Z";
    case 154: return "s";
    case 156: return "oe";
    case 158: return "z";
    case 159: return "Y";
    default: return nullptr;
  }
}

// The code point of a well-formed UTF-8 sequence at `i` (its length in
// `length`), or the single byte itself.
uint32_t NextCodePoint(std::string_view s, size_t i, size_t& length) {
  const auto b = [&](size_t k) { return static_cast<unsigned char>(s[i + k]); };
  const auto cont = [&](size_t k) { return i + k < s.size() && (b(k) & 0xC0) == 0x80; };
  const unsigned char c = b(0);
  length = 1;
  if (c >= 0xC2 && c <= 0xDF && cont(1)) {
    length = 2;
    return ((c & 0x1Fu) << 6) | (b(1) & 0x3Fu);
  }
  if (c >= 0xE0 && c <= 0xEF && cont(1) && cont(2)) {
    const uint32_t cp = ((c & 0x0Fu) << 12) | ((b(1) & 0x3Fu) << 6) | (b(2) & 0x3Fu);
    if (cp >= 0x800 && (cp < 0xD800 || cp > 0xDFFF)) {
      length = 3;
      return cp;
    }
  }
  if (c >= 0xF0 && c <= 0xF4 && cont(1) && cont(2) && cont(3)) {
    length = 4;
    return 0x10000;  // outside every table: an unknown letter
  }
  return c;
}

void AppendFolded(uint32_t cp, std::string& out) {
  if (cp < 0x80) {
    out += static_cast<char>(cp >= 'A' && cp <= 'Z' ? cp + 32 : cp);
  } else if (cp < 0xA0) {
    if (const char* s = CodePageSpelling(static_cast<unsigned char>(cp)))
      for (const char* p = s; *p; ++p) out += static_cast<char>(*p >= 'A' && *p <= 'Z' ? *p + 32 : *p);
    else if (cp == 0x91 || cp == 0x92)
      out += '\'';
    else if (cp == 0x96 || cp == 0x97)
      out += '-';
    else
      out += '?';
  } else if (cp == 0xA0) {
    out += ' ';
  } else if (cp >= 0xC0 && cp <= 0xFF) {
    out += kLatin1Letters[cp - 0xC0];
  } else if (cp >= 0x100 && cp <= 0x17F) {
    out += kLatinExtendedA[cp - 0x100];
  } else if (cp == 0x218 || cp == 0x219) {
    out += 's';
  } else if (cp == 0x21A || cp == 0x21B) {
    out += 't';
  } else if (cp >= 0x300 && cp <= 0x36F) {
    // a combining accent of a decomposed letter
  } else if (cp == 0x2018 || cp == 0x2019) {
    out += '\'';
  } else if (cp == 0x2013 || cp == 0x2014) {
    out += '-';
  } else {
    out += '?';
  }
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// Compares a key of the file, lower-cased, with a folded text; with
// `prefix`, a key that starts with the text counts as equal.
int CompareKey(std::string_view key, std::string_view text, bool prefix) {
  const size_t n = std::min(key.size(), text.size());
  for (size_t i = 0; i < n; ++i) {
    const auto a = static_cast<unsigned char>(Lower(key[i]));
    const auto b = static_cast<unsigned char>(text[i]);
    if (a != b) return a < b ? -1 : 1;
  }
  if (key.size() == text.size() || (prefix && key.size() > text.size())) return 0;
  return key.size() < text.size() ? -1 : 1;
}

constexpr const char* kAustralianStates[] = {"ACT", "QLD", "NSW", "NT", "SA", "TAS", "VIC", "WA"};

bool IsAustralianState(const std::string& s) {
  return std::any_of(std::begin(kAustralianStates), std::end(kAustralianStates),
                     [&](const char* st) { return EqualsIgnoreCase(s, st); });
}

bool HasLetter(std::string_view s) {
  return std::any_of(s.begin(), s.end(), [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); });
}

std::vector<std::string> FuzzySets(std::string_view city) {
  std::vector<std::string> sets;
  const std::string folded = FoldPlaceText(city);
  for (char c : folded) {
    if (sets.size() == 3) break;
    switch (c) {
      case 'a': case 'e': case 'i': case 'o': case 'u': sets.emplace_back("aeiou"); break;
      case 'c': case 'k': sets.emplace_back("ck"); break;
      case 'n': case 'm': sets.emplace_back("nm"); break;
      case 'j': case 'g': sets.emplace_back("jg"); break;
      default: sets.emplace_back(1, c);
    }
  }
  return sets;
}

// A little-endian reader over the file's bytes; every read is checked.
class Bytes {
 public:
  explicit Bytes(const std::string& b) : b_(b) {}
  uint32_t U8(size_t at) const { return static_cast<unsigned char>(b_[at]); }
  uint32_t U16(size_t at) const { return U8(at) | U8(at + 1) << 8; }
  uint32_t U32(size_t at) const { return U16(at) | U16(at + 2) << 16; }
  int32_t I32(size_t at) const {
    const uint32_t u = U32(at);
    return u <= 0x7FFFFFFFu ? static_cast<int32_t>(u) : -static_cast<int32_t>(~u) - 1;
  }

 private:
  const std::string& b_;
};

}  // namespace

std::string SelectPlaceTitle(const std::string& state) { return "Select Place in " + state; }
std::string SelectCountryForTitle(const std::string& place) {
  return std::string(kSelectCountryTitle) + " for \"" + place + "\"";
}

std::string AtlasStatusMessage(AtlasStatus status) {
  switch (status) {
    case AtlasStatus::kFound: return "";
    case AtlasStatus::kCityNotFound: return "City not found";
    case AtlasStatus::kRegionNotFound: return "Country/State not found";
    case AtlasStatus::kCountyNotFound: return "County not found";
    case AtlasStatus::kNotRecognised: return "The placename is not recognised.";
  }
  return "";
}

void ReportAtlasStatus(Session& session, AtlasStatus status) {
  if (status != AtlasStatus::kFound) session.ShowMessage(AtlasStatusMessage(status), kIconExclamation);
}

std::string FoldPlaceText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    size_t length = 1;
    const uint32_t cp = NextCodePoint(text, i, length);
    i += length;
    if (cp == ' ' || cp == '\t' || cp == 0xA0) {
      if (!out.empty() && out.back() != ' ') out += ' ';
      continue;
    }
    AppendFolded(cp, out);
  }
  while (!out.empty() && out.back() == ' ') out.pop_back();
  return out;
}

std::string FuzzyPattern(std::string_view city) {
  std::string pattern;
  for (const std::string& set : FuzzySets(city)) pattern += set.size() == 1 ? set : "[" + set + "]";
  return pattern + "*";
}

AtlasQuery SplitPlaceText(std::string_view text) {
  std::string spelled;
  for (char c : text) {
    const char* s = CodePageSpelling(static_cast<unsigned char>(c));
    if (s)
      spelled += s;
    else
      spelled += c;
  }
  const std::string t = Trim(spelled);
  AtlasQuery q;
  const size_t comma = t.find(',');
  if (comma != std::string::npos) {
    q.city = Trim(std::string_view(t).substr(0, comma));
    q.region = Trim(std::string_view(t).substr(comma + 1));
  } else if (const size_t blank = t.find_last_of(" \t"); blank != std::string::npos) {
    q.city = Trim(std::string_view(t).substr(0, blank));
    q.region = Trim(std::string_view(t).substr(blank + 1));
    q.atBlank = true;
  } else {
    q.city = t;
  }
  if (IsAustralianState(q.region)) q.region = "Australia";
  return q;
}

void KeepRegion(AtlasQuery& query, std::string& lastRegion) {
  if (query.region.empty())
    query.region = lastRegion;
  else
    lastRegion = query.region;
}

// ---- loading ----

bool Atlas::Load(const std::string& path, std::string& error) {
  *this = Atlas();
  std::string b;
  if (int err = ReadFileBytes(path, b, kMaxAtlasBytes); err != 0) {
    error = "Unable to read the atlas " + path + ": " + FileErrorText(err);
    return false;
  }
  const auto fail = [&](const std::string& why) {
    *this = Atlas();
    error = "The atlas " + path + " is damaged (" + why + ").";
    return false;
  };
  const Bytes r(b);
  if (b.size() < kHeaderBytes || b.compare(0, 8, "VNTATLAS") != 0) return fail("not an atlas file");
  if (r.U32(8) != kAtlasVersion) return fail("unknown version " + std::to_string(r.U32(8)));
  const uint64_t nPlaces = r.U32(12), nCountries = r.U32(16), nDivisions = r.U32(20), nZones = r.U32(24),
                 nKeys = r.U32(28), nStrings = r.U32(32);
  if (nCountries >= kNone || nDivisions >= kNone || nZones >= kNone) return fail("too many countries");
  const uint64_t countriesAt = kHeaderBytes, divisionsAt = countriesAt + nCountries * 12,
                 zonesAt = divisionsAt + nDivisions * 16, placesAt = zonesAt + nZones * 4,
                 keysAt = placesAt + nPlaces * 32, stringsAt = keysAt + nKeys * 8, end = stringsAt + nStrings;
  if (end != b.size()) return fail("its size does not match its counts");
  uint32_t sum = 0;
  for (size_t i = kHeaderBytes; i < b.size(); ++i) sum += static_cast<unsigned char>(b[i]);
  if (sum != r.U32(40)) return fail("checksum");
  if (nStrings == 0 || b[stringsAt] != '\0' || b.back() != '\0') return fail("string table");
  strings_.assign(b, stringsAt, nStrings);
  const auto okText = [&](uint32_t at) { return at < nStrings; };

  const auto split = [&](std::string_view aliases, std::vector<std::string>& keys) {
    while (!aliases.empty()) {
      const size_t bar = aliases.find('|');
      std::string key = FoldPlaceText(aliases.substr(0, bar));
      if (!key.empty()) keys.push_back(std::move(key));
      if (bar == std::string_view::npos) break;
      aliases.remove_prefix(bar + 1);
    }
  };
  for (uint64_t i = 0; i < nCountries; ++i) {
    const size_t at = countriesAt + i * 12;
    Country c;
    c.code = b.substr(at, 2);
    if (!std::all_of(c.code.begin(), c.code.end(), [](char ch) { return ch >= 'A' && ch <= 'Z'; }))
      return fail("country code");
    if (!okText(r.U32(at + 4)) || !okText(r.U32(at + 8))) return fail("country text");
    c.name = std::string(Text(r.U32(at + 4)));
    c.keys = {FoldPlaceText(c.name), FoldPlaceText(c.code)};
    split(Text(r.U32(at + 8)), c.keys);
    countries_.push_back(std::move(c));
  }
  for (uint64_t i = 0; i < nDivisions; ++i) {
    const size_t at = divisionsAt + i * 16;
    Division d;
    d.country = static_cast<uint16_t>(r.U16(at));
    if (d.country >= nCountries) return fail("division country");
    if (!okText(r.U32(at + 4)) || !okText(r.U32(at + 8)) || !okText(r.U32(at + 12))) return fail("division text");
    d.code = std::string(Text(r.U32(at + 4)));
    d.name = std::string(Text(r.U32(at + 8)));
    d.keys = {FoldPlaceText(d.name)};
    if (HasLetter(d.code)) d.keys.push_back(FoldPlaceText(d.code));
    split(Text(r.U32(at + 12)), d.keys);
    divisions_.push_back(std::move(d));
  }
  for (uint64_t i = 0; i < nZones; ++i) {
    const uint32_t at = r.U32(zonesAt + i * 4);
    if (!okText(at)) return fail("zone text");
    zones_.push_back(at);
  }
  places_.resize(nPlaces);
  for (uint64_t i = 0; i < nPlaces; ++i) {
    const size_t at = placesAt + i * 32;
    Place& p = places_[i];
    p.name = r.U32(at);
    p.ascii = r.U32(at + 4);
    p.alternates = r.U32(at + 8);
    p.alternateCount = static_cast<uint8_t>(r.U8(at + 12));
    p.zone = static_cast<uint16_t>(r.U16(at + 14));
    p.country = static_cast<uint16_t>(r.U16(at + 16));
    p.division = static_cast<uint16_t>(r.U16(at + 18));
    p.latitude = r.I32(at + 20);
    p.longitude = r.I32(at + 24);
    p.population = r.U32(at + 28);
    if (!okText(p.name) || !okText(p.ascii) || !okText(p.alternates)) return fail("place text");
    uint64_t next = p.alternates;
    for (int k = 0; k < p.alternateCount; ++k) {
      if (next >= nStrings) return fail("alternate names");
      next += Text(static_cast<uint32_t>(next)).size() + 1;
    }
    if (p.country >= nCountries || (p.zone != kNone && p.zone >= nZones) ||
        (p.division != kNone && (p.division >= nDivisions || divisions_[p.division].country != p.country)))
      return fail("place " + std::to_string(i + 1));
    if (p.latitude < -9000000 || p.latitude > 9000000 || p.longitude < -18000000 || p.longitude > 18000000)
      return fail("coordinates of place " + std::to_string(i + 1));
  }
  keys_.resize(nKeys);
  for (uint64_t i = 0; i < nKeys; ++i) {
    keys_[i].text = r.U32(keysAt + i * 8);
    keys_[i].place = r.U32(keysAt + i * 8 + 4);
    if (!okText(keys_[i].text) || keys_[i].place >= nPlaces) return fail("key " + std::to_string(i + 1));
    if (i > 0) {
      // Sorted, so that the searches can halve: the previous key, lower-cased,
      // never after this one.
      std::string here(Text(keys_[i].text));
      for (char& c : here) c = Lower(c);
      if (CompareKey(Text(keys_[i - 1].text), here, false) > 0) return fail("key order");
    }
  }
  if (places_.empty()) return fail("no places");
  return true;
}

std::string_view Atlas::Text(uint32_t offset) const {
  // Checked at load: the offset is inside the table, which ends with a NUL.
  return std::string_view(strings_.data() + offset);
}

AtlasPlace Atlas::Make(uint32_t index) const {
  const Place& p = places_[index];
  AtlasPlace out;
  out.name = std::string(Text(p.name));
  out.asciiName = std::string(Text(p.ascii));
  size_t at = p.alternates;
  for (int k = 0; k < p.alternateCount; ++k) {
    out.alternates.emplace_back(Text(static_cast<uint32_t>(at)));
    at += out.alternates.back().size() + 1;
  }
  out.countryCode = countries_[p.country].code;
  out.countryName = countries_[p.country].name;
  if (p.division != kNone) {
    out.divisionCode = divisions_[p.division].code;
    out.divisionName = divisions_[p.division].name;
  }
  out.latitude = p.latitude / 1e5;
  out.longitude = p.longitude / 1e5;
  out.population = p.population;
  if (p.zone != kNone) out.zone = std::string(Text(zones_[p.zone]));
  return out;
}

// ---- lookups ----

Atlas::Scope Atlas::ResolveRegion(std::string_view region) const {
  Scope scope;
  const std::string key = FoldPlaceText(region);
  if (key.empty()) return scope;
  for (size_t i = 0; i < countries_.size(); ++i)
    if (std::find(countries_[i].keys.begin(), countries_[i].keys.end(), key) != countries_[i].keys.end())
      scope.countries.push_back(static_cast<uint16_t>(i));
  for (size_t i = 0; i < divisions_.size(); ++i)
    if (std::find(divisions_[i].keys.begin(), divisions_[i].keys.end(), key) != divisions_[i].keys.end())
      scope.divisions.push_back(static_cast<uint16_t>(i));
  return scope;
}

bool Atlas::PlaceInScope(const Place& place, const Scope& scope) const {
  return std::find(scope.countries.begin(), scope.countries.end(), place.country) != scope.countries.end() ||
         (place.division != kNone &&
          std::find(scope.divisions.begin(), scope.divisions.end(), place.division) != scope.divisions.end());
}

bool Atlas::InScope(const Scope& scope, const std::string& countryCode, const std::string& division) const {
  for (uint16_t c : scope.countries)
    if (EqualsIgnoreCase(countries_[c].code, countryCode)) return true;
  const std::string folded = FoldPlaceText(division);
  for (uint16_t d : scope.divisions) {
    const Division& div = divisions_[d];
    if (EqualsIgnoreCase(countries_[div.country].code, countryCode) && !folded.empty() &&
        std::find(div.keys.begin(), div.keys.end(), folded) != div.keys.end())
      return true;
  }
  return false;
}

template <class Collect>
void Atlas::KeyRange(std::string_view text, bool prefix, Collect&& collect) const {
  auto first = std::partition_point(keys_.begin(), keys_.end(),
                                    [&](const Key& k) { return CompareKey(Text(k.text), text, prefix) < 0; });
  for (; first != keys_.end() && CompareKey(Text(first->text), text, prefix) == 0; ++first) collect(first->place);
}

std::vector<AtlasPlace> Atlas::Find(const AtlasQuery& query, AtlasStatus* status) const {
  AtlasStatus dummy;
  AtlasStatus& st = status ? *status : dummy;
  const std::string city = FoldPlaceText(query.city);
  if (city.empty() || places_.empty()) {
    st = AtlasStatus::kNotRecognised;
    return {};
  }
  // A split at the last blank may have cut a name of several words ("Los
  // Angeles"): when it finds nothing, the whole text is tried as the city.
  const auto whole = [&]() -> std::vector<AtlasPlace> {
    AtlasQuery all;
    all.city = query.city + " " + query.region;
    AtlasStatus s2 = AtlasStatus::kCityNotFound;
    auto found = Find(all, &s2);
    return found;
  };
  const bool scoped = !FoldPlaceText(query.region).empty();
  const Scope scope = scoped ? ResolveRegion(query.region) : Scope();
  if (scoped && scope.Empty()) {
    if (query.atBlank) {
      auto found = whole();
      if (!found.empty()) {
        st = AtlasStatus::kFound;
        return found;
      }
    }
    st = AtlasStatus::kRegionNotFound;
    return {};
  }
  std::vector<uint32_t> hits;
  KeyRange(city, false, [&](uint32_t place) {
    if (!scoped || PlaceInScope(places_[place], scope)) hits.push_back(place);
  });
  std::sort(hits.begin(), hits.end());
  hits.erase(std::unique(hits.begin(), hits.end()), hits.end());
  std::vector<AtlasPlace> out;
  for (uint32_t h : hits) out.push_back(Make(h));
  if (out.empty() && query.atBlank && scoped) out = whole();
  st = out.empty() ? AtlasStatus::kCityNotFound : AtlasStatus::kFound;
  return out;
}

std::vector<AtlasPlace> Atlas::FindFuzzy(const AtlasQuery& query, AtlasStatus* status, size_t limit) const {
  AtlasStatus dummy;
  AtlasStatus& st = status ? *status : dummy;
  const std::vector<std::string> sets = FuzzySets(query.city);
  if (sets.empty() || places_.empty()) {
    st = AtlasStatus::kNotRecognised;
    return {};
  }
  const bool scoped = !FoldPlaceText(query.region).empty();
  const Scope scope = scoped ? ResolveRegion(query.region) : Scope();
  if (scoped && scope.Empty()) {
    st = AtlasStatus::kRegionNotFound;
    return {};
  }
  // Every prefix the pattern allows (at most 5 x 5 x 5), each a range of keys.
  std::vector<std::string> prefixes{""};
  for (const std::string& set : sets) {
    std::vector<std::string> next;
    for (const std::string& p : prefixes)
      for (char c : set) next.push_back(p + c);
    prefixes.swap(next);
  }
  // A short pattern over the whole world may cover tens of thousands of
  // keys: marks, then the first `limit` places in population order, cost
  // less than sorting them.
  std::vector<char> hit(places_.size(), 0);
  size_t count = 0;
  for (const std::string& prefix : prefixes)
    KeyRange(prefix, true, [&](uint32_t place) {
      if (!hit[place] && (!scoped || PlaceInScope(places_[place], scope))) {
        hit[place] = 1;
        ++count;
      }
    });
  std::vector<AtlasPlace> out;
  for (size_t i = 0; i < hit.size() && out.size() < std::min(limit, count); ++i)
    if (hit[i]) out.push_back(Make(static_cast<uint32_t>(i)));
  st = out.empty() ? AtlasStatus::kCityNotFound : AtlasStatus::kFound;
  return out;
}

std::vector<AtlasCountry> Atlas::Countries() const {
  std::vector<AtlasCountry> out;
  for (const Country& c : countries_) out.push_back({c.code, c.name});
  std::sort(out.begin(), out.end(), [](const AtlasCountry& a, const AtlasCountry& b) { return a.name < b.name; });
  return out;
}

std::vector<AtlasDivision> Atlas::Divisions(const std::string& country) const {
  std::vector<AtlasDivision> out;
  const Scope scope = ResolveRegion(country);
  if (scope.countries.empty()) return out;
  for (const Division& d : divisions_)
    if (d.country == scope.countries.front()) out.push_back({d.code, d.name});
  std::sort(out.begin(), out.end(), [](const AtlasDivision& a, const AtlasDivision& b) { return a.name < b.name; });
  return out;
}

}  // namespace vintar
