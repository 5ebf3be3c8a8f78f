// Historical time zones over the date library's reading of the system's
// zone files. See zone_history.h for the rules.
#include "places/zone_history.h"

#include <date/date.h>
#include <date/julian.h>
#include <date/tz.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <limits>

#include "core/parse.h"
#include "core/text.h"

namespace vintar {
namespace {

constexpr int kFirstYear = -4712;
constexpr int kLastYear = 9999;
constexpr int kLastDataYear = 2037;  // the compiled zone files stop here
constexpr int kFirstProxyYear = 2010;
constexpr int64_t kDay = 86400;
constexpr int64_t kSearchWindow = 36 * 3600;  // wider than any offset or date-line jump
// The library marks "no end" with a time near year 32767; anything past
// year 10000 is that.
constexpr int64_t kNoEnd = 2932897LL * kDay;  // 10000-01-01

int64_t Count(date::sys_seconds t) { return t.time_since_epoch().count(); }
date::sys_seconds At(int64_t seconds) { return date::sys_seconds{std::chrono::seconds{seconds}}; }

// Days from 1970-01-01 of a Gregorian date; the date must be valid.
int64_t GregorianDays(int year, int month, int day) {
  date::sys_days d = date::year{year} / date::month{static_cast<unsigned>(month)} / date::day{static_cast<unsigned>(day)};
  return d.time_since_epoch().count();
}

// Days from 1970-01-01 of a civil date in the calendar that applies to it;
// false when the date does not exist.
bool CivilDays(int year, int month, int day, int64_t& days) {
  if (year < kFirstYear || year > kLastYear || month < 1 || month > 12 || day < 1 || day > 31) return false;
  auto y = date::year{year};
  auto m = date::month{static_cast<unsigned>(month)};
  auto d = date::day{static_cast<unsigned>(day)};
  if (IsGregorian(day, month, year)) {
    date::year_month_day ymd{y, m, d};
    if (!ymd.ok()) return false;
    days = date::sys_days{ymd}.time_since_epoch().count();
  } else {
    julian::year_month_day ymd{julian::year{year}, julian::month{static_cast<unsigned>(month)},
                               julian::day{static_cast<unsigned>(day)}};
    if (!ymd.ok()) return false;
    days = date::sys_days{ymd}.time_since_epoch().count();
  }
  return true;
}

ZoneClock ClockOf(int64_t seconds) {
  int64_t days = seconds >= 0 ? seconds / kDay : -((-seconds + kDay - 1) / kDay);
  int64_t rest = seconds - days * kDay;
  date::year_month_day ymd{date::sys_days{date::days{days}}};
  ZoneClock c;
  c.Year = static_cast<int>(ymd.year());
  c.Month = static_cast<int>(static_cast<unsigned>(ymd.month()));
  c.Day = static_cast<int>(static_cast<unsigned>(ymd.day()));
  c.Hour = static_cast<int>(rest / 3600);
  c.Minute = static_cast<int>(rest / 60 % 60);
  c.Second = static_cast<int>(rest % 60);
  return c;
}

unsigned WeekdayOf(int64_t days) { return date::weekday{date::sys_days{date::days{days}}}.c_encoding(); }

// Past the zone files' last year, the days to subtract from a local date to
// reach a date of 2010-2037 with the same calendar around it: for March to
// December a year whose 1 March falls on the same weekday, for January and
// February one whose 1 January does (and a leap year for 29 February). The
// latest such year is taken, so that rules changed lately are followed.
int64_t ProxyShiftDays(int year, int month, int day) {
  if (year <= kLastDataYear) return 0;
  bool leapDay = month == 2 && day == 29;
  int anchorMonth = month >= 3 ? 3 : 1;
  int64_t anchor = GregorianDays(year, anchorMonth, 1);
  for (int p = kLastDataYear; p >= kFirstProxyYear; --p) {
    if (leapDay && !date::year{p}.is_leap()) continue;
    int64_t candidate = GregorianDays(p, anchorMonth, 1);
    if (WeekdayOf(candidate) == WeekdayOf(anchor)) return anchor - candidate;
  }
  return 0;  // not reached: 28 consecutive years hold every kind of year
}

// One stretch of a zone's history with a constant offset.
struct Span {
  int64_t begin = 0, end = 0;  // UT seconds, [begin, end)
  int64_t east = 0;            // seconds east of Greenwich (the database's sign)
  double hours = 0.0;          // this system's offset
  std::string abbreviation;
  bool dst = false;
  bool lmt = false;
};

Span SpanOf(const date::sys_info& info) {
  Span s;
  s.begin = Count(info.begin);
  s.end = Count(info.end);
  s.east = info.offset.count();
  s.hours = -static_cast<double>(s.east) / 3600.0;
  s.abbreviation = info.abbrev;
  s.dst = info.save.count() != 0;
  s.lmt = info.abbrev == "LMT";
  return s;
}

// The place's own mean time in place of the reference city's, kept on the
// same side of the date line.
void UsePlaceMeanTime(Span& s, double longitudeWest) {
  double hours = longitudeWest / 15.0;
  double recorded = s.hours;
  if (recorded - hours >= 18.0) hours += 24.0;
  if (hours - recorded >= 18.0) hours -= 24.0;
  s.hours = hours;
  s.east = -static_cast<int64_t>(std::llround(hours * 3600.0));
}

bool SameTime(const Span& a, const Span& b) {
  return a.east == b.east && a.abbreviation == b.abbreviation && a.dst == b.dst;
}

std::string Pad2(int v) { return ZeroPad(v, 2); }

}  // namespace

bool ZoneDatabase::Load(std::string& message) {
  if (!loaded_) {
    loaded_ = true;
    try {
      const date::tzdb& db = date::get_tzdb();
      names_.reserve(db.zones.size());
      // "localtime" is the machine's own setting, not a zone of the database.
      for (const date::time_zone& z : db.zones)
        if (z.name() != "localtime") names_.push_back(z.name());
      std::sort(names_.begin(), names_.end());
      names_.erase(std::unique(names_.begin(), names_.end()), names_.end());
      if (names_.empty()) loadError_ = "The time zone database holds no zones.";
    } catch (const std::exception& e) {
      loadError_ = std::string("The time zone database could not be read: ") + e.what();
      names_.clear();
    } catch (...) {
      loadError_ = "The time zone database could not be read.";
      names_.clear();
    }
  }
  message = loadError_;
  return loadError_.empty();
}

std::vector<std::string> ZoneDatabase::ZoneNames() {
  std::string message;
  Load(message);
  return names_;
}

const date::time_zone* ZoneDatabase::Find(const std::string& name, std::string& message) {
  auto hit = found_.find(name);
  if (hit != found_.end()) return hit->second;
  if (!Load(message)) return nullptr;
  std::string exact = name;
  if (!std::binary_search(names_.begin(), names_.end(), exact)) {
    // Any case, when only one name matches.
    exact.clear();
    int matches = 0;
    for (const std::string& n : names_)
      if (EqualsIgnoreCase(n, name)) {
        exact = n;
        ++matches;
      }
    if (matches != 1) {
      message = name.empty() ? "No time zone name was given." : "Unknown time zone: " + name;
      return nullptr;
    }
  }
  try {
    const date::time_zone* zone = date::locate_zone(exact);
    zone->get_info(At(0));  // reads the zone's file now, so that a bad one fails here
    found_.emplace(name, zone);
    return zone;
  } catch (const std::exception& e) {
    message = "The time zone " + exact + " could not be read: " + e.what();
  } catch (...) {
    message = "The time zone " + exact + " could not be read.";
  }
  return nullptr;
}

ZoneInForce ZoneDatabase::ZoneAt(const std::string& ianaName, int year, int month, int day, int hour, int minute,
                                 int second, double longitudeWestPositive) {
  ZoneInForce out;
  auto fail = [&out](std::string text) {
    out.Failed = true;
    out.Message = std::move(text);
    return out;
  };
  if (year < kFirstYear || year > kLastYear)
    return fail("Time zones can be looked up for the years " + std::to_string(kFirstYear) + " to " +
                std::to_string(kLastYear) + " only.");
  int64_t days = 0;
  if (!CivilDays(year, month, day, days))
    return fail("There is no such date: " + std::to_string(day) + "/" + std::to_string(month) + "/" +
                std::to_string(year) + " (day/month/year).");
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59)
    return fail("There is no such time of day: " + std::to_string(hour) + ":" + Pad2(minute) + ":" + Pad2(second) +
                ".");
  if (!std::isfinite(longitudeWestPositive) || longitudeWestPositive < -180.0 || longitudeWestPositive > 180.0)
    return fail("The longitude is out of range (180 degrees east to 180 degrees west).");
  std::string message;
  const date::time_zone* zone = Find(ianaName, message);
  if (!zone) return fail(message);
  out.ZoneName = zone->name();

  try {
    int64_t local = days * kDay + hour * 3600 + minute * 60 + second;
    // Past the data: read the same clock time in a year of the same calendar,
    // when the zone still changes its clocks in the data's last year.
    if (year > kLastDataYear) {
      Span last = SpanOf(zone->get_info(At(local - kSearchWindow)));
      if (last.end >= kNoEnd && last.begin >= GregorianDays(kLastDataYear, 1, 1) * kDay)
        local -= ProxyShiftDays(year, month, day) * kDay;
    }
    // The stretches of the zone around the local time.
    std::vector<Span> spans;
    spans.push_back(SpanOf(zone->get_info(At(local - kSearchWindow))));
    while (spans.back().end < kNoEnd && spans.back().end <= local + kSearchWindow && spans.size() < 16)
      spans.push_back(SpanOf(zone->get_info(At(spans.back().end))));
    for (Span& s : spans)
      if (s.lmt) UsePlaceMeanTime(s, longitudeWestPositive);

    // The stretches in which the clock time happened.
    std::vector<size_t> fits;
    for (size_t i = 0; i < spans.size(); ++i) {
      int64_t ut = local - spans[i].east;
      if (ut >= spans[i].begin && ut < spans[i].end) fits.push_back(i);
    }
    size_t chosen = 0;
    if (fits.empty()) {
      // A gap: the stretch before it, whose clock ran up to the change.
      out.InGap = true;
      chosen = 0;
      for (size_t i = 0; i + 1 < spans.size(); ++i)
        if (local - spans[i].east >= spans[i].end && local - spans[i + 1].east < spans[i + 1].begin) {
          chosen = i;
          break;
        }
    } else {
      chosen = fits.front();  // the earliest instant (spans are in order)
      out.InOverlap = fits.size() > 1;
    }
    const Span& s = spans[chosen];
    out.Hours = s.hours;
    out.Abbreviation = s.abbreviation;
    out.IsDst = s.dst;
    out.IsLmt = s.lmt;
  } catch (const std::exception& e) {
    return fail("The time zone " + out.ZoneName + " could not be read: " + e.what());
  } catch (...) {
    return fail("The time zone " + out.ZoneName + " could not be read.");
  }
  return out;
}

std::vector<ZoneChange> ZoneDatabase::ZoneChanges(const std::string& ianaName, int fromYear, int toYear,
                                                  std::string& message) {
  std::vector<ZoneChange> changes;
  message.clear();
  if (fromYear < kFirstYear || toYear > kLastYear || fromYear > toYear || toYear - fromYear > 1000) {
    message = "The years of a zone's changes must run forwards, within " + std::to_string(kFirstYear) + " to " +
              std::to_string(kLastYear) + ", over at most 1000 years.";
    return changes;
  }
  const date::time_zone* zone = Find(ianaName, message);
  if (!zone) return changes;

  auto add = [&changes](const Span& before, const Span& after, int64_t at, int64_t shiftDays) {
    if (SameTime(before, after)) return;
    ZoneChange c;
    c.UtSeconds = at + shiftDays * kDay;
    c.UtJulianDay = 2440587.5 + static_cast<double>(c.UtSeconds) / kDay;
    c.ClockBefore = ClockOf(c.UtSeconds + before.east);
    c.ClockAfter = ClockOf(c.UtSeconds + after.east);
    c.HoursBefore = before.hours;
    c.Hours = after.hours;
    c.Abbreviation = after.abbreviation;
    c.IsDst = after.dst;
    c.IsLmt = after.lmt;
    changes.push_back(std::move(c));
  };
  // The changes of the data in [from, to), shifted by whole days.
  auto walk = [&](int64_t from, int64_t to, int64_t shiftDays) {
    Span current = SpanOf(zone->get_info(At(from)));
    for (int guard = 0; guard < 100000 && current.end < kNoEnd && current.end < to; ++guard) {
      Span next = SpanOf(zone->get_info(At(current.end)));
      add(current, next, current.end, shiftDays);
      current = next;
    }
    return current;
  };

  try {
    int64_t from = (fromYear <= 1800 ? GregorianDays(1800, 1, 1) : GregorianDays(fromYear, 1, 1)) * kDay;
    int dataEnd = std::min(toYear, kLastDataYear);
    Span last;
    if (fromYear <= dataEnd) last = walk(from, GregorianDays(dataEnd + 1, 1, 1) * kDay, 0);
    else last = SpanOf(zone->get_info(At(GregorianDays(kLastDataYear, 12, 31) * kDay)));
    // Past the data, the last year's rules go on (see ProxyShiftDays).
    bool ongoing = last.end >= kNoEnd && last.begin >= GregorianDays(kLastDataYear, 1, 1) * kDay;
    if (ongoing && toYear > kLastDataYear) {
      for (int y = std::max(fromYear, kLastDataYear + 1); y <= toYear; ++y) {
        int64_t janShift = ProxyShiftDays(y, 1, 1);
        int64_t marShift = ProxyShiftDays(y, 3, 1);
        int64_t jan = GregorianDays(y, 1, 1), mar = GregorianDays(y, 3, 1), next = GregorianDays(y + 1, 1, 1);
        walk((jan - janShift) * kDay, (mar - janShift) * kDay, janShift);
        walk((mar - marShift) * kDay, (next - marShift) * kDay, marShift);
      }
    }
  } catch (const std::exception& e) {
    message = "The time zone " + zone->name() + " could not be read: " + e.what();
    changes.clear();
  } catch (...) {
    message = "The time zone " + zone->name() + " could not be read.";
    changes.clear();
  }
  return changes;
}

namespace {

// Days from 1970 of the last Sunday of a month.
int64_t LastSunday(int year, int month) {
  date::sys_days d = date::year{year} / date::month{static_cast<unsigned>(month)} / date::Sunday[date::last];
  return d.time_since_epoch().count();
}

}  // namespace

bool IllinoisStandardTimeRule(const std::string& admin1Code, const std::string& countryCode, int year, int month,
                              int day) {
  if (!EqualsIgnoreCase(Trim(countryCode), "US") || !EqualsIgnoreCase(Trim(admin1Code), "IL")) return false;
  if (year < 1920 || year > 1959 || (year >= 1942 && year <= 1945) || year == 1936) return false;
  int64_t days = 0;
  if (!CivilDays(year, month, day, days)) return false;
  int64_t start = year == 1920 ? GregorianDays(1920, 6, 13) : LastSunday(year, year == 1921 ? 3 : 4);
  int64_t end = LastSunday(year, (year <= 1921 || year >= 1955) ? 10 : 9);
  if (year == 1959) end = std::min(end, GregorianDays(1959, 7, 1));
  return days >= start && days < end;
}

}  // namespace vintar
