// Dynamic positions: transits, secondary and tertiary progressions and solar
// arc directions of a radix chart for a moment of life, progressed angles by
// three methods, and the search for the moment a moving point reaches a
// longitude.
//
// Time scale: Julian days as the ephemeris takes them. For progressions a
// day of ephemeris stands for a tropical year (secondary) or a sidereal month
// (tertiary) of life: ProgressionRate gives the factor. Longitudes in
// degrees with the sidereal offset given by the caller; -1.0 marks a body
// that could not be computed. Checked against direct ephemeris calls, the
// radix chart at elapsed time zero, and brute-force scans of the passes.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "core/session.h"

namespace vintar {

// Days of ephemeris per day of life. yearKind 0 uses the tropical year as
// is, 1 shortens it by 0.997269566. Transits (and unknown types) give 1.
double ProgressionRate(int dynamicType, int yearKind);

// The progressed (ephemeris) moment of a moment of life `jd`.
double ProgressedJD(int dynamicType, double jd, double radixJD);

// The positions of points 1 to 24 of one slot in both coordinates, copied
// out so that a run can reuse a radix chart without recomputing it.
struct SlotPositions {
  using Column = std::array<std::array<double, kPoints + 1>, 3>;  // [coordinate][point]
  Column Longitude{}, Latitude{}, LongSpeed{}, LatSpeed{};
  std::array<int16_t, kPoints + 1> Retrograde{};
};
SlotPositions CopySlotPositions(const Session& session, int slot);
void StoreSlotPositions(Session& session, int slot, const SlotPositions& positions);

struct DynamicOptions {
  // Off: points 12 to 18 are not computed and stand at -1.0.
  bool Asteroids = true;
  // Solar arc only: the radix positions to move (points 1 to 24, angles
  // included when they stand there). Without it points 1 to 20 are computed
  // at radixJD and the angles are left at -1.0.
  const SlotPositions* Radix = nullptr;
};

// Fills `slot` (points 1 to 20, both coordinates) with the positions of the
// dynamic type for the moment `jd` of a life that began at `radixJD`. Rows
// the ephemeris has no body for (the Moon and Sun heliocentric, the Earth
// geocentric) are set to -1.0. Returns the precession term (whole seconds of
// arc) of the progressed date.
int32_t DynamicPositions(Session& session, int slot, double jd, double radixJD, int dynamicType,
                         double siderealOffset, const DynamicOptions& options = {});

// Angles of `slot` (points 21 to 24) progressed by `elapsedYears` of life
// from the radix chart in `radixSlot`, by method 1 Naibod in R.A., 2 Solar
// Arc in Longitude or 3 Mean Quotidian. `progressedJD` is the progressed
// moment: its obliquity is used, method 3 takes its sidereal time, and
// method 2 reads the progressed Sun from `slot`, which must already hold the
// positions of that moment (as DynamicPositions leaves them).
// `siderealOffset` is the offset carried by `slot`'s positions; it is added
// to the angles. Returns the progressed RAMC, also kept in the slot with the
// obliquity.
double ProgressedAngles(Session& session, double elapsedYears, double progressedJD, int slot, int radixSlot,
                        int method, double siderealOffset);

// A complete dynamic chart for the moment of life `jd` into `slot`:
// positions, angles and cusps, against the radix chart in `radixSlot`
// (its ChartJD, place and positions). Transits take the angles of the
// moment at the radix place; the other types progress them by `method`.
void DynamicChart(Session& session, int slot, int radixSlot, double jd, int dynamicType, int method);

// One search for the passes of a moving point over a target longitude.
// Dates are on the search's own scale: the ephemeris date, which for
// progressions and directions is the progressed date (see ProgressedJD).
struct HitQuery {
  int Point = 0;              // 1 to 24
  double Target = 0;          // longitude, degrees, with the offset in it
  double FromJD = 0;          // start of the search
  int Revolutions = 0;        // extra whole turns before the pass
  int DynamicType = 0;
  int Coordinate = 1;
  int Slot = 2;               // working slot for positions; not the radix slot
  int RadixSlot = 1;          // the radix chart (for progressed angles and solar arc)
  int Method = 1;             // progression method for the angles
  double SiderealOffset = 0;  // added to the moving point's positions
  // In its place, the offset of the session's zodiac at each moment of the
  // search (a sidereal zodiac's offset grows with precession).
  bool OffsetOfMoment = false;
};
struct HitResult {
  std::vector<double> Passes;  // dates of the passes at or after FromJD, in date order
  bool Unavailable = false;    // the point has no position or no period: no search
  int Rounds = 0;              // positions computed, for tests and benchmarks
};
// The first pass of the point over the target after FromJD (after the asked
// number of extra turns), with the other passes of the same retrograde loop.
HitResult NextHit(Session& session, const HitQuery& query);

}  // namespace vintar
