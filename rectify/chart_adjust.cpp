#include "rectify/chart_adjust.h"

#include <cmath>

#include "calc/astro.h"
#include "calc/chart.h"

namespace vintar {
namespace {

constexpr double kMCStep = 1.0 / 6.0;  // ten minutes of arc

void Recast(Session& session, const ChartAdjustState& s) {
  CastChart(session, s.Slot, s.Day, s.Month, s.Year, s.Hour + s.Minute / 60.0 + s.Second / 3600.0, s.Zone,
            s.Longitude, s.Latitude);
}

}  // namespace

void TimeSpin(int& hours, int& minutes, int direction) {
  int total = hours * 60 + minutes + (direction > 0 ? 1 : -1);
  total = ((total % 1440) + 1440) % 1440;
  hours = total / 60;
  minutes = total % 60;
}

double MCSpin(double mc, int direction) { return Mod(mc + (direction > 0 ? kMCStep : -kMCStep), 360.0); }

int StepDaysValue(int typed) { return typed < 1 ? 1 : typed; }

double StepDate(double jd, int stepDays, int direction, bool fast) {
  const double step = StepDaysValue(stepDays) * (fast ? 10.0 : 1.0);
  return jd + (direction > 0 ? step : -step);
}

void AdjustTime(Session& session, ChartAdjustState& state, int direction) {
  TimeSpin(state.Hour, state.Minute, direction);
  Recast(session, state);
}

double AdjustMC(Session& session, ChartAdjustState& state, int direction) {
  if (state.Slot < 1 || state.Slot > kSlots) return 0.0;
  const double mc = MCSpin(session.charts.Longitude[kGeocentric][state.Slot][kMidheaven], direction);
  const double hours = state.Hour + state.Minute / 60.0 + state.Second / 3600.0;
  const AnglesFromMCResult r = AnglesFromMC(session, mc, state.Day, state.Month, state.Year, hours, state.Zone,
                                            state.Longitude, state.Latitude);
  long seconds = std::lround(r.LocalHours * 3600.0) % 86400;
  state.Hour = static_cast<int>(seconds / 3600);
  state.Minute = static_cast<int>(seconds / 60 % 60);
  state.Second = static_cast<int>(seconds % 60);
  Recast(session, state);
  return mc;
}

}  // namespace vintar
