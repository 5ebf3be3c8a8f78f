// Test-only oracle: the ephemeris library's own house routine, called with a
// RAMC, latitude and obliquity, as an independent check on calc/astro. The
// product never calls it.
#pragma once

#include <array>
#include <string>

#include <gtest/gtest.h>

#include "calc/ephemeris.h"

namespace vintar::testing {

struct OracleHouses {
  bool ok = false;                 // the library computed the system asked for
  std::array<double, 13> cusps{};  // cusps[1..12]
  double ascendant = 0, midheaven = 0, vertex = 0, equatorialAscendant = 0;
};

// `letter` is the library's house system letter ('P' Placidus, 'K' Koch,
// 'O' Porphyry, 'R' Regiomontanus, 'C' Campanus, 'A' Equal, 'W' Whole Sign,
// 'B' Alcabitius, 'M' Morinus, 'X' axial rotation, 'T' Polich/Page
// topocentric, 'S' Sripati). All angles in degrees, tropical.
OracleHouses LibraryHouses(double ramc, double latitude, double obliquity, char letter);

// A body's geocentric longitude (and speed) straight from the library, for
// checking positions that went through the program's own plumbing.
inline double LibraryLongitude(int body, double jd, double* speed = nullptr) {
  double xx[6] = {0, 0, 0, 0, 0, 0};
  std::string error;
  EXPECT_GE(EphemerisCalc(jd, body, kFlagSpeed, xx, error), 0) << error;
  if (speed) *speed = xx[3];
  return xx[0];
}

}  // namespace vintar::testing
