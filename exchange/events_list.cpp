#include "exchange/events_list.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>

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
using exchange_text::HasDigit;
using exchange_text::AsciiUpper;
using exchange_text::DigitsValue;
using exchange_text::SplitLines;

const char* const kWhen = "'When'";
const char* const kWhat = "'What'";
const char* const kWhere = "'Where'";
const char* const kGeneral = "'General error'";
const char* const kGeneralEvent = "General Event";
constexpr int kMaxEventLines = 3;

// The collected message of the run: one entry per skipped event or warning.
void AddToMessage(std::string& message, const std::string& detail, const std::string& type, int event, int line) {
  if (!message.empty()) message += std::string(kLineEnd) + kLineEnd;
  std::string prefix;
  if (!type.empty())
    prefix = type + (line > 0 ? " type error on line " : " type error.");
  else
    prefix = ", error on Line: ";
  const std::string lineText = line > 0 ? std::to_string(line) : "";
  if (event > 0)
    message += "Event no " + std::to_string(event) + " skipped: " + prefix + lineText + kLineEnd + detail;
  else if (line > 0)
    message += prefix + lineText + kLineEnd + detail;
  else
    message += detail;
}

// ---------------------------------------------------------------------------
// Locations.

struct Location {
  bool Found = false;
  std::string City, State;
};

Location ParseLocation(const std::string& line) {
  Location l;
  std::string s = AsciiUpper(Trim(line));
  const size_t eq = s.find('=');
  if (eq != std::string::npos) {
    if (s.find('=', eq + 1) != std::string::npos) return l;  // two signs: no location
    l.Found = true;
    s = Trim(s.substr(eq + 1));
  }
  if (s == "NOWHERE") {
    l.Found = true;
    return l;
  }
  const char separator = s.find(',') != std::string::npos ? ',' : ';';
  const size_t first = s.find(separator);
  if (first == std::string::npos || first == 0) return Location{};
  const size_t second = s.find(separator, first + 1);
  l.Found = true;
  l.City = Trim(s.substr(0, first));
  l.State = Trim(s.substr(first + 1, second == std::string::npos ? std::string::npos : second - first - 1));
  return l;
}

// ---------------------------------------------------------------------------
// The "when" line.

bool IsDirective(const std::string& t) {
  return t == "BEGINS" || t == "ENDS" || t == "BEFORE+AFTER" || t == "BEFORE" || t == "AFTER" || t == "TO";
}

bool IsTimeMark(const std::string& t) {
  return t == "." || t == ":" || t == "P" || t == "PM" || t == "A" || t == "AM";
}

bool IsAmPm(const std::string& t) { return t == "A" || t == "AM" || t == "P" || t == "PM"; }

// A month word or number: 1 to 12, or 0 with the reason in `error`.
int MonthOf(const std::string& t, std::string& error) {
  static constexpr const char* kWords[] = {"JANUARY", "JAN", "FEBRUARY", "FEB", "MARCH", "MAR", "APRIL", "APR",
                                           "MAY", "JUNE", "JUN", "JULY", "JUL", "AUGUST", "AUG", "SEPTEMBER",
                                           "SEP", "OCTOBER", "OCT", "NOVEMBER", "NOV", "DECEMBER", "DEC"};
  static constexpr int kMonths[] = {1, 1, 2, 2, 3, 3, 4, 4, 5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12};
  for (size_t i = 0; i < std::size(kWords); ++i)
    if (t == kWords[i]) return kMonths[i];
  if (HasDigit(t)) {
    if (t.find('.') != std::string::npos || t.find(',') != std::string::npos) {
      error = "Month number (" + t + ") must be a whole number.";
      return 0;
    }
    const int n = AllDigits(t) ? DigitsValue(t) : 0;
    if (n >= 1 && n <= 12) return n;
    error = "Invalid month number (" + t + ").";
    return 0;
  }
  error = "Invalid month word (" + t + ").";
  return 0;
}

// Whether a token may stand in a date; the reason when not.
std::string DateTokenError(const Session& s, const std::string& t) {
  if (AllDigits(t)) {
    const int n = DigitsValue(t);
    if (n >= 1 && n <= 31) return {};
    if (t.size() == 2) {
      const int year = s.clock.Year / 100 * 100 + n;
      return year >= 2000 && year <= s.clock.Year
                 ? std::string()
                 : "Two digit year not valid. Years not in the current century need to be four digits.";
    }
    if (t.size() == 4) return n >= 1900 && n <= s.clock.Year ? std::string() : "Year is not a valid year. Needs to be 1900 or later.";
  }
  if (IsDirective(t)) return {};
  std::string error;
  MonthOf(t, error);
  return error;
}

struct Date {
  int Day = 0, Month = 0, Year = 0;  // 0 when absent
  double JD = 0.0;                   // the date, or its middle for a month or a year
  int RangeDays = 0;                 // half-width of a month or a year
};

// The date of one to three tokens in the order of the list.
std::optional<Date> ReadDate(const Session& s, DateOrder order, const std::vector<std::string>& t, std::string& error) {
  Date d;
  auto year = [&](const std::string& token) {
    int y = DigitsValue(token);
    if (token.size() <= 2) {
      y += s.clock.Year / 100 * 100;
      if (y > s.clock.Year) {
        error = "The year (" + token + ") is in the future.";
        return 0;
      }
    }
    return y;
  };
  auto month = [&](const std::string& token) { return MonthOf(token, error); };
  int di = 0, mi = 0, yi = 0;  // token positions, from 1
  if (t.size() == 3) {
    static constexpr int kPlaces[6][3] = {{2, 1, 3}, {1, 2, 3}, {1, 3, 2}, {3, 1, 2}, {2, 3, 1}, {3, 2, 1}};
    const int* p = kPlaces[static_cast<int>(order)];
    di = p[0];
    mi = p[1];
    yi = p[2];
  } else if (t.size() == 2) {
    const bool yearFirst = order == DateOrder::DYM || order == DateOrder::YMD;
    mi = yearFirst ? 2 : 1;
    yi = yearFirst ? 1 : 2;
  } else if (t.size() == 1) {
    yi = 1;
  } else {
    error = "The date is not a valid calendar date.";
    return std::nullopt;
  }
  if (!AllDigits(t[yi - 1])) {
    error = "Year is not a valid year. Needs to be 1900 or later.";
    return std::nullopt;
  }
  d.Year = year(t[yi - 1]);
  if (!error.empty()) return std::nullopt;
  if (mi) {
    d.Month = month(t[mi - 1]);
    if (!error.empty()) return std::nullopt;
  }
  if (di) {
    if (!AllDigits(t[di - 1])) {
      error = "The date is not a valid calendar date.";
      return std::nullopt;
    }
    d.Day = DigitsValue(t[di - 1]);
    float back = 0;
    int m = 0, y = 0;
    d.JD = JulDay(d.Day, d.Month, d.Year);
    RevJul(d.JD, back, m, y);
    if (static_cast<int>(back) != d.Day || m != d.Month || y != d.Year) {
      error = "The date is not a valid calendar date.";
      return std::nullopt;
    }
    return d;
  }
  if (d.Month) {  // the middle of the month
    static constexpr int kThirtyOne[] = {1, 3, 5, 7, 8, 10, 12};
    const bool longMonth = std::find(std::begin(kThirtyOne), std::end(kThirtyOne), d.Month) != std::end(kThirtyOne);
    d.JD = JulDay(longMonth ? 16 : 15, d.Month, d.Year);
    d.RangeDays = d.Month == 2 ? 14 : 15;
    return d;
  }
  d.JD = JulDay(1, 7, d.Year);  // the middle of the year
  d.RangeDays = 182;
  return d;
}

struct When {
  double First = 0.0, Last = 0.0;  // a range of days, or both the date
  bool Range = false;
  bool Exact = false;  // a day, not a month or a year
  int RangeDays = 0;
  int Hour = -1, Minute = 0;
  std::string Warning;  // the time or its minutes were left out
};

// The time tokens: hour, then minutes or the marker, then the marker.
void ReadTime(const std::vector<std::string>& tokens, When& w, std::string& error) {
  std::vector<std::string> t;
  for (const std::string& x : tokens)
    if (x != "." && x != ":") t.push_back(x);
  std::vector<std::string> kept;  // among the first two, strangers are passed over
  for (size_t i = 0; i < t.size(); ++i) {
    const bool usable = (AllDigits(t[i]) && DigitsValue(t[i]) <= 59) || IsAmPm(t[i]);
    if (i < 2 && !usable) continue;
    kept.push_back(t[i]);
  }
  if (kept.size() > 3) {
    error = "Invalid characters after the time.";
    return;
  }
  if (kept.size() == 3 && !IsAmPm(kept[2])) {
    error = "Invalid characters within or after the time.";
    return;
  }
  if (kept.empty() || !AllDigits(kept[0])) {
    w.Warning = "Invalid hour, time not included in the event.";
    return;
  }
  std::string marker;
  int minute = -1;
  if (kept.size() >= 2) {
    if (AllDigits(kept[1]))
      minute = DigitsValue(kept[1]);
    else
      marker = kept[1];
  }
  if (kept.size() == 3) marker = kept[2];
  int hour = DigitsValue(kept[0]);
  if (hour > (marker.empty() ? 23 : 12)) {
    w.Warning = "Invalid hour, time not included in the event.";
    return;
  }
  if (!marker.empty() && !IsAmPm(marker)) {
    w.Warning = "Ambiguous am/pm characters, time not included in the event.";
    return;
  }
  if (marker == "P" || marker == "PM") hour += 12;
  w.Hour = hour;
  if (minute < 0 || minute >= 60) {
    w.Warning = "Invalid minutes, only the hour included in the event.";
    w.Minute = 0;
    return;
  }
  w.Minute = minute;
}

std::optional<When> ReadWhen(const Session& s, DateOrder order, const std::string& line, std::string& error) {
  const std::vector<std::string> tokens = WhenTokens(line);
  // The first time mark: the time begins at the hour before it.
  size_t timeAt = tokens.size();
  for (size_t i = 0; i < tokens.size(); ++i)
    if (IsTimeMark(tokens[i])) {
      if (i < 4) {  // the hour would stand before token 4
        error = "Any time for an event must come after a valid date.";
        return std::nullopt;
      }
      timeAt = i - 1;
      break;
    }
  const std::vector<std::string> date(tokens.begin(), tokens.begin() + static_cast<long>(timeAt));
  for (const std::string& t : date) {
    error = DateTokenError(s, t);
    if (!error.empty()) return std::nullopt;
  }

  // Directives, at their places.
  std::string kind;
  bool sawBefore = false;
  int before = 0, after = 0;
  size_t dateFrom = 0;
  for (size_t k = 0; k < date.size(); ++k) {
    const std::string& t = date[k];
    const size_t pos = k + 1;
    if (!IsDirective(t)) continue;
    if (pos == 1) {
      error = "The directive has no number.";
      return std::nullopt;
    }
    if (t == "TO") {
      if (pos < 4) error = "the beginning date is not a proper date.";
      if (pos > 4) error = "Only a proper date is allowed before the 'TO' directive.";
      if (!error.empty()) return std::nullopt;
      kind = "TO";
      dateFrom = 4;
      continue;
    }
    if (t == "AFTER" && sawBefore) {
      if (pos == 3 || (pos == 4 && !AllDigits(date[2]))) error = "The 'AFTER' directive has no number.";
      else if (pos != 4) error = "The 'AFTER' directive is in the wrong position on the 'When' line.";
      if (!error.empty()) return std::nullopt;
      after = DigitsValue(date[2]);
      kind = "BEFORE AFTER";
      dateFrom = 4;
      continue;
    }
    if (!AllDigits(date[k - 1])) {
      error = "Invalid directive for the date.";
      return std::nullopt;
    }
    if (pos != 2) {
      error = "The directive must come at the beginning of the 'When' line.";
      return std::nullopt;
    }
    kind = t;
    sawBefore = t == "BEFORE";
    before = DigitsValue(date[0]);
    dateFrom = 2;
  }
  if (!kind.empty() && dateFrom >= date.size()) {
    error = "The date must come before the time.";
    return std::nullopt;
  }

  When w;
  if (kind == "TO") {
    const auto a = ReadDate(s, order, {date.begin(), date.begin() + 3}, error);
    if (!a) return std::nullopt;
    const auto b = ReadDate(s, order, {date.begin() + 4, date.end()}, error);
    if (!b) return std::nullopt;
    if (b->JD < a->JD) {
      error = "The end date is earlier in time than the beginning date.";
      return std::nullopt;
    }
    w.First = a->JD;
    w.Last = b->JD;
    w.Range = true;
    return w;
  }
  const auto d = ReadDate(s, order, {date.begin() + static_cast<long>(dateFrom), date.end()}, error);
  if (!d) return std::nullopt;
  w.First = w.Last = d->JD;
  w.Exact = d->Day > 0;
  w.RangeDays = d->RangeDays;
  if (kind.empty()) {
    if (timeAt < tokens.size()) ReadTime({tokens.begin() + static_cast<long>(timeAt), tokens.end()}, w, error);
    if (!error.empty()) return std::nullopt;
    return w;
  }
  const int n = before;
  w.Range = true;
  if (kind == "BEFORE") w.First = d->JD - n;
  else if (kind == "AFTER") w.Last = d->JD + n;
  else if (kind == "BEFORE AFTER") w.First = d->JD - n, w.Last = d->JD + after;
  else if (kind == "BEFORE+AFTER") w.First = d->JD - n, w.Last = d->JD + n;
  else if (kind == "BEGINS") w.Last = d->JD + n - 1;
  else if (kind == "ENDS") w.First = d->JD - (n - 1);
  if (w.Last < w.First) std::swap(w.First, w.Last);
  return w;
}

// ---------------------------------------------------------------------------
// The reader.

struct Pending {
  int Number = 0;
  int Lines = 0;
  bool Skipped = false;
  std::string What;
  bool HasWhat = false, HasWhere = false, HasWhen = false;
  bool DupWhat = false, DupWhere = false, DupWhen = false;
  int DupLine = 0;
  Location Where;
  std::string WhenLine;
  int WhenLineNo = 0;
};

class Reader {
 public:
  Reader(Session& s, const EventPlaceLookup& lookup) : s_(s), lookup_(lookup) {
    order_ = s.prefs.MonthFirst ? DateOrder::MDY : DateOrder::DMY;
    r_.Records.assign(1, EventRecord{});
  }

  void Line(const std::string& raw, int lineNo) {
    std::string line = Trim(raw);
    std::replace(line.begin(), line.end(), '\t', ' ');
    line = Trim(line);
    if (!line.empty() && line[0] == ';') return;
    if (line.empty()) {
      Finish();
      afterEmpty_ = true;
      return;
    }
    const std::string upper = AsciiUpper(line);
    if (upper.rfind("DATEORDER", 0) == 0 && !orderSet_ && !e_.Skipped) {
      orderSet_ = true;
      if (upper.size() >= 3) {
        static constexpr const char* kOrders[] = {"MDY", "DMY", "DYM", "MYD", "YDM", "YMD"};
        const std::string last = upper.substr(upper.size() - 3);
        for (int i = 0; i < 6; ++i)
          if (last == kOrders[i]) order_ = static_cast<DateOrder>(i);
      }
      return;
    }
    if (afterEmpty_) {
      afterEmpty_ = false;
      const Location l = ParseLocation(line);
      if (l.Found) {
        if (l.City.empty() && l.State.empty()) {
          default_ = Location{};
        } else if (!l.City.empty() && !l.State.empty()) {
          default_ = l;
        }
        return;
      }
    }
    if (e_.Lines == 0) e_.Number = ++events_;
    if (e_.Skipped) return;
    if (++e_.Lines > kMaxEventLines) {
      std::string detail = "Event has more than three lines";
      const char* dup = DuplicateType(e_);
      detail += dup ? std::string(". Duplicated ") + dup + " information for the same event." : ".";
      Skip(detail, kGeneral, lineNo);
      return;
    }
    if (line[0] == '"' || line[0] == '\'') {
      Mark(e_.HasWhat, e_.DupWhat, lineNo);
      e_.What = line[0] == '\'' ? line.substr(1) : line;
      e_.What.erase(std::remove(e_.What.begin(), e_.What.end(), '"'), e_.What.end());
    } else if (line.find_first_of(",;=") != std::string::npos) {
      Mark(e_.HasWhere, e_.DupWhere, lineNo);
      e_.Where = ParseLocation(line);
    } else if (HasDigit(line)) {
      Mark(e_.HasWhen, e_.DupWhen, lineNo);
      e_.WhenLine = line;
      e_.WhenLineNo = lineNo;
    } else {
      Skip("Invalid line - possibly a 'What' error (no opening quote or apostrophe character).", kGeneralEvent,
           lineNo);
    }
  }

  EventsListResult Done() {
    Finish();
    r_.Imported = static_cast<int>(r_.Records.size()) - 1;
    return std::move(r_);
  }

 private:
  void Mark(bool& has, bool& duplicate, int lineNo) {
    if (has && !duplicate) {
      duplicate = true;
      e_.DupLine = lineNo;
    }
    has = true;
  }

  void Skip(const std::string& detail, const char* type, int lineNo) {
    AddToMessage(r_.Message, detail, type, e_.Number, lineNo);
    e_.Skipped = true;
  }

  void Finish() {
    Pending e = std::move(e_);
    e_ = Pending{};
    if (e.Lines == 0 || e.Skipped) return;
    if (const char* dup = DuplicateType(e)) {
      AddToMessage(r_.Message, std::string("Duplicated ") + dup + " information for the same event.", dup, e.Number,
                   e.DupLine);
      return;
    }
    if (!e.HasWhen) {
      AddToMessage(r_.Message, "No 'When' data for the event.", kWhen, e.Number, 0);
      return;
    }
    std::string error;
    const auto when = ReadWhen(s_, order_, e.WhenLine, error);
    if (!when) {
      AddToMessage(r_.Message, error, kWhen, e.Number, e.WhenLineNo);
      return;
    }
    if (!when->Warning.empty()) AddToMessage(r_.Message, when->Warning, kWhen, 0, e.WhenLineNo);
    Store(e, *when);
  }

  static const char* DuplicateType(const Pending& e) {
    if (e.DupWhen) return kWhen;
    if (e.DupWhat) return kWhat;
    if (e.DupWhere) return kWhere;
    return nullptr;
  }

  void Store(const Pending& e, const When& w) {
    EventRecord r;
    r.Description = e.What;
    double date = w.First;
    int rangeDays = w.RangeDays;
    if (w.Range) {
      const int days = static_cast<int16_t>(std::lround(w.Last - w.First) + 1);
      rangeDays = days / 2;
      date = w.First + rangeDays;
    }
    float day = 0;
    int month = 1, year = 2000;
    RevJul(date, day, month, year);
    r.Day = static_cast<uint8_t>(day);
    r.Month = static_cast<uint8_t>(month);
    r.Year = static_cast<int16_t>(year);
    r.DayRange = static_cast<uint8_t>(std::clamp(rangeDays, 0, 255));
    const bool timed = w.Hour >= 0;
    r.Hour = static_cast<uint8_t>(timed ? std::min(w.Hour, 255) : 0);
    r.Minute = static_cast<uint8_t>(timed ? w.Minute : 0);

    const Location place = e.HasWhere ? e.Where : default_;
    const bool exact = w.Exact && (!w.Range || rangeDays == 0);
    r.ZoneAbbr = "UT";
    r.DetailLevel = exact && timed ? 2 : 0;
    if (!place.City.empty() || !place.State.empty()) {
      r.Placename = !place.City.empty() && !place.State.empty() ? place.City + ", " + place.State
                                                                : place.City + place.State;
      FoundPlace found;
      if (lookup_ && lookup_(place.City, place.State, year, month, static_cast<int>(day), timed ? w.Hour : -1,
                             w.Minute, found)) {
        float hours = 0.0f;
        if (!ZoneHours(found.ZoneText, hours)) {
          r_.Error = kZoneError;
          r_.ErrorText = "Error processing the Time Zone.";
          return;
        }
        r.Latitude = static_cast<float>(found.Latitude);
        r.Longitude = static_cast<float>(found.Longitude);
        r.ZoneHours = hours;
        r.ZoneAbbr = found.ZoneName;
        r.DetailLevel = timed ? 3 : 1;
      } else {
        r.DetailLevel = timed ? 2 : 0;
      }
    }
    r.Enabled = kTrue;
    r.JulianDay = RecordJulianDay(r);
    r_.Records.push_back(r);
  }

  // "-1:30" is -1.5 hours, "-0:39:56" has seconds; a "+" is dropped.
  static bool ZoneHours(const std::string& text, float& hours) {
    std::string t = Trim(text);
    bool negative = false;
    if (!t.empty() && (t[0] == '-' || t[0] == '+')) {
      negative = t[0] == '-';
      t = Trim(t.substr(1));
    }
    double value = 0.0, unit = 1.0;
    size_t at = 0;
    for (int part = 0; part < 3; ++part) {
      const size_t colon = t.find(':', at);
      const std::string field = t.substr(at, colon == std::string::npos ? std::string::npos : colon - at);
      if (!AllDigits(field)) return false;
      value += DigitsValue(field) * unit;
      unit /= 60.0;
      if (colon == std::string::npos) break;
      at = colon + 1;
      if (part == 2) return false;
    }
    if (value > 24.0) return false;
    hours = static_cast<float>(negative ? -value : value);
    return true;
  }

  Session& s_;
  const EventPlaceLookup& lookup_;
  EventsListResult r_;
  DateOrder order_ = DateOrder::DMY;
  bool orderSet_ = false;
  bool afterEmpty_ = true;
  Location default_;
  Pending e_;
  int events_ = 0;
};

}  // namespace

std::vector<std::string> WhenTokens(const std::string& line) {
  std::vector<std::string> tokens;
  const std::string s = AsciiUpper(line);
  std::string token;
  bool number = false;
  auto flush = [&] {
    if (!token.empty() && token != "ST" && token != "ND" && token != "RD" && token != "TH") tokens.push_back(token);
    token.clear();
  };
  for (size_t i = 0; i <= s.size(); ++i) {
    const char c = i < s.size() ? s[i] : ' ';
    const bool digit = c >= '0' && c <= '9';
    const bool separator = c == ' ' || c == '/' || c == '\\' || c == '-';
    if (digit) {
      if (!number) flush();
      number = true;
      token += c;
    } else if (separator) {
      flush();
      number = false;
    } else {
      if (number) flush();
      number = false;
      token += c;
    }
  }
  return tokens;
}

EventsListResult ParseEventsList(Session& session, const std::string& text, const EventPlaceLookup& lookup,
                                 Progress* progress) {
  try {
    Reader reader(session, lookup);
    const std::vector<std::string> lines = SplitLines(text);
    ImportSteps steps(progress, lines.size());
    auto cancelled = [] {
      EventsListResult r;
      r.Records.assign(1, EventRecord{});
      r.Cancelled = true;
      return r;
    };
    int lineNo = 0;
    for (const std::string& line : lines) {
      ++lineNo;
      if (steps.Line(static_cast<size_t>(lineNo))) return cancelled();
      if (AsciiUpper(Trim(line)) == "QUIT") break;
      reader.Line(line, lineNo);
    }
    EventsListResult r = reader.Done();
    if (steps.Finish()) return cancelled();
    if (r.Error) {
      r.Records.assign(1, EventRecord{});
      r.Imported = 0;
    }
    return r;
  } catch (...) {
    EventsListResult r;
    r.Records.assign(1, EventRecord{});
    r.Error = kEventsFileError;
    r.ErrorText = "Error opening events file";
    return r;
  }
}

EventsListResult ImportSimpleEventsList(Session& session, const std::string& sourcePath,
                                        const std::string& headerPath, const std::string& dataPath,
                                        const EventPlaceLookup& lookup, Progress* progress) {
  const char* title = "Import Simple Events List";
  EventsListResult r;
  std::string text;
  if (ReadFileBytes(sourcePath, text, kMaxSmallFileBytes) != 0) {
    r.Records.assign(1, EventRecord{});
    r.Error = kEventsFileError;
    r.ErrorText = "Error opening events file";
  } else {
    r = ParseEventsList(session, text, lookup, progress);
    if (r.Cancelled) return r;
  }
  if (!r.Error) {
    std::string bytes, error;
    for (int i = 1; i <= r.Imported; ++i) bytes += FormatDataRecord(r.Records[i]);
    if (!WriteFileAtomically(dataPath, bytes, error)) {
      r.Error = kDataFileError;
      r.ErrorText = "Error opening data file";
    }
  }
  if (r.Error) {
    session.ShowMessage(r.ErrorText, kIconExclamation, title);
    return r;
  }
  if (!FileExists(headerPath) && FileExists(dataPath)) std::remove(dataPath.c_str());
  session.ShowMessage("Imported " + std::to_string(r.Imported) + " events." + kLineEnd + kLineEnd + r.Message,
                      kIconInformation, title);
  return r;
}

}  // namespace vintar
