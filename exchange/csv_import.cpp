#include "exchange/csv_import.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "core/calendar.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/text.h"
#include "exchange/import.h"
#include "exchange/text_fields.h"

namespace vintar {
namespace {

using exchange_text::AsciiLower;
using exchange_text::SplitLines;

constexpr const char* kKnownFields[] = {"name", "date", "time", "zone", "place", "latitude", "longitude", "skip"};

bool KnownField(const std::string& f) { return std::find(std::begin(kKnownFields), std::end(kKnownFields), f) != std::end(kKnownFields); }

// One row's fields: the delimiter splits, a quoted field may hold it, and a
// doubled quote inside stands for one.
std::vector<std::string> SplitRow(const std::string& row, char delimiter, char quote) {
  std::vector<std::string> fields(1);
  bool quoted = false, fieldStart = true;
  for (size_t i = 0; i < row.size(); ++i) {
    const char c = row[i];
    if (quote && c == quote && (quoted || (fieldStart && Trim(fields.back()).empty()))) {
      // A quote opens a field only at its start; inside, a doubled quote
      // stands for one.
      if (quoted && i + 1 < row.size() && row[i + 1] == quote) {
        fields.back() += quote;
        ++i;
      } else {
        quoted = !quoted;
        if (quoted) fields.back().clear();
      }
    } else if (c == delimiter && !quoted) {
      fields.emplace_back();
      fieldStart = true;
      continue;
    } else {
      fields.back() += c;
    }
    if (c != ' ') fieldStart = false;
  }
  for (std::string& f : fields) f = Trim(f);
  return fields;
}

// A numeric date 1/2/1990, 1990-02-01 or 1.2.1990 in the definition's
// order; other dates go to the system's date parser.
bool ReadDate(Session& s, const std::string& text, const std::string& order, int16_t& d, int16_t& m, int16_t& y) {
  std::vector<std::string> parts(1);
  for (char c : text) {
    if (c >= '0' && c <= '9') parts.back() += c;
    else if (!parts.back().empty()) parts.emplace_back();
  }
  if (!parts.empty() && parts.back().empty()) parts.pop_back();
  const bool numeric = parts.size() == 3 && std::all_of(text.begin(), text.end(), [](char c) {
                         return (c >= '0' && c <= '9') || c == '/' || c == '-' || c == '.' || c == ' ';
                       });
  if (!numeric) {
    bool failed = false;
    ParseDate(s, text, d, m, y, false, failed);
    return !failed;
  }
  auto n = [&](int i) { return static_cast<int16_t>(std::min(std::stol(parts[i].substr(0, 6)), 32000L)); };
  if (order == "MDY") m = n(0), d = n(1), y = n(2);
  else if (order == "YMD") y = n(0), m = n(1), d = n(2);
  else d = n(0), m = n(1), y = n(2);
  if (m < 1 || m > 12 || d < 1 || d > 31) return false;
  float back = 0;
  int bm = 0, by = 0;
  RevJul(JulDay(d, m, y), back, bm, by);
  return static_cast<int>(back) == d && bm == m && by == y;
}

// Coordinates as the system writes them (48N24) or signed degrees (north
// and west positive).
bool ReadCoordinate(Session& s, const std::string& text, bool longitude, double& value) {
  bool failed = false;
  if (longitude)
    ParseLongitude(s, text, value, false, failed);
  else
    ParseLatitude(s, text, value, false, failed);
  return !failed;
}

}  // namespace

std::string FormatCsvFormats(const std::vector<CsvFormat>& formats) {
  std::string out;
  for (const CsvFormat& f : formats) {
    out += "[" + f.Title + "]" + kLineEnd;
    out += std::string("Delimiter=") + (f.Delimiter == '\t' ? std::string("tab") : std::string(1, f.Delimiter)) + kLineEnd;
    out += std::string("Quote=") + (f.Quote ? std::string(1, f.Quote) : std::string()) + kLineEnd;
    out += "SkipLines=" + std::to_string(f.SkipLines) + kLineEnd;
    std::string fields;
    for (const std::string& name : f.Fields) fields += (fields.empty() ? "" : ",") + name;
    out += "Fields=" + fields + kLineEnd;
    out += "DateOrder=" + f.DateOrder + kLineEnd + kLineEnd;
  }
  return out;
}

std::vector<CsvFormat> ParseCsvFormats(const std::string& text) {
  std::vector<CsvFormat> formats;
  for (const std::string& raw : SplitLines(text)) {
    const std::string line = Trim(raw);
    if (line.empty() || line[0] == ';') continue;
    if (line.front() == '[' && line.back() == ']') {
      formats.emplace_back();
      formats.back().Title = Trim(line.substr(1, line.size() - 2));
      continue;
    }
    if (formats.empty()) continue;
    const size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    CsvFormat& f = formats.back();
    const std::string key = AsciiLower(Trim(line.substr(0, eq))), value = line.substr(eq + 1);
    if (key == "delimiter") {
      const std::string v = AsciiLower(value);
      f.Delimiter = v == "tab" ? '\t' : (value.empty() ? ',' : value[0]);
    } else if (key == "quote") {
      f.Quote = value.empty() ? 0 : value[0];
    } else if (key == "skiplines") {
      f.SkipLines = std::clamp(static_cast<int>(ToLongSaturated(Val(value))), 0, 1000);
    } else if (key == "fields") {
      f.Fields.clear();
      for (const std::string& name : SplitRow(value, ',', 0)) f.Fields.push_back(KnownField(AsciiLower(name)) ? AsciiLower(name) : "skip");
    } else if (key == "dateorder") {
      const std::string v = UCase(Trim(value));
      f.DateOrder = v == "MDY" || v == "YMD" ? v : "DMY";
    }
  }
  formats.erase(std::remove_if(formats.begin(), formats.end(),
                               [](const CsvFormat& f) { return f.Fields.empty() || f.Title.empty(); }),
                formats.end());
  return formats;
}

std::vector<CsvFormat> LoadCsvFormats(const Session& session) {
  std::string text;
  const std::string user = EnsureBackslash(session.paths.UserDataPath) + kCsvFormatsFile;
  if (ReadFileBytes(user, text, kMaxSmallFileBytes) == 0) return ParseCsvFormats(text);
  if (ReadFileBytes(EnsureBackslash(session.paths.SystemDataPath) + kCsvFormatsFile, text, kMaxSmallFileBytes) == 0)
    return ParseCsvFormats(text);
  return {};
}

int GetASCIITitle(const std::vector<CsvFormat>& formats, int index, std::string& title) {
  if (index < 0 || index >= static_cast<int>(formats.size())) return -1;
  title = formats[index].Title;
  return 0;
}

bool EditASCII(const Session& session, const std::vector<CsvFormat>& formats, std::string& error) {
  for (const CsvFormat& f : formats) {
    if (Trim(f.Title).empty() || f.Title.find_first_of("[]\r\n") != std::string::npos) {
      error = "A format needs a title without brackets.";
      return false;
    }
    if (f.Fields.empty() || std::find(f.Fields.begin(), f.Fields.end(), "date") == f.Fields.end()) {
      error = "The format \"" + f.Title + "\" needs a date field.";
      return false;
    }
    if (f.Delimiter == '\r' || f.Delimiter == '\n' || (f.Quote && f.Quote == f.Delimiter)) {
      error = "The format \"" + f.Title + "\" has a delimiter that cannot be used.";
      return false;
    }
  }
  std::error_code ec;
  std::filesystem::create_directories(session.paths.UserDataPath, ec);
  return WriteFileAtomically(EnsureBackslash(session.paths.UserDataPath) + kCsvFormatsFile,
                             FormatCsvFormats(formats), error);
}

CsvImportResult ReadCsv(Session& s, const std::string& text, const CsvFormat& format, Progress* progress) {
  CsvImportResult r;
  r.Records.assign(1, EventRecord{});
  const std::vector<std::string> lines = SplitLines(text);
  ImportSteps steps(progress, lines.size());
  for (size_t i = static_cast<size_t>(format.SkipLines); i < lines.size(); ++i) {
    const int lineNo = static_cast<int>(i) + 1;
    if (steps.Line(i + 1)) {
      r.Cancelled = true;
      break;
    }
    if (Trim(lines[i]).empty()) continue;
    const std::vector<std::string> f = SplitRow(lines[i], format.Delimiter, format.Quote);
    auto skip = [&](const std::string& why) { r.Skipped.push_back("Line " + std::to_string(lineNo) + ": " + why); };
    EventRecord e;
    bool haveDate = false, haveTime = false, haveZone = false, haveLat = false, haveLon = false, bad = false;
    for (size_t k = 0; k < format.Fields.size() && k < f.size() && !bad; ++k) {
      const std::string& name = format.Fields[k];
      const std::string& v = f[k];
      if (name == "name") {
        e.Description = v;
      } else if (name == "date" && !v.empty()) {
        int16_t d = 0, m = 0, y = 0;
        if (!ReadDate(s, v, format.DateOrder, d, m, y)) {
          skip("the date \"" + v + "\" is not a date");
          bad = true;
        }
        e.Day = static_cast<uint8_t>(d), e.Month = static_cast<uint8_t>(m), e.Year = y;
        haveDate = true;
      } else if (name == "time" && !v.empty()) {
        int16_t h = 0, m = 0, sec = 0;
        bool failed = false;
        ParseTime(s, v, h, m, sec, false, failed);
        if (failed) {
          skip("the time \"" + v + "\" is not a time");
          bad = true;
        }
        e.Hour = static_cast<uint8_t>(h), e.Minute = static_cast<uint8_t>(m), e.Second = static_cast<uint8_t>(sec);
        haveTime = true;
      } else if (name == "zone" && !v.empty()) {
        float hours = 0;
        std::string mnemonic;
        bool failed = false;
        ParseZone(s, v, hours, mnemonic, false, failed);
        if (failed) {
          skip("the zone \"" + v + "\" is not a zone");
          bad = true;
        }
        e.ZoneHours = hours;
        e.ZoneAbbr = mnemonic.empty() ? FormatZone(hours) : mnemonic;
        haveZone = true;
      } else if (name == "place") {
        e.Placename = v;
      } else if ((name == "latitude" || name == "longitude") && !v.empty()) {
        double value = 0;
        if (!ReadCoordinate(s, v, name == "longitude", value)) {
          skip("the " + name + " \"" + v + "\" is not a " + name);
          bad = true;
        }
        (name == "latitude" ? e.Latitude : e.Longitude) = static_cast<float>(value);
        (name == "latitude" ? haveLat : haveLon) = true;
      }
    }
    if (bad) continue;
    if (!haveDate) {
      skip(f.size() < format.Fields.size() ? "too few fields" : "no date");
      continue;
    }
    if (!haveZone) e.ZoneAbbr = "UT";
    if (haveTime)
      e.DetailLevel = haveZone && haveLat && haveLon ? 3 : 2;
    else
      e.DetailLevel = haveZone ? 1 : 0;
    e.Enabled = kTrue;
    e.JulianDay = RecordJulianDay(e);
    r.Records.push_back(e);
  }
  if (!r.Cancelled) r.Cancelled = steps.Finish();
  if (r.Cancelled) {
    r.Records.assign(1, EventRecord{});
    r.Skipped.clear();
  }
  return r;
}

bool ImportCsv(Session& session, const std::string& csvPath, const std::string& datPath, const CsvFormat& format,
               CsvImportResult& result, std::string& error, Progress* progress) {
  std::string text;
  const int e = ReadFileBytes(csvPath, text, kMaxProjectFileBytes);
  if (e != 0) {
    error = FileErrorText(e) + kLineEnd + csvPath;
    return false;
  }
  result = ReadCsv(session, text, format, progress);
  if (result.Cancelled) {
    error.clear();
    return false;
  }
  return WriteImportedProject(session, datPath, PathFileName(csvPath), result.Records, error);
}

}  // namespace vintar
