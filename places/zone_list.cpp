#include "places/zone_list.h"

#include <algorithm>
#include <array>

#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

// Column numbers in the order each sort shows them: 0 mnemonic, 1 name, 2 offset.
std::array<int, 3> ColumnOrder(ZoneSort sort) {
  switch (sort) {
    case ZoneSort::Time: return {2, 0, 1};
    case ZoneSort::Name: return {1, 0, 2};
    case ZoneSort::Mnemonic: break;
  }
  return {0, 1, 2};
}

constexpr std::array<int, 3> kWidths = {kZoneMnemonicWidth, kZoneNameWidth, kZoneOffsetWidth};

std::string Padded(const std::string& text, int width) {
  std::string out = text;
  if (out.size() < size_t(width)) out.resize(size_t(width), ' ');
  return out;
}

}  // namespace

std::vector<ZoneListRow> ZoneList(const Session& session, ZoneSort sort) {
  const ZoneTable& zones = session.zones;
  const std::array<int, 3> order = ColumnOrder(sort);
  struct Keyed {
    std::string key;
    ZoneListRow row;
  };
  std::vector<Keyed> rows;
  int count = std::clamp(zones.ZoneCount, 0, kMaxZones);
  for (int z = 1; z <= count; ++z) {
    std::array<std::string, 3> columns = {RTrim(zones.ZoneMnemonic[z]), RTrim(zones.ZoneName[z]),
                                          Trim(zones.ZoneOffset[z])};
    Keyed k;
    k.key = Padded(columns[order[0]], kWidths[order[0]]);
    k.row.Line = columns[order[0]] + "\t" + columns[order[1]] + "\t" + columns[order[2]];
    k.row.Mnemonic = columns[0];
    k.row.Offset = columns[2];
    rows.push_back(std::move(k));
  }
  std::stable_sort(rows.begin(), rows.end(), [](const Keyed& a, const Keyed& b) {
    int c = CompareIgnoreCase(a.key, b.key);
    return c != 0 ? c < 0 : CompareIgnoreCase(a.row.Line, b.row.Line) < 0;
  });
  std::vector<ZoneListRow> out;
  out.reserve(rows.size());
  for (auto& k : rows) out.push_back(std::move(k.row));
  return out;
}

std::vector<std::string> ZoneListMeasures(ZoneSort sort) {
  std::vector<std::string> out;
  for (int column : ColumnOrder(sort)) out.emplace_back(size_t(kWidths[column]), 'X');
  return out;
}

}  // namespace vintar
