// Calendar arithmetic against published Julian days (Meeus, Astronomical
// Algorithms, ch. 7), the October 1582 reform, a day-by-day sweep from
// -4712 onwards, the delta-T table and the stored moment of a record.

#include "core/calendar.h"

#include <gtest/gtest.h>

#include "core/records.h"

namespace vintar {
namespace {

struct KnownDay {
  double day;
  int month;
  int year;
  double jd;
};

TEST(CalendarTest, JulDayMatchesPublishedDates) {
  const KnownDay cases[] = {
      {1.5, 1, 2000, 2451545.0},   {4.81, 10, 1957, 2436116.31}, {27.5, 1, 333, 1842713.0},
      {1.5, 1, -4712, 0.0},        {0.5, 1, 1900, 2415020.0},    {27.0, 1, 1987, 2446822.5},
      {19.5, 6, 1987, 2446966.0},  {1.0, 1, 1600, 2305447.5},    {31.0, 12, 1600, 2305812.5},
      {10.3, 4, 837, 2026871.8},   {31.0, 12, -123, 1676496.5},  {1.0, 1, -122, 1676497.5},
      {12.5, 7, -1000, 1356001.0}, {29.0, 2, -1000, 1355866.5},  {17.9, 8, -1001, 1355671.4},
      {4.0, 10, 1582, 2299159.5},  {15.0, 10, 1582, 2299160.5},  {1.0, 3, 1900, 2415079.5},
  };
  for (const KnownDay& c : cases) {
    EXPECT_NEAR(JulDay(c.day, c.month, c.year), c.jd, 1e-6) << c.day << "/" << c.month << "/" << c.year;
    if (c.day < 1.0) continue;  // "January 0" reads back as 31 December
    float day = 0;
    int month = 0, year = 0;
    RevJul(c.jd, day, month, year);
    EXPECT_NEAR(day, c.day, 1e-4) << c.jd;
    EXPECT_EQ(month, c.month) << c.jd;
    EXPECT_EQ(year, c.year) << c.jd;
  }
  EXPECT_DOUBLE_EQ(JulDayT(27, 1, 333, 12.0), 1842713.0);
  EXPECT_DOUBLE_EQ(JulDayT(31, 12, 1999, 36.0), 2451545.0);
}

TEST(CalendarTest, JulianCalendarDayFlagReadsTheOtherCalendar) {
  // 1 February 1600 in the Julian calendar is 11 February Gregorian.
  EXPECT_DOUBLE_EQ(JulianCalendarDay(1, 2, 1600, true), JulDay(11, 2, 1600));
  // 1 January 1500 Gregorian is 23 December 1499 Julian (nine days apart
  // until the Julian leap day of 1500).
  EXPECT_DOUBLE_EQ(JulianCalendarDay(1, 1, 1500, true), JulDay(23, 12, 1499));
  EXPECT_DOUBLE_EQ(JulianCalendarDay(15, 10, 1582, false), JulDay(15, 10, 1582));
  EXPECT_DOUBLE_EQ(JulianCalendarDay(4, 10, 1582, false), JulDay(4, 10, 1582));
}

// Every day from -4712 January 1 to the year 3000: the date read back goes
// forward by exactly one calendar day and converts back to the same Julian
// day, with the single jump of the reform from 4 to 15 October 1582.
TEST(CalendarTest, EveryDayRoundTripsAndFollowsThePreviousOne) {
  int lastDay = 31, lastMonth = 12, lastYear = -4713, failures = 0, jumps = 0;
  for (long n = 0; n <= 2817152 && failures < 10; ++n) {
    double jd = n - 0.5;
    float dayF = 0;
    int month = 0, year = 0;
    RevJul(jd, dayF, month, year);
    int day = static_cast<int>(dayF);
    bool sameMonth = day == lastDay + 1 && month == lastMonth && year == lastYear;
    bool nextMonth = day == 1 && lastDay >= 28 &&
                     ((month == lastMonth + 1 && year == lastYear) ||
                      (month == 1 && lastMonth == 12 && year == lastYear + 1));
    bool reform = year == 1582 && month == 10 && day == 15 && lastDay == 4;
    if (reform) ++jumps;
    if (!(sameMonth || nextMonth || reform) || dayF != day || JulDay(day, month, year) != jd) {
      ADD_FAILURE() << "jd " << jd << " gives " << dayF << "/" << month << "/" << year;
      ++failures;
    }
    lastDay = day;
    lastMonth = month;
    lastYear = year;
  }
  EXPECT_EQ(lastYear, 3000);
  EXPECT_EQ(jumps, 1);
}

TEST(CalendarTest, DeltaTFromTableAndQuadratic) {
  const struct {
    int year;
    double minutes;
  } cases[] = {
      {1710, -0.2},    {1750, 0.0},      {1950, 0.5},     {2000, 1.117},      // table points
      {1955, 0.533333}, {1720, -0.15},    {2005, 1.22515},  {1900, -0.0375},  // between them
      {2010, 2.339862}, {2026, 2.721208}, {1709, -0.070991}, {1500, 3.576},   // outside
  };
  for (const auto& c : cases) EXPECT_NEAR(DeltaT(c.year) * 60.0, c.minutes, 2e-5) << c.year;
}

TEST(CalendarTest, RecordMomentCarriesZoneTimeAndDeltaT) {
  const double dt2000 = 1.117 / 60.0 / 24.0;
  EventRecord r;
  r.Year = 2000;
  r.Month = 1;
  r.Day = 1;
  r.ZoneHours = -10.0f;
  r.Hour = 6;
  r.Minute = 30;
  r.Second = 36;
  r.DetailLevel = 0;  // date only: noon, no zone
  EXPECT_NEAR(RecordJulianDay(r), 2451545.0 + dt2000, 1e-6);
  r.DetailLevel = 1;  // zone known, time not
  EXPECT_NEAR(RecordJulianDay(r), 2451545.0 - 10.0 / 24.0 + dt2000, 1e-6);
  r.DetailLevel = 2;
  EXPECT_NEAR(RecordJulianDay(r), 2451544.5 + (6.51 - 10.0) / 24.0 + dt2000, 1e-6);
  r.Year = 1582;
  r.Month = 10;
  r.Day = 15;
  r.DetailLevel = 0;
  EXPECT_NEAR(RecordJulianDay(r), 2299161.0 + DeltaT(1582) / 24.0, 1e-6);
}

}  // namespace
}  // namespace vintar
