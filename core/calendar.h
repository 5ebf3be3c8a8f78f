// Calendar arithmetic: Julian day numbers from calendar dates and back, and
// the delta-T correction that a record's stored moment carries.
//
// Dates before 15 October 1582 are Julian, from then on Gregorian; years are
// astronomical (1 BC is 0). JulDay gives the Julian day at 0 hours UT of the
// date. DeltaT is in hours, from a 21-entry table (1710 to 2010, minutes)
// with a quadratic outside it. Checked against the Julian days of published
// dates (Meeus, Astronomical Algorithms, ch. 7) and the calendar reform.
#pragma once

namespace vintar {

struct EventRecord;

// The Gregorian calendar applies when year + month / 100 + day / 10000 is at
// or above 1582.1015 (the day of the reform itself is Gregorian, so 4 and 15
// October 1582 are consecutive days). January and February count as months
// 13 and 14 of the year before. `day` may carry a fraction.
double JulDay(double day, int month, int year);
// The same with a clock time in hours added to the day.
double JulDayT(double day, int month, int year, double hours);
// As JulDay, but with the calendar choice inverted when `julianFlag` is set:
// the date parser uses it to read a date the user marked Old or New Style.
double JulianCalendarDay(double day, int month, int year, bool julianFlag);
// Back to a calendar date; `day` keeps the fraction of the day (single precision).
void RevJul(double jd, float& day, int& month, int& year);
// Delta-T of a year in hours.
double DeltaT(int year);
// Julian centuries from 1900 January 0.5.
inline double CenturiesFrom1900(double jd) { return (jd - 2415020.0) / 36525.0; }

// The stored moment of an event record: its date, with the zone when the
// record has one and the clock time when it has that too (noon otherwise),
// summed in single precision as the files have always had it, plus the
// delta-T of its year. Ephemeris time, unlike a chart cast from text.
double RecordJulianDay(const EventRecord& record);

}  // namespace vintar
