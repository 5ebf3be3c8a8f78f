// Hand adjustment of a trial chart and the step controls of the dynamic
// chart: the birth time nudged by a minute, the Midheaven by ten minutes of
// arc (the time following it), and the date stepped by whole days.
//
// Times are local clock hours and minutes on the chart's own date (a step
// across midnight wraps the clock and keeps the date); the Midheaven is a
// longitude in degrees with the zodiac's offset in it; dates are Julian
// days. Checked by tests/rectify/chart_adjust_test.cpp at the wrap points.
#pragma once

#include "core/session.h"

namespace vintar {

// One minute forward (direction > 0) or back, with the carry into the
// hours, wrapping 23:59 <-> 00:00. Seconds are left alone.
void TimeSpin(int& hours, int& minutes, int direction);

// The Midheaven one sixth of a degree forward or back, Mod 360.
double MCSpin(double mc, int direction);

// The play controls' step in days: the typed interval, below 1 taken as 1.
int StepDaysValue(int typed);
// The date after one step forward (direction > 0) or back; a fast step is
// ten steps.
double StepDate(double jd, int stepDays, int direction, bool fast);

// The trial chart being adjusted: its date, clock time and place.
struct ChartAdjustState {
  int Day = 1, Month = 1, Year = 2000;
  int Hour = 12, Minute = 0, Second = 0;
  double Zone = 0.0;       // hours added to local time to reach UT
  double Longitude = 0.0;  // west positive
  double Latitude = 0.0;   // north positive
  int Slot = 1;            // the radix slot that is recast
};

// TimeSpin on the state's time, then the chart is recast in its slot.
void AdjustTime(Session& session, ChartAdjustState& state, int direction);
// MCSpin on the slot's Midheaven; the time that brings it there comes from
// AnglesFromMC, and the chart is recast at that time (to the second).
// Returns the new Midheaven.
double AdjustMC(Session& session, ChartAdjustState& state, int direction);

}  // namespace vintar
