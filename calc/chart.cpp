#include "calc/chart.h"

#include "calc/ephemeris.h"
#include "core/parse.h"
#include "core/text.h"

namespace vintar {
namespace {

// The ephemeris body of each point; -1 for the angles, which are this
// program's own. Hygeia and Astraea are numbered asteroids.
constexpr int kBodyOfPoint[kPoints + 1] = {
    -1,
    kBodyMoon, kBodyEarth, kBodySun,
    2, 3, 4, 5, 6, 7, 8, 9,  // Mercury to Pluto
    kBodyChiron, kBodyVesta, kBodyPallas, kBodyJuno, kBodyCeres,
    kAsteroidOffset + 10, kAsteroidOffset + 5,  // Hygeia, Astraea
    kBodyTrueNode, kBodyMeanNode,
    -1, -1, -1, -1};

// The library's path follows the preference; set again only when it changed.
void EnsureEphemerisPath(Session& session) {
  if (session.EphemerisPath != session.prefs.SwissEphPath) {
    session.EphemerisPath = session.prefs.SwissEphPath;
    SetEphemerisPath(session.EphemerisPath);
  }
}

struct RunFlags {
  bool allFailed = true;
  std::string lastError;
};

void StorePosition(Session& session, int coordinate, int slot, int point, double jd, int flags,
                   double offset, RunFlags& run) {
  ChartTables& c = session.charts;
  double xx[6] = {0, 0, 0, 0, 0, 0};
  std::string serr;
  int value = EphemerisCalc(jd, kBodyOfPoint[point], flags, xx, serr);
  ++c.EphemerisCalls;
  c.Longitude[coordinate][slot][point] = value < 0 ? -1.0 : Mod(xx[0] + offset, 360.0);
  c.Latitude[coordinate][slot][point] = xx[1];
  c.LongSpeed[coordinate][slot][point] = xx[3];
  c.LatSpeed[coordinate][slot][point] = xx[4];
  if (CheckSwissResult(session, value, serr, true))
    run.lastError = serr;
  else
    run.allFailed = false;
}

}  // namespace

int EphemerisBody(int point) { return point >= 1 && point <= kPoints ? kBodyOfPoint[point] : -1; }

bool CheckSwissResult(Session& session, int value, std::string& message, bool quiet) {
  if (value >= 0) return false;
  message = std::string("Unable to calculate planetary position. The requested date may be out of range of the "
                        "installed Swiss Ephemeris files.") +
            kLineEnd + "Return Value: " + std::to_string(value) + kLineEnd + "Message: " + message;
  if (!quiet) session.ShowMessage(message, kIconExclamation, "Vintar");
  return true;
}

void ComputePositions(Session& session, int slot, int firstPoint, int lastPoint, double T, double siderealOffset) {
  if (slot < 1 || slot > kSlots) return;
  if (firstPoint <= 0) firstPoint = 1;
  if (lastPoint <= 0 || lastPoint > kPoints) lastPoint = kPoints;
  EnsureEphemerisPath(session);
  const double jd = T * 36525.0 + 2415020.0;
  RunFlags run;

  auto finish = [&] {
    if (!run.allFailed) return;
    float day = 0;
    int month = 1, year = 2000;
    RevJul(jd, day, month, year);
    session.ShowMessage(run.lastError + kLineEnd + "Ephemeris Location: " + session.EphemerisPath + kLineEnd +
                            "Calculation Date: " + FormatDate(session, static_cast<int>(day), month, year) +
                            kLineEnd + "Bodies: " + session.vocab.PointShort[firstPoint] + " to " +
                            session.vocab.PointShort[lastPoint],
                        kIconExclamation, "Vintar");
  };

  if (firstPoint < 2) {
    StorePosition(session, kGeocentric, slot, kMoon, jd, kFlagSpeed, siderealOffset, run);
    if (lastPoint == 1) return finish();
  }
  if (firstPoint < 3) {
    StorePosition(session, kHeliocentric, slot, kEarth, jd, kFlagSpeed | kFlagHeliocentric, siderealOffset, run);
    if (lastPoint == 2) return finish();
  }
  if (firstPoint < 4) {
    StorePosition(session, kGeocentric, slot, kSun, jd, kFlagSpeed, siderealOffset, run);
    if (lastPoint == 3) return finish();
  }
  for (int round = 2; round >= 1; --round) {
    const int coordinate = round == 2 ? kHeliocentric : kGeocentric;
    const int flags = round == 2 ? kFlagSpeed | kFlagHeliocentric : kFlagSpeed;
    for (int point = std::max(firstPoint, 4); point <= lastPoint; ++point) {
      if (kBodyOfPoint[point] < 0) continue;
      if (coordinate == kHeliocentric && (point == kTrueNode || point == kMeanNode)) {
        // The Moon's nodes have no heliocentric place; the library answers
        // with zeros, which would read as 0 Aries. Mark them not computed.
        session.charts.Longitude[coordinate][slot][point] = -1.0;
        session.charts.Latitude[coordinate][slot][point] = 0.0;
        session.charts.LongSpeed[coordinate][slot][point] = 0.0;
        session.charts.LatSpeed[coordinate][slot][point] = 0.0;
        continue;
      }
      StorePosition(session, coordinate, slot, point, jd, flags, siderealOffset, run);
      if (round == 1)
        session.charts.Retrograde[slot][point] = session.charts.LongSpeed[kGeocentric][slot][point] < 0 ? kTrue : kFalse;
    }
  }
  finish();
}

double PlanetLongitude(Session& session, double T, int body, int flags) {
  EnsureEphemerisPath(session);
  double xx[6] = {0, 0, 0, 0, 0, 0};
  std::string serr;
  int value = EphemerisCalc(T * 36525.0 + 2415020.0, body, flags, xx, serr);
  ++session.charts.EphemerisCalls;
  return value < 0 ? -1.0 : Mod(xx[0], 360.0);
}

void ComputeAngles(Session& session, int slot, double ramc, double obliquity, double latitude, double offset) {
  Angles a = ComputeAngleSet(ramc, obliquity, latitude, offset);
  for (int coordinate = kGeocentric; coordinate <= kHeliocentric; ++coordinate) {
    auto& lon = session.charts.Longitude[coordinate][slot];
    lon[kAscendant] = a.Ascendant;
    lon[kMidheaven] = a.Midheaven;
    lon[kVertex] = a.Vertex;
    lon[kEastPoint] = a.EastPoint;
  }
}

void CalcHouses(Session& session, int slot, double ramc, double obliquity, double latitude, int system,
                double offset) {
  const auto& lon = session.charts.Longitude[kGeocentric][slot];
  HouseInput in;
  in.Ramc = ramc;
  in.Obliquity = obliquity;
  in.Latitude = latitude;
  in.Offset = offset;
  in.Ascendant = lon[kAscendant];
  in.Midheaven = lon[kMidheaven];
  in.Sun = lon[kSun];
  int point = ClampInteger(session.prefs.PointOnCusp, 1, kPoints);
  in.UserPoint = lon[point];
  in.UserCusp = session.prefs.WhichCusp;
  ChartSlot& s = session.charts.Slots[slot];
  int used = CalcHouseCusps(system, in, s.Cusps);
  if (used < 0) {
    session.ShowMessage("Unrecognised house system", kOkOnly, "Sub CalcHouses");
    return;
  }
  s.ChartHouseSystem = static_cast<int16_t>(used);
  s.FirstCuspIsAsc = FirstCuspIsAsc(used) ? kTrue : kFalse;
  s.TenthCuspIsMC = TenthCuspIsMC(used) ? kTrue : kFalse;
}

double SessionSiderealOffset(const Session& session, double T) {
  if (session.prefs.Zodiac <= 1) return 0.0;
  return SiderealOffset(session.prefs.Zodiac, session.prefs.UserAyan, PrecessionArcsec(T));
}

double RecordSunLongitude(Session& session, const EventRecord& record) {
  const double T = CenturiesFrom1900(record.JulianDay);
  const double lon = PlanetLongitude(session, T, kBodySun, 0);
  return lon < 0.0 ? lon : Mod(lon + SessionSiderealOffset(session, T), 360.0);
}

void CastChart(Session& session, int slot, int day, int month, int year, double hours, double zone,
               double longitude, double latitude) {
  if (slot < 1 || slot > kSlots) return;
  const double dayFraction = (hours + zone) / 24.0;
  const double jd0 = JulDay(day, month, year);
  ChartSlot& s = session.charts.Slots[slot];
  s.ChartJD = jd0 + dayFraction;
  s.T = CenturiesFrom1900(s.ChartJD);
  s.ChartZone = zone;
  s.ChartZodiac = session.prefs.Zodiac;
  s.Latitude = latitude;
  s.Longitude = longitude;
  s.SiderealOffset = SessionSiderealOffset(session, s.T);

  ComputePositions(session, slot, 0, 0, s.T, s.SiderealOffset);

  const double st0 = SiderealAtZero(jd0);
  const double lst = LocalSidereal(st0, dayFraction * 24.0);
  s.Ramc = Ramc(lst, longitude);
  s.Obliquity = MeanObliquity(s.T);
  ComputeAngles(session, slot, s.Ramc, s.Obliquity, latitude, s.SiderealOffset);
  CalcHouses(session, slot, s.Ramc, s.Obliquity, latitude, session.prefs.Houses, s.SiderealOffset);
}

bool CalcChart(Session& session, int slot, const std::string& dateText, const std::string& timeText,
               const std::string& zoneText, const std::string& longitudeText, const std::string& latitudeText,
               const std::string& name, const std::string& place) {
  int16_t day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
  float zone = 0;
  double longitude = 0, latitude = 0;
  std::string mnemonic;
  bool failed = false;
  ParseDate(session, dateText, day, month, year, true, failed);
  if (failed) return false;
  ParseTime(session, Trim(timeText).empty() ? std::string("12:00") : timeText, hour, minute, second, true, failed);
  if (failed) return false;
  ParseZone(session, zoneText, zone, mnemonic, true, failed);
  if (failed) return false;
  ParseLongitude(session, longitudeText, longitude, true, failed);
  if (failed) return false;
  ParseLatitude(session, latitudeText, latitude, true, failed);
  if (failed) return false;
  if (slot < 1 || slot > kSlots) return false;

  CastChart(session, slot, day, month, year, hour + minute / 60.0 + second / 3600.0, zone, longitude, latitude);
  session.charts.Slots[slot].ChartName = name;
  session.charts.Slots[slot].ChartPlace = place;
  return true;
}

void SelectChartPoints(Session& session, int slot) {
  ChartSlot& s = session.charts.Slots[slot];
  const int coordinate = session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
  const auto& selected = session.charts.Selected[coordinate][slot];
  s.PointsInUse = 0;
  s.FirstPointInUse = 0;
  for (int point = 1; point <= kPoints; ++point) {
    if (!selected[point]) continue;
    if (point == kAscendant && s.FirstCuspIsAsc) continue;
    if (point == kMidheaven && s.TenthCuspIsMC) continue;
    if (s.FirstPointInUse == 0) s.FirstPointInUse = static_cast<int16_t>(point);
    ++s.PointsInUse;
  }
}

AnglesFromMCResult AnglesFromMC(const Session& session, double mc, int day, int month, int year, double hours,
                                double zone, double longitude, double latitude) {
  const double jd0 = JulDay(day, month, year);
  const double T = CenturiesFrom1900(jd0 + hours / 24.0);
  const double eps = MeanObliquity(T);
  const double offset = SessionSiderealOffset(session, T);
  AnglesFromMCResult r;
  r.Ramc = Mod(MidheavenToRamc(mc - offset, eps), 360.0);
  Angles a = ComputeAngleSet(r.Ramc, eps, latitude, offset);
  r.Ascendant = a.Ascendant;
  r.Vertex = a.Vertex;
  r.EastPoint = a.EastPoint;
  double sidereal = Mod((r.Ramc + longitude) / 15.0 - SiderealAtZero(jd0), 24.0);
  r.LocalHours = Mod(sidereal / 1.00273790935 - zone, 24.0);
  return r;
}

}  // namespace vintar
