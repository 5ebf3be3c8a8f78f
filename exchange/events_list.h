// The simple events list: life events kept as plain text, turned into the
// records of a project. An event is a run of up to three lines (what
// happened in quotes, where, when) closed by an empty line; a location on
// the first line after an empty line sets the default place of the events
// that follow. A "when" may be a day, a month, a year, a range ("3 MAY 1985
// TO 9 MAY 1985") or a day with days around it ("7 ENDS 10 JUN 1990"),
// with an optional clock time.
//
// Units: dates in the calendar that applies to them (Julian before 15 Oct
// 1582), years from 1900 to this year (the session's clock), DayRange the
// half-width in days of the dated span, zones in hours added to local time
// to reach Universal Time. The reader never stops at a bad event: it skips
// it and says why, by event and line number, in the closing message.
// Checked by tests/exchange/events_list_test.cpp against the grammar's
// ranges, directives, times, date orders and messages.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/progress.h"
#include "core/records.h"
#include "core/session.h"

namespace vintar {

// Which token of a full date is the day, the month and the year.
enum class DateOrder { MDY, DMY, DYM, MYD, YDM, YMD };

// What a place lookup gives for an event's place: the coordinates (north
// and west positive) and the zone in force, as text in the grammar of the
// zone parser ("-1:00", "+5:00") with its name ("CET", "EST").
struct FoundPlace {
  double Latitude = 0.0, Longitude = 0.0;
  std::string ZoneText;
  std::string ZoneName;
};
// The place database or the atlas, as the UseACS preference chooses: finds
// City and State (either may be empty) for the event's local date and time
// (hour -1 when the event has none). False when the place is not found.
using EventPlaceLookup = std::function<bool(const std::string& city, const std::string& state, int year, int month,
                                            int day, int hour, int minute, FoundPlace& found)>;

// The error numbers of the import, with their texts.
inline constexpr int kEventsFileError = 600;  // "Error opening events file"
inline constexpr int kDataFileError = 601;    // "Error opening data file"
inline constexpr int kZoneError = 602;        // "Error processing the Time Zone."

struct EventsListResult {
  std::vector<EventRecord> Records;  // from 1; entry 0 unused
  int Imported = 0;
  std::string Message;  // the skipped events and warnings, CR LF between lines
  int Error = 0;        // 0, or one of the error numbers above: nothing was imported
  std::string ErrorText;
  bool Cancelled = false;  // stopped by the user: no records, no message
};

// Reads the text of an events list. `lookup` may be empty: then no place is
// found. The date order starts as the session's (month first or day first).
// Reports its lines to `progress`; a cancel stops it with Cancelled set.
EventsListResult ParseEventsList(Session& session, const std::string& text, const EventPlaceLookup& lookup,
                                 Progress* progress = nullptr);

// The import: reads `sourcePath`, writes the records to `dataPath` (the
// project's .dat, atomically), and shows the closing box under "Import
// Simple Events List": "Imported N events." and the collected message, or
// the error's text. When the header file `headerPath` does not exist while
// the data file does, the data file is removed. A cancel through
// `progress` writes and shows nothing. Returns the result.
EventsListResult ImportSimpleEventsList(Session& session, const std::string& sourcePath,
                                        const std::string& headerPath, const std::string& dataPath,
                                        const EventPlaceLookup& lookup, Progress* progress = nullptr);

// The parts of one "when" line, for tests and for the import screen's
// preview. Tokens as the reader breaks the line (upper case; "ST", "ND",
// "RD" and "TH" dropped).
std::vector<std::string> WhenTokens(const std::string& line);

}  // namespace vintar
