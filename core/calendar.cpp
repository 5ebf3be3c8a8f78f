// Calendar arithmetic: Julian days from calendar dates (days, double), the
// reverse conversion, delta-T in hours and the stored moment of a record.
//
// The conversions follow the classic algorithm of Meeus (Astronomical
// Algorithms, ch. 7) with the floor function throughout, so they hold for
// negative years back to -4712 January 1.5 = JD 0. Checked against the
// worked examples of that chapter and against the reform of October 1582.

#include "core/calendar.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/records.h"

namespace vintar {
namespace {

// The first Gregorian date, in the form year + month / 100 + day / 10000.
constexpr double kReformKey = 1582.1015;

// Julian day of the Gregorian reform, 15 October 1582 at 0 h is JD 2299160.5;
// day numbers from 2299161 on are read back in the Gregorian calendar.
constexpr double kFirstGregorianDayNumber = 2299161.0;

double CalendarKey(double day, int month, int year) {
  return year + month / 100.0 + day / 10000.0;
}

// The common part of JulDay and JulianCalendarDay. `day` already carries any
// fraction of the day.
double JulianDayOf(double day, int month, int year, bool gregorian) {
  int y = year;
  int m = month;
  if (m <= 2) {
    y -= 1;
    m += 12;
  }
  double jd = std::floor(30.6001 * (m + 1)) + std::floor(365.25 * y) + day + 1720994.5;
  if (gregorian) {
    double century = std::floor(y / 100.0);
    jd += 2.0 - century + std::floor(century / 4.0);
  }
  return jd;
}

struct DeltaTEntry {
  int year;
  float minutes;
};

// Delta-T in minutes of time at the given years.
constexpr std::array<DeltaTEntry, 21> kDeltaTMinutes = {{
    {1710, -0.2f}, {1730, -0.1f}, {1750, 0.0f},  {1770, 0.1f},  {1800, 0.1f},   {1840, 0.0f},  {1870, 0.0f},
    {1880, -0.1f}, {1895, -0.1f}, {1903, 0.0f},  {1912, 0.2f},  {1927, 0.4f},   {1940, 0.4f},  {1950, 0.5f},
    {1965, 0.6f},  {1971, 0.7f},  {1977, 0.8f},  {1987, 0.9f},  {1993, 1.0f},   {2000, 1.117f}, {2010, 1.3333f},
}};

}  // namespace

double JulDay(double day, int month, int year) {
  // The threshold compares "at or above": with "above" alone the reform day
  // 15 October 1582 (whose key equals 1582.1015 exactly in floating point)
  // would be taken as Julian and fall ten days away from 4 October.
  return JulianDayOf(day, month, year, CalendarKey(day, month, year) >= kReformKey);
}

double JulDayT(double day, int month, int year, double hours) {
  bool gregorian = CalendarKey(day, month, year) >= kReformKey;
  return JulianDayOf(day + hours / 24.0, month, year, gregorian);
}

double JulianCalendarDay(double day, int month, int year, bool julianFlag) {
  bool gregorian = CalendarKey(day, month, year) >= kReformKey;
  if (julianFlag) gregorian = !gregorian;
  return JulianDayOf(day, month, year, gregorian);
}

void RevJul(double jd, float& day, int& month, int& year) {
  // Some two million years either way: beyond that (only a damaged value
  // gets there) the date is that of the limit, and NaN is the epoch.
  constexpr double kLimit = 8.0e8;
  if (std::isnan(jd)) jd = 0.0;
  jd = std::clamp(jd, -kLimit, kLimit);
  double z = std::floor(jd + 0.5);
  double f = jd + 0.5 - z;
  if (z >= kFirstGregorianDayNumber) {
    double a = std::floor((z - 1867216.25) / 36524.25);
    z = z + 1.0 + a - std::floor(a / 4.0);
  }
  double b = z + 1524.0;
  double c = std::floor((b - 122.1) / 365.25);
  double d = b - std::floor(365.25 * c);
  double e = std::floor(d / 30.6001);
  day = static_cast<float>(d - std::floor(30.6001 * e) + f);
  month = static_cast<int>(e < 13.5 ? e - 1.0 : e - 13.0);
  year = static_cast<int>(month > 2 ? c - 4716.0 : c - 4715.0);
}

double DeltaT(int year) {
  const DeltaTEntry& first = kDeltaTMinutes.front();
  const DeltaTEntry& last = kDeltaTMinutes.back();
  if (year < first.year || year >= last.year) {
    double x = (year - 1900) / 100.0;
    return (0.41 + 1.2053 * x + 0.4992 * x * x) / 60.0;
  }
  for (size_t i = 0; i + 1 < kDeltaTMinutes.size(); ++i) {
    const DeltaTEntry& lo = kDeltaTMinutes[i];
    const DeltaTEntry& hi = kDeltaTMinutes[i + 1];
    if (lo.year <= year && year < hi.year) {
      // Interpolated in single precision, as the stored moments always were.
      float minutes = lo.minutes + (hi.minutes - lo.minutes) * static_cast<float>(year - lo.year) /
                                       static_cast<float>(hi.year - lo.year);
      return static_cast<double>(minutes / 60.0f);
    }
  }
  return 0.0;  // not reached: the table covers every year from first to last
}

double RecordJulianDay(const EventRecord& record) {
  float d = static_cast<float>(record.Day) + 0.5f;
  if (record.DetailLevel > 0) d += record.ZoneHours / 24.0f;
  if (record.DetailLevel > 1) {
    d -= 0.5f;
    d += static_cast<float>(record.Hour) / 24.0f;
    d += static_cast<float>(record.Minute) / 1440.0f;
    d += static_cast<float>(record.Second) / 86400.0f;
  }
  return JulDay(d, record.Month, record.Year) + DeltaT(record.Year) / 24.0;
}

}  // namespace vintar
