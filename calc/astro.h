// Angle arithmetic, sidereal time, obliquity, precession, the chart angles
// and the twelve house cusps of fifteen house systems. Pure functions of
// their arguments: no session, no ephemeris.
//
// Units: degrees for angles and longitudes (0 up to 360), hours for times,
// T in Julian centuries from 1900 January 0.5. Place longitudes are west
// positive, latitudes north positive. `offset` is the sidereal offset in
// degrees, added to every longitude returned (0 for the tropical zodiac).
// Nutation is not applied. Checked against the ephemeris library's own house
// and angle routines called with the same RAMC, obliquity and latitude.
#pragma once

#include <array>
#include <cstdint>

namespace vintar {

// The floored modulo of two reals, never negative for m above zero.
double Mod(double x, double m);
double SinD(double degrees);
double CosD(double degrees);
double TanD(double degrees);
// Quadrant-aware arc tangent in radians; x = 0 gives 0 when y = 0 and
// plus or minus pi/2 otherwise.
double ArcTan2(double y, double x);
double ArcSin(double x);  // radians
double Degrees(double radians);

double MeanObliquity(double T);
// The precession term in whole seconds of arc (nutation terms included).
int32_t PrecessionArcsec(double T);
// The sidereal vernal point of a zodiac (1 to 9; 1 tropical gives 0, 9 the
// user's ayanamsa) turned into the offset for a date: (SVP - 360) + arcsec/3600.
double SiderealOffset(int zodiac, double userAyanamsa, int32_t arcsec);
double SiderealAtZero(double jd0);            // hours
double LocalSidereal(double st0, double ut);  // hours
double Ramc(double lst, double longitude);    // degrees

// The four angles of a chart, each with the offset added and reduced.
struct Angles {
  double Ascendant = 0, Midheaven = 0, Vertex = 0, EastPoint = 0;
};
Angles ComputeAngleSet(double ramc, double obliquity, double latitude, double offset);

// Right ascension of a longitude on the ecliptic by the Midheaven's
// conversion, and back (both tropical, degrees).
double MidheavenToRamc(double mc, double obliquity);
double RamcToMidheaven(double ramc, double obliquity);

// What a house system needs besides RAMC, obliquity and latitude: the chart's
// Ascendant, Midheaven and Sun (with the offset in them) and, for the user
// system, the longitude of its point and the cusp it stands on.
struct HouseInput {
  double Ramc = 0, Obliquity = 0, Latitude = 0, Offset = 0;
  double Ascendant = 0, Midheaven = 0, Sun = 0;
  double UserPoint = 0;
  int UserCusp = 1;
};

inline constexpr int kHouseSystems = 15;
inline constexpr int kEqualHouses = 10;

// Fills cusps[1..12] for `system` (0 to 14) and returns the system actually
// used (Alcabitius and Koch fall back to Equal beyond the polar circle), or
// -1 for a number outside 0 to 14, leaving the cusps as they were.
int CalcHouseCusps(int system, const HouseInput& in, std::array<double, 13>& cusps);

// Whether the system puts the Ascendant on cusp 1 and the Midheaven on cusp 10.
bool FirstCuspIsAsc(int system);
bool TenthCuspIsMC(int system);

}  // namespace vintar
