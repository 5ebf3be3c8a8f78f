// The one door to the Swiss Ephemeris: a path, a position, a close. No other
// file includes the library's header. The library keeps its state (the path,
// open files and last results) per thread: a thread that computes sets the
// path itself and closes its files before it ends.
//
// Positions are those of swe_calc: ecliptic longitude, latitude, distance and
// their speeds per day, for a Julian day handed over unchanged.
#pragma once

#include <string>

namespace vintar {

inline constexpr int kFlagHeliocentric = 8;  // SEFLG_HELCTR
inline constexpr int kFlagSpeed = 256;       // SEFLG_SPEED

// Ephemeris body numbers, as the library publishes them.
inline constexpr int kBodySun = 0, kBodyMoon = 1, kBodyMeanNode = 10, kBodyTrueNode = 11, kBodyEarth = 14,
                     kBodyChiron = 15, kBodyCeres = 17, kBodyPallas = 18, kBodyJuno = 19, kBodyVesta = 20,
                     kAsteroidOffset = 10000;

void SetEphemerisPath(const std::string& path);
void CloseEphemeris();
// One swe_calc. Returns the library's value (negative on failure); xx gets
// six values; `error` the library's message.
int EphemerisCalc(double jd, int body, int flags, double xx[6], std::string& error);

}  // namespace vintar
