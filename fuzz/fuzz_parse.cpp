// The value parsers of typed text, with their messages on. The first byte
// chooses the parser (low three bits: date, time, angle, latitude,
// longitude, zone) and the MonthFirst and AMPM preferences (bits 3 and 4);
// the rest is the text. A value that parses goes to its formatter, and the
// formatted text is parsed once more, quietly.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/parse.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  auto& fuzz = vintar::fuzz::FuzzSession::Get();
  vintar::Session& session = fuzz.Reset(false);
  const int parser = data[0] & 7;
  session.prefs.MonthFirst = (data[0] & 0x08) ? vintar::kTrue : vintar::kFalse;
  session.prefs.AMPM = (data[0] & 0x10) ? vintar::kTrue : vintar::kFalse;
  const std::string text = vintar::fuzz::AsString(data + 1, size - 1);

  bool failed = false;
  switch (parser % 6) {
    case 0: {
      int16_t day = 0, month = 0, year = 0;
      vintar::ParseDate(session, text, day, month, year, true, failed);
      if (!failed) {
        const std::string formatted = vintar::FormatDate(session, day, month, year);
        vintar::ParseDate(session, formatted, day, month, year, false, failed);
      }
      break;
    }
    case 1: {
      int16_t hours = 0, minutes = 0, seconds = 0;
      vintar::ParseTime(session, text, hours, minutes, seconds, true, failed);
      if (!failed) {
        const std::string formatted = vintar::FormatTime(hours, minutes, seconds, session.prefs.AMPM != 0);
        vintar::ParseTime(session, formatted, hours, minutes, seconds, false, failed);
      }
      break;
    }
    case 2: {
      float angle = 0.0f;
      vintar::ParseAngle(session, text, angle, failed);
      break;
    }
    case 3: {
      double latitude = 0.0;
      vintar::ParseLatitude(session, text, latitude, true, failed);
      if (!failed) vintar::ParseLatitude(session, vintar::FormatLatitude(latitude), latitude, false, failed);
      break;
    }
    case 4: {
      double longitude = 0.0;
      vintar::ParseLongitude(session, text, longitude, true, failed);
      if (!failed) vintar::ParseLongitude(session, vintar::FormatLongitude(longitude), longitude, false, failed);
      break;
    }
    default: {
      float hours = 0.0f;
      std::string mnemonic;
      vintar::ParseZone(session, text, hours, mnemonic, true, failed);
      if (!failed) vintar::ParseZone(session, vintar::FormatZone(hours), hours, mnemonic, false, failed);
      break;
    }
  }
  return 0;
}
