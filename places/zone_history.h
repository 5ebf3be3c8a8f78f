// Historical time zones: the offset in force at a place and a local moment,
// and the table of a zone's changes, from the IANA time zone database as the
// system installs it (/usr/share/zoneinfo, read through the date library).
//
// Units and conventions: offsets are hours ADDED to local time to reach
// Universal Time, so east of Greenwich is negative (Berlin in winter -1.0,
// New York in winter +5.0). Longitudes are west positive. Years are
// astronomical; a date before 15 October 1582 is Julian (the choice of
// core/parse.h IsGregorian), later ones Gregorian. Times are civil clock
// times to the second; UT here is the zone database's UT (no delta-T).
//
// Rules of the lookup:
// - Local mean time is the place's own. Before a zone's first standard
//   time the database records the local mean time of its reference city
//   ("LMT"); the lookup gives instead the place's longitude / 15 hours, with
//   IsLmt set (Ulm, 9 59' E, under Europe/Berlin in 1879: -0:39:56). Where
//   the recorded LMT sits on the other side of the date line (Manila before
//   1845, Alaska before 1867) the place's value keeps that side: it is moved
//   by 24 hours when it differs from the recorded one by 18 hours or more.
//   Other mean times the database names (AMT, BMT, MMT...) were kept by law
//   and are given as recorded.
// - A clock time that never happened (a gap, when the clocks went forward)
//   is read with the offset in force before the change: the clock that
//   showed that time had not been set forward yet, and a time written down
//   in standard time reads the same way. InGap is set.
// - A clock time that happened twice (an overlap, when the clocks went
//   back) is taken as the earlier instant, again with the offset in force
//   before the change: the first pass of the clock through the hour, and
//   the same reading as the gap rule, so that one rule ("the clock had not
//   been changed yet") covers both. InOverlap is set so a screen can warn.
// - Past the end of the installed data (the compiled files stop at 2037)
//   the last rules go on: a later year is read through a year of 2010-2037
//   that begins on the same weekday and has the same length, so rules such
//   as "last Sunday of March" fall on the same dates.
// - Before 1800 no zone of the database had anything but mean time, and a
//   lookup then simply gives the place's local mean time. Years from -4712
//   to 9999 are accepted.
//
// Nothing here throws: a failure comes back as Failed with a Message (an
// unknown zone name, a date or time that does not exist, a longitude out of
// range, a database that cannot be read). The caller shows the message.
//
// The date library keeps one database index per process, loaded on first
// use, and reads each zone's file once; that is its own state, not this
// module's. A ZoneDatabase, owned by its caller, keeps the zones it has
// located by name, so that repeated lookups cost a hash lookup and a
// binary search. It is not safe to share one between threads.
//
// Checked against the database's own published transitions (New York's
// war time of 1942-1945, the first British summer time of 1916, Berlin's
// 2021 changes, Sydney's summer time) and, for the Illinois rule, against
// America/Chicago day by day from 1918 to 1967.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace date {
class time_zone;
}

namespace vintar {

struct ZoneInForce {
  bool Failed = false;
  std::string Message;       // why it failed; empty otherwise
  double Hours = 0.0;        // added to the local time to reach UT
  std::string Abbreviation;  // as the database has it ("EWT", "CEST", "LMT")
  bool IsDst = false;        // daylight, summer or war time
  bool IsLmt = false;        // the place's own local mean time
  bool InGap = false;        // the clock time never happened (see above)
  bool InOverlap = false;    // the clock time happened twice (see above)
  std::string ZoneName;      // the database name the lookup used
};

// A civil date and clock time.
struct ZoneClock {
  int Year = 0, Month = 0, Day = 0, Hour = 0, Minute = 0, Second = 0;
};

// One change of a zone's offset, abbreviation or daylight flag.
struct ZoneChange {
  int64_t UtSeconds = 0;     // the moment, seconds of UT from 1970-01-01
  double UtJulianDay = 0.0;  // the same moment as a Julian day
  ZoneClock ClockBefore;     // the local clock reading at that moment, old offset
  ZoneClock ClockAfter;      // and what the clocks were set to, new offset
  double HoursBefore = 0.0;  // the offset before the change (this system's sign)
  double Hours = 0.0;        // the new offset
  std::string Abbreviation;  // the new abbreviation
  bool IsDst = false;        // the new time is daylight, summer or war time
  bool IsLmt = false;        // the new time is the reference city's mean time
};

class ZoneDatabase {
 public:
  // Reads the database index if it has not been read; false with a message
  // when it cannot be. The other calls load it themselves.
  bool Load(std::string& message);

  // The offset in force at the local clock time y-m-d h:mi:s at a place of
  // longitude `longitudeWestPositive` in the zone `ianaName` (exact
  // spelling, or any case when only one name matches).
  ZoneInForce ZoneAt(const std::string& ianaName, int year, int month, int day, int hour, int minute, int second,
                     double longitudeWestPositive);

  // The changes of a zone whose UT moment falls in the years fromYear to
  // toYear (at most 1,000 years, within -4712 to 9999), in order. An
  // unknown zone or a bad range gives an empty table and a message; a zone
  // without changes in the range gives an empty table and no message.
  std::vector<ZoneChange> ZoneChanges(const std::string& ianaName, int fromYear, int toYear, std::string& message);

  // Every zone name of the database, sorted; empty when it cannot be read.
  std::vector<std::string> ZoneNames();

 private:
  const date::time_zone* Find(const std::string& name, std::string& message);

  bool loaded_ = false;
  std::string loadError_;
  std::vector<std::string> names_;
  std::unordered_map<std::string, const date::time_zone*> found_;
};

// The Illinois rule. Until the state's Time Standardization Act of 1959
// (Laws 1959, p. 124, in force from 1 July 1959), state law kept standard
// time while Chicago and other towns kept daylight saving time by their own
// ordinances, and birth times were registered in Central Standard Time.
// The rule applied here: a birth in the US state of Illinois (country "US",
// first-level division "IL", any case) whose date falls in a season when
// Chicago kept its own daylight saving time, from 1920 (the first season
// after the federal law was repealed) to 30 June 1959. The federal seasons
// of 1918-1919 and the war time of 1942-1945 were federal law and are not
// included, nor is 1936, when Chicago kept Eastern Standard Time for most
// of the year. The seasons are those of America/Chicago in the database:
// 1920 13 June, 1921 the last Sunday of March, 1922-1959 the last Sunday of
// April; ending the last Sunday of October in 1920-1921 and 1955-1959, of
// September in 1922-1954. The date is the local date; the first day of a
// season counts (daylight time from 2 am) and the last does not (standard
// time from 2 am). The end of the period rests on the 1959 act; its start
// on Chicago's ordinances and is less certain: that the state's standard
// time governed birth registration in the 1920s is assumed, not documented.
bool IllinoisStandardTimeRule(const std::string& admin1Code, const std::string& countryCode, int year, int month,
                              int day);

inline constexpr const char* kIllinoisStandardTimeMessage =
    "At this time, Illinois law said to record birth times in Standard time, even though Daylight Savings time was "
    "in effect.";
inline constexpr const char* kIllinoisRecordedTimeMessage =
    "If you wish to enter a recorded birth time instead of a clock time, then you should manually set the timezone "
    "to CST (+6:00).";

}  // namespace vintar
