#include "calc/dynamic.h"

#include <algorithm>
#include <cmath>

#include "calc/astro.h"
#include "calc/chart.h"

namespace vintar {
namespace {

constexpr double kTropicalYear = 365.24219907;
constexpr double kSiderealMonth = 27.32158648;
constexpr double kShortYearFactor = 0.997269566;
constexpr double kNaibodPerYear = 0.985417;     // degrees of right ascension per year of life
constexpr double kDaysPerYearOfLife = 365.25;   // the age of a chart, in Julian years
constexpr double kSiderealRatio = 1.00273790935;

bool ValidSlot(int slot) { return slot >= 1 && slot <= kSlots; }

// Marks a row of the tables as not computed.
void MarkMissing(ChartTables& c, int coordinate, int slot, int point) {
  c.Longitude[coordinate][slot][point] = -1.0;
  c.Latitude[coordinate][slot][point] = 0.0;
  c.LongSpeed[coordinate][slot][point] = 0.0;
  c.LatSpeed[coordinate][slot][point] = 0.0;
}

bool AnyComputed(const ChartTables& c, int slot, int firstPoint, int lastPoint) {
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate)
    for (int point = firstPoint; point <= lastPoint; ++point)
      if (c.Longitude[coordinate][slot][point] >= 0.0) return true;
  return false;
}

// Points 1 to 20 of one moment. With the asteroids off, Chiron and the
// asteroids are not asked for at all: the planets and the nodes go in two
// runs, the second skipped when the first computed nothing (so that a date
// beyond the ephemeris raises one message, not two).
void ComputeMoment(Session& session, int slot, double T, double offset, bool asteroids) {
  ChartTables& c = session.charts;
  // The ephemeris has no geocentric Earth and no heliocentric Moon or Sun;
  // marked before anything looks at the rows, so that what a row held
  // before never counts as computed.
  auto noSuchBodies = [&] {
    MarkMissing(c, kHeliocentric, slot, kMoon);
    MarkMissing(c, kGeocentric, slot, kEarth);
    MarkMissing(c, kHeliocentric, slot, kSun);
  };
  if (asteroids) {
    ComputePositions(session, slot, 0, 0, T, offset);
  } else {
    ComputePositions(session, slot, kMoon, kPluto, T, offset);
    noSuchBodies();
    if (AnyComputed(c, slot, kMoon, kPluto)) {
      ComputePositions(session, slot, kTrueNode, kMeanNode, T, offset);
    } else {
      for (int point = kTrueNode; point <= kMeanNode; ++point) {
        MarkMissing(c, kGeocentric, slot, point);
        MarkMissing(c, kHeliocentric, slot, point);
        c.Retrograde[slot][point] = kFalse;
      }
    }
    for (int point = kChiron; point < kTrueNode; ++point) {
      MarkMissing(c, kGeocentric, slot, point);
      MarkMissing(c, kHeliocentric, slot, point);
      c.Retrograde[slot][point] = kFalse;
    }
  }
  noSuchBodies();
}

// The tropical longitude of a radix point, or -1.0.
double RadixTropical(const Session& session, int radixSlot, int point) {
  double lon = session.charts.Longitude[kGeocentric][radixSlot][point];
  if (lon < 0.0) return -1.0;
  return Mod(lon - session.charts.Slots[radixSlot].SiderealOffset, 360.0);
}

}  // namespace

double ProgressionRate(int dynamicType, int yearKind) {
  const double f = yearKind == 1 ? kShortYearFactor : 1.0;
  switch (dynamicType) {
    case kSecondary:
    case kSolarArc:
      return f / kTropicalYear;
    case kTertiary:
      return f / kSiderealMonth;
    default:
      return 1.0;
  }
}

double ProgressedJD(int dynamicType, double jd, double radixJD) {
  switch (dynamicType) {
    case kSecondary:
    case kTertiary:
      return radixJD + (jd - radixJD) * ProgressionRate(dynamicType, 0);
    case kSolarArc:
      return radixJD + (jd - radixJD) * ProgressionRate(kSolarArc, 1);
    default:
      return jd;
  }
}

SlotPositions CopySlotPositions(const Session& session, int slot) {
  SlotPositions p;
  if (!ValidSlot(slot)) return p;
  const ChartTables& c = session.charts;
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate) {
    p.Longitude[coordinate] = c.Longitude[coordinate][slot];
    p.Latitude[coordinate] = c.Latitude[coordinate][slot];
    p.LongSpeed[coordinate] = c.LongSpeed[coordinate][slot];
    p.LatSpeed[coordinate] = c.LatSpeed[coordinate][slot];
  }
  p.Retrograde = c.Retrograde[slot];
  return p;
}

void StoreSlotPositions(Session& session, int slot, const SlotPositions& p) {
  if (!ValidSlot(slot)) return;
  ChartTables& c = session.charts;
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate) {
    c.Longitude[coordinate][slot] = p.Longitude[coordinate];
    c.Latitude[coordinate][slot] = p.Latitude[coordinate];
    c.LongSpeed[coordinate][slot] = p.LongSpeed[coordinate];
    c.LatSpeed[coordinate][slot] = p.LatSpeed[coordinate];
  }
  c.Retrograde[slot] = p.Retrograde;
}

int32_t DynamicPositions(Session& session, int slot, double jd, double radixJD, int dynamicType,
                         double siderealOffset, const DynamicOptions& options) {
  if (!ValidSlot(slot)) return 0;
  const double progressed = ProgressedJD(dynamicType, jd, radixJD);
  const double T = CenturiesFrom1900(progressed);
  if (dynamicType != kSolarArc) {
    ComputeMoment(session, slot, T, siderealOffset, options.Asteroids);
    return PrecessionArcsec(T);
  }

  // Solar arc: the radix moved by the Sun's progress. The progressed Sun
  // first, then the radix chart over it in the same slot.
  ComputePositions(session, slot, kSun, kSun, T, siderealOffset);
  const double progressedSun = session.charts.Longitude[kGeocentric][slot][kSun];
  SlotPositions radix;
  if (options.Radix) {
    radix = *options.Radix;
  } else {
    ComputeMoment(session, slot, CenturiesFrom1900(radixJD), siderealOffset, options.Asteroids);
    radix = CopySlotPositions(session, slot);
    for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate)
      for (int point = kAscendant; point <= kEastPoint; ++point) radix.Longitude[coordinate][point] = -1.0;
  }
  const double radixSun = radix.Longitude[kGeocentric][kSun];
  const bool haveArc = progressedSun >= 0.0 && radixSun >= 0.0;
  const double arc = haveArc ? Mod(progressedSun - radixSun, 360.0) : 0.0;
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate) {
    for (int point = 1; point <= kPoints; ++point) {
      double lon = radix.Longitude[coordinate][point];
      radix.Longitude[coordinate][point] = haveArc && lon >= 0.0 ? Mod(lon + arc, 360.0) : -1.0;
    }
  }
  StoreSlotPositions(session, slot, radix);
  return PrecessionArcsec(T);
}

double ProgressedAngles(Session& session, double elapsedYears, double progressedJD, int slot, int radixSlot,
                        int method, double siderealOffset) {
  if (!ValidSlot(slot) || !ValidSlot(radixSlot)) return 0.0;
  const ChartSlot& radix = session.charts.Slots[radixSlot];
  const double radixEps = MeanObliquity(CenturiesFrom1900(radix.ChartJD));
  const double eps = MeanObliquity(CenturiesFrom1900(progressedJD));
  double ramc = 0.0;
  switch (method) {
    case kSolarArcLongitude: {
      const double radixSun = RadixTropical(session, radixSlot, kSun);
      const double sun = session.charts.Longitude[kGeocentric][slot][kSun];
      const double arc = radixSun >= 0.0 && sun >= 0.0 ? Mod(sun - siderealOffset - radixSun, 360.0) : 0.0;
      const double mc = Mod(RadixTropical(session, radixSlot, kMidheaven) + arc, 360.0);
      ramc = Mod(MidheavenToRamc(mc, eps), 360.0);
      break;
    }
    case kMeanQuotidian: {
      // Mean sidereal time at 0h of the progressed day (Meeus 12.3), then
      // the hours of the progressed moment at the sidereal rate.
      const double jd0 = std::floor(progressedJD - 0.5) + 0.5;
      const double hours = (progressedJD - jd0) * 24.0;
      const double t = (jd0 - 2451545.0) / 36525.0;
      const double theta = 100.46061837 + 36000.770053608 * t + 0.000387933 * t * t + t * t * t / -3.871e7;
      const double st0 = Mod(theta, 360.0) / 15.0;
      ramc = Ramc(LocalSidereal(st0, hours), radix.Longitude);
      break;
    }
    default: {  // Naibod in right ascension
      const double ra = Mod(MidheavenToRamc(RadixTropical(session, radixSlot, kMidheaven), radixEps), 360.0);
      ramc = Mod(ra + elapsedYears * kNaibodPerYear, 360.0);
      break;
    }
  }
  ComputeAngles(session, slot, ramc, eps, radix.Latitude, siderealOffset);
  ChartSlot& s = session.charts.Slots[slot];
  s.Ramc = ramc;
  s.Obliquity = eps;
  return ramc;
}

void DynamicChart(Session& session, int slot, int radixSlot, double jd, int dynamicType, int method) {
  if (!ValidSlot(slot) || !ValidSlot(radixSlot)) return;
  const ChartSlot radix = session.charts.Slots[radixSlot];
  const double progressed = ProgressedJD(dynamicType, jd, radix.ChartJD);
  const double T = CenturiesFrom1900(progressed);
  double offset = SessionSiderealOffset(session, T);
  double ramc = 0.0;
  double eps = MeanObliquity(T);

  if (dynamicType == kSolarArc) {
    // The radix positions as they stand, moved by the arc: they keep the
    // radix chart's offset.
    SlotPositions positions = CopySlotPositions(session, radixSlot);
    offset = radix.SiderealOffset;
    DynamicOptions options;
    options.Radix = &positions;
    DynamicPositions(session, slot, jd, radix.ChartJD, dynamicType, offset, options);
  } else {
    DynamicPositions(session, slot, jd, radix.ChartJD, dynamicType, offset);
  }

  if (dynamicType == kTransits) {
    const double jd0 = std::floor(jd - 0.5) + 0.5;
    const double lst = LocalSidereal(SiderealAtZero(jd0), (jd - jd0) * 24.0);
    ramc = Ramc(lst, radix.Longitude);
    ComputeAngles(session, slot, ramc, eps, radix.Latitude, offset);
  } else {
    const double elapsedYears = (jd - radix.ChartJD) / kDaysPerYearOfLife;
    ramc = ProgressedAngles(session, elapsedYears, progressed, slot, radixSlot, method, offset);
  }
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate)
    for (int point = kAscendant; point <= kEastPoint; ++point) {
      session.charts.Latitude[coordinate][slot][point] = 0.0;
      session.charts.LongSpeed[coordinate][slot][point] = 0.0;
      session.charts.LatSpeed[coordinate][slot][point] = 0.0;
    }

  ChartSlot& s = session.charts.Slots[slot];
  s.ChartJD = jd;
  s.ChartZone = radix.ChartZone;
  s.ChartZodiac = session.prefs.Zodiac;
  s.T = T;
  s.Ramc = ramc;
  s.Obliquity = eps;
  s.SiderealOffset = offset;
  s.Latitude = radix.Latitude;
  s.Longitude = radix.Longitude;
  CalcHouses(session, slot, ramc, eps, radix.Latitude, session.prefs.Houses, offset);
}

// ---------------------------------------------------------------------------
// The pass search.

namespace {

constexpr double kHitTolerance = 1e-6;  // degrees
constexpr int kNewtonRounds = 60;       // then the scan takes over
constexpr int kSolveRounds = 100;       // bisection steps within one bracket
constexpr double kLoopArc = 30.0;       // a retrograde loop stays within this arc of a pass
constexpr double kLoopWindow = 400.0;   // days either side of a pass that a loop can span
constexpr double kLoopStep = 7.0;       // days, the scan step for slow points
constexpr double kMinStep = 0.1;        // days, the smallest scan step of a solar-system body
constexpr double kSamePass = 1e-4;      // days: passes closer than this are one
constexpr double kSameTouch = 1e-4;     // degrees: passes with the point this close between them are one
constexpr int kMaxScanSteps = 60000;

// Mean periods of the transiting points, days.
double TransitPeriod(int point) {
  switch (point) {
    case kMoon: return 27.32;
    case kEarth:
    case kSun: return 365.25;
    case kMercury: return 87.97;
    case kVenus: return 224.7;
    case 6: return 686.979;
    case 7: return 4332.55;
    case 8: return 10759.22;
    case 9: return 30686.821;
    case 10: return 60126.722;
    case kPluto: return 248.0 * 365.25;
    case kChiron: return 49.0 * 365.25;
    case kMeanNode: return 18.6 * 365.25;
    default: return 0.0;
  }
}

double Separation(double position, double target) { return Mod(position - target + 180.0, 360.0) - 180.0; }

struct Sample {
  double t = 0, d = 0, speed = 0;
  bool ok = false;
};

// The moving point of one query: its position and speed at any date of
// the search's scale.
class Mover {
 public:
  Mover(Session& session, const HitQuery& q) : s_(session), q_(q) {}

  // False when the point cannot be searched.
  bool Prepare() {
    const int p = q_.Point;
    if (p < 1 || p > kPoints || !ValidSlot(q_.Slot) || !ValidSlot(q_.RadixSlot)) return false;
    if (q_.Slot == q_.RadixSlot) return false;  // the search would overwrite the radix it measures from
    if (q_.Coordinate != kGeocentric && q_.Coordinate != kHeliocentric) return false;
    if (p < kAscendant) {
      if (q_.Coordinate == kHeliocentric && (p == kMoon || p == kSun)) return false;
      if (q_.Coordinate == kGeocentric && p == kEarth) return false;
    }
    const bool angle = p >= kAscendant;
    direction_ = 1;
    switch (q_.DynamicType) {
      case kTransits:
        period_ = angle ? 0.0 : TransitPeriod(p);
        if (p == kMeanNode) direction_ = -1;
        break;
      case kSecondary:
      case kTertiary:
        period_ = p == kMoon ? 27.32 : 365.25;
        if (p == kTrueNode || p == kMeanNode) direction_ = -1;
        break;
      case kSolarArc:
        period_ = 365.25;
        break;
      default:
        return false;
    }
    // Mean quotidian angles turn once a progressed day. Directed angles move
    // with the rest of the radix.
    if (angle && (q_.DynamicType == kSecondary || q_.DynamicType == kTertiary) && q_.Method == kMeanQuotidian)
      period_ = 1.0 / kSiderealRatio;
    if (period_ <= 0.0) return false;

    const ChartSlot& radix = s_.charts.Slots[q_.RadixSlot];
    radixJD_ = radix.ChartJD;
    if (q_.DynamicType == kSolarArc) {
      radixLon_ = RadixTropical(s_, q_.RadixSlot, kSun);
      if (radixLon_ < 0.0) return false;
      const double lon = q_.Coordinate == kGeocentric
                             ? s_.charts.Longitude[kGeocentric][q_.RadixSlot][p]
                             : s_.charts.Longitude[kHeliocentric][q_.RadixSlot][p];
      if (lon < 0.0) return false;
      pointLon_ = Mod(lon - radix.SiderealOffset, 360.0);
    }
    // Points that can turn retrograde: the geocentric planets, Chiron, the
    // asteroids and the true node, moving on the ephemeris itself.
    canStation_ = !angle && q_.DynamicType != kSolarArc && q_.Coordinate == kGeocentric && p >= kMercury &&
                  p <= kTrueNode;
    return true;
  }

  double Period() const { return period_; }
  int Direction() const { return direction_; }
  bool CanStation() const { return canStation_; }
  int Rounds() const { return rounds_; }

  // The zodiac offset carried by the moving positions at `t`.
  double OffsetAt(double t) const {
    return q_.OffsetOfMoment ? SessionSiderealOffset(s_, CenturiesFrom1900(t)) : q_.SiderealOffset;
  }

  Sample At(double t) {
    Sample s;
    s.t = t;
    double position = 0.0;
    if (!Position(t, position, s.speed)) return s;
    s.d = Separation(position, q_.Target);
    s.ok = true;
    return s;
  }

 private:
  bool Position(double t, double& position, double& speed) {
    ++rounds_;
    const int p = q_.Point;
    ChartTables& c = s_.charts;
    const int slot = q_.Slot;
    if (q_.DynamicType == kSolarArc) {
      // Every point, the angles included, is its radix place moved by the arc.
      ComputePositions(s_, slot, kSun, kSun, CenturiesFrom1900(t), 0.0);
      const double sun = c.Longitude[kGeocentric][slot][kSun];
      if (sun < 0.0) return false;
      position = Mod(pointLon_ + Mod(sun - radixLon_, 360.0) + q_.SiderealOffset, 360.0);
      speed = c.LongSpeed[kGeocentric][slot][kSun];
      return true;
    }
    if (p >= kAscendant) {
      double first = 0.0;
      if (!AngleAt(t, first)) return false;
      // The angles' speed from a step of a thousandth of a day.
      const double h = 1e-3;
      double second = 0.0;
      if (!AngleAt(t + h, second)) return false;
      position = first;
      speed = Separation(second, first) / h;
      return true;
    }
    ComputePositions(s_, slot, p, p, CenturiesFrom1900(t), OffsetAt(t));
    position = c.Longitude[q_.Coordinate][slot][p];
    speed = c.LongSpeed[q_.Coordinate][slot][p];
    return position >= 0.0;
  }

  bool AngleAt(double t, double& position) {
    const int slot = q_.Slot;
    const double lifeJD = radixJD_ + (t - radixJD_) / ProgressionRate(q_.DynamicType, 0);
    const double offset = OffsetAt(t);
    if (q_.Method == kSolarArcLongitude) {
      ComputePositions(s_, slot, kSun, kSun, CenturiesFrom1900(t), offset);
      if (s_.charts.Longitude[kGeocentric][slot][kSun] < 0.0) return false;
    }
    ProgressedAngles(s_, (lifeJD - radixJD_) / kDaysPerYearOfLife, t, slot, q_.RadixSlot, q_.Method, offset);
    position = s_.charts.Longitude[kGeocentric][slot][q_.Point];
    return position >= 0.0;
  }

  Session& s_;
  const HitQuery& q_;
  double period_ = 0.0;
  int direction_ = 1;
  bool canStation_ = false;
  double radixJD_ = 0.0;
  double radixLon_ = 0.0;  // solar arc: the radix Sun, tropical
  double pointLon_ = 0.0;  // solar arc: the radix point, tropical
  int rounds_ = 0;
};

int Sign(double x) { return x > 0.0 ? 1 : (x < 0.0 ? -1 : 0); }

// A true pass between two samples: the separation changes sign without
// jumping across the opposite point.
bool Crosses(const Sample& a, const Sample& b) {
  return Sign(a.d) != Sign(b.d) && Sign(a.d) != 0 && Sign(b.d) != 0 && std::fabs(a.d) < 90.0 &&
         std::fabs(b.d) < 90.0;
}

class PassSearch {
 public:
  explicit PassSearch(Mover& mover) : m_(mover) {}

  bool failed = false;  // a position could not be computed
  std::vector<Sample> passes;

  Sample At(double t) {
    Sample s = m_.At(t);
    if (!s.ok) failed = true;
    return s;
  }

  void Add(const Sample& s) {
    for (const Sample& p : passes)
      if (std::fabs(p.t - s.t) < kSamePass) return;
    passes.push_back(s);
  }

  // The pass between two samples that bracket it: Newton's method from the
  // better end while it stays inside the bracket, halving it otherwise.
  void Solve(Sample a, Sample b) {
    if (a.t > b.t) std::swap(a, b);
    Sample best = std::fabs(a.d) < std::fabs(b.d) ? a : b;
    for (int round = 0; round < kSolveRounds; ++round) {
      if (std::fabs(best.d) < kHitTolerance || b.t - a.t < 1e-9) break;
      double t = best.speed != 0.0 ? best.t - best.d / best.speed : a.t;
      if (!(t > a.t && t < b.t)) t = (a.t + b.t) / 2.0;
      Sample m = At(t);
      if (!m.ok) return;
      (Sign(m.d) == Sign(a.d) ? a : b) = m;
      best = m;
    }
    Add(best);
  }

  // Dates in order, passes that are one touch of the target merged: the
  // point never leaves the target between them.
  std::vector<double> Dates() {
    std::sort(passes.begin(), passes.end(), [](const Sample& x, const Sample& y) { return x.t < y.t; });
    std::vector<Sample> kept;
    for (const Sample& p : passes) {
      if (!kept.empty()) {
        Sample mid = m_.At((kept.back().t + p.t) / 2.0);
        if (mid.ok && std::fabs(mid.d) < kSameTouch) {
          if (std::fabs(p.d) < std::fabs(kept.back().d)) kept.back() = p;
          continue;
        }
      }
      kept.push_back(p);
    }
    std::vector<double> dates;
    for (const Sample& p : kept) dates.push_back(p.t);
    return dates;
  }

  // The station between two samples whose speeds differ in sign (bisection).
  Sample Station(Sample a, Sample b) {
    for (int round = 0; round < kSolveRounds && std::fabs(b.t - a.t) > 1e-7; ++round) {
      Sample m = At((a.t + b.t) / 2.0);
      if (!m.ok) return m;
      if (Sign(m.speed) == Sign(a.speed))
        a = m;
      else
        b = m;
    }
    return std::fabs(a.speed) < std::fabs(b.speed) ? a : b;
  }

  // The passes between two neighbouring samples of a scan, a station
  // between them included (two passes, or one touching pass at it).
  void Examine(const Sample& a, const Sample& b) {
    // The point moves no further within the step than its larger end speed
    // allows: when that keeps it off the target, a station inside needs no
    // closer look.
    const double reach = (std::fabs(a.speed) + std::fabs(b.speed)) * (b.t - a.t);
    const bool nearTarget = std::min(std::fabs(a.d), std::fabs(b.d)) <= reach;
    if (m_.CanStation() && Sign(a.speed) != Sign(b.speed) && nearTarget) {
      Sample s = Station(a, b);
      if (!s.ok) return;
      if (std::fabs(s.d) < kHitTolerance) Add(s);
      if (Crosses(a, s)) Solve(a, s);
      if (Crosses(s, b)) Solve(s, b);
      return;
    }
    if (std::fabs(b.d) < kHitTolerance) return Add(b);
    if (Crosses(a, b)) Solve(a, b);
  }

  // Walks from `from` to `to` (either way in time), collecting passes, and
  // stops as soon as the point is more than the loop arc from the target.
  void ScanLoop(double from, double to, double step) {
    if (from == to) return;
    const double h = to > from ? step : -step;
    Sample a = At(from);
    for (int n = 0; a.ok && n < kMaxScanSteps; ++n) {
      if (std::fabs(a.d) > kLoopArc) return;
      const double t = (h > 0 ? std::min(a.t + h, to) : std::max(a.t + h, to));
      Sample b = At(t);
      if (!b.ok) return;
      if (h > 0) Examine(a, b); else Examine(b, a);
      if (t == to) return;
      a = b;
    }
  }

  // From `from` onwards: the pass groups in date order, a group ending when
  // the point is more than the loop arc away. Keeps group `wanted` (from 0)
  // and stops when it is complete, or at `until`.
  void ScanGroups(double from, double until, double step, int wanted) {
    passes.clear();
    int groups = 0;
    bool open = false;
    Sample a = At(from);
    if (!a.ok) return;
    if (std::fabs(a.d) < kHitTolerance) {
      Add(a);
      open = true;
    }
    for (int n = 0; n < kMaxScanSteps && a.t < until; ++n) {
      Sample b = At(std::min(a.t + step, until));
      if (!b.ok) return;
      const size_t before = passes.size();
      Examine(a, b);
      if (passes.size() > before) open = true;
      if (open && std::fabs(b.d) > kLoopArc) {
        if (groups == wanted) return;
        ++groups;
        open = false;
        passes.clear();
      }
      a = b;
    }
    if (groups != wanted) passes.clear();
  }

 private:
  Mover& m_;
};

}  // namespace

HitResult NextHit(Session& session, const HitQuery& query) {
  HitResult result;
  try {
    Mover mover(session, query);
    if (!mover.Prepare()) {
      result.Unavailable = true;
      return result;
    }
    const double P = mover.Period();
    const int dir = mover.Direction();
    const double step = std::clamp(P / 16.0, 1e-3, kLoopStep);
    const double loopStep = mover.CanStation() ? std::clamp(P / 16.0, kMinStep, kLoopStep) : step;
    const int turns = std::max(0, query.Revolutions);
    PassSearch search(mover);

    auto finish = [&]() {
      if (!search.failed) result.Passes = search.Dates();
      result.Unavailable = search.failed;
      if (search.failed) result.Passes.clear();
      result.Rounds = mover.Rounds();
      return result;
    };

    Sample start = search.At(query.FromJD);
    if (!start.ok) return finish();

    // Close to the target at the start, a point that can turn back is
    // followed step by step: its next pass may be in either direction.
    if (turns == 0 && mover.CanStation() && std::fabs(start.d) <= kLoopArc) {
      search.ScanLoop(query.FromJD, query.FromJD + kLoopWindow, loopStep);
      if (search.failed || !search.passes.empty()) return finish();
    }

    // The first estimate from the arc ahead in the direction of motion.
    const double position = Mod(start.d + query.Target, 360.0);
    double arc;
    const bool innerPlanet = query.DynamicType == kTransits && query.Coordinate == kGeocentric &&
                             (query.Point == kMercury || query.Point == kVenus);
    if (innerPlanet)
      arc = Mod(query.Target - position + 10.0, 360.0) + turns * 360.0 - 10.0;
    else if (dir > 0)
      arc = Mod(query.Target - position, 360.0) + turns * 360.0;
    else
      arc = Mod(position - query.Target, 360.0) + turns * 360.0;
    double t = query.FromJD + P * arc / 360.0;

    // Newton's method on the separation, damped when the point turns.
    bool found = false;
    Sample root;
    Sample previous;
    for (int n = 1; n <= kNewtonRounds; ++n) {
      Sample s = search.At(t);
      if (!s.ok) return finish();
      if (std::fabs(s.d) < kHitTolerance) {
        found = true;
        root = s;
        break;
      }
      if (previous.ok && Crosses(previous, s) && std::fabs(previous.d) < 45.0 && std::fabs(s.d) < 45.0) {
        // Bracketed: finish inside the bracket.
        search.Solve(previous, s);
        if (!search.passes.empty()) {
          found = true;
          root = search.passes.back();
          search.passes.pop_back();
        }
        break;
      }
      double change;
      if (n == 1 || std::fabs(s.d) > 45.0 || s.speed == 0.0)
        change = dir * P * s.d / 360.0;
      else
        change = s.d / s.speed;
      if (previous.ok && Sign(previous.speed) != Sign(s.speed)) change *= (0.75 + n) / (n + 1.0);
      change = std::clamp(change, -P / 4.0, P / 4.0);
      previous = s;
      t -= change;
    }
    if (search.failed) return finish();

    if (found && root.t >= query.FromJD - 1e-9) {
      search.Add(root);
      if (mover.CanStation()) {
        // The other passes of a retrograde loop around this one.
        search.ScanLoop(root.t, std::max(query.FromJD, root.t - kLoopWindow), loopStep);
        search.ScanLoop(root.t, root.t + kLoopWindow, loopStep);
      }
      return finish();
    }

    // Newton found nothing usable: walk forward from the start and count
    // the groups of passes.
    search.passes.clear();
    const double horizon = query.FromJD + (turns + 2) * std::max(P, kLoopWindow) * 1.5;
    search.ScanGroups(query.FromJD, horizon, mover.CanStation() ? loopStep : step, turns);
    return finish();
  } catch (...) {
    result.Passes.clear();
    result.Unavailable = true;
    return result;
  }
}

}  // namespace vintar
