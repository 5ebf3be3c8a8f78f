#include "exchange/aaf.h"

#include <cctype>
#include <cmath>
#include <cstdio>

#include "core/calendar.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/text.h"
#include "exchange/import.h"
#include "exchange/text_fields.h"

namespace vintar {
namespace {

using exchange_text::AllDigits;
using exchange_text::AsciiLower;
using exchange_text::DigitsValue;
using exchange_text::SplitLines;

std::vector<std::string> Fields(const std::string& data) {
  std::vector<std::string> out;
  size_t at = 0;
  for (;;) {
    const size_t comma = data.find(',', at);
    std::string f = Trim(data.substr(at, comma == std::string::npos ? std::string::npos : comma - at));
    out.push_back(f == "*" ? std::string() : f);
    if (comma == std::string::npos) break;
    at = comma + 1;
  }
  return out;
}

// "12:30:15" or "12:30" as minutes and seconds after a whole part; false
// when it is not one.
bool MinutesSeconds(const std::string& s, double& value) {
  const size_t colon = s.find(':');
  const std::string m = s.substr(0, colon), sec = colon == std::string::npos ? "0" : s.substr(colon + 1);
  if (m.empty()) {
    value = 0;
    return sec == "0";
  }
  if (!AllDigits(m) || !AllDigits(sec) || DigitsValue(m) >= 60 || DigitsValue(sec) >= 60) return false;
  value = DigitsValue(m) / 60.0 + DigitsValue(sec) / 3600.0;
  return true;
}

// "48n24", "48N24:30", "9e59", "122W25"; or signed decimal degrees with
// the file's signs (north and east positive). `west` gets the sign of this
// system: west positive. False when the text is neither.
bool Coordinate(const std::string& text, bool longitude, double& value) {
  const std::string t = Trim(text);
  const char pos = longitude ? 'e' : 'n', neg = longitude ? 'w' : 's';
  for (size_t i = 0; i < t.size(); ++i) {
    const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(t[i])));
    if (c != pos && c != neg) continue;
    const std::string deg = t.substr(0, i);
    double minutes = 0;
    if (!AllDigits(deg) || !MinutesSeconds(t.substr(i + 1), minutes)) return false;
    double v = DigitsValue(deg) + minutes;
    if (v > (longitude ? 180.0 : 90.0)) return false;
    const bool positive = c == pos;  // north or east
    v = positive ? v : -v;
    value = longitude ? -v : v;  // west positive here
    return true;
  }
  char* end = nullptr;
  const double v = std::strtod(t.c_str(), &end);
  if (t.empty() || end != t.c_str() + t.size() || !std::isfinite(v) || std::fabs(v) > (longitude ? 180.0 : 90.0))
    return false;
  value = longitude ? -v : v;
  return true;
}

// "1he00", "1hE", "5hw00", "0e21:48", "-1:00" (a plain offset, east
// positive as the file's convention), hours added to UT to get local time;
// returned in this system's sign (added to local time to get UT).
bool ZoneOffset(const std::string& text, double& hours) {
  std::string t = AsciiLower(Trim(text));
  const size_t letter = t.find_first_of("ew");
  if (letter != std::string::npos) {
    std::string h = t.substr(0, letter);
    if (!h.empty() && h.back() == 'h') h.pop_back();
    double minutes = 0;
    if (!AllDigits(h) || !MinutesSeconds(t.substr(letter + 1), minutes)) return false;
    const double v = DigitsValue(h) + minutes;
    if (v > 15.0) return false;
    hours = t[letter] == 'e' ? -v : v;
    return true;
  }
  bool negative = false;
  if (!t.empty() && (t[0] == '-' || t[0] == '+')) {
    negative = t[0] == '-';
    t = t.substr(1);
  }
  const size_t colon = t.find(':');
  const std::string h = t.substr(0, colon);
  double minutes = 0;
  if (!AllDigits(h) || (colon != std::string::npos && !MinutesSeconds(t.substr(colon + 1), minutes))) return false;
  const double v = DigitsValue(h) + minutes;
  if (v > 15.0) return false;
  hours = negative ? v : -v;
  return true;
}

class Reader {
 public:
  Reader(Session& s, AafReadResult& out) : s_(s), out_(out) {}

  void Chunk(const std::string& id, const std::string& data, int line) {
    if (id == "A93") {
      Flush();
      Begin(data, line);
    } else if (open_ && id == "B93") {
      Position(data);
    } else if (open_ && id == "ZNAM") {
      const std::string name = Trim(data);
      if (!name.empty() && name != "*") chart_.ZoneName = name;
    }
  }

  void Flush() {
    if (!open_) return;
    open_ = false;
    if (!error_.empty()) {
      out_.Skipped.push_back("Line " + std::to_string(chart_.Line) + ": " + error_);
      return;
    }
    // No zone given, but the moment in universal time: the zone is what
    // lies between the two.
    if (!chart_.HasZone && haveJD_ && chart_.HasTime) {
      const double local = JulDay(chart_.Day, chart_.Month, chart_.Year) +
                           (chart_.Hour + chart_.Minute / 60.0 + chart_.Second / 3600.0) / 24.0;
      const double zone = std::round((jd_ - local) * 24.0 * 3600.0) / 3600.0;
      if (std::fabs(zone) <= 15.0) {
        chart_.HasZone = true;
        chart_.ZoneHours = zone;
      }
    }
    out_.Charts.push_back(chart_);
  }

 private:
  void Begin(const std::string& data, int line) {
    open_ = true;
    error_.clear();
    haveJD_ = false;
    chart_ = AafChart{};
    chart_.Line = line;
    const std::vector<std::string> f = Fields(data);
    auto field = [&](size_t i) { return i < f.size() ? f[i] : std::string(); };
    chart_.Name = field(0);
    chart_.FirstName = field(1);
    chart_.Kind = field(2);
    chart_.Place = field(5);
    chart_.Country = field(6);
    if (!ReadDate(field(3))) {
      error_ = field(3).empty() ? "no date" : "the date \"" + field(3) + "\" is not a date";
      return;
    }
    const std::string time = field(4);
    if (!time.empty() && !ReadTime(time)) error_ = "the time \"" + time + "\" is not a time";
  }

  bool ReadDate(std::string d) {
    if (!d.empty() && (d.back() == 'g' || d.back() == 'j' || d.back() == 'G' || d.back() == 'J')) d.pop_back();
    const size_t a = d.find('.'), b = a == std::string::npos ? a : d.find('.', a + 1);
    if (b == std::string::npos) return false;
    const std::string day = d.substr(0, a), month = d.substr(a + 1, b - a - 1);
    std::string year = d.substr(b + 1);
    bool negative = !year.empty() && year[0] == '-';
    if (negative) year = year.substr(1);
    if (!AllDigits(day) || !AllDigits(month) || !AllDigits(year) || year.size() > 5) return false;
    chart_.Day = DigitsValue(day);
    chart_.Month = DigitsValue(month);
    chart_.Year = negative ? -DigitsValue(year) : DigitsValue(year);
    if (chart_.Month < 1 || chart_.Month > 12 || chart_.Day < 1 || chart_.Day > 31) return false;
    if (chart_.Year < -5000 || chart_.Year > 5000) return false;
    float back = 0;
    int m = 0, y = 0;
    RevJul(JulDay(chart_.Day, chart_.Month, chart_.Year), back, m, y);
    return static_cast<int>(back) == chart_.Day && m == chart_.Month && y == chart_.Year;
  }

  bool ReadTime(const std::string& t) {
    const size_t a = t.find(':');
    if (a == std::string::npos) return false;
    const size_t b = t.find(':', a + 1);
    const std::string h = t.substr(0, a), m = t.substr(a + 1, b == std::string::npos ? b : b - a - 1);
    const std::string sec = b == std::string::npos ? "0" : t.substr(b + 1);
    if (!AllDigits(h) || !AllDigits(m) || !AllDigits(sec) || DigitsValue(h) > 23 || DigitsValue(m) > 59 || DigitsValue(sec) > 59) return false;
    chart_.HasTime = true;
    chart_.Hour = DigitsValue(h);
    chart_.Minute = DigitsValue(m);
    chart_.Second = DigitsValue(sec);
    return true;
  }

  void Position(const std::string& data) {
    const std::vector<std::string> f = Fields(data);
    auto field = [&](size_t i) { return i < f.size() ? f[i] : std::string(); };
    char* end = nullptr;
    const std::string jd = field(0);
    const double v = std::strtod(jd.c_str(), &end);
    haveJD_ = !jd.empty() && end == jd.c_str() + jd.size() && std::isfinite(v) && v > 0.0 && v < 1e8;
    if (haveJD_) jd_ = v;
    double lat = 0, lon = 0;
    if (Coordinate(field(1), false, lat) && Coordinate(field(2), true, lon)) {
      chart_.HasPosition = true;
      chart_.Latitude = lat;
      chart_.Longitude = lon;
    }
    const std::string zone = field(3), dst = field(4);
    double hours = 0;
    if (ZoneOffset(zone, hours)) {
      // Daylight saving: hours added to the zone's clock ("1"); "m" and
      // "L" mark mean time, where the zone field is already the offset.
      if (AllDigits(dst)) hours -= DigitsValue(dst);
      chart_.HasZone = std::fabs(hours) <= 16.0;
      chart_.ZoneHours = hours;
    } else if (!zone.empty()) {
      // A zone given as its name: the session's zone table.
      float parsed = 0;
      std::string mnemonic;
      bool failed = false;
      ParseZone(s_, zone, parsed, mnemonic, false, failed);
      if (!failed) {
        chart_.HasZone = true;
        chart_.ZoneHours = parsed;
        if (chart_.ZoneName.empty()) chart_.ZoneName = mnemonic.empty() ? zone : mnemonic;
      }
    }
    if (!chart_.HasZone && AsciiLower(dst) == "l" && chart_.HasPosition) {
      chart_.HasZone = true;  // local mean time of the place
      chart_.ZoneHours = chart_.Longitude / 15.0;
      chart_.ZoneName = "LMT";
    }
  }

  Session& s_;
  AafReadResult& out_;
  AafChart chart_;
  bool open_ = false;
  std::string error_;
  bool haveJD_ = false;
  double jd_ = 0.0;
};

std::string Clean(const std::string& s) {
  std::string out = Trim(s);
  for (char& c : out)
    if (c == ',' || c == '\r' || c == '\n') c = ';';
  return out.empty() ? "*" : out;
}

std::string TwoDigits(int n) {
  char b[8];
  std::snprintf(b, sizeof b, "%02d", std::abs(n) % 100);
  return b;
}

// 48n24 / 9e59 with seconds when there are any.
std::string CoordinateText(double value, bool longitude) {
  const double east = longitude ? -value : value;  // the file's sign: north and east positive
  const char letter = longitude ? (east < 0 ? 'w' : 'e') : (east < 0 ? 's' : 'n');
  const long seconds = std::lround(std::fabs(east) * 3600.0);
  std::string t = std::to_string(seconds / 3600) + letter + TwoDigits(static_cast<int>(seconds / 60 % 60));
  if (seconds % 60) t += ":" + TwoDigits(static_cast<int>(seconds % 60));
  return t;
}

std::string ZoneText(double hours) {
  const char letter = hours <= 0 ? 'e' : 'w';  // hours added to local time: east is negative
  const long seconds = std::lround(std::fabs(hours) * 3600.0);
  std::string t = std::to_string(seconds / 3600) + "h" + letter + TwoDigits(static_cast<int>(seconds / 60 % 60));
  if (seconds % 60) t += ":" + TwoDigits(static_cast<int>(seconds % 60));
  return t;
}

struct ChartOut {
  std::string Name, Kind = "e";
  int Day = 0, Month = 0, Year = 0;
  bool HasTime = false;
  int Hour = 0, Minute = 0, Second = 0;
  std::string Place, Country;
  bool HasPosition = false;
  double Latitude = 0, Longitude = 0;
  bool HasZone = false;
  double ZoneHours = 0;
  std::string ZoneName;
};

void Write(std::string& out, const ChartOut& c) {
  const std::string time = c.HasTime ? std::to_string(c.Hour) + ":" + TwoDigits(c.Minute) +
                                           (c.Second ? ":" + TwoDigits(c.Second) : std::string())
                                     : "*";
  out += "#A93:" + Clean(c.Name) + ",*," + c.Kind + "," + std::to_string(c.Day) + "." + std::to_string(c.Month) +
         "." + std::to_string(c.Year) + "," + time + "," + Clean(c.Place) + "," + Clean(c.Country) + kLineEnd;
  std::string jd = "*";
  if (c.HasTime && c.HasZone) {
    char b[32];
    const double ut = JulDay(c.Day, c.Month, c.Year) +
                      (c.Hour + c.Minute / 60.0 + c.Second / 3600.0 + c.ZoneHours) / 24.0;
    std::snprintf(b, sizeof b, "%013.5f", ut);
    jd = b;
  }
  out += "#B93:" + jd + "," + (c.HasPosition ? CoordinateText(c.Latitude, false) : "*") + "," +
         (c.HasPosition ? CoordinateText(c.Longitude, true) : "*") + "," + (c.HasZone ? ZoneText(c.ZoneHours) : "*") +
         ",0" + kLineEnd;
  if (c.HasZone && !Trim(c.ZoneName).empty()) out += "#ZNAM:" + Clean(c.ZoneName) + kLineEnd;
}

// A place text "City, State" as the file's place and country.
void SplitPlace(const std::string& placename, std::string& place, std::string& country) {
  const size_t comma = placename.find(',');
  place = Trim(placename.substr(0, comma));
  country = comma == std::string::npos ? std::string() : Trim(placename.substr(comma + 1));
}

}  // namespace

AafReadResult ReadAaf(Session& session, const std::string& text, Progress* progress) {
  AafReadResult result;
  try {
    Reader reader(session, result);
    const std::vector<std::string> lines = SplitLines(text);
    ImportSteps steps(progress, lines.size());
    int lineNo = 0;
    for (const std::string& line : lines) {
      ++lineNo;
      if (steps.Line(static_cast<size_t>(lineNo))) {
        result.Cancelled = true;
        break;
      }
      if (line.empty() || line[0] != '#') continue;
      const size_t colon = line.find(':');
      if (colon == std::string::npos) continue;
      reader.Chunk(Trim(exchange_text::AsciiUpper(line.substr(1, colon - 1))), line.substr(colon + 1), lineNo);
    }
    if (!result.Cancelled) {
      reader.Flush();
      result.Cancelled = steps.Finish();
    }
  } catch (...) {
    result.Skipped.push_back("The file could not be read to its end.");
  }
  if (result.Cancelled) result = AafReadResult{{}, {}, true};
  return result;
}

EventRecord AafChartToRecord(const AafChart& c) {
  EventRecord r;
  r.Description = Trim(c.FirstName.empty() ? c.Name : c.FirstName + " " + c.Name);
  r.Day = static_cast<uint8_t>(c.Day);
  r.Month = static_cast<uint8_t>(c.Month);
  r.Year = static_cast<int16_t>(c.Year);
  r.Hour = static_cast<uint8_t>(c.HasTime ? c.Hour : 0);
  r.Minute = static_cast<uint8_t>(c.HasTime ? c.Minute : 0);
  r.Second = static_cast<uint8_t>(c.HasTime ? c.Second : 0);
  r.Placename = c.Country.empty() ? c.Place : (c.Place.empty() ? c.Country : c.Place + ", " + c.Country);
  if (c.HasPosition) {
    r.Latitude = static_cast<float>(c.Latitude);
    r.Longitude = static_cast<float>(c.Longitude);
  }
  r.ZoneAbbr = c.HasZone ? (c.ZoneName.empty() ? FormatZone(c.ZoneHours) : c.ZoneName) : "UT";
  r.ZoneHours = c.HasZone ? static_cast<float>(c.ZoneHours) : 0.0f;
  if (c.HasTime)
    r.DetailLevel = c.HasZone && c.HasPosition ? 3 : 2;
  else
    r.DetailLevel = c.HasZone ? 1 : 0;
  if (c.HasTime && !c.HasZone) r.ZoneAbbr = "UT";
  r.Enabled = kTrue;
  r.JulianDay = RecordJulianDay(r);
  return r;
}

std::string WriteAaf(Session& session, const ProjectHeader& h, const std::vector<EventRecord>& records) {
  std::string out;
  // The natal chart, as far as the header tells it.
  ChartOut natal;
  natal.Name = h.Name.empty() ? h.Title : h.Name;
  natal.Kind = "*";
  int16_t d = 0, m = 0, y = 0, hh = 0, mm = 0, ss = 0;
  bool failed = false;
  ParseDate(session, h.Date, d, m, y, false, failed);
  if (!failed) {
    natal.Day = d;
    natal.Month = m;
    natal.Year = y;
    ParseTime(session, h.Time, hh, mm, ss, false, failed);
    natal.HasTime = !failed;
    natal.Hour = hh;
    natal.Minute = mm;
    natal.Second = ss;
    double lat = 0, lon = 0;
    bool latFailed = false, lonFailed = false;
    ParseLatitude(session, h.Latitude, lat, false, latFailed);
    ParseLongitude(session, h.Longitude, lon, false, lonFailed);
    natal.HasPosition = !latFailed && !lonFailed;
    natal.Latitude = lat;
    natal.Longitude = lon;
    float zone = 0;
    std::string mnemonic;
    bool zoneFailed = false;
    ParseZone(session, h.ZoneTime, zone, mnemonic, false, zoneFailed);
    natal.HasZone = !zoneFailed;
    natal.ZoneHours = zone;
    natal.ZoneName = h.ZoneMnemonic;
    SplitPlace(h.Place, natal.Place, natal.Country);
    Write(out, natal);
  }
  for (size_t i = 1; i < records.size(); ++i) {
    const EventRecord& r = records[i];
    ChartOut c;
    c.Name = r.Description;
    c.Day = r.Day;
    c.Month = r.Month;
    c.Year = r.Year;
    c.HasTime = r.DetailLevel >= 2;
    c.Hour = r.Hour;
    c.Minute = r.Minute;
    c.Second = r.Second;
    c.HasPosition = r.DetailLevel == 1 || r.DetailLevel >= 3;
    c.Latitude = r.Latitude;
    c.Longitude = r.Longitude;
    c.HasZone = r.DetailLevel >= 1;
    c.ZoneHours = r.ZoneHours;
    c.ZoneName = r.ZoneAbbr;
    SplitPlace(r.Placename, c.Place, c.Country);
    Write(out, c);
  }
  return out;
}

bool ImportAaf(Session& session, const std::string& aafPath, const std::string& datPath, AafReadResult& read,
               std::string& error, Progress* progress) {
  std::string text;
  const int e = ReadFileBytes(aafPath, text, kMaxProjectFileBytes);
  if (e != 0) {
    error = FileErrorText(e) + kLineEnd + aafPath;
    return false;
  }
  read = ReadAaf(session, text, progress);
  if (read.Cancelled) {
    error.clear();
    return false;
  }
  std::vector<EventRecord> records(1);
  for (const AafChart& c : read.Charts) records.push_back(AafChartToRecord(c));
  return WriteImportedProject(session, datPath, PathFileName(aafPath), records, error);
}

bool ExportAaf(Session& session, const std::string& aafPath, std::string& error) {
  const ProjectState& p = session.project;
  std::vector<EventRecord> records(p.Events.begin(),
                                   p.Events.begin() + std::min<size_t>(p.Events.size(), p.Header.RecordCount + 1));
  if (records.empty()) records.resize(1);
  return WriteFileAtomically(aafPath, WriteAaf(session, p.Header, records), error);
}

bool ProjectOpenForExport(Session& session) {
  if (session.project.Open) return true;
  session.ShowMessage("There is no project open to export.", kIconExclamation, "Vintar");
  return false;
}

bool ExportAafFile(Session& session, const std::string& aafPath, const std::string& title) {
  std::string error;
  if (ExportAaf(session, aafPath, error)) return true;
  session.ShowMessage(std::string("Error whilst writing file:") + kLineEnd + kLineEnd + error, kIconExclamation, title);
  return false;
}

std::string AafExportSummary(const Session& session, const std::string& aafPath) {
  return "Exported " + std::to_string(session.project.Header.RecordCount) + " events and the natal chart to " +
         aafPath;
}

}  // namespace vintar
