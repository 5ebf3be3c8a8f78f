// Parsers and formatters of the values a user types: date, time, angle,
// latitude, longitude and time zone, and the small helpers of the same
// family (list splits, index sorts, clamps).
//
// Units: angles, latitudes and longitudes in degrees (north and west
// positive), zones in hours added to local time to reach Universal Time,
// dates as day, month and astronomical year in the calendar that applies to
// them. The grammar is deliberately forgiving: most punctuation becomes a
// blank, tokens are told by position, a month is recognised anywhere. Its
// oddities are kept on purpose because stored projects and typed habits
// depend on them. Checked by tests/core/parse_test.cpp against the calendar
// reform of 1582, BC years and every fixed message.

#include "core/parse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iomanip>
#include <limits>
#include <sstream>

#include "core/calendar.h"
#include "core/messages.h"
#include "core/records.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr std::array<const char*, 12> kMonthNames = {"JANUARY", "FEBRUARY", "MARCH",     "APRIL",
                                                     "MAY",     "JUNE",     "JULY",      "AUGUST",
                                                     "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};
constexpr std::array<const char*, 12> kMonthShort = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::array<const char*, 12> kSignNames = {"ARIES", "TAURUS",      "GEMINI",    "CANCER",
                                                    "LEO",   "VIRGO",       "LIBRA",     "SCORPIO",
                                                    "SAGITTARIUS", "CAPRICORN", "AQUARIUS", "PISCES"};
constexpr std::array<const char*, 12> kSignShort = {"AR", "TA", "GE", "CN", "LE", "VI",
                                                    "LI", "SC", "SG", "CP", "AQ", "PI"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Overwrites the first occurrence of `what` with blanks; true when found.
bool BlankFirst(std::string& text, std::string_view what) {
  size_t at = text.find(what);
  if (at == std::string::npos) return false;
  text.replace(at, what.size(), what.size(), ' ');
  return true;
}

// Overwrites every occurrence of each character of `chars` with a blank.
void BlankEach(std::string& text, std::string_view chars) {
  for (char& c : text) {
    if (chars.find(c) != std::string_view::npos) c = ' ';
  }
}

// Runs of characters other than the blank.
std::vector<std::string> Tokens(const std::string& text) {
  std::vector<std::string> tokens;
  size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == ' ') ++i;
    size_t start = i;
    while (i < text.size() && text[i] != ' ') ++i;
    if (i > start) tokens.push_back(text.substr(start, i - start));
  }
  return tokens;
}

bool AllDigits(std::string_view token) {
  return std::all_of(token.begin(), token.end(), IsDigit);
}

// A numeric value as a 16-bit integer; false when it does not fit.
bool ToInt16(double value, int16_t& out) {
  double r = std::nearbyint(value);
  if (!(r >= std::numeric_limits<int16_t>::min() && r <= std::numeric_limits<int16_t>::max())) return false;
  out = static_cast<int16_t>(r);
  return true;
}

void Complain(Session& session, bool show, const std::string& text, const std::string& title) {
  if (show) session.ShowMessage(text, kIconStop, title);
}

bool MonthFirst(const Session& session) { return session.prefs.MonthFirst != 0; }

// ---------------------------------------------------------------- date

const char* const kDateTitle = "Error in Date";
const char* const kDateFormat = "The format of the date is not recognized.";

std::string DateExample(const Session& session) {
  return std::string(kLineEnd) + "Please re-enter a valid date e.g." + kLineEnd +
         (MonthFirst(session) ? "Dec 31 2009  or  12/31/2009" : "31 Dec 2009  or  31/12/2009");
}

// Month number of a token: short tokens by value, longer ones as a prefix of
// a month name of at least their own length. 0 when nothing fits.
int MonthOfToken(const std::string& token) {
  if (token.size() <= 2) return static_cast<int>(ClampToInt16(Val(token)));
  for (size_t m = 0; m < kMonthNames.size(); ++m) {
    std::string_view name = kMonthNames[m];
    if (token.size() <= name.size() && name.substr(0, token.size()) == token) return static_cast<int>(m) + 1;
  }
  return 0;
}

// The year of a token with the BC mark and the two-digit century rule.
bool YearOfToken(const Session& session, const std::string& token, bool beforeChrist, int16_t& year) {
  double value = Val(token);
  if (!token.empty() && token[0] == '-') return ToInt16(value, year);  // a negative year stands as typed
  if (beforeChrist) return ToInt16(1.0 - value, year);
  if (token.size() < 3) {
    int base = session.CenturyBase;
    int r = base % 100;
    int c = base / 100;
    if (value < r) c += 1;
    return ToInt16(c * 100.0 + value, year);
  }
  return ToInt16(value, year);
}

// ---------------------------------------------------------------- time

const char* const kTimeTitle = "Error in Time";

std::string TimeMessage(const std::string& rest) {
  return std::string("The format of the time is not recognised.") + kLineEnd + rest;
}

std::string AmHoursMessage() {
  return TimeMessage(std::string("Hours must be in the range 0 to 12 if AM is specified.") + kLineEnd +
                     "Please use a valid format e.g. 11:59:59 AM");
}

// ---------------------------------------------------------------- latitude and longitude

struct CoordinateRules {
  char negativeLetter;
  char positiveLetter;
  int degreeLimit;
  const char* name;       // "latitude" or "longitude"
  const char* hemisphere; // what the letters mean
  const char* example;
  const char* title;
};

constexpr CoordinateRules kLatitudeRules = {'S', 'N', 90, "latitude", "hemisphere latitudes",
                                            "Please use a valid format e.g. 35S55", "Error in Latitude"};
constexpr CoordinateRules kLongitudeRules = {'E', 'W', 180, "longitude", "hemisphere longitudes",
                                             "Please use a valid format e.g. 138E34", "Error in Longitude"};

std::string LetterMessage(const CoordinateRules& rules) {
  bool latitude = rules.negativeLetter == 'S';
  std::string head = std::string("The format of the ") + rules.name + " is not recognised.";
  std::string first = latitude ? "Specify N for northern " : "Specify E for eastern ";
  std::string second = latitude ? "or S for southern " : "or W for western ";
  return head + kLineEnd + first + rules.hemisphere + kLineEnd + second + rules.hemisphere + "." + kLineEnd +
         rules.example;
}

std::string RangeMessage(const CoordinateRules& rules) {
  return std::string("The format of the ") + rules.name + " is not recognised." + kLineEnd +
         "Degrees must be in the range 0 to " + std::to_string(rules.degreeLimit) + "." + kLineEnd +
         "Minutes or seconds must be in the range 0 to 59." + kLineEnd + rules.example;
}

void ParseCoordinate(Session& session, const std::string& input, const CoordinateRules& rules, double& value,
                     bool showMessages, bool& failed) {
  failed = false;
  value = 0.0;
  std::string text = UCase(Trim(input));
  bool negative = !text.empty() && text[0] == '-';
  size_t at = text.find(rules.negativeLetter);
  if (at != std::string::npos) {
    text[at] = ' ';
    negative = true;
  }
  at = text.find(rules.positiveLetter);
  if (at != std::string::npos) {
    text[at] = ' ';
    if (negative) {
      Complain(session, showMessages, LetterMessage(rules), rules.title);
      failed = true;
      return;
    }
  }
  BlankEach(text, "./,;:'-+\"");
  std::array<double, 3> parts = {0.0, 0.0, 0.0};
  std::vector<std::string> tokens = Tokens(text);
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (!AllDigits(tokens[i])) {
      Complain(session, showMessages, LetterMessage(rules), rules.title);
      failed = true;
      return;
    }
    if (i >= parts.size()) continue;  // further tokens are ignored
    double v = Val(tokens[i]);
    bool valid = i == 0 ? v <= rules.degreeLimit : v <= 59 && (v == 0 || parts[0] != rules.degreeLimit);
    if (!valid) {
      Complain(session, showMessages, RangeMessage(rules), rules.title);
      failed = true;
      return;
    }
    parts[i] = v;
  }
  value = parts[0] + parts[1] / 60.0 + parts[2] / 3600.0;
  if (negative) value = -value;
}

// ---------------------------------------------------------------- formatting helpers

// Whole degrees, minutes and seconds of a non-negative value, cut (not rounded).
// A value beyond the range of whole numbers (only a damaged file holds
// one) shows as the largest; NaN as zero.
void CutToSexagesimal(double value, long long& whole, int& minutes, int& seconds) {
  whole = ToLongSaturated(std::floor(value));
  minutes = seconds = 0;
  if (!(value >= 0.0 && value < 9.0e18)) return;
  double m = (value - static_cast<double>(whole)) * 60.0;
  minutes = static_cast<int>(std::floor(m));
  seconds = static_cast<int>(std::floor((m - minutes) * 60.0));
}

std::string FormatCoordinate(double value, char negativeLetter, char positiveLetter, int degreeWidth) {
  char letter = value < 0 ? negativeLetter : positiveLetter;
  long long degrees = 0;
  int minutes = 0, seconds = 0;
  CutToSexagesimal(std::fabs(value) + 0.0001, degrees, minutes, seconds);
  std::string out = ZeroPad(degrees, degreeWidth) + letter + ZeroPad(minutes, 2);
  if (seconds != 0) out += " " + ZeroPad(seconds, 2);
  return out;
}

// ---------------------------------------------------------------- index sorts

// Stable insertion by record number: when the key at position i is out of
// order against i - 1, it goes in front of the first key from position 1 that
// lies beyond it. `before(a, b)` is the strict order of two keys.
template <typename Key, typename Before>
void InsertionIndexSort(const std::vector<Key>& keys, std::vector<int32_t>& index, int32_t count,
                        Before before) {
  int32_t n = std::min<int32_t>(count, static_cast<int32_t>(index.size()) - 1);
  auto keyAt = [&](int32_t position) -> Key {
    int32_t record = index[position];
    if (record < 0 || record >= static_cast<int32_t>(keys.size())) return Key{};
    return keys[record];
  };
  for (int32_t i = 2; i <= n; ++i) {
    Key key = keyAt(i);
    if (!before(key, keyAt(i - 1))) continue;
    int32_t j = 1;
    while (j < i && !before(key, keyAt(j))) ++j;
    int32_t record = index[i];
    for (int32_t k = i; k > j; --k) index[k] = index[k - 1];
    index[j] = record;
  }
}

template <typename Key>
void NumericIndexSort(const std::vector<Key>& keys, std::vector<int32_t>& index, int32_t count, bool descending) {
  // A descending sort is the ascending sort of the negated keys.
  double sign = descending ? -1.0 : 1.0;
  InsertionIndexSort(keys, index, count,
                     [sign](Key a, Key b) { return sign * static_cast<double>(a) < sign * static_cast<double>(b); });
}

}  // namespace

// ---------------------------------------------------------------- parsers

void ParseDate(Session& session, const std::string& input, int16_t& day, int16_t& month, int16_t& year,
               bool showMessages, bool& failed) {
  failed = false;
  auto formatError = [&] {
    Complain(session, showMessages, kDateFormat + DateExample(session), kDateTitle);
    failed = true;
  };

  // A bare number above 31 is a year and stands for its first of January.
  std::string trimmed = Trim(input);
  if (!trimmed.empty() && IsAllDigits(trimmed)) {
    int16_t value = 0;
    if (!ToInt16(Val(trimmed), value)) return formatError();
    year = value;
    if (std::abs(static_cast<int>(value)) > 31) {
      day = 1;
      month = 1;
      return;
    }
  }

  std::string text = UCase(trimmed);
  for (const char* ordinal : {"ST", "ND", "RD", "TH"}) BlankFirst(text, ordinal);

  bool markedOld = false, markedNew = false;
  if (BlankFirst(text, "OS") || BlankFirst(text, "O.S.")) {
    markedOld = true;
  } else if (BlankFirst(text, "NS") || BlankFirst(text, "N.S.")) {
    markedNew = true;
  }

  bool beforeChrist = false;
  for (const char* mark : {"BCE", "B.C.E.", "BC", "B.C."}) {
    if (BlankFirst(text, mark)) {
      beforeChrist = true;
      break;
    }
  }
  if (!text.empty() && text.back() == 'B') {
    text.pop_back();
    beforeChrist = true;
  }

  // An AD mark counts only at the very end, so the "CE" of "DECEMBER" stays.
  bool annoDomini = false;
  for (std::string_view mark : {"AD", "A.D.", "CE", "C.E."}) {
    size_t at = text.find(mark);
    if (at != std::string::npos && at + mark.size() == text.size()) {
      text.replace(at, mark.size(), mark.size(), ' ');
      annoDomini = true;
      break;
    }
  }
  if (annoDomini && beforeChrist) {
    Complain(session, showMessages,
             std::string(kDateFormat) + kLineEnd +
                 "Specify BC for years prior to year one, and AD (or nothing) for years one and after.",
             kDateTitle);
    failed = true;
    return;
  }

  // Digits (with "-") and everything else are told apart by a blank between them.
  std::string split;
  for (size_t i = 0; i < text.size(); ++i) {
    bool numeric = IsDigit(text[i]) || text[i] == '-';
    if (i > 0) {
      bool previous = IsDigit(text[i - 1]) || text[i - 1] == '-';
      if (numeric != previous) split += ' ';
    }
    split += text[i];
  }
  BlankEach(split, "./,;:'");
  std::vector<std::string> tokens = Tokens(split);
  // An empty date has no month to find; it takes the same message as a bad one.
  if (tokens.empty() || tokens.size() > 3) return formatError();
  if (tokens.size() == 1) tokens.push_back("1");
  if (tokens.size() == 2) tokens.push_back(std::to_string(session.clock.Year));

  int monthAt = MonthFirst(session) ? 0 : 1;
  for (int i = 0; i < 2; ++i) {
    if (!AllDigits(tokens[i])) monthAt = i;
  }
  const std::string& dayToken = tokens[1 - monthAt];
  const std::string& monthToken = tokens[monthAt];

  // The outputs change only once all three values have been read.
  int16_t y = 0, m = 0, d = 0;
  if (!YearOfToken(session, tokens[2], beforeChrist, y)) return formatError();
  m = static_cast<int16_t>(MonthOfToken(monthToken));
  if (m == 0) return formatError();
  if (!ToInt16(Val(dayToken), d)) return formatError();
  day = d;
  month = m;
  year = y;

  // The round trip through the Julian day tells a real date, and converts a
  // date the user marked in the other calendar.
  bool convert = (IsGregorian(day, month, year) && markedOld) || (!IsGregorian(day, month, year) && markedNew);
  float backDay = 0.0f;
  int backMonth = 0, backYear = 0;
  RevJul(JulianCalendarDay(day, month, year, convert), backDay, backMonth, backYear);
  int wholeBackDay = static_cast<int>(std::floor(backDay));

  // 5 to 14 October 1582 were dropped by the reform: such a day takes the
  // day the round trip gives.
  double typedKey = month / 100.0 + day / 10000.0;
  if (backYear == 1582 && typedKey >= 0.1005 && typedKey < 0.1015) day = static_cast<int16_t>(wholeBackDay);

  if (day == wholeBackDay && month == backMonth && year == backYear) return;
  bool convertNow = (IsGregorian(day, month, year) && markedOld) || (!IsGregorian(day, month, year) && markedNew);
  if (convertNow) {
    day = static_cast<int16_t>(wholeBackDay);
    month = static_cast<int16_t>(backMonth);
    year = ClampToInt16(backYear);
    return;
  }
  Complain(session, showMessages, "This date is not a valid calendar date." + DateExample(session), kDateTitle);
  failed = true;
}

void ParseTime(Session& session, const std::string& input, int16_t& hours, int16_t& minutes, int16_t& seconds,
               bool showMessages, bool& failed) {
  failed = false;
  hours = minutes = seconds = 0;
  std::string text = UCase(Trim(input));
  bool morning = BlankFirst(text, "AM");
  bool afternoon = BlankFirst(text, "PM");
  if (morning && afternoon) {
    Complain(session, showMessages,
             TimeMessage(std::string("Specify AM for morning, PM for afternoon, or neither for the 24 hour clock.") +
                         kLineEnd + "Please use a valid format e.g. 11:59:59 AM"),
             kTimeTitle);
    failed = true;  // and the parse goes on
  }
  BlankEach(text, "./,;:'-");
  std::vector<std::string> tokens = Tokens(text);
  for (size_t i = 0; i < tokens.size(); ++i) {
    const std::string& token = tokens[i];
    if (!AllDigits(token)) {
      Complain(session, showMessages, TimeMessage("Please use numbers separated by colons e.g. 11:45 PM"),
               kTimeTitle);
      failed = true;
      return;
    }
    double value = Val(token);
    auto rangeError = [&](const std::string& message) {
      Complain(session, showMessages, message, kTimeTitle);
      failed = true;
    };
    if (i == 0) {
      // A failed value stays in its output and the next token is still read.
      hours = ClampToInt16(value);
      if (token.size() > 2) {
        rangeError(AmHoursMessage());
      } else if (morning) {
        if (value > 12) {
          rangeError(AmHoursMessage());
        } else {
          hours = static_cast<int16_t>(hours % 12);
        }
      } else if (afternoon) {
        if (value > 12) {
          rangeError(TimeMessage(std::string("Hours must be in the range 0 to 12 if PM is specified.") + kLineEnd +
                                 "Please use a valid format e.g. 11:59:59 PM"));
        } else if (hours != 12) {
          hours = static_cast<int16_t>(hours + 12);
        }
      } else if (value > 23) {
        rangeError(TimeMessage(std::string("Hours must be in the range 0 to 23.") + kLineEnd +
                               "Please use a valid format e.g. 23:59:59"));
      }
    } else if (i == 1) {
      minutes = ClampToInt16(value);
      if (value > 59) {
        rangeError(TimeMessage(std::string("Minutes must be in the range 0 to 59.") + kLineEnd +
                               "Please use a valid format e.g. 11:59:59 PM"));
      }
    } else if (i == 2) {
      seconds = ClampToInt16(value);
      if (value > 59) {
        rangeError(TimeMessage(std::string("Seconds must be in the range 0 to 59.") + kLineEnd +
                               "Please use a valid format e.g. 11:59:59 PM"));
      }
    } else {
      rangeError(TimeMessage("Please use a valid format e.g. 10:45 PM"));
      return;
    }
  }
}

void ParseAngle(Session& session, const std::string& input, float& angle, bool& failed) {
  failed = false;
  angle = 0.0f;
  auto angleError = [&] {
    session.ShowMessage(std::string("The format of the angle is not recognised.") + kLineEnd +
                            "Examples of valid angles are 10 11'59\"; 16Ar25; 27 PISCES; etc... Please re-enter "
                            "the angle.",
                        kIconStop, "Error in Angle");
    failed = true;
  };

  std::string text = UCase(Trim(input));
  std::string letters;
  size_t firstLetter = std::string::npos, lastLetter = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '-') return angleError();
    if (c >= 'A' && c <= 'Z') {
      letters += c;
      if (firstLetter == std::string::npos) firstLetter = i;
      lastLetter = i;
      text[i] = ' ';
    }
  }

  double base = 0.0;
  if (!letters.empty()) {
    size_t span = lastLetter - firstLetter + 1;
    if (span == 1) return angleError();
    int sign = 0;
    for (int s = 0; s < 12 && sign == 0; ++s) {
      std::string_view name = span == 2 ? std::string_view(kSignShort[s]) : std::string_view(kSignNames[s]);
      if (letters == name.substr(0, span)) sign = s + 1;
    }
    if (sign == 0) return angleError();
    base = (sign - 1) * 30.0;
  }

  text = Trim(text);
  BlankEach(text, "'\"`\x91\x92\xA8\xB0\xB4");
  std::vector<std::string> tokens = Tokens(text);
  std::array<double, 3> parts = {0.0, 0.0, 0.0};
  for (size_t i = 0; i < tokens.size() && i < parts.size(); ++i) parts[i] = Val(tokens[i]);
  if (!(parts[1] < 60.0 && parts[2] < 60.0)) return angleError();

  // The tenth of a second keeps a value typed to the second from showing one
  // second short after the single-precision round trip.
  double value = parts[0] + base + parts[1] / 60.0 + (parts[2] + 0.1) / 3600.0;
  if (!std::isfinite(value)) return angleError();
  value = std::fmod(value, 360.0);
  if (value < 0.0) value += 360.0;
  angle = static_cast<float>(value);
  if (angle >= 360.0f) angle = 0.0f;
}

void ParseLatitude(Session& session, const std::string& text, double& latitude, bool showMessages, bool& failed) {
  ParseCoordinate(session, text, kLatitudeRules, latitude, showMessages, failed);
}

void ParseLongitude(Session& session, const std::string& text, double& longitude, bool showMessages,
                    bool& failed) {
  ParseCoordinate(session, text, kLongitudeRules, longitude, showMessages, failed);
}

void ParseZone(Session& session, const std::string& input, float& zoneHours, std::string& mnemonicOut,
               bool showMessages, bool& failed) {
  failed = false;
  zoneHours = 0.0f;
  mnemonicOut.clear();
  std::string text = UCase(Trim(input));
  size_t blank = text.find(' ');
  bool hasBlank = blank != std::string::npos;
  std::string candidate = hasBlank ? text.substr(0, blank) : text;
  std::string timeText = hasBlank ? text.substr(blank + 1) : text;

  int row = session.zones.Find(candidate);
  bool found = row > 0;
  if (found) {
    mnemonicOut = candidate;
    timeText = session.zones.ZoneOffset[row];
  } else if (hasBlank) {
    mnemonicOut = candidate;
  }

  std::string message;
  if (found) {
    message = std::string("The format of the Time Zone mnemonic has been recognised as valid,") + kLineEnd +
              "but the corresponding time value is not valid: " + timeText + kLineEnd +
              "You must edit the time zone file after exiting from this program." + kLineEnd +
              "Ensure that you use hours, minutes and seconds separated by colons e.g. -10:30";
  } else {
    message = std::string("The format of the Time Zone is not recognised.") + kLineEnd +
              "Please use a valid mnemonic (e.g. GMT) or a time." + kLineEnd +
              "This may be selected from a list by clicking on the Zone button." + kLineEnd +
              "If entering time, please use hours minutes and seconds separated by colons e.g. -10:30";
  }
  auto zoneError = [&] {
    Complain(session, showMessages, message, "Error in Time Zone");
    failed = true;
  };

  // Blanks padding the table's offset field do not make it a time.
  std::string work = Trim(timeText);
  if (work.empty()) return zoneError();
  BlankEach(work, ":");
  std::vector<std::string> tokens = Tokens(work);
  if (tokens.size() > 3) return zoneError();
  bool negative = false;
  std::array<double, 3> parts = {0.0, 0.0, 0.0};
  for (size_t i = 0; i < tokens.size(); ++i) {
    for (char c : tokens[i]) {
      if (c == '-') {
        negative = true;
      } else if (!IsDigit(c) && c != '+') {
        return zoneError();
      }
    }
    double v = Val(tokens[i]);
    bool valid = i == 0 ? (v >= -13 && v <= 13) : (v >= 0 && v <= 59);
    if (!valid) return zoneError();
    parts[i] = v;
  }
  double value = parts[0] + parts[1] / 60.0 + parts[2] / 3600.0;
  if (negative) value = -(std::fabs(parts[0]) + parts[1] / 60.0 + parts[2] / 3600.0);
  zoneHours = static_cast<float>(value);
}

// ---------------------------------------------------------------- formatters

std::string FormatDate(const Session& session, int day, int month, int year) {
  day = ClampInteger(day, 1, 31);
  month = ClampInteger(month, 1, 12);
  std::string suffix;
  long long shownYear = year;
  if (year < 1) {
    shownYear = 1 - shownYear;
    suffix = " BC";
  }
  // Dates inside a window of years carry an Old Style mark. The window is
  // kept at 0 to 0, so only year 0 (1 BC) shows it.
  constexpr int kMarkFirstYear = 0;
  constexpr int kMarkLastYear = 0;
  if (year >= kMarkFirstYear && year <= kMarkLastYear) suffix += " OS";
  std::string d = std::to_string(day);
  std::string y = ZeroPad(shownYear, 4);
  std::string m = kMonthShort[month - 1];
  std::string date = MonthFirst(session) ? m + " " + d + " " + y : d + " " + m + " " + y;
  return date + suffix;
}

std::string FormatTime(int hour, int minute, int second, bool useAmPm) {
  std::string suffix;
  if (useAmPm) {
    if (hour < 12) {
      suffix = " am";
    } else {
      if (hour > 12) hour -= 12;
      suffix = " pm";
    }
  }
  std::string out = std::to_string(hour) + ":" + ZeroPad(minute, 2);
  if (second >= 1) out += ":" + ZeroPad(second, 2);
  return out + suffix;
}

std::string FormatZone(double hours) {
  std::string sign = hours < 0 ? "-" : "+";
  // Cut to whole seconds; the two-millisecond allowance keeps a value such as
  // 5 + 20/60 from showing as 5:19:59 through floating-point error.
  long long total = ToLongSaturated(std::floor(std::fabs(hours) * 3600.0 + 0.002));
  long long h = total / 3600;
  int m = static_cast<int>((total / 60) % 60);
  int s = static_cast<int>(total % 60);
  std::string out = sign + std::to_string(h) + ":" + ZeroPad(m, 2);
  if (s != 0) out += ":" + ZeroPad(s, 2);
  return out;
}

std::string FormatLatitude(double value) { return FormatCoordinate(value, 'S', 'N', 2); }

std::string FormatLongitude(double value) { return FormatCoordinate(value, 'E', 'W', 3); }

std::string FormatOrdinal(int n) {
  // 11th, 12th and 13th also in every later hundred (111th, 212th).
  int lastTwo = std::abs(n % 100);
  const char* suffix = "th";
  if (lastTwo < 10 || lastTwo > 19) {
    switch (lastTwo % 10) {
      case 1: suffix = "st"; break;
      case 2: suffix = "nd"; break;
      case 3: suffix = "rd"; break;
      default: break;
    }
  }
  return std::to_string(n) + suffix;
}

std::string ShortenPath(const std::string& path) {
  // Either separator counts; the text kept follows the separator, as in
  // "...Clients\smith.dat".
  size_t last = path.find_last_of("\\/");
  if (last == std::string::npos || last == 0) return path;
  size_t previous = path.find_last_of("\\/", last - 1);
  if (previous == std::string::npos) return path;
  return "..." + path.substr(previous + 1);
}

// ---------------------------------------------------------------- helpers

bool IsAllDigits(const std::string& text) { return AllDigits(Trim(text)); }

bool IsGregorian(int day, int month, int year) { return year + month / 100.0 + day / 10000.0 >= 1582.1015; }

int ClampInteger(int value, int low, int high) {
  if (value < low) return low;
  if (value > high) return high;
  return value;
}

std::vector<std::string> SplitOnAny(const std::string& text, const std::string& separators, int capacity) {
  // A run of separators at the start gives no empty first token.
  std::vector<std::string> tokens;
  size_t i = 0;
  while (i < text.size() && static_cast<int>(tokens.size()) < capacity) {
    while (i < text.size() && separators.find(text[i]) != std::string::npos) ++i;
    if (i >= text.size()) break;
    size_t start = i;
    while (i < text.size() && separators.find(text[i]) == std::string::npos) ++i;
    tokens.push_back(LTrim(std::string_view(text).substr(start, i - start)));
  }
  return tokens;
}

std::vector<std::string> SplitOnText(const std::string& text, const std::string& separator, int capacity) {
  std::vector<std::string> items;
  if (text.empty() || separator.empty()) {
    if (!text.empty() && capacity > 0) items.push_back(text);
    return items;
  }
  size_t start = 0;
  while (static_cast<int>(items.size()) < capacity) {
    size_t at = text.find(separator, start);
    if (at == std::string::npos) {
      if (start < text.size()) items.push_back(text.substr(start));
      break;
    }
    items.push_back(text.substr(start, at - start));
    start = at + separator.size();
  }
  return items;
}

void IndexSortDouble(const std::vector<double>& keys, std::vector<int32_t>& index, int32_t count, bool descending) {
  NumericIndexSort(keys, index, count, descending);
}

void IndexSortInt16(const std::vector<int16_t>& keys, std::vector<int32_t>& index, int32_t count,
                    bool descending) {
  NumericIndexSort(keys, index, count, descending);
}

void IndexSortFloat(const std::vector<float>& keys, std::vector<int32_t>& index, int32_t count, bool descending) {
  NumericIndexSort(keys, index, count, descending);
}

void IndexSortText(const std::vector<std::string>& keys, std::vector<int32_t>& index, int32_t count,
                   bool descending) {
  if (descending) {
    InsertionIndexSort(keys, index, count,
                       [](const std::string& a, const std::string& b) { return CompareIgnoreCase(a, b) > 0; });
  } else {
    InsertionIndexSort(keys, index, count,
                       [](const std::string& a, const std::string& b) { return CompareIgnoreCase(a, b) < 0; });
  }
}

// ---------------------------------------------------------------- record wrappers

void SetRecordDate(Session& session, EventRecord& record, const std::string& text) {
  int16_t day = record.Day, month = record.Month, year = record.Year;
  bool failed = false;
  ParseDate(session, text, day, month, year, false, failed);
  record.Year = year;
  record.Month = static_cast<uint8_t>(ClampInteger(month, 0, 255));
  record.Day = static_cast<uint8_t>(ClampInteger(day, 0, 255));
}

void SetRecordTime(Session& session, EventRecord& record, const std::string& text) {
  int16_t hours = 0, minutes = 0, seconds = 0;
  bool failed = false;
  ParseTime(session, text, hours, minutes, seconds, false, failed);
  record.Hour = static_cast<uint8_t>(ClampInteger(hours, 0, 255));
  record.Minute = static_cast<uint8_t>(ClampInteger(minutes, 0, 255));
  record.Second = static_cast<uint8_t>(ClampInteger(seconds, 0, 255));
}

void SetRecordZone(Session& session, EventRecord& record, const std::string& text) {
  float hours = 0.0f;
  std::string mnemonic;
  bool failed = false;
  ParseZone(session, text, hours, mnemonic, false, failed);
  record.ZoneHours = hours;
}

void SetRecordLongitude(Session& session, EventRecord& record, const std::string& text) {
  double value = 0.0;
  bool failed = false;
  ParseLongitude(session, text, value, false, failed);
  record.Longitude = static_cast<float>(value);
}

void SetRecordLatitude(Session& session, EventRecord& record, const std::string& text) {
  double value = 0.0;
  bool failed = false;
  ParseLatitude(session, text, value, false, failed);
  record.Latitude = static_cast<float>(value);
}

std::string ZodiacPosition(const Session& session, double longitude, bool seconds) {
  if (!std::isfinite(longitude)) return "not a number";
  if (longitude < 0) return "not computed";
  const long unit = seconds ? 3600 : 60;
  long total = std::lround(std::fmod(longitude, 360.0) * unit);
  if (total >= 360L * unit) total -= 360L * unit;
  const long perSign = 30L * unit;
  const int sign = static_cast<int>(total / perSign);
  const long within = total % perSign;
  std::ostringstream out;
  out << std::setw(2) << within / unit << kDegreeSign << std::setw(2) << std::setfill('0');
  if (seconds)
    out << within / 60 % 60 << "'" << std::setw(2) << within % 60 << "\"";
  else
    out << within % 60 << "'";
  out << " " << session.vocab.SignShort[sign + 1];
  return out.str();
}

}  // namespace vintar
