// The TimeZones screen: every zone of the session's zone table (mnemonic,
// full name, offset text) as a list of tab-separated lines in one of three
// orders. Offsets are the table's texts in the zone grammar (hours added to
// local time to reach Universal Time) and sort as text, not as numbers.
// Checked by tests/places/place_db_test.cpp against a small zone table.
#pragma once

#include <string>
#include <vector>

namespace vintar {

class Session;

// The option buttons of the screen: "&Mnemonic", by time, by full name.
enum class ZoneSort { Mnemonic, Time, Name };

// Widths of the three columns (mnemonic, name, offset) as the zone table
// holds them.
inline constexpr int kZoneMnemonicWidth = 5;
inline constexpr int kZoneNameWidth = 30;
inline constexpr int kZoneOffsetWidth = 6;

struct ZoneListRow {
  std::string Line;      // the columns joined by tabs, the sort column first
  std::string Mnemonic;  // what Select returns
  std::string Offset;
};

// The rows in the chosen order: sorted on the sort column padded with blanks
// to its width (so a text sorts before a longer one that begins with it),
// then on the whole line, ignoring case.
std::vector<ZoneListRow> ZoneList(const Session& session, ZoneSort sort);

// Texts of "X" as wide as each column of `sort`, in the order shown, for
// measuring where the tab stops go.
std::vector<std::string> ZoneListMeasures(ZoneSort sort);

}  // namespace vintar
