#include "rectify/search.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <sstream>

#include "calc/astro.h"
#include "calc/cache.h"
#include "core/calendar.h"
#include "calc/chart.h"
#include "calc/dynamic.h"
#include "core/file_io.h"
#include "core/parse.h"
#include "core/progress.h"
#include "core/text.h"
#include "rectify/peaks.h"
#include "research/dignity.h"

namespace vintar {
namespace {

constexpr int kRadixSlot = 1;
constexpr int kWorkSlot = 2;

// Byte offsets inside one options record.
constexpr size_t kOffRadixPoints = 0, kOffDynamicPoints = 48, kOffAspects = 96, kOffOrb = 110;
static_assert(kOffOrb + 4 == kDynOptionRecordBytes);

constexpr double kDaysPerYearOfLife = 365.25;  // the age of a chart, in Julian years
constexpr double kHundredYears = 100.0 * 365.25;
constexpr size_t kMaxKeptPositions = 200000;  // positions kept from one search to the next

// ---------------------------------------------------------------------------
// Little-endian fields.

void PutI16(std::string& out, size_t at, int16_t v) {
  const auto u = static_cast<uint16_t>(v);
  out[at] = static_cast<char>(u & 0xFF);
  out[at + 1] = static_cast<char>(u >> 8);
}

int16_t GetI16(const std::string& in, size_t at) {
  const auto lo = static_cast<unsigned char>(in[at]), hi = static_cast<unsigned char>(in[at + 1]);
  return static_cast<int16_t>(static_cast<uint16_t>(lo | hi << 8));
}

void PutF32(std::string& out, size_t at, float f) {
  uint32_t u;
  std::memcpy(&u, &f, 4);
  for (int i = 0; i < 4; ++i) out[at + i] = static_cast<char>((u >> (8 * i)) & 0xFF);
}

float GetF32(const std::string& in, size_t at) {
  uint32_t u = 0;
  for (int i = 0; i < 4; ++i) u |= static_cast<uint32_t>(static_cast<unsigned char>(in[at + i])) << (8 * i);
  float f;
  std::memcpy(&f, &u, 4);
  return f;
}

// ---------------------------------------------------------------------------
// How the points move, on the ephemeris scale, geocentric. The mean motion
// tells how many turns a point makes in a window; the bound on the speed
// (the largest seen between 1800 and 2200, plus a quarter) tells how far it
// can stray between two samples of its path.

struct PointMotion {
  double Mean = 0.0;  // degrees per day
  double Max = 0.0;   // degrees per day, an upper bound of |speed|
};

PointMotion MotionOf(int point) {
  switch (point) {
    case 1: return {13.176, 16.5};   // Moon
    case 3: return {0.9856, 1.1};    // Sun
    case 4: return {0.9856, 2.5};    // Mercury keeps to the Sun
    case 5: return {0.9856, 1.4};    // Venus likewise
    case 6: return {0.524, 1.0};     // Mars
    case 7: return {0.0831, 0.3};    // Jupiter
    case 8: return {0.0335, 0.17};   // Saturn
    case 9: return {0.0117, 0.08};   // Uranus
    case 10: return {0.0060, 0.055}; // Neptune
    case 11: return {0.0040, 0.055}; // Pluto
    case 12: return {0.0201, 0.2};   // Chiron
    case 13: return {0.2716, 0.7};   // Vesta
    case 14: return {0.2135, 0.8};   // Pallas
    case 15: return {0.2258, 0.8};   // Juno
    case 16: return {0.2141, 0.6};   // Ceres
    case 17: return {0.1777, 0.6};   // Hygeia
    case 18: return {0.2381, 0.8};   // Astraea
    case 19: return {0.0530, 0.35};  // true node
    case 20: return {0.0530, 0.06};  // mean node
    default: return {};
  }
}

double Separation(double position, double target) { return Mod(position - target + 180.0, 360.0) - 180.0; }

// Days of ephemeris per day of life, as ProgressedJD uses them.
double EphemerisRate(int type) {
  switch (type) {
    case kSecondary:
    case kTertiary:
      return ProgressionRate(type, 0);
    case kSolarArc:
      return ProgressionRate(kSolarArc, 1);
    default:
      return 1.0;
  }
}

// ---------------------------------------------------------------------------
// The moving points of one search, computed one point at a time in the work
// slot, each moment once (the state keeps them for the scoring).

class MovingPoints {
 public:
  MovingPoints(Session& session, SearchState& state) : s_(session), st_(state) {}

  double Ephemeris(double lifeJD) const {
    const auto& f = st_.Moments;
    return f.RadixJD + (lifeJD - f.RadixJD) * EphemerisRate(f.Type);
  }
  double Life(double ephJD) const {
    const auto& f = st_.Moments;
    return f.RadixJD + (ephJD - f.RadixJD) / EphemerisRate(f.Type);
  }

  // Longitude and speed (degrees per ephemeris day) at an ephemeris moment.
  bool At(int point, double eph, double& lon, double& speed) {
    const auto key = std::make_pair(point, eph);
    auto found = st_.Positions.find(key);
    if (found == st_.Positions.end()) {
      double l = -1.0, v = 0.0;
      if (!Compute(point, eph, l, v)) l = -1.0;
      found = st_.Positions.emplace(key, std::make_pair(l, v)).first;
    }
    lon = found->second.first;
    speed = found->second.second;
    return lon >= 0.0;
  }
  bool At(int point, double eph, double& lon) {
    double speed = 0.0;
    return At(point, eph, lon, speed);
  }

  // The zodiac offset of the moving positions at an ephemeris moment: each
  // moment's own in a sidereal zodiac; for directions the radix chart's,
  // since the whole radix moves by one arc.
  double OffsetAt(double eph) const {
    const auto& f = st_.Moments;
    return f.Type == kSolarArc ? f.Offset : SessionSiderealOffset(s_, CenturiesFrom1900(eph));
  }

 private:
  static constexpr double kSpeedStep = 1e-3;  // days, for the angles' speed

  bool Compute(int point, double eph, double& lon, double& speed) {
    const auto& f = st_.Moments;
    ChartTables& c = s_.charts;
    if (point < 1 || point > kPoints) return false;
    if (point >= kAscendant && f.Type != kSolarArc) {
      // Transiting angles belong to a place and moment, not to the chart.
      if (f.Type == kTransits) return false;
      double later = 0.0;
      if (!AngleAt(point, eph, lon) || !AngleAt(point, eph + kSpeedStep, later)) return false;
      speed = Separation(later, lon) / kSpeedStep;
      return true;
    }
    const double T = CenturiesFrom1900(eph);
    if (f.Type == kSolarArc) {
      const ChartSlot& radix = c.Slots[kRadixSlot];
      const double radixSun = c.Longitude[kGeocentric][kRadixSlot][kSun];
      const double radixPoint = c.Longitude[kGeocentric][kRadixSlot][point];
      if (radixSun < 0.0 || radixPoint < 0.0) return false;
      ComputePositions(s_, kWorkSlot, kSun, kSun, T, 0.0);
      const double sun = c.Longitude[kGeocentric][kWorkSlot][kSun];
      if (sun < 0.0) return false;
      const double arc = Mod(sun - Mod(radixSun - radix.SiderealOffset, 360.0), 360.0);
      lon = Mod(Mod(radixPoint - radix.SiderealOffset, 360.0) + arc + f.Offset, 360.0);
      speed = c.LongSpeed[kGeocentric][kWorkSlot][kSun];
      return true;
    }
    if (point == kEarth) return false;  // no geocentric Earth
    ComputePositions(s_, kWorkSlot, point, point, T, OffsetAt(eph));
    lon = c.Longitude[kGeocentric][kWorkSlot][point];
    speed = c.LongSpeed[kGeocentric][kWorkSlot][point];
    return lon >= 0.0;
  }

  bool AngleAt(int point, double eph, double& lon) {
    const auto& f = st_.Moments;
    const double offset = OffsetAt(eph);
    if (f.Method == kSolarArcLongitude) {
      ComputePositions(s_, kWorkSlot, kSun, kSun, CenturiesFrom1900(eph), offset);
      if (s_.charts.Longitude[kGeocentric][kWorkSlot][kSun] < 0.0) return false;
    }
    const double elapsed = (Life(eph) - f.RadixJD) / kDaysPerYearOfLife;
    ProgressedAngles(s_, elapsed, eph, kWorkSlot, kRadixSlot, f.Method, offset);
    lon = s_.charts.Longitude[kGeocentric][kWorkSlot][point];
    return lon >= 0.0;
  }

  Session& s_;
  SearchState& st_;
};

// The moment frame of a search: radix moment, progression method and the
// zodiac (directions keep the radix chart's offset).
void SetFrame(Session& session, SearchState& state, int type) {
  const ChartSlot& radix = session.charts.Slots[kRadixSlot];
  SearchState::Frame f;
  f.RadixJD = radix.ChartJD;
  f.RadixLatitude = radix.Latitude;
  f.RadixLongitude = radix.Longitude;
  f.Type = type;
  f.Method = ClampInteger(session.prefs.Progressions, kNaibod, kMeanQuotidian);
  f.Offset = type == kSolarArc ? radix.SiderealOffset : 0.0;
  f.Zodiac = session.prefs.Zodiac;
  f.UserAyan = session.prefs.UserAyan;
  // Transits do not depend on the chart: the positions of one search serve
  // the next (Auto Rectify searches one window for many trial charts).
  const SearchState::Frame& old = state.Moments;
  const bool sameZodiac = old.Zodiac == f.Zodiac && old.UserAyan == f.UserAyan && old.Offset == f.Offset;
  const bool keep = type == kTransits && old.Type == kTransits && sameZodiac &&
                    state.Positions.size() < kMaxKeptPositions;
  const bool same = keep || (old.Type == f.Type && sameZodiac && old.Method == f.Method &&
                             old.RadixJD == f.RadixJD && old.RadixLatitude == f.RadixLatitude &&
                             old.RadixLongitude == f.RadixLongitude);
  if (!same) state.Positions.clear();
  state.Moments = f;
}

// ---------------------------------------------------------------------------
// Where a moving point goes during the window: samples of its path close
// enough that, with its bound of speed, the point cannot pass a target
// between two samples unnoticed. Brackets (two moments with the pass
// between them) come from the samples; only they are handed to NextHit, so
// that a target the point never reaches costs no search at all. A point
// that needs too many samples (the fast ones over long windows) reaches
// every target many times and is searched pass by pass instead.

struct PathSample {
  double T = 0, Lon = 0;
};

struct Sweep {
  bool Everywhere = false;
  bool Failed = false;     // the point has no position in the window
  bool Forward = false;    // directions and progressed angles never turn back
  double MaxSpeed = 0.0;   // degrees per day, for the others
  double Turns = 0.0;      // estimated turns in the window
  std::vector<PathSample> Samples;
};

struct Bracket {
  double T0 = 0, T1 = 0;
  bool Crossing = false;  // the separation changes sign; otherwise a possible touch
};

constexpr int kMaxSweepSamples = 2000;
constexpr int kMaxRefineDepth = 40;
constexpr double kTouchDays = 1e-3;  // a bracket this short that still may touch is searched

Sweep SweepPoint(MovingPoints& mover, int type, int method, int point, double ephFrom, double ephTo) {
  Sweep sweep;
  const double span = ephTo - ephFrom;
  PathSample first{ephFrom, 0.0};
  if (!mover.At(point, ephFrom, first.Lon)) {
    sweep.Failed = true;
    return sweep;
  }
  double step = 0.0;
  if (point >= kAscendant && type != kSolarArc) {
    if (method == kMeanQuotidian) {  // a turn of the zodiac each progressed day
      sweep.Everywhere = true;
      sweep.Turns = span;
      return sweep;
    }
    sweep.Forward = true;
    step = 2.0;
    sweep.Turns = span * 1.1 / 360.0;
  } else if (type == kSolarArc) {
    sweep.Forward = true;
    step = 30.0;
    sweep.Turns = span * 1.02 / 360.0;
  } else {
    const PointMotion m = MotionOf(point);
    if (m.Max <= 0.0) {
      sweep.Failed = true;
      return sweep;
    }
    sweep.MaxSpeed = m.Max;
    step = 6.0 / m.Max;  // six degrees at the most between samples
    sweep.Turns = span * m.Mean / 360.0;
  }
  const double wanted = span <= 0.0 ? 1.0 : std::ceil(span / step);
  if (!(wanted <= kMaxSweepSamples)) {
    sweep.Everywhere = true;
    return sweep;
  }
  const int samples = static_cast<int>(wanted);
  sweep.Samples.push_back(first);
  for (int k = 1; k <= samples; ++k) {
    PathSample s;
    s.T = k == samples ? ephTo : ephFrom + span * k / samples;
    if (!mover.At(point, s.T, s.Lon)) {
      sweep.Failed = true;
      return sweep;
    }
    sweep.Samples.push_back(s);
  }
  return sweep;
}

class BracketFinder {
 public:
  BracketFinder(MovingPoints& mover, const Sweep& sweep, int point) : mover_(mover), sweep_(sweep), point_(point) {}

  // The brackets of one target, in date order.
  std::vector<Bracket> Find(double target) {
    out_.clear();
    target_ = target;
    for (size_t k = 0; k + 1 < sweep_.Samples.size(); ++k) {
      const PathSample& a = sweep_.Samples[k];
      const PathSample& b = sweep_.Samples[k + 1];
      if (sweep_.Forward) {
        if (Mod(target - a.Lon, 360.0) <= Mod(b.Lon - a.Lon, 360.0)) out_.push_back({a.T, b.T, true});
      } else {
        Refine(a, b, 0);
      }
    }
    return out_;
  }

 private:
  // Between two samples the point moves no faster than its bound: when the
  // target is further from both than that allows, no pass lies between;
  // otherwise the interval is halved until the pass is bracketed or ruled out.
  void Refine(const PathSample& a, const PathSample& b, int depth) {
    const double d0 = Separation(a.Lon, target_), d1 = Separation(b.Lon, target_);
    if (d0 == 0.0 || d1 == 0.0 ||
        ((d0 < 0.0) != (d1 < 0.0) && std::fabs(d0) < 90.0 && std::fabs(d1) < 90.0)) {
      out_.push_back({a.T, b.T, true});
      return;
    }
    if (std::fabs(d0) + std::fabs(d1) > sweep_.MaxSpeed * (b.T - a.T)) return;
    if (b.T - a.T < kTouchDays || depth >= kMaxRefineDepth) {
      out_.push_back({a.T, b.T, false});
      return;
    }
    PathSample m;
    m.T = (a.T + b.T) / 2.0;
    if (!mover_.At(point_, m.T, m.Lon)) return;
    Refine(a, m, depth + 1);
    Refine(m, b, depth + 1);
  }

  MovingPoints& mover_;
  const Sweep& sweep_;
  int point_;
  double target_ = 0.0;
  std::vector<Bracket> out_;
};

// ---------------------------------------------------------------------------
// The search itself.

constexpr double kRestartStep = 1e-3;  // days past a pass before looking for the next
constexpr double kLoopArc = 30.0;      // passes with the point nearer than this between them are one loop

class HitSearch {
 public:
  HitSearch(Session& session, SearchState& state, MovingPoints& mover, double ephFrom, double ephTo)
      : s_(session), st_(state), mover_(mover), from_(ephFrom), to_(ephTo) {}

  bool Full() const { return st_.HitCount() >= kMaxHits; }

  // All passes of `point` over one target inside the window.
  void Target(int point, const TargetRec& target, const Sweep& sweep, BracketFinder& finder) {
    lastHit_ = 0;
    HitQuery q;
    q.Point = point;
    q.Target = target.Longitude;
    q.DynamicType = st_.Moments.Type;
    q.Coordinate = kGeocentric;
    q.Slot = kWorkSlot;
    q.RadixSlot = kRadixSlot;
    q.Method = st_.Moments.Method;
    q.SiderealOffset = st_.Moments.Offset;
    q.OffsetOfMoment = st_.Moments.Type != kSolarArc;
    auto call = [&](double from) {
      q.FromJD = from;
      return NextHit(s_, q);
    };

    if (sweep.Everywhere) {
      double done = from_;
      // Pass by pass; the cap only guards against a search that stops
      // moving forward.
      const int maxCalls = static_cast<int>(std::ceil(sweep.Turns)) * 3 + 20;
      for (int calls = 0; calls < maxCalls && done <= to_ && !Full(); ++calls) {
        const HitResult r = call(done);
        if (r.Unavailable || r.Passes.empty()) return;
        Add(point, target, r.Passes);
        if (r.Passes.front() > to_ || r.Passes.back() + kRestartStep <= done) return;
        done = r.Passes.back() + kRestartStep;
      }
      return;
    }

    // A call's answer stands for every later start up to its first pass
    // ("no pass before it"), so one call can serve several brackets; a
    // bracket that begins before a pass already held has had its pass.
    HitResult pending;
    bool havePending = false;
    double lastPass = -HUGE_VAL;
    auto takePending = [&] {
      Add(point, target, pending.Passes);
      lastPass = std::max(lastPass, pending.Passes.back());
      havePending = false;
    };
    for (const Bracket& b : finder.Find(target.Longitude)) {
      if (Full()) return;
      if (havePending && pending.Passes.front() < b.T0) takePending();
      if (b.T0 <= lastPass) continue;
      if (!havePending) {
        pending = call(b.T0);
        if (pending.Unavailable) return;  // no position: this target ends
        havePending = !pending.Passes.empty();
      }
      if (havePending && pending.Passes.front() <= b.T1 + kRestartStep) {
        takePending();
      } else if (b.Crossing) {
        // The pass is there but the search went past it: close in on it here.
        double pass = 0.0;
        if (Solve(point, target.Longitude, b, pass)) {
          Add(point, target, {pass});
          lastPass = pass;
        }
      }
    }
    if (havePending && !Full()) takePending();
  }

 private:
  bool Solve(int point, double target, const Bracket& b, double& pass) {
    double t0 = b.T0, t1 = b.T1, lon = 0.0;
    if (!mover_.At(point, t0, lon)) return false;
    const bool negative0 = Separation(lon, target) < 0.0;
    for (int round = 0; round < 60 && t1 - t0 > 1e-7; ++round) {
      const double m = (t0 + t1) / 2.0;
      if (!mover_.At(point, m, lon)) return false;
      ((Separation(lon, target) < 0.0) == negative0 ? t0 : t1) = m;
    }
    pass = (t0 + t1) / 2.0;
    return true;
  }

  // How long (ephemeris days) the point takes to move the orb from a pass at
  // its speed there. A point caught at its station barely moves: its range
  // is bounded by the window rather than left infinite.
  double OrbDays(int point, double t) {
    const double orb = st_.Options[st_.Moments.Type].Orb;
    if (!(orb > 0.0)) return 0.0;
    double lon = 0.0, v = 0.0;
    if (!mover_.At(point, t, lon, v)) return 0.0;
    const double span = to_ - from_;
    return std::fabs(v) * span > orb ? orb / std::fabs(v) : span;
  }

  // Whether the point stays near the target between two passes: then they
  // belong to one retrograde loop.
  bool SameLoop(int point, double target, double t0, double t1) {
    double lon = 0.0;
    return mover_.At(point, (t0 + t1) / 2.0, lon) && std::fabs(Separation(lon, target)) < kLoopArc;
  }

  // The passes of one call that lie in the window make one hit, or widen
  // the target's last hit when they belong to its loop or their orb ranges
  // meet.
  void Add(int point, const TargetRec& target, const std::vector<double>& passes) {
    std::vector<double> inside;
    for (double t : passes)
      if (t >= from_ && t <= to_) inside.push_back(t);
    if (inside.empty()) return;
    const double first = mover_.Life(inside.front() - OrbDays(point, inside.front()));
    const double last = mover_.Life(inside.back() + OrbDays(point, inside.back()));
    if (lastHit_ > 0) {
      DynamicHit& h = st_.Hits[lastHit_];
      if (inside.front() <= lastPass_) return;  // already held
      if (first <= h.LastDate || SameLoop(point, target.Longitude, lastPass_, inside.front())) {
        h.FirstDate = std::min(h.FirstDate, first);
        h.LastDate = std::max(h.LastDate, last);
        lastPass_ = inside.back();
        return;
      }
    }
    if (Full()) return;
    DynamicHit h;
    h.DynamicPoint = static_cast<int16_t>(point);
    h.Aspect = target.Aspect;
    h.RadixPoint = target.Point;
    h.TargetLon = target.Longitude;
    h.FirstDate = first;
    h.LastDate = last;
    Houses(h);
    st_.Hits.push_back(h);
    lastHit_ = st_.HitCount();
    lastPass_ = inside.back();
  }

  void Houses(DynamicHit& h) {
    auto& houses = houses_[h.RadixPoint];
    if (!housesDone_[h.RadixPoint]) {
      houses = RuledHouses(s_, kRadixSlot, h.RadixPoint);
      housesDone_[h.RadixPoint] = true;
    }
    const double lon = s_.charts.Longitude[kGeocentric][kRadixSlot][h.RadixPoint];
    h.Sign = static_cast<int16_t>(lon >= 0.0 ? SignOf(lon) : 0);
    int16_t* slots[] = {&h.Keyword1, &h.Keyword2, &h.Keyword3};
    for (size_t i = 0; i < 3; ++i) *slots[i] = static_cast<int16_t>(i < houses.size() ? houses[i] : 0);
  }

  Session& s_;
  SearchState& st_;
  MovingPoints& mover_;
  double from_, to_;
  int lastHit_ = 0;
  double lastPass_ = 0.0;  // ephemeris moment of the last pass held by lastHit_
  std::array<std::vector<int>, kPoints + 1> houses_{};
  std::array<bool, kPoints + 1> housesDone_{};
};

void ClearHits(SearchState& state) {
  state.Hits.assign(1, DynamicHit{});
  state.HitOrder.assign(1, 0);
  state.Cancelled = false;
}

void SortHits(SearchState& state) {
  const int n = state.HitCount();
  std::vector<double> keys(n + 1, 0.0);
  std::vector<int32_t> index(n + 1, 0);
  for (int i = 1; i <= n; ++i) {
    keys[i] = state.Hits[i].FirstDate;
    index[i] = i;
  }
  IndexSortDouble(keys, index, n, false);
  state.HitOrder.assign(n + 1, 0);
  for (int i = 1; i <= n; ++i) state.HitOrder[i] = static_cast<int16_t>(index[i]);
}

bool ParseWindowDate(Session& session, const std::string& text, double& jd) {
  int16_t day = 0, month = 0, year = 0;
  bool failed = false;
  ParseDate(session, text, day, month, year, true, failed);
  if (failed) return false;
  jd = JulDay(day, month, year);
  return true;
}

// The earliest and latest records by moment, of the enabled ones only or of all.
bool RecordSpan(const Session& session, bool enabledOnly, int& first, int& last) {
  const ProjectState& p = session.project;
  const int count = std::min<int>(p.Header.RecordCount, static_cast<int>(p.Events.size()) - 1);
  first = last = 0;
  for (int n = 1; n <= count; ++n) {
    const EventRecord& e = p.Events[n];
    if (enabledOnly && !e.Enabled) continue;
    if (first == 0 || e.JulianDay < p.Events[first].JulianDay) first = n;
    if (last == 0 || e.JulianDay > p.Events[last].JulianDay) last = n;
  }
  return first > 0;
}

std::string FormatNumber(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string FormatFixed1(double value) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%.1f", value);
  return buffer;
}

void ShowSaveError(Session& session, const std::string& error) {
  session.ShowMessage(std::string("Error whilst writing file:") + kLineEnd + kLineEnd + error, kIconExclamation,
                      "Vintar");
}

// The orb typed for the record shown goes into the record.
bool ApplyOrbText(Session& session, TranOptForm& form) {
  float orb = 0.0f;
  bool failed = false;
  ParseAngle(session, form.Orb, orb, failed);
  if (failed) return false;
  form.Records[ClampInteger(form.DynType, 0, kDynOptionTypes - 1)].Orb = orb;
  return true;
}

void ShowRecordOrb(TranOptForm& form) {
  form.DynType = ClampInteger(form.DynType, 0, kDynOptionTypes - 1);
  form.Orb = FormatNumber(form.Records[form.DynType].Orb);
}

constexpr AspectSetChoice kAspectSets[] = {
    {"1st Harmonic Aspects", 1},
    {"2nd Harmonic Aspects", 2},
    {"4th Harmonic Aspects", 4},
    {"12th Harmonic Aspects", 12},
};

}  // namespace

// ---------------------------------------------------------------------------
// Options files.

void ResetDynOptions(DynOptionSet& records) {
  for (DynOptions& r : records) r = DynOptions{};
}

std::string EncodeDynOptions(const DynOptionSet& records) {
  std::string out(kDynOptionFileBytes, '\0');
  for (int type = 0; type < kDynOptionTypes; ++type) {
    const DynOptions& r = records[type];
    const size_t base = static_cast<size_t>(type) * kDynOptionRecordBytes;
    for (int p = 1; p <= kPoints; ++p) {
      PutI16(out, base + kOffRadixPoints + 2 * (p - 1), r.RadixPoints[p]);
      PutI16(out, base + kOffDynamicPoints + 2 * (p - 1), r.DynamicPoints[p]);
    }
    for (int a = 0; a < kAspectFlags; ++a) PutI16(out, base + kOffAspects + 2 * a, r.Aspects[a]);
    PutF32(out, base + kOffOrb, r.Orb);
  }
  return out;
}

void DecodeDynOptions(const std::string& bytes, DynOptionSet& records) {
  for (DynOptions& r : records) r.Orb = kDefaultOrb;
  const int whole = std::min<int>(kDynOptionTypes, static_cast<int>(bytes.size() / kDynOptionRecordBytes));
  for (int type = 0; type < whole; ++type) {
    DynOptions& r = records[type];
    const size_t base = static_cast<size_t>(type) * kDynOptionRecordBytes;
    for (int p = 1; p <= kPoints; ++p) {
      r.RadixPoints[p] = GetI16(bytes, base + kOffRadixPoints + 2 * (p - 1));
      r.DynamicPoints[p] = GetI16(bytes, base + kOffDynamicPoints + 2 * (p - 1));
    }
    for (int a = 0; a < kAspectFlags; ++a) r.Aspects[a] = GetI16(bytes, base + kOffAspects + 2 * a);
    const float orb = GetF32(bytes, base + kOffOrb);
    r.Orb = std::isfinite(orb) && orb >= 0.0f && orb <= 180.0f ? orb : kDefaultOrb;
  }
}

bool LoadDynOptions(DynOptionSet& records, const std::string& path) {
  for (DynOptions& r : records) r.Orb = kDefaultOrb;
  std::string bytes;
  if (path.empty() || ReadFileBytes(path, bytes, kMaxSmallFileBytes) != 0) return false;
  DecodeDynOptions(bytes, records);
  return true;
}

bool SaveDynOptions(const DynOptionSet& records, const std::string& path, std::string& error) {
  try {
    const std::string folder = PathFolder(path);
    if (!folder.empty() && !FolderExists(folder)) {
      std::error_code ec;
      std::filesystem::create_directories(folder, ec);
    }
    return WriteFileAtomically(path, EncodeDynOptions(records), error);
  } catch (...) {
    error = "The options file could not be written.";
    return false;
  }
}

const char* OptionsFileName(OptionsFile file) {
  switch (file) {
    case OptionsFile::Defaults: return "defopts.fil";
    case OptionsFile::Auto: return "autopts.fil";
    case OptionsFile::Chart: return "chtopts.fil";
    default: return "dynopts.fil";
  }
}

std::string OptionsSavePath(const Session& session, OptionsFile file) {
  return EnsureBackslash(session.paths.UserDataPath) + OptionsFileName(file);
}

std::string OptionsLoadPath(const Session& session, OptionsFile file) {
  const std::string user = OptionsSavePath(session, file);
  if (FileExists(user) || (file != OptionsFile::Defaults && file != OptionsFile::Auto)) return user;
  const std::string shipped = EnsureBackslash(session.paths.SystemDataPath) + OptionsFileName(file);
  return FileExists(shipped) ? shipped : user;
}

// ---------------------------------------------------------------------------
// Targets and houses.

std::vector<TargetRec> BuildTargets(const Session& session, int radixSlot, const DynOptions& options) {
  std::vector<TargetRec> targets;
  if (radixSlot < 1 || radixSlot > kSlots) return targets;
  for (int p = 1; p <= kPoints; ++p) {
    if (!options.RadixPoints[p]) continue;
    const double lon = session.charts.Longitude[kGeocentric][radixSlot][p];
    if (lon < 0.0) continue;
    for (int a = 0; a < kAspectFlags; ++a) {
      if (!options.Aspects[a]) continue;
      for (int side : {1, -1}) {
        if (side < 0 && (a == 0 || a == 6)) break;
        TargetRec t;
        t.Point = static_cast<int16_t>(p);
        t.Aspect = static_cast<int16_t>(a);
        t.Longitude = Mod(lon + a / 12.0 * 360.0 * side, 360.0);
        targets.push_back(t);
      }
    }
  }
  return targets;
}

std::vector<int> RuledHouses(const Session& session, int radixSlot, int point) {
  std::vector<int> houses;
  if (radixSlot < 1 || radixSlot > kSlots || point < 1 || point > kPoints) return houses;
  const auto& cusps = session.charts.Slots[radixSlot].Cusps;
  for (int i = 1; i <= 12; ++i) {
    const int sign = SignOf(cusps[i]);
    const int nextSign = SignOf(cusps[i % 12 + 1]);
    bool rules = RulerOf(sign, kModernScheme) == point;
    // Two or more signs on to the next cusp: the sign before the next
    // cusp's sign lies wholly inside this house.
    if (!rules && Mod(nextSign - sign, 12.0) > 1.1)
      rules = RulerOf((nextSign + 10) % 12 + 1, kModernScheme) == point;
    if (rules) houses.push_back(i);
  }
  return houses;
}

// ---------------------------------------------------------------------------
// The search.

bool DynamicSearchNew(Session& session, SearchState& state, int dynamicType, const std::string& fromText,
                      const std::string& toText, Progress* progress) {
  ClearHits(state);
  double fromJD = 0.0, toJD = 0.0;
  if (!ParseWindowDate(session, fromText, fromJD) || !ParseWindowDate(session, toText, toJD)) return false;
  state.StartDate = fromText;
  state.EndDate = toText;
  return DynamicSearchWindow(session, state, dynamicType, fromJD, toJD, progress);
}

bool DynamicSearchWindow(Session& session, SearchState& state, int dynamicType, double fromJD, double toJD,
                         Progress* progress) {
  try {
    ClearHits(state);
    state.FromJD = fromJD;
    state.ToJD = toJD;
    if (dynamicType < kTransits || dynamicType > kSolarArc) return false;
    state.DynamicType = static_cast<int16_t>(dynamicType);
    const ChartSlot& radix = session.charts.Slots[kRadixSlot];
    if (radix.ChartJD == 0.0 || !(fromJD < toJD) || !std::isfinite(fromJD) || !std::isfinite(toJD)) return false;

    const DynOptions& options = state.Options[dynamicType];
    const double rate = EphemerisRate(dynamicType);
    const double ephFrom = radix.ChartJD + (fromJD - radix.ChartJD) * rate;
    const double ephTo = radix.ChartJD + (toJD - radix.ChartJD) * rate;
    SetFrame(session, state, dynamicType);
    MovingPoints mover(session, state);

    // One look at the ends of the window first: beyond the ephemeris, one
    // message and no search.
    double sun = 0.0;
    if (!mover.At(kSun, ephFrom, sun) || !mover.At(kSun, ephTo, sun)) return false;

    const std::vector<TargetRec> targets = BuildTargets(session, kRadixSlot, options);
    std::vector<int> points;
    for (int q = kPoints; q >= 1; --q)
      if (options.DynamicPoints[q]) points.push_back(q);

    HitSearch search(session, state, mover, ephFrom, ephTo);
    if (progress) progress->Status("0%");
    for (size_t done = 0; done < points.size() && !targets.empty(); ++done) {
      const int q = points[done];
      const Sweep sweep = SweepPoint(mover, dynamicType, state.Moments.Method, q, ephFrom, ephTo);
      if (!sweep.Failed) {
        // Walk the targets once, from the one nearest the point's place.
        double start = 0.0;
        mover.At(q, ephFrom, start);
        size_t closest = 0;
        double best = 361.0;
        for (size_t i = 0; i < targets.size(); ++i) {
          const double arc = std::fabs(Separation(targets[i].Longitude, start));
          if (arc < best) {
            best = arc;
            closest = i;
          }
        }
        BracketFinder finder(mover, sweep, q);
        for (size_t k = 0; k < targets.size() && !search.Full(); ++k)
          search.Target(q, targets[(closest + k) % targets.size()], sweep, finder);
      }
      if (progress) {
        const double fraction = static_cast<double>(done + 1) / points.size();
        progress->Fraction(fraction);
        progress->Status(std::to_string(static_cast<int>(std::lround(fraction * 100.0))) + "%");
        if (progress->Cancelled()) {
          state.Cancelled = true;
          break;
        }
      }
      if (search.Full()) break;
    }
    SortHits(state);
    return true;
  } catch (...) {
    ClearHits(state);
    return false;
  }
}

int NearestEvent(const Session& session, const DynamicHit& hit) {
  const ProjectState& p = session.project;
  const int count = std::min<int>(p.Header.RecordCount, static_cast<int>(p.Events.size()) - 1);
  const double middle = (hit.FirstDate + hit.LastDate) * 0.5;
  double best = 1e99;
  int nearest = 0;
  for (int n = 1; n <= count; ++n) {
    const double d = std::fabs(p.Events[n].JulianDay - middle);
    if (d < best) {
      best = d;
      nearest = n;
    }
  }
  return nearest;
}

HitScoreText ScoreHit(Session& session, SearchState& state, DynamicHit& hit, int event, bool quiet) {
  HitScoreText text;
  try {
    hit.Status = kHitAlone;
    const double middle = (hit.FirstDate + hit.LastDate) / 2.0;
    // Scored without a search of this chart: the frame of the chart now in slot 1.
    if (state.Moments.Type < 0 || state.Moments.RadixJD != session.charts.Slots[kRadixSlot].ChartJD)
      SetFrame(session, state, state.DynamicType);
    const double radixJD = state.Moments.RadixJD;
    if (!quiet) text.Age = FormatFixed1((middle - radixJD) / kDaysPerYearOfLife) + " Years";

    const ProjectState& p = session.project;
    const int count = std::min<int>(p.Header.RecordCount, static_cast<int>(p.Events.size()) - 1);
    if (event < 1 || event > count) {
      hit.NearestEvent = 0;
      return text;
    }
    const EventRecord& e = p.Events[event];
    const double span = EventHalfSpan(e);
    const double windowStart = e.JulianDay - span, windowEnd = e.JulianDay + span;
    hit.NearestEvent = static_cast<int16_t>(event);

    if (hit.FirstDate <= windowStart + span && windowEnd <= hit.LastDate) {
      hit.Status = kHitWithinRange;
      if (!quiet) text.Caption = "Within Range";
      return text;
    }

    MovingPoints mover(session, state);
    double s0 = 0.0, s1 = 0.0;
    const bool known = mover.At(hit.DynamicPoint, mover.Ephemeris(windowStart), s0) &&
                       mover.At(hit.DynamicPoint, mover.Ephemeris(windowEnd), s1);
    const double orb = state.Options[ClampInteger(state.Moments.Type, 0, kDynOptionTypes - 1)].Orb;
    if (known) {
      const double m = std::min(std::fabs(Separation(s0, hit.TargetLon)), std::fabs(Separation(s1, hit.TargetLon)));
      if (m <= orb) {
        hit.Status = kHitWithinOrb;
        if (!quiet) {
          const double toFirst = e.JulianDay - hit.FirstDate, toLast = e.JulianDay - hit.LastDate;
          const double nearer = std::fabs(toFirst) <= std::fabs(toLast) ? toFirst : toLast;
          text.Caption = std::to_string(std::lround(std::fabs(nearer))) +
                         (nearer < 0.0 ? " Days Before, " : " Days After, ") + e.Description;
        }
        return text;
      }
    }
    hit.NearestEvent = 0;
    return text;
  } catch (...) {
    hit.Status = kHitAlone;
    hit.NearestEvent = 0;
    return text;
  }
}

std::vector<int> HitsOfEvent(const SearchState& state, int event) {
  std::vector<int> hits;
  if (event < 1) return hits;
  for (size_t k = 1; k < state.HitOrder.size(); ++k) {
    const int h = state.HitOrder[k];
    if (h >= 1 && h <= state.HitCount() && state.Hits[h].NearestEvent == event) hits.push_back(h);
  }
  return hits;
}

SearchTotalsResult SearchTotals(const SearchState& state) {
  SearchTotalsResult r;
  r.Total = state.HitCount();
  for (int i = 1; i <= r.Total; ++i)
    if (state.Hits[i].Status > 0) ++r.Matched;
  r.Ratio = r.Total > 0 ? static_cast<float>(r.Matched) / static_cast<float>(r.Total) : 0.0f;
  return r;
}

std::string ScorePercent(float ratio) { return std::to_string(std::lround(ratio * 100.0)) + "%"; }

std::string LoadSearchScreenOptions(const Session& session, DynOptionSet& records) {
  std::string used = OptionsLoadPath(session, OptionsFile::Current);
  if (LoadDynOptions(records, used)) return used;
  used = OptionsLoadPath(session, OptionsFile::Defaults);
  LoadDynOptions(records, used);
  return used;
}

void TellEmptySearchWindow(Session& session, const SearchState& state, const std::string& from,
                           const std::string& to) {
  if (state.FromJD > state.ToJD) session.ShowMessage("The search window is empty: " + from + " is after " + to + ".");
}

std::string DefaultTrialTime(Session& session) {
  const ProjectHeader& h = session.project.Header;
  int16_t hours = 0, minutes = 0, seconds = 0;
  bool failed = false;
  ParseTime(session, h.Time, hours, minutes, seconds, false, failed);
  if (!failed) return FormatTime(hours, minutes, seconds, session.prefs.AMPM != 0);
  double limits[2] = {0.0, 24.0};
  const std::string* texts[2] = {&h.EarliestTime, &h.LatestTime};
  for (int i = 0; i < 2; ++i) {
    bool bad = false;
    ParseTime(session, *texts[i], hours, minutes, seconds, false, bad);
    if (!bad) limits[i] = hours + minutes / 60.0 + seconds / 3600.0;
  }
  const double mid = CircularMid(24.0, limits[0], limits[1]);
  const long total = std::lround(Mod(mid, 24.0) * 3600.0) % 86400;
  return FormatTime(static_cast<int>(total / 3600), static_cast<int>(total / 60 % 60), static_cast<int>(total % 60),
                    session.prefs.AMPM != 0);
}

std::string DefaultSearchStart(Session& session) {
  int first = 0, last = 0;
  if (RecordSpan(session, true, first, last))
    return FormatDate(session, 1, 1, session.project.Events[first].Year - 2);
  // No events: the radix date.
  int16_t day = 0, month = 0, year = 0;
  bool failed = false;
  ParseDate(session, session.project.Header.Date, day, month, year, false, failed);
  if (!failed) return FormatDate(session, day, month, year);
  const double jd = session.charts.Slots[kRadixSlot].ChartJD;
  if (jd > 0.0) {
    float d = 0;
    int m = 1, y = 2000;
    RevJul(jd, d, m, y);
    return FormatDate(session, static_cast<int>(d), m, y);
  }
  return FormatDate(session, session.clock.Day, session.clock.Month, session.clock.Year);
}

std::string DefaultSearchEnd(Session& session) {
  int first = 0, last = 0;
  if (RecordSpan(session, false, first, last))
    return FormatDate(session, 1, 1, session.project.Events[last].Year + 2);
  return FormatDate(session, session.clock.Day, session.clock.Month, session.clock.Year);
}

// ---------------------------------------------------------------------------
// The options screen.

std::span<const AspectSetChoice> AspectSetChoices() { return kAspectSets; }

void ApplyAspectHarmonic(DynOptions& record, int harmonic) {
  record.Aspects.fill(kFalse);
  record.Aspects[0] = kTrue;
  if (harmonic >= 2) record.Aspects[6] = kTrue;
  if (harmonic >= 4) record.Aspects[3] = kTrue;
  if (harmonic == 12)
    for (int a : {1, 2, 4, 5}) record.Aspects[a] = kTrue;
}

int AspectHarmonicOf(const DynOptions& record) {
  for (const AspectSetChoice& choice : kAspectSets) {
    DynOptions probe;
    ApplyAspectHarmonic(probe, choice.Harmonic);
    bool same = true;
    for (int a = 0; a < kAspectFlags; ++a) same = same && ((probe.Aspects[a] != 0) == (record.Aspects[a] != 0));
    if (same) return choice.Harmonic;
  }
  return 0;
}

bool ConfirmSearchPeriod(Session& session, double fromJD, double toJD) {
  if (!(toJD - fromJD > kHundredYears)) return true;
  const int answer = session.ShowMessage(
      std::string("The time period that you are attempting to search is greater than 100 years.") + kLineEnd +
          "Do you wish to continue anyway?",
      kYesNo + kIconQuestion, "Verify Period");
  return answer == kYes;
}

TranOptForm OpenTranOpt(Session& session, const SearchState& state) {
  TranOptForm form;
  form.Records = state.Options;
  form.DynType = state.DynamicType;
  form.StartDate = state.StartDate.empty() ? DefaultSearchStart(session) : state.StartDate;
  form.EndDate = state.EndDate.empty() ? DefaultSearchEnd(session) : state.EndDate;
  ShowRecordOrb(form);
  return form;
}

bool TranOptSelectType(Session& session, TranOptForm& form, int dynamicType) {
  if (!ApplyOrbText(session, form)) return false;
  form.DynType = dynamicType;
  ShowRecordOrb(form);
  return true;
}

bool TranOptRestoreDefaults(Session& session, TranOptForm& form) {
  const int answer = session.ShowMessage("The current options will be overwritten with the original Vintar defauls.",
                                         kOkCancel + kIconQuestion, "Restore Default?");
  if (answer != kOk) return false;
  LoadDynOptions(form.Records, OptionsLoadPath(session, OptionsFile::Defaults));
  ShowRecordOrb(form);
  return true;
}

bool TranOptSaveForAuto(Session& session, TranOptForm& form) {
  if (!ApplyOrbText(session, form)) return false;
  const int answer =
      session.ShowMessage("The current options will be saved for use whenever the Auto-Rectify facility is used.",
                          kOkCancel + kIconInformation, "Save Options?");
  if (answer != kOk) return false;
  std::string error;
  if (!SaveDynOptions(form.Records, OptionsSavePath(session, OptionsFile::Auto), error)) {
    ShowSaveError(session, error);
    return false;
  }
  return true;
}

bool TranOptAccept(Session& session, TranOptForm& form, SearchState& state) {
  double fromJD = 0.0, toJD = 0.0;
  if (!ParseWindowDate(session, form.StartDate, fromJD) || !ParseWindowDate(session, form.EndDate, toJD)) return false;
  if (!ApplyOrbText(session, form)) return false;
  if (!ConfirmSearchPeriod(session, fromJD, toJD)) return false;
  state.Options = form.Records;
  state.DynamicType = static_cast<int16_t>(form.DynType);
  state.StartDate = form.StartDate;
  state.EndDate = form.EndDate;
  std::string error;
  if (!SaveDynOptions(state.Options, OptionsSavePath(session, OptionsFile::Current), error))
    ShowSaveError(session, error);
  return true;
}

}  // namespace vintar
