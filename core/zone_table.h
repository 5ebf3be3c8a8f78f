// The time zone table: up to 100 mnemonics with a name and an offset text,
// read from timezone.fil in fixed columns (1-5 mnemonic, 6-35 name, 36-41
// offset). The offset text is in the zone grammar of the parsers: hours added
// to local time to reach Universal Time, so east of Greenwich is negative.
#pragma once

#include <array>
#include <string>

namespace vintar {

class Session;

inline constexpr int kMaxZones = 100;

struct ZoneTable {
  int ZoneCount = 0;
  std::array<std::string, kMaxZones + 1> ZoneMnemonic;  // 1..ZoneCount, upper-cased, 5 characters at most
  std::array<std::string, kMaxZones + 1> ZoneName;      // 30 characters at most
  std::array<std::string, kMaxZones + 1> ZoneOffset;    // 6 characters at most

  // Row of a mnemonic (ignoring case, blanks at the right trimmed), 0 if none.
  int Find(const std::string& mnemonic) const;
};

// Reads `path` into the session's zone table. An open failure leaves the
// table as it was; a 101st line stops the reading with a message.
void LoadTimeZones(Session& session, const std::string& path);

}  // namespace vintar
