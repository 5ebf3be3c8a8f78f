// The user's own places beside the atlas: a small tab-separated UTF-8 text
// file in the user data folder, read line by line (a line that cannot be
// read is skipped, never fatal) and written atomically.
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "core/file_io.h"
#include "core/text.h"
#include "places/atlas.h"

namespace vintar {
namespace {

constexpr const char* kPersonalHeader =
    "# Vintar personal places: name, country code, country, division, latitude, longitude (west positive), zone";

// A field as written: tabs and line ends would break the line, so blanks.
std::string Field(const std::string& s) {
  std::string out = Trim(s);
  for (char& c : out)
    if (c == '\t' || c == '\r' || c == '\n') c = ' ';
  return out;
}

bool ReadNumber(const std::string& text, double limit, double& value) {
  const std::string t = Trim(text);
  if (t.empty()) return false;
  char* end = nullptr;
  value = std::strtod(t.c_str(), &end);
  return end == t.c_str() + t.size() && std::isfinite(value) && std::fabs(value) <= limit;
}

std::vector<std::string> SplitTabs(const std::string& line) {
  std::vector<std::string> out;
  size_t start = 0;
  for (;;) {
    const size_t tab = line.find('\t', start);
    out.push_back(line.substr(start, tab == std::string::npos ? std::string::npos : tab - start));
    if (tab == std::string::npos) return out;
    start = tab + 1;
  }
}

std::string Coordinate(double v) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.5f", v);
  return buffer;
}

}  // namespace

bool PersonalPlaces::Load(const std::string& path, std::string& error) {
  path_ = path;
  places_.clear();
  skipped_ = 0;
  std::string bytes;
  const int err = ReadFileBytes(path, bytes, kMaxSmallFileBytes);
  if (err == ENOENT) return true;
  if (err != 0) {
    error = "Unable to read the personal places " + path + ": " + FileErrorText(err);
    return false;
  }
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    start = end + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (Trim(line).empty() || line[0] == '#') continue;
    const std::vector<std::string> f = SplitTabs(line);
    AtlasPlace p;
    if (f.size() < 7 || Trim(f[0]).empty() || !ReadNumber(f[4], 90.0, p.latitude) ||
        !ReadNumber(f[5], 180.0, p.longitude)) {
      ++skipped_;
      continue;
    }
    p.name = Trim(f[0]);
    p.asciiName = FoldPlaceText(p.name);
    p.countryCode = Trim(f[1]);
    p.countryName = Trim(f[2]);
    p.divisionName = Trim(f[3]);
    p.zone = Trim(f[6]);
    p.personal = true;
    places_.push_back(std::move(p));
  }
  return true;
}

bool PersonalPlaces::Save(std::string& error) const {
  if (path_.empty()) {
    error = "No file is open for the personal places.";
    return false;
  }
  std::string text = std::string(kPersonalHeader) + kLineEnd;
  for (const AtlasPlace& p : places_)
    text += Field(p.name) + '\t' + Field(p.countryCode) + '\t' + Field(p.countryName) + '\t' +
            Field(p.divisionName) + '\t' + Coordinate(p.latitude) + '\t' + Coordinate(p.longitude) + '\t' +
            Field(p.zone) + kLineEnd;
  return WriteFileAtomically(path_, text, error);
}

bool PersonalPlaces::Add(const AtlasPlace& place, std::string& error) {
  if (FoldPlaceText(place.name).empty()) {
    error = "A place needs a name.";
    return false;
  }
  if (!std::isfinite(place.latitude) || std::fabs(place.latitude) > 90.0 || !std::isfinite(place.longitude) ||
      std::fabs(place.longitude) > 180.0) {
    error = "The latitude or longitude of " + place.name + " is out of range.";
    return false;
  }
  std::vector<AtlasPlace> before = places_;
  AtlasPlace p = place;
  p.name = Field(p.name);
  p.asciiName = FoldPlaceText(p.name);
  p.personal = true;
  std::erase_if(places_, [&](const AtlasPlace& q) {
    return q.asciiName == p.asciiName && EqualsIgnoreCase(q.countryCode, p.countryCode);
  });
  places_.push_back(std::move(p));
  if (!Save(error)) {
    places_ = std::move(before);
    return false;
  }
  return true;
}

int PersonalPlaces::Remove(const std::string& name, std::string& error) {
  const std::string key = FoldPlaceText(name);
  std::vector<AtlasPlace> before = places_;
  const size_t removed = std::erase_if(places_, [&](const AtlasPlace& q) { return q.asciiName == key; });
  if (removed == 0) return 0;
  if (!Save(error)) {
    places_ = std::move(before);
    return -1;
  }
  return static_cast<int>(removed);
}

std::vector<AtlasPlace> PersonalPlaces::Find(const Atlas& atlas, const AtlasQuery& query) const {
  std::vector<AtlasPlace> out;
  const std::string city = FoldPlaceText(query.city);
  const std::string region = FoldPlaceText(query.region);
  if (city.empty()) return out;
  const Atlas::Scope scope = region.empty() ? Atlas::Scope() : atlas.ResolveRegion(query.region);
  for (const AtlasPlace& p : places_) {
    if (p.asciiName != city) continue;
    if (!region.empty() && !atlas.InScope(scope, p.countryCode, p.divisionName) &&
        region != FoldPlaceText(p.countryName) && region != FoldPlaceText(p.countryCode) &&
        region != FoldPlaceText(p.divisionName))
      continue;
    out.push_back(p);
  }
  return out;
}

std::vector<AtlasPlace> FindPlace(const Atlas& atlas, const PersonalPlaces& personal, const AtlasQuery& query,
                                  AtlasStatus* status) {
  std::vector<AtlasPlace> out = personal.Find(atlas, query);
  AtlasStatus atlasStatus = AtlasStatus::kCityNotFound;
  std::vector<AtlasPlace> found = atlas.Find(query, &atlasStatus);
  out.insert(out.end(), found.begin(), found.end());
  if (status) *status = out.empty() ? atlasStatus : AtlasStatus::kFound;
  return out;
}

}  // namespace vintar
