// Test-only oracle: the ephemeris library's own house routine, called with a
// RAMC, latitude and obliquity, as an independent check on calc/astro. The
// product never calls it.
#pragma once

#include <array>

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

}  // namespace vintar::testing
