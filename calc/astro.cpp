// Angle arithmetic, sidereal time, obliquity, precession, the chart angles
// and the house cusps of the fifteen house systems.
//
// All angles are degrees unless a name says radians; T is Julian centuries
// from 1900 January 0.5. The house systems are one small function each, held
// in a table indexed by the stored system number. Quadrant systems work from
// the tropical RAMC and add the sidereal offset to what they return; systems
// built from the chart's own longitudes (Ascendant, Midheaven, Sun, a user
// point) are already in the chart's zodiac. Checked against the ephemeris
// library's own house routine (tests/calc/astro_test.cpp).
#include "calc/astro.h"

#include <cmath>
#include <numbers>

#include "core/text.h"

namespace vintar {

namespace {

constexpr double kPi = std::numbers::pi;
using Cusps = std::array<double, 13>;

double Radians(double degrees) { return degrees * kPi / 180.0; }

// Round half to even, as the original integer conversion did.
int32_t RoundToInt32(double x) {
  double r = std::floor(x);
  double diff = x - r;
  if (diff > 0.5 || (diff == 0.5 && std::fmod(r, 2.0) != 0.0)) r += 1.0;
  return ToIntSaturated(r);
}

// Degrees of ArcTan2(y, x) with the two half-turn corrections that the
// house formulas share: plus 180 when below 0, plus 180 when y is below 0.
double CorrectedAngle(double y, double x) {
  double a = Degrees(ArcTan2(y, x));
  if (a < 0) a += 180.0;
  if (y < 0) a += 180.0;
  return a;
}

// Ecliptic longitude of the point of right ascension `ra` on the meridian:
// the Midheaven's conversion, tropical.
double EclipticFromRa(double ra, double eps) {
  const double x = Mod(ra, 360.0);
  double lon = Degrees(ArcTan2(TanD(x), CosD(eps)));
  if (lon < 0) lon += 180.0;
  if (x > 180.0) lon += 180.0;
  return Mod(lon, 360.0);
}

// The ecliptic degree rising in the east of latitude `lat` when the meridian
// stands at `ramc`, tropical and unreduced.
double AscendantAt(double ramc, double eps, double lat) {
  return Degrees(ArcTan2(CosD(ramc), -SinD(ramc) * CosD(eps) - TanD(lat) * SinD(eps)));
}

// The ecliptic degree on the eastern horizon of a pole of height `pole` whose
// oblique ascension is `c`.
double AscendantUnderPole(double c, double eps, double pole) {
  const double x = Degrees(ArcTan2(TanD(pole), CosD(c)));
  const double y = x + eps;
  double lon = Degrees(ArcTan2(CosD(x) * TanD(c), CosD(y)));
  if (lon < 0) lon += 180.0;
  if (SinD(c) < 0) lon += 180.0;
  return lon;
}

double Tropical(double lon, const HouseInput& in) { return lon - in.Offset; }
double Zodiacal(double tropical, const HouseInput& in) { return Mod(tropical + in.Offset, 360.0); }

// Cusps 4 to 9 as the opposites of 10 to 12 and 1 to 3.
void FillOpposites(Cusps& c) {
  for (int n : {10, 11, 12, 1, 2, 3}) {
    const int opposite = n > 6 ? n - 6 : n + 6;
    c[opposite] = Mod(c[n] + 180.0, 360.0);
  }
}

// Cusp n = first + 30 (n - 1), reduced.
void EqualFrom(double first, Cusps& c) {
  for (int n = 1; n <= 12; ++n) c[n] = Mod(first + 30.0 * (n - 1), 360.0);
}

double SignStart(double lon) { return 30.0 * std::floor(Mod(lon, 360.0) / 30.0); }

int Equal(const HouseInput& in, Cusps& c) {
  EqualFrom(in.Ascendant, c);
  return kEqualHouses;
}

int Alcabitius(const HouseInput& in, Cusps& c) {
  const double declination = ArcSin(SinD(in.Obliquity) * SinD(Tropical(in.Ascendant, in)));
  const float s = static_cast<float>(std::tan(declination) * TanD(in.Latitude));
  if (std::fabs(s) > 1.0f) return Equal(in, c);
  const double semiArc = Degrees(ArcSin(s)) + 90.0;
  const double nightArc = 180.0 - semiArc;
  c[1] = Mod(in.Ascendant, 360.0);
  c[10] = Mod(in.Midheaven, 360.0);
  c[11] = Zodiacal(EclipticFromRa(in.Ramc + semiArc / 3.0, in.Obliquity), in);
  c[12] = Zodiacal(EclipticFromRa(in.Ramc + 2.0 * semiArc / 3.0, in.Obliquity), in);
  c[9] = Zodiacal(EclipticFromRa(in.Ramc - nightArc / 3.0, in.Obliquity), in);
  c[8] = Zodiacal(EclipticFromRa(in.Ramc - 2.0 * nightArc / 3.0, in.Obliquity), in);
  c[2] = Mod(c[8] + 180.0, 360.0);
  c[3] = Mod(c[9] + 180.0, 360.0);
  FillOpposites(c);
  return 0;
}

int Campanus(const HouseInput& in, Cusps& c) {
  for (int n = 1; n <= 12; ++n) {
    const double h = 30.0 * n + 60.000001;  // the small addition keeps the tangent finite
    double a = std::atan(CosD(in.Latitude) * TanD(h));
    if (a < 0) a += kPi;
    if (SinD(h) < 0) a += kPi;
    const double r = Radians(in.Ramc) + a;
    const double y = std::sin(r);
    const double x = std::cos(r) * CosD(in.Obliquity) - std::sin(a) * TanD(in.Latitude) * SinD(in.Obliquity);
    c[n] = Zodiacal(CorrectedAngle(y, x), in);
  }
  return 1;
}

// Koch: the Midheaven degree's semi-arc, cut in thirds, gives the moments
// whose Ascendants are the intermediate cusps.
int Koch(const HouseInput& in, Cusps& c) {
  const double declination = ArcSin(SinD(Tropical(in.Midheaven, in)) * SinD(in.Obliquity));
  const double s = -TanD(in.Latitude) * std::tan(declination);
  if (std::fabs(s) > 1.0) return Equal(in, c);
  const double third = Degrees(ArcSin(s)) / 3.0;
  const double eps = in.Obliquity, lat = in.Latitude;
  c[1] = Mod(in.Ascendant, 360.0);
  c[10] = Mod(in.Midheaven, 360.0);
  c[2] = Zodiacal(AscendantAt(in.Ramc + 30.0 - third, eps, lat), in);
  c[3] = Zodiacal(AscendantAt(in.Ramc + 60.0 - 2.0 * third, eps, lat), in);
  c[11] = Zodiacal(AscendantAt(in.Ramc - 60.0 + 2.0 * third, eps, lat), in);
  c[12] = Zodiacal(AscendantAt(in.Ramc - 30.0 + third, eps, lat), in);
  FillOpposites(c);
  return 2;
}

int Meridian(const HouseInput& in, Cusps& c) {
  for (int n = 1; n <= 12; ++n) {
    const double x = in.Ramc + 30.0 * n + 60.0;
    c[n] = Zodiacal(CorrectedAngle(SinD(x), CosD(x) * CosD(in.Obliquity)), in);
  }
  return 3;
}

int Morinus(const HouseInput& in, Cusps& c) {
  for (int n = 1; n <= 12; ++n) {
    const double x = in.Ramc + 30.0 * n + 60.0;
    c[n] = Zodiacal(CorrectedAngle(SinD(x) * CosD(in.Obliquity), CosD(x)), in);
  }
  return 4;
}

// One Placidus cusp: ten rounds of the semi-arc trisection from a trial
// right ascension. Below the horizon (`lower`) the nocturnal arc is cut back
// from the lower meridian.
double PlacidusCusp(const HouseInput& in, double start, double divisor, bool lower) {
  const double sign = lower ? 1.0 : -1.0;
  double c = in.Ramc + start;
  for (int round = 0; round < 10; ++round) {
    const double s = sign * SinD(c) * TanD(in.Obliquity) * TanD(in.Latitude);
    // Arc cosine; beyond the polar circle |s| exceeds 1 and the arc is held
    // at 0 or 180 so that the cusps stay finite.
    const double a = ArcTan2(std::sqrt(std::fmax(0.0, 1.0 - s * s)), s);
    c = lower ? in.Ramc + 180.0 - Degrees(a / divisor) : Degrees(a / divisor) + in.Ramc;
  }
  return Zodiacal(EclipticFromRa(c, in.Obliquity), in);
}

int Placidus(const HouseInput& in, Cusps& c) {
  c[11] = PlacidusCusp(in, 30.0, 3.0, false);
  c[12] = PlacidusCusp(in, 60.0, 1.5, false);
  c[2] = PlacidusCusp(in, 120.0, 1.5, true);
  c[3] = PlacidusCusp(in, 150.0, 3.0, true);
  c[1] = Mod(in.Ascendant, 360.0);
  c[10] = Mod(in.Midheaven, 360.0);
  FillOpposites(c);
  return 5;
}

int Porphyry(const HouseInput& in, Cusps& c) {
  const double asc = Mod(in.Ascendant, 360.0);
  const double mc = Mod(in.Midheaven, 360.0);
  const double upper = Mod(asc - mc, 360.0) / 3.0;
  const double lower = Mod(mc + 180.0 - asc, 360.0) / 3.0;
  c[10] = mc;
  c[11] = Mod(mc + upper, 360.0);
  c[12] = Mod(mc + 2.0 * upper, 360.0);
  c[1] = asc;
  c[2] = Mod(asc + lower, 360.0);
  c[3] = Mod(asc + 2.0 * lower, 360.0);
  FillOpposites(c);
  return 6;
}

int Regiomontanus(const HouseInput& in, Cusps& c) {
  for (int n = 1; n <= 12; ++n) {
    const double h = 30.0 * n + 60.0;
    const double x = in.Ramc + h;
    const double y = SinD(x);
    const double xx = CosD(x) * CosD(in.Obliquity) - SinD(h) * TanD(in.Latitude) * SinD(in.Obliquity);
    c[n] = Zodiacal(CorrectedAngle(y, xx), in);
  }
  return 7;
}

int Topocentric(const HouseInput& in, Cusps& c) {
  const double p1 = Degrees(ArcTan2(TanD(in.Latitude), 3.0));
  const double p2 = Degrees(ArcTan2(2.0 * TanD(in.Latitude), 3.0));
  const int cusp[] = {11, 12, 1, 2, 3};
  const double pole[] = {p1, p2, in.Latitude, p2, p1};
  double oblique = in.Ramc + 30.0;
  for (int i = 0; i < 5; ++i, oblique += 30.0)
    c[cusp[i]] = Zodiacal(AscendantUnderPole(oblique, in.Obliquity, pole[i]), in);
  c[10] = Mod(in.Midheaven, 360.0);
  FillOpposites(c);
  return 8;
}

// Hindu Bhava: each cusp is the middle of the Porphyry house it opens.
int HinduBhava(const HouseInput& in, Cusps& c) {
  Cusps p{};
  Porphyry(in, p);
  for (int n = 1; n <= 12; ++n) {
    const double next = p[n % 12 + 1];
    c[n] = Mod(p[n] + Mod(next - p[n], 360.0) / 2.0, 360.0);
  }
  return 9;
}

int EqualHouses(const HouseInput& in, Cusps& c) { return Equal(in, c); }

int ZeroAries(const HouseInput&, Cusps& c) {
  EqualFrom(0.0, c);
  return 11;
}

int WholeSign(const HouseInput& in, Cusps& c) {
  EqualFrom(SignStart(in.Ascendant), c);
  return 12;
}

int SolarSign(const HouseInput& in, Cusps& c) {
  EqualFrom(SignStart(in.Sun), c);
  return 13;
}

// The user's point stands on the user's cusp.
int UserDefined(const HouseInput& in, Cusps& c) {
  EqualFrom(Mod(360.0 - 30.0 * (in.UserCusp - 1) + in.UserPoint, 360.0), c);
  return 14;
}

struct HouseSystem {
  int (*cusps)(const HouseInput&, Cusps&);
  bool firstCuspIsAsc;
  bool tenthCuspIsMC;
};

constexpr HouseSystem kSystems[kHouseSystems] = {
    {Alcabitius, true, true},     // 0
    {Campanus, true, true},       // 1
    {Koch, true, true},           // 2
    {Meridian, false, true},      // 3
    {Morinus, false, false},      // 4
    {Placidus, true, true},       // 5
    {Porphyry, true, true},       // 6
    {Regiomontanus, true, true},  // 7
    {Topocentric, true, true},    // 8
    {HinduBhava, true, true},     // 9
    {EqualHouses, true, false},   // 10
    {ZeroAries, false, false},    // 11
    {WholeSign, false, false},    // 12
    {SolarSign, false, false},    // 13
    {UserDefined, false, false},  // 14
};

bool Known(int system) { return system >= 0 && system < kHouseSystems; }

}  // namespace

double Mod(double x, double m) {
  double r = x - std::floor(x / m) * m;
  if (m > 0 && r >= m) r -= m;  // a tiny negative x rounds up to m
  return r;
}

double SinD(double degrees) { return std::sin(Radians(degrees)); }
double CosD(double degrees) { return std::cos(Radians(degrees)); }
double TanD(double degrees) { return std::tan(Radians(degrees)); }

double ArcTan2(double y, double x) {
  if (x == 0.0) {
    if (y == 0.0) return 0.0;
    return y > 0.0 ? kPi / 2.0 : -kPi / 2.0;
  }
  if (y == 0.0) return x > 0.0 ? 0.0 : kPi;  // no signed zeros
  return std::atan2(y, x);
}

double ArcSin(double x) { return ArcTan2(x, std::sqrt(std::fmax(0.0, 1.0 - x * x))); }

double Degrees(double radians) { return radians * 180.0 / kPi; }

double MeanObliquity(double T) {
  const double t = T - 1.0;
  return 23.4392911 - 0.0130042 * t - 1.64e-7 * t * t + 5.04e-7 * t * t * t;
}

int32_t PrecessionArcsec(double T) {
  const double omega = Mod((933060.0 - 6962911.0 * T + 7.5 * T * T) / 3600.0, 360.0);
  const double l = (259205536.0 * T + 2013816.0) / 3600.0;
  const double arcsec = 17.23 * SinD(omega) + 1.27 * SinD(l) - (1.11 * T + 5025.64) * T;
  return RoundToInt32(arcsec / 3600.0 * 3600.0);
}

double SiderealOffset(int zodiac, double userAyanamsa, int32_t arcsec) {
  // Sidereal vernal points of 1900 January 0 for zodiacs 2 to 8.
  static constexpr double kSvp[] = {0, 0, 336.6560694, 337.53953, 333.58695, 338.98556, 341.33904, 337.636111, 333.0369024};
  double svp;
  if (zodiac >= 2 && zodiac <= 8)
    svp = kSvp[zodiac];
  else if (zodiac == 9)
    svp = static_cast<float>(userAyanamsa);
  else
    return 0.0;
  return (svp - 360.0) + arcsec / 3600.0;
}

double SiderealAtZero(double jd0) {
  const double t = (jd0 - 2415020.0) / 36525.0;
  const double x = (2.581e-5 * t + 2400.051262) * t + 6.6460656;
  return x - 24.0 * std::floor(x / 24.0);
}

double LocalSidereal(double st0, double ut) { return Mod(ut * 1.00273790935 + st0, 24.0); }

double Ramc(double lst, double longitude) {
  const double x = lst * 15.0 - longitude;
  return x - 360.0 * std::floor(x / 360.0);
}

Angles ComputeAngleSet(double ramc, double obliquity, double latitude, double offset) {
  const double r = Mod(ramc, 360.0);
  const double eps = obliquity;
  Angles a;
  a.Ascendant = Mod(AscendantAt(r, eps, latitude) + offset, 360.0);
  a.Midheaven = Mod(RamcToMidheaven(r, eps) + offset, 360.0);
  double vertex = 90.0;
  if (latitude != 0.0) {
    // The Ascendant's construction for the co-latitude, half a turn on.
    const double v = r + 180.0;
    vertex = CorrectedAngle(CosD(v), -SinD(v) * CosD(eps) - SinD(eps) / TanD(latitude));
  }
  a.Vertex = Mod(vertex + offset, 360.0);
  a.EastPoint = Mod(CorrectedAngle(CosD(r), -SinD(r) * CosD(eps)) + offset, 360.0);
  return a;
}

double MidheavenToRamc(double mc, double obliquity) {
  const double m = Mod(mc, 360.0);
  double ra = Degrees(ArcTan2(TanD(m) * CosD(obliquity), 1.0));
  if (ra < 0) ra += 180.0;
  if (m > 180.0) ra += 180.0;
  return Mod(ra, 360.0);
}

double RamcToMidheaven(double ramc, double obliquity) { return EclipticFromRa(ramc, obliquity); }

int CalcHouseCusps(int system, const HouseInput& in, std::array<double, 13>& cusps) {
  if (!Known(system)) return -1;
  HouseInput reduced = in;
  reduced.Ramc = Mod(in.Ramc, 360.0);
  return kSystems[system].cusps(reduced, cusps);
}

bool FirstCuspIsAsc(int system) { return Known(system) && kSystems[system].firstCuspIsAsc; }
bool TenthCuspIsMC(int system) { return Known(system) && kSystems[system].tenthCuspIsMC; }

}  // namespace vintar
