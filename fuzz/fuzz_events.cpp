// The simple events list: any text is read to its end; the first byte sets
// the session's date order (month first or not), the rest is the list. A
// fake place lookup finds every place whose city begins with "A", with a
// zone text made from the input, so that bad zones reach the reader too.
#include <cstddef>
#include <cstdint>
#include <string>

#include "exchange/events_list.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset(false);
  session.prefs.MonthFirst = (data[0] & 1) ? vintar::kTrue : vintar::kFalse;
  const std::string text = vintar::fuzz::AsString(data + 1, size - 1);
  const std::string zone = (data[0] & 2) ? text.substr(0, std::min<size_t>(text.size(), 8)) : std::string("-1:00");
  vintar::EventPlaceLookup lookup = [&](const std::string& city, const std::string&, int, int, int, int, int,
                                        vintar::FoundPlace& found) {
    if (city.empty() || city[0] != 'A') return false;
    found.Latitude = 10.0;
    found.Longitude = -20.0;
    found.ZoneText = zone;
    found.ZoneName.assign(1, 'X');
    return true;
  };
  const vintar::EventsListResult r = vintar::ParseEventsList(session, text, lookup);
  if (r.Imported != static_cast<int>(r.Records.size()) - 1) __builtin_trap();
  return 0;
}
