// The session's chart slots: seven working charts, each holding the
// positions of points 1 to 24 in both frames, twelve cusps and the facts of
// how the chart was cast. Plain data; chart calculation fills it.
//
// Longitudes are degrees 0 up to 360 with the sidereal offset already in
// them; -1.0 marks a body that could not be computed. Speeds are degrees per
// day. Coordinate 1 is geocentric, 2 heliocentric. All arrays are indexed
// from 1 (index 0 unused) so that slot, point and cusp numbers read as they
// are spoken.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace vintar {

inline constexpr int kSlots = 7;
inline constexpr int kPoints = 24;
inline constexpr int kGeocentric = 1;
inline constexpr int kHeliocentric = 2;

// Point numbers with a meaning of their own in the calculations.
inline constexpr int kMoon = 1, kEarth = 2, kSun = 3, kMercury = 4, kVenus = 5, kMars = 6, kJupiter = 7,
                     kSaturn = 8, kUranus = 9, kNeptune = 10, kPluto = 11, kChiron = 12,
                     kTrueNode = 19, kMeanNode = 20, kAscendant = 21, kMidheaven = 22, kVertex = 23,
                     kEastPoint = 24;

// Dynamic types and progression methods.
inline constexpr int kTransits = 0, kSecondary = 1, kTertiary = 2, kSolarArc = 3;
inline constexpr int kNaibod = 1, kSolarArcLongitude = 2, kMeanQuotidian = 3;

using PointTable = std::array<std::array<std::array<double, kPoints + 1>, kSlots + 1>, 3>;

struct ChartSlot {
  std::array<double, 13> Cusps{};  // 1..12
  double ChartJD = 0.0;            // universal time
  double ChartZone = 0.0;          // hours, west positive
  std::string ChartName;
  std::string ChartPlace;
  int16_t ChartZodiac = 1;
  int16_t ChartHouseSystem = 5;
  int16_t FirstCuspIsAsc = 0;
  int16_t TenthCuspIsMC = 0;
  int16_t PointsInUse = 0;
  int16_t FirstPointInUse = 0;
  // What the last cast computed on the way, kept for display and the cache.
  double T = 0.0;
  double Ramc = 0.0;
  double Obliquity = 0.0;
  double SiderealOffset = 0.0;
  double Latitude = 0.0;   // of the place, north positive
  double Longitude = 0.0;  // of the place, west positive
};

struct ChartTables {
  PointTable Longitude{};
  PointTable Latitude{};
  PointTable LongSpeed{};
  PointTable LatSpeed{};
  std::array<std::array<int16_t, kPoints + 1>, kSlots + 1> Retrograde{};
  std::array<ChartSlot, kSlots + 1> Slots{};
  // Which points each slot shows: [coordinate][slot][point], -1 selected.
  std::array<std::array<std::array<int16_t, kPoints + 1>, kSlots + 1>, 3> Selected{};
  // Calls made to the ephemeris by this session, for benchmarks and tests.
  uint64_t EphemerisCalls = 0;
};

// The position caches' state: which caches were checked in this session
// [coordinate 1..2][dynamic type 0..3][progression method 1..3], the current
// choice, and whether the asteroids (points 12 to 18) are computed.
struct CacheState {
  std::array<std::array<std::array<int16_t, 4>, 4>, 3> Valid{};
  int16_t Coordinate = kGeocentric;
  int16_t DynamicType = kTransits;
  int16_t ProgressionMethod = kNaibod;
  int16_t AsteroidsOn = 0;
  int16_t NeedsGraphRecalc = 0;
  void Clear() { Valid = {}; }
};

}  // namespace vintar
