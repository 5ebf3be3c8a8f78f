// Parsers and formatters of the values a user types: date, time, angle,
// latitude, longitude and time zone, with their fixed messages, and the
// helpers of the same family (index sorts, list splitting).
//
// Conventions: each parser clears `failed` on entry and sets it to true on
// failure; messages go through Session::ShowMessage with the stop icon unless
// `showMessages` is false. Latitudes are north positive, longitudes west
// positive, zone offsets are hours added to local time to reach Universal
// Time. Years are astronomical (1 BC is 0); a parsed date is in the calendar
// that applies to it (Julian before 15 October 1582).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vintar {

class Session;

void ParseDate(Session& session, const std::string& text, int16_t& day, int16_t& month, int16_t& year,
               bool showMessages, bool& failed);
void ParseTime(Session& session, const std::string& text, int16_t& hours, int16_t& minutes, int16_t& seconds,
               bool showMessages, bool& failed);
// The angle parser always shows its message.
void ParseAngle(Session& session, const std::string& text, float& angle, bool& failed);
void ParseLatitude(Session& session, const std::string& text, double& latitude, bool showMessages, bool& failed);
void ParseLongitude(Session& session, const std::string& text, double& longitude, bool showMessages, bool& failed);
void ParseZone(Session& session, const std::string& text, float& zoneHours, std::string& mnemonicOut,
               bool showMessages, bool& failed);

// Formatters. FormatDate and FormatTime read MonthFirst from the session.
std::string FormatDate(const Session& session, int day, int month, int year);
std::string FormatTime(int hour, int minute, int second, bool useAmPm);
std::string FormatZone(double hours);
std::string FormatLatitude(double value);
std::string FormatLongitude(double value);
std::string FormatOrdinal(int n);
// A longitude as degrees, minutes and (with `seconds`) seconds within its
// sign and the sign's abbreviation: 15 degrees 23'12" Le. Latin-1 text.
std::string ZodiacPosition(const Session& session, double longitude, bool seconds = true);
std::string ShortenPath(const std::string& path);

bool IsAllDigits(const std::string& text);
bool IsGregorian(int day, int month, int year);
int ClampInteger(int value, int low, int high);

// Splits at any one of `separators`, runs counting as one, each token
// left-trimmed; at most `capacity` tokens.
std::vector<std::string> SplitOnAny(const std::string& text, const std::string& separators, int capacity);
// The split of "|" lists: each separator closes one element (taken raw), a
// text after the last one is one more element, at most `capacity` elements.
std::vector<std::string> SplitOnText(const std::string& text, const std::string& separator, int capacity);

// Index sorts: put record numbers index[1..count] in order of keys[index[i]]
// without moving the keys. Stable insertion sort; `descending` reverses.
// Both arrays are indexed from 1.
void IndexSortDouble(const std::vector<double>& keys, std::vector<int32_t>& index, int32_t count, bool descending);
void IndexSortInt16(const std::vector<int16_t>& keys, std::vector<int32_t>& index, int32_t count, bool descending);
void IndexSortFloat(const std::vector<float>& keys, std::vector<int32_t>& index, int32_t count, bool descending);
void IndexSortText(const std::vector<std::string>& keys, std::vector<int32_t>& index, int32_t count,
                   bool descending);

// Wrappers for a record: parsers with messages off, `failed` ignored.
struct EventRecord;
void SetRecordDate(Session& session, EventRecord& record, const std::string& text);
void SetRecordTime(Session& session, EventRecord& record, const std::string& text);
void SetRecordZone(Session& session, EventRecord& record, const std::string& text);
void SetRecordLongitude(Session& session, EventRecord& record, const std::string& text);
void SetRecordLatitude(Session& session, EventRecord& record, const std::string& text);

}  // namespace vintar
