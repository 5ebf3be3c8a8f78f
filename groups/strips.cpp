#include "groups/strips.h"

#include <algorithm>
#include <cmath>

#include "calc/cache.h"
#include "core/parse.h"
#include "core/text.h"

namespace vintar {

namespace {

void ClearPositions(StripTable& table, int s) {
  for (int p = 0; p <= kPoints; ++p) table.StripLongitude[p][s] = -1.0;
}

std::string Utf8Glyph(const Session& session, int point) {
  const auto& glyphs = session.vocab.UnicodePointGlyph;
  return point >= 1 && point < static_cast<int>(glyphs.size()) ? glyphs[point] : std::string();
}

std::string PointNameOf(const Session& session, int point) {
  const auto& names = session.vocab.PointName;
  return point >= 1 && point < static_cast<int>(names.size()) ? Trim(names[point]) : std::string();
}

}  // namespace

StripTable::StripTable() {
  for (auto& row : StripLongitude) row.fill(-1.0);
  for (auto& row : StripMidpoint) row.fill(kStripUnknown);
  for (auto& row : StripX) row.fill(kStripUnknown);
  for (auto& order : StripOrder) order.assign(1, 0);
}

int StripTable::LastUsed() const {
  for (int s = kStripCount; s >= 1; --s)
    if (StripRecord[s] > 0) return s;
  return 0;
}

int ClampPlotModulus(int h) { return std::clamp(h, 1, 360); }

int PointColourClass(int point) {
  if (point == kMoon || point == kEarth || point == kSun) return kStripLuminaries;
  if (point >= kMercury && point <= kMars) return kStripPersonal;
  if (point == kJupiter || point == kSaturn) return kStripSocial;
  if (point >= kTrueNode && point <= kEastPoint) return kStripAngles;
  return kStripOuter;
}

void SetStripRecords(StripTable& table, const std::vector<int>& records) {
  for (int s = 1; s <= kStripCount; ++s) {
    const size_t i = static_cast<size_t>(s - 1);
    table.StripRecord[s] = i < records.size() && records[i] > 0 ? records[i] : 0;
    table.StripSelected[s] = false;
    table.StripFocusPoint[s] = 0;
  }
  table.ScaleStart = 0.0;
}

namespace {

// The strips of `records`, each with its focus point, in the harmonic of
// `match` and scrolled to its position.
void ShowMatchStrips(StripTable& table, const GroupMatch& match, const std::vector<int>& records,
                     const std::vector<int>& focus) {
  SetStripRecords(table, records);
  for (size_t i = 0; i < records.size(); ++i) {
    table.StripSelected[i + 1] = true;
    table.StripFocusPoint[i + 1] = focus[i];
  }
  table.PlotModulus = ClampPlotModulus(match.Harmonic);
  const double ratio = std::isfinite(match.Position) ? match.Position * table.PlotModulus / 360.0 : 0.0;
  table.ScaleStart = GroupMod(ratio, 1.0);
}

}  // namespace

bool StripsFromMatch(StripTable& table, const GroupSearchState& state, int k) {
  const std::vector<GroupMatchItem> items = MatchItems(state, k);
  if (items.empty()) return false;
  const GroupMatch& match = state.Matches[k];
  std::vector<int> records, focus;
  for (const GroupMatchItem& item : items) {
    if (std::find(records.begin(), records.end(), item.Chart) != records.end()) continue;
    if (static_cast<int>(records.size()) == kStripCount) break;
    records.push_back(item.Chart);
    // The element tables hold the last pass only: the pair comes from the
    // element's number and the search points.
    const SearchPair pair = MatchItemPair(state, match, item);
    focus.push_back(pair.First == 0 ? 0 : (pair.First == pair.Second ? pair.First : kStripFocusMidpoint));
  }
  ShowMatchStrips(table, match, records, focus);
  return true;
}

bool LoadStripPositions(Session& session, StripTable& table, Progress* progress, bool reload) {
  std::vector<int> wanted;
  int last = 0;
  for (int s = 1; s <= kStripCount; ++s) {
    if (!table.Used(s)) {
      ClearPositions(table, s);
      table.StripLoaded[s] = 0;
    } else if (reload || table.StripLoaded[s] != table.StripRecord[s]) {
      ClearPositions(table, s);
      table.StripLoaded[s] = 0;
      wanted.push_back(s);
      last = std::max(last, table.StripRecord[s]);
    }
  }
  if (wanted.empty()) return true;

  const int coordinate = session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
  const int method = std::clamp<int>(session.cache.ProgressionMethod, kNaibod, kMeanQuotidian);
  bool cancelled = false;
  CalcEvents(session, coordinate, kTransits, method, cancelled, progress);
  if (cancelled) return false;
  CacheReader cache;
  if (!cache.Open(CacheFileName(session.project.ProjectPath, coordinate, kTransits), last)) return false;
  const long long records = std::min<long long>(session.project.Header.RecordCount,
                                                static_cast<long long>(session.project.Events.size()) - 1);
  for (int s : wanted) {
    const int record = table.StripRecord[s];
    if (record > records) continue;
    const unsigned char* bytes = cache.Record(record);
    if (!bytes) continue;
    const EventPositionRecord r = DecodeCacheRecord(bytes);
    if (!CacheRecordUsable(r)) continue;
    const std::array<double, kPoints + 1> lon = AdjustedLongitudes(session, r);
    for (int p = 1; p <= kPoints; ++p) table.StripLongitude[p][s] = lon[p];
    table.StripLoaded[s] = record;
  }
  return true;
}

double StripPlace(double longitude, double partnerLongitude, bool withPartner, double modulus) {
  if (!(longitude >= 0.0) || !std::isfinite(longitude)) return kStripUnknown;
  if (!withPartner) return GroupMod(longitude, modulus);
  if (!(partnerLongitude >= 0.0) || !std::isfinite(partnerLongitude)) return kStripUnknown;
  return GroupMod(NearMidpoint(longitude, partnerLongitude), modulus);
}

void ComputeStripPlaces(StripTable& table) {
  table.PlotModulus = ClampPlotModulus(table.PlotModulus);
  const double modulus = table.Modulus();
  const int partner = table.MidpointPartner;
  const bool withPartner = partner >= 1 && partner <= kPoints;
  std::vector<int> shown;
  for (int p : table.Shown)
    if (p >= 1 && p <= kPoints) shown.push_back(p);

  for (int s = 1; s <= kStripCount; ++s) {
    for (int p = 0; p <= kPoints; ++p) table.StripMidpoint[p][s] = table.StripX[p][s] = kStripUnknown;
    table.StripOrder[s].assign(1, 0);
    if (!table.Used(s)) continue;
    std::vector<float> keys{0.0f};
    for (int p : shown) {
      const double lon = table.StripLongitude[p][s];
      const double other = withPartner ? table.StripLongitude[partner][s] : -1.0;
      if (withPartner && lon >= 0.0 && other >= 0.0) table.StripMidpoint[p][s] = NearMidpoint(lon, other);
      table.StripX[p][s] = StripPlace(lon, other, withPartner, modulus);
      keys.push_back(static_cast<float>(table.StripX[p][s]));
    }
    const std::vector<int> index = IndexSort(keys);
    for (size_t i = 1; i < index.size(); ++i) table.StripOrder[s].push_back(shown[index[i] - 1]);
  }
}

bool RefreshStrips(Session& session, StripTable& table, Progress* progress) {
  const bool loaded = LoadStripPositions(session, table, progress);
  ComputeStripPlaces(table);
  return loaded;
}

std::string ChartLabel(const Session& session, const StripTable& table, int s) {
  if (!table.Used(s)) return {};
  const int record = table.StripRecord[s];
  const auto& events = session.project.Events;
  if (record >= static_cast<int>(events.size()) || record > session.project.Header.RecordCount) return {};
  const EventRecord& e = events[record];
  return std::to_string(s) + ") " + Trim(e.Description) + "\n" + FormatDate(session, e.Day, e.Month, e.Year);
}

bool StripRecordsFromText(const Session& session, const std::string& text, std::vector<int>& records,
                          std::string& error) {
  records.clear();
  const int count = static_cast<int>(std::min<long long>(session.project.Header.RecordCount,
                                                         static_cast<long long>(session.project.Events.size()) - 1));
  if (Trim(text).empty()) {
    for (int record : GroupSearchCharts(session)) {
      if (static_cast<int>(records.size()) == kStripCount) break;
      records.push_back(record);
    }
    if (records.empty()) error = "There are no records switched on in this project.";
    return !records.empty();
  }
  for (const std::string& item : SplitOnAny(text, ", ", 10000)) {
    const std::string word = Trim(item);
    if (word.empty()) continue;
    const int record = IsAllDigits(word) && word.size() < 9 ? std::stoi(word) : 0;
    if (record < 1 || record > count) {
      error = "\"" + word + "\" is not a record of this project (1 to " + std::to_string(count) + ").";
      return false;
    }
    records.push_back(record);
  }
  if (records.empty()) error = "No records were given.";
  return !records.empty();
}

bool StripPointFromText(const Session& session, const std::string& text, int& point, std::string& error) {
  const std::string word = Trim(text);
  point = 0;
  if (word.empty() || EqualsIgnoreCase(word, "none")) return true;
  point = GroupPointByName(session, word);
  if (point == 0) error = "\"" + word + "\" is not a point that the strips can show.";
  return point != 0;
}

bool StripPointsFromText(const Session& session, const std::string& text, std::vector<int>& points,
                         std::string& error) {
  points.clear();
  if (Trim(text).empty() || EqualsIgnoreCase(Trim(text), "all")) {
    points = SelectablePoints(session);
    return true;
  }
  for (const std::string& item : SplitOnAny(text, ",", 1000)) {
    if (Trim(item).empty()) continue;
    int point = 0;
    if (!StripPointFromText(session, item, point, error)) return false;
    if (std::find(points.begin(), points.end(), point) == points.end()) points.push_back(point);
  }
  if (points.empty()) error = "No points were given.";
  return !points.empty();
}

bool StripsFromRequest(const Session& session, StripTable& table, const StripRequest& request,
                       std::vector<int>& records, std::string& error) {
  if (!StripRecordsFromText(session, request.Records, records, error) ||
      !StripPointsFromText(session, request.Points, table.Shown, error) ||
      !StripPointFromText(session, request.MidpointsOf, table.MidpointPartner, error) ||
      !StripPointFromText(session, request.Highlight, table.HighlightPoint, error))
    return false;
  SetStripRecords(table, records);
  table.PlotModulus = ClampPlotModulus(request.Harmonic);
  return true;
}

std::vector<StripListEntry> DisplayListEntries(const Session& session) {
  std::vector<StripListEntry> entries;
  for (int p : SelectablePoints(session)) entries.push_back({p, Utf8Glyph(session, p), PointNameOf(session, p)});
  return entries;
}

std::vector<StripListEntry> HighListEntries(const Session& session) {
  std::vector<StripListEntry> entries{{0, "", "None"}};
  for (const StripListEntry& e : DisplayListEntries(session)) entries.push_back(e);
  return entries;
}

std::vector<StripListEntry> MidPointListEntries(const Session& session) { return DisplayListEntries(session); }

namespace {

// The element of a SecondaryList line, 0 when the line names none.
int DetailElement(const GroupSearchState& state, int line) {
  if (line < 0 || line >= static_cast<int>(state.DetailSlots.size())) return 0;
  const int e = state.DetailSlots[static_cast<size_t>(line)];
  return e >= 1 && e < static_cast<int>(state.ElementChart.size()) && state.ElementChart[e] > 0 ? e : 0;
}

}  // namespace

std::vector<int> DetailLineCharts(const GroupSearchState& state, const std::vector<int>& lines) {
  std::vector<int> charts;
  for (int line : lines) {
    const int e = DetailElement(state, line);
    if (e > 0 && std::find(charts.begin(), charts.end(), state.ElementChart[e]) == charts.end())
      charts.push_back(state.ElementChart[e]);
  }
  return charts;
}

bool StripsFromDetailLines(StripTable& table, const GroupSearchState& state, int k, const std::vector<int>& lines) {
  if (k < 1 || k > state.MatchCount || k >= static_cast<int>(state.Matches.size())) return false;
  std::vector<int> records, focus;
  for (int line : lines) {
    const int e = DetailElement(state, line);
    if (e == 0 || std::find(records.begin(), records.end(), state.ElementChart[e]) != records.end()) continue;
    if (static_cast<int>(records.size()) == kStripCount) break;
    records.push_back(state.ElementChart[e]);
    const bool single = state.ElementFirst[e] == state.ElementSecond[e];
    focus.push_back(single ? state.ElementFirst[e] : kStripFocusMidpoint);
  }
  if (records.empty()) return false;
  const GroupMatch& match = state.Matches[k];
  ShowMatchStrips(table, match, records, focus);
  return true;
}

}  // namespace vintar
