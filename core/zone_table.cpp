#include "core/zone_table.h"

#include "core/file_io.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {

int ZoneTable::Find(const std::string& mnemonic) const {
  std::string wanted = RTrim(mnemonic);
  for (int i = 1; i <= ZoneCount; ++i)
    if (EqualsIgnoreCase(RTrim(ZoneMnemonic[i]), wanted)) return i;
  return 0;
}

void LoadTimeZones(Session& session, const std::string& path) {
  std::string bytes;
  if (ReadFileBytes(path, bytes, kMaxSmallFileBytes) != 0) return;
  ZoneTable& table = session.zones;
  int count = 0;
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find_first_of("\r\n", start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    start = end + 1;
    if (end < bytes.size() && bytes[end] == '\r' && start < bytes.size() && bytes[start] == '\n') ++start;
    // One string per line: quoted, or the text to the line end.
    std::string field = LTrim(line);
    if (!field.empty() && field.front() == '"') {
      size_t close = field.find('"', 1);
      field = field.substr(1, close == std::string::npos ? std::string::npos : close - 1);
    } else {
      field = line;
    }
    if (Trim(field).empty()) continue;
    if (count == kMaxZones) {
      session.ShowMessage("Timezone file " + path + " has too many entries." + kLineEnd + "Current limit is " +
                              std::to_string(kMaxZones) + kLineEnd +
                              "Entries beyond this number have been ignored.",
                          kIconExclamation, "Too Many Time Zones");
      break;
    }
    ++count;
    field.resize(41, ' ');
    table.ZoneMnemonic[count] = UCase(Trim(field.substr(0, 5)));
    table.ZoneName[count] = Trim(field.substr(5, 30));
    table.ZoneOffset[count] = Trim(field.substr(35, 6));
  }
  table.ZoneCount = count;
}

}  // namespace vintar
