// The tabulation engine: division tables, the classifier and the pass over
// a project's position cache.
#include "research/tabulate.h"

#include <algorithm>
#include <cmath>

#include "calc/astro.h"
#include "calc/cache.h"
#include "calc/chart.h"
#include "core/calendar.h"
#include "core/parse.h"
#include "core/text.h"
#include "research/dignity.h"
#include "research/results.h"

namespace vintar {

namespace {

constexpr DataTypeInfo kDataTypeTable[kDataTypes] = {
    {"&Zodiacal Divisions", "Longitude", 0, 12},
    {"House Divisions", "Houses", 100, 106},
    {"Phases && Aspects", "Angular Separations", 50, 52},
    {"Dignities && Planets", "Dignities & Planets", 200, 211},
    {"Harmonic Component", "Harmonic Components", 300, 303},
    {"Latitude", "Latitude", 400, 402},
    {"Diurnal Arc", "Oblique Ascension", 500, 504},
    {"Right Ascension", "Right Ascension", 600, 601},
    {"Declination", "Declination", 400, 402},
    {"Azimuth", "Azimuth", 700, 701},
    {"Altitude", "Altitude", 800, 802},
    {"Natal Details", "Natal Details", 900, 903},
};

// The nine aspects of code 50 in the order they are tried.
constexpr double kAspectOrder[10] = {0, 0, 180, 120, 90, 60, 45, 135, 30, 150};

// Int of the tables: truncation toward minus infinity.
int Floor(double x) {
  if (!std::isfinite(x)) return 0;
  return static_cast<int>(std::clamp(std::floor(x), -1.0e9, 1.0e9));
}
// Round half to even.
int RoundEven(double x) {
  if (!std::isfinite(x)) return 0;
  return static_cast<int>(std::clamp(std::nearbyint(x), -1.0e9, 1.0e9));
}
int Sgn(double x) { return x > 0 ? 1 : (x < 0 ? -1 : 0); }

bool IsUserCode(int code) {
  return code == 12 || code == 52 || code == 402 || code == 601 || code == 701 || code == 802 || code == 901;
}

// The ruler list of a scheme (Ancient for 2 and 3).
std::span<const int> Rulers(int scheme) { return RulerList(scheme == kModernScheme ? 1 : 2); }
std::span<const int> Exaltations(int scheme) { return ExaltationList(scheme == kModernScheme ? 1 : 2); }
int ListCount(std::span<const int> list) { return static_cast<int>(list.size()) - 1; }

// The cell of a point in a ruler list, or `none`.
int ListCellOr(std::span<const int> list, int point, int none) {
  const int c = point > 0 ? CellOf(list, point) : 0;
  return c > 0 ? c : none;
}

// R1 and R2 of the houses-ruled and accidental codes.
void SignRulers(int sign, int scheme, int& r1, int& r2) {
  r1 = SignRuler(sign, scheme);
  r2 = scheme == kModernScheme ? SignRuler(sign, scheme) : SignRuler(sign, 5 - scheme);
}

}  // namespace

const DataTypeInfo& DataTypeOf(int dataType) {
  return kDataTypeTable[dataType >= 0 && dataType < kDataTypes ? dataType : 0];
}

std::vector<int> DivisionCodesOf(int dataType) {
  std::vector<int> codes;
  if (dataType < 0 || dataType >= kDataTypes) return codes;
  for (int c = kDataTypeTable[dataType].FirstCode; c <= kDataTypeTable[dataType].LastCode; ++c) codes.push_back(c);
  return codes;
}

bool DivisionBelongs(int dataType, int code) {
  if (dataType < 0 || dataType >= kDataTypes) return false;
  return code >= kDataTypeTable[dataType].FirstCode && code <= kDataTypeTable[dataType].LastCode;
}

CellCounts CellCountsOf(const TabulateParams& p) {
  const int user = std::max(0, p.UserDivisions);
  const bool modern = p.Scheme == kModernScheme;
  auto same = [](int n) { return CellCounts{n, n}; };
  switch (p.Code) {
    case 0: case 6: case 7: case 100: case 105: case 502: case 600: case 700: return same(12);
    case 1: return same(6);
    case 2: case 102: return same(4);
    case 3: case 101: return same(3);
    case 4: case 103: case 104: case 106: case 400: case 800: return same(2);
    case 5: case 504: case 903: return same(36);
    case 8: {
      const int h = static_cast<int>(p.Harmonic);
      if (h < 1 || h != p.Harmonic || 360 % h != 0) return {};
      return same(360 / h);
    }
    case 9: return same(3);
    case 10: case 11: case 208: case 209: return same(7);
    case 12: case 52: case 601: case 701: case 802: case 901: return same(user);
    case 50: return {10, 9};
    case 51: {
      const int h = static_cast<int>(p.Harmonic);
      if (h < 1 || h != p.Harmonic) return {};
      return {h + 1, h};
    }
    case 200: return {ListCount(Rulers(1)) + 1, ListCount(Rulers(1))};
    case 201: return {5, 4};
    case 202: case 203: case 206: case 207: {
      const int n = ListCount(Rulers(p.Scheme));
      return modern ? CellCounts{n, n} : CellCounts{n + 1, n};
    }
    case 204: case 205: {
      const int n = ListCount(Exaltations(p.Scheme));
      return modern ? CellCounts{n, n} : CellCounts{n + 1, n};
    }
    case 210: case 211: return same(5);
    case 300: case 301: case 302: case 303: return same(60);
    case 401: return same(80);
    case 402: return user > 0 ? same(user + 2) : CellCounts{};
    case 500: return same(4);
    case 501: return same(40);
    case 503: case 902: return same(18);
    case 801: return same(18);
    case 900: return same(24);
    default: return {};
  }
}

int HouseOf(double longitude, const std::array<double, 13>& cusps) {
  for (int h = 1; h <= 12; ++h) {
    const double from = cusps[h], to = cusps[h % 12 + 1];
    const double width = Mod(to - from, 360.0);
    if (Mod(longitude - from, 360.0) < width) return h;
  }
  // Degenerate cusps (all equal): the first house.
  return 1;
}

std::array<double, 8> RayWeights(bool triangles) {
  std::array<double, 8> w{};
  static constexpr double kShares[8] = {0, 1 + 1.0 / 3, 2, 1 + 5.0 / 6, 2 + 1.0 / 3, 1 + 5.0 / 6, 1 + 1.0 / 3,
                                        1 + 1.0 / 3};
  for (int r = 1; r <= 7; ++r) w[r] = triangles ? 1.0 : kShares[r] / 1.714286;
  return w;
}

int ClassifyPoint(const ClassifyInput& in, std::vector<int>& extra) {
  extra.assign(1, 0);
  const double v = in.Value, y = in.Secondary;
  const int cells = in.CellCount;
  const double h = in.Harmonic > 0 ? in.Harmonic : 1.0;
  const int sign = SignOf(v);
  const int opposite = OppositeSign(sign);
  auto house = [&]() { return in.Cusps ? HouseOf(v, *in.Cusps) : 0; };
  int cell = 0;
  switch (in.Code) {
    case 0: cell = sign; break;
    case 1: cell = (sign - 1) % 6 + 1; break;
    case 2: cell = (sign - 1) % 4 + 1; break;
    case 3: cell = (sign - 1) % 3 + 1; break;
    case 4: cell = (sign - 1) % 2 + 1; break;
    case 5: cell = DecanateOf(v); break;
    case 6: cell = DecanateSign(DecanateOf(v), kModernScheme); break;
    case 7: cell = DecanateSign(DecanateOf(v), kAncientDayScheme); break;
    case 8: cell = in.Harmonic == 1 ? Floor(v) + 1 : Floor(Mod(v, 360.0 / h)) + 1; break;
    case 9: cell = in.Speed > 0 ? 1 : (in.Speed < 0 ? 2 : 3); break;
    case 10:
    case 11: {
      static constexpr int kRays[13][4] = {{0},       {1, 7}, {4},    {2},       {3, 7},    {1, 5}, {2, 6},
                                           {3},       {4},    {6, 5, 4}, {7, 3, 1}, {5},    {2, 6}};
      cell = kRays[sign][0];
      for (int k = 1; k < 4 && kRays[sign][k] != 0; ++k) extra.push_back(kRays[sign][k]);
      break;
    }
    case 12: cell = Floor(Mod(v - in.Anchor, 360.0 / h) * cells * h / 360.0) + 1; break;
    case 50: {
      double s = v;
      if (s > 180) s = 360 - s;
      cell = cells;
      for (int k = 1; k <= 9; ++k)
        if (std::fabs(Mod(s - kAspectOrder[k] + 180, 360.0) - 180) <= in.Orb) {
          cell = k;
          break;
        }
      break;
    }
    case 51: {
      const double a = 360.0 / h;
      const double x = Mod(v + a / 2, 360.0);
      const int c = Floor(x / a) + 1;
      cell = std::fabs(Mod(x, a) - a / 2) <= in.Orb ? c : cells;
      break;
    }
    case 52: cell = Floor(Mod(v - in.Anchor, 360.0) * cells / 360.0) + 1; break;
    case 100: cell = house(); break;
    case 101: { const int hs = house(); cell = hs ? (hs - 1) % 3 + 1 : 0; break; }
    case 102: { const int hs = house(); cell = hs ? (hs - 1) / 3 + 1 : 0; break; }
    case 103: { const int hs = house(); cell = hs ? 2 - ((hs + 8) % 12) / 6 : 0; break; }
    case 104: { const int hs = house(); cell = hs ? (hs - 1) / 6 + 1 : 0; break; }
    case 105: {
      if (!in.Cusps) break;
      for (int c = 1; c <= 12; ++c) {
        int r1 = 0, r2 = 0;
        SignRulers(SignOf((*in.Cusps)[c]), in.Scheme, r1, r2);
        if (in.Planet == 0 || (in.Planet != r1 && in.Planet != r2)) continue;
        if (cell == 0) cell = c;
        else extra.push_back(c);
      }
      break;
    }
    case 106: {
      // The house number is compared with the sign's ruling point numbers,
      // as this division has always counted.
      int r1 = 0, r2 = 0;
      SignRulers(sign, in.Scheme, r1, r2);
      const int hs = house();
      cell = hs == r1 || hs == r2 ? 1 : 2;
      break;
    }
    case 200: cell = ListCellOr(Rulers(1), in.Planet, cells); break;
    case 201: {
      const int p = in.Planet;
      if (p == 0) break;
      if (p == RulerOf(sign, in.Scheme)) {
        cell = 1;
        if (p == SignExaltation(sign, in.Scheme)) extra.push_back(3);
      } else if (p == RulerOf(opposite, in.Scheme)) {
        cell = 2;
        if (p == SignExaltation(opposite, in.Scheme)) extra.push_back(4);
      } else if (p == SignExaltation(sign, in.Scheme)) {
        cell = 3;
      } else if (p == SignExaltation(opposite, in.Scheme)) {
        cell = 4;
      } else {
        cell = 5;
      }
      break;
    }
    case 202: cell = ListCellOr(Rulers(in.Scheme), RulerOf(sign, in.Scheme), cells); break;
    case 203: cell = ListCellOr(Rulers(in.Scheme), RulerOf(opposite, in.Scheme), cells); break;
    case 204: cell = ListCellOr(Exaltations(in.Scheme), SignExaltation(sign, in.Scheme), cells); break;
    case 205: cell = ListCellOr(Exaltations(in.Scheme), SignExaltation(opposite, in.Scheme), cells); break;
    case 206:
      cell = ListCellOr(Rulers(in.Scheme), RulerOf(DecanateSign(DecanateOf(v), kModernScheme), in.Scheme), cells);
      break;
    case 207:
      cell = ListCellOr(Rulers(in.Scheme), RulerOf(DecanateSign(DecanateOf(v), kAncientDayScheme), in.Scheme),
                        cells);
      break;
    case 208:
      cell = TriplicityCell(ElementOf(sign), in.Scheme == kAncientNightScheme ? kAncientNightScheme
                                                                            : kAncientDayScheme);
      break;
    case 209: cell = FaceCell(DecanateOf(v)); break;
    case 210: cell = PtolemaicTermCell(v); break;
    case 211: cell = EgyptianTermCell(v); break;
    case 400: cell = (Sgn(y) + 1) / 2 + 1; break;
    case 401: cell = std::clamp(Floor(y) + 1 + 40, 1, 80); break;
    case 402: {
      // Below the range cell 1, above it the last cell.
      const int r = Floor(in.Orb);
      cell = r > 0 ? std::clamp(Floor((r + y) * (cells - 2) / (2.0 * r)) + 2, 1, cells) : 0;
      break;
    }
    case 500: cell = Floor(Mod(v, 360.0) / 90) + 1; break;
    case 501: cell = Floor(Mod(v, 360.0) / 9) + 1; break;
    case 502: cell = Floor(Mod(v, 360.0) / 30) + 1; break;
    case 503: cell = Floor(Mod(v - 10, 360.0) / 20) + 1; break;
    case 504: cell = Floor(Mod(v, 360.0) / 10) + 1; break;
    case 600: case 700: cell = Floor(Mod(v, 360.0) / 30) + 1; break;
    case 601: case 701: cell = Floor(Mod(v - in.Anchor * h, 360.0) * cells / 360.0) + 1; break;
    case 800: cell = RoundEven((Sgn(y) + 3) / 2.0); break;
    case 801: case 802: cell = std::clamp(Floor((y + 90) * cells / 180.0) + 1, 1, cells); break;
    case 900: cell = in.Hour + 1; break;
    case 901: {
      const int y0 = Floor(in.Anchor - 1) * 100;
      cell = cells > 0 ? Floor((in.Year - y0) / (100.0 / cells)) + 1 : 0;
      break;
    }
    case 902: cell = RoundEven((in.PlaceLatitude + 90) / 10 + 1); break;
    case 903: cell = RoundEven((in.PlaceLongitude + 180) / 10 + 1); break;
    default: break;
  }
  // A cell the table has no row for is no cell: it counts in the total only.
  if (cell < 0 || cell > cells) cell = 0;
  std::erase_if(extra, [&](int c) { return c < 0 || c > cells; });
  if (extra.empty()) extra.push_back(0);
  return cell;
}

// ---------------------------------------------------------------------------
// The screen's rules.

DivisionControls ControlsFor(int dataType, int code) {
  DivisionControls c;
  c.Harmonic = code == 8 || code == 12 || code == 51 || code == 601 || code == 701;
  c.UserDivisions = IsUserCode(code);
  if (code == 12 || code == 52 || code == 601 || code == 701) {
    c.Anchor = true, c.AnchorCaption = "Anchor Point", c.AnchorDefault = "0";
  } else if (code == 50 || code == 51) {
    c.Anchor = true, c.AnchorCaption = "Aspect Orb", c.AnchorDefault = "5";
  } else if (code == 402) {
    c.Anchor = true, c.AnchorCaption = "Range (\xB1)", c.AnchorDefault = "30";
  } else if (code == 901) {
    c.Anchor = true, c.AnchorCaption = "Century", c.AnchorDefault = "20";
  }
  c.Rulers = code == 105 || code == 106 || (code >= 201 && code <= 207);
  if (dataType == kHouseData || dataType == kDiurnalData || dataType == kAzimuthData ||
      dataType == kAltitudeData || code == 302 || code == 303) {
    c.InexactEnabled = {false, false, true};
    c.ForcedInexact = 2;
  } else if (code == 300 || code == 301) {
    c.InexactEnabled = {false, true, true};
  }
  return c;
}

bool AnchorFromText(Session& session, int dataType, const std::string& text, double& value, std::string& shown) {
  if (dataType == kNatalDetailsData) {
    char* end = nullptr;
    const long n = std::strtol(text.c_str(), &end, 10);
    value = std::clamp<long>(end == text.c_str() ? 0 : n, 0, 99);
    shown = std::to_string(static_cast<int>(value));
    return true;
  }
  float angle = 0;
  bool failed = false;
  ParseAngle(session, text, angle, failed);
  if (failed) return false;
  value = angle;
  if (dataType == kLatitudeData) value = std::clamp(value, 1.0, 90.0);
  shown = AngleText(value);
  return true;
}

bool CheckWholeDegreeHarmonic(Session& session, TabulateParams& params) {
  if (params.Code != 8) return true;
  const int h = static_cast<int>(params.Harmonic);
  if (h >= 1 && h == params.Harmonic && 360 % h == 0) return true;
  session.ShowMessage(
      "The selected harmonic does not result in divisions of whole degrees. If you wish to explore this "
      "harmonic, then you will need to use the \"User Defined Divisions\" option.",
      kIconExclamation, "Invalid Harmonic");
  params.Harmonic = 1;
  return false;
}

bool CheckTabulateParams(Session& session, const TabulateParams& params) {
  if (params.DataType < 0 || params.DataType >= kDataTypes || !DivisionBelongs(params.DataType, params.Code)) {
    session.ShowMessage("The division code " + std::to_string(params.Code) + " does not belong to the data type " +
                            std::to_string(params.DataType) + ".",
                        kIconExclamation, "Invalid Division");
    return false;
  }
  if ((params.Code == 50 || params.Code == 51) && params.Orb < 0.001) {
    session.ShowMessage("The orb is zero degrees. Please enter a non-zero orb and try again.", kIconExclamation,
                        "Zero Aspect Orb");
    return false;
  }
  if (!(params.Harmonic >= 1) || params.Harmonic > 360 ||
      ((params.Code == 8 || params.Code == 51) && params.Harmonic != std::floor(params.Harmonic))) {
    session.ShowMessage("The harmonic must be a whole number from 1 to 360.", kIconExclamation, "Invalid Harmonic");
    return false;
  }
  if (IsUserCode(params.Code) && (params.UserDivisions < 1 || params.UserDivisions > 3600)) {
    session.ShowMessage("The number of divisions must be from 1 to 3600.", kIconExclamation, "Invalid Divisions");
    return false;
  }
  if (params.Code == 402 && std::floor(params.Orb) < 1) {
    session.ShowMessage("The range must be at least one degree.", kIconExclamation, "Invalid Range");
    return false;
  }
  if (CellCountsOf(params).CellCount < 1) {
    session.ShowMessage("This division has no cells with these settings.", kIconExclamation, "Invalid Division");
    return false;
  }
  if (params.Points.empty() && params.DataType != kNatalDetailsData) {
    session.ShowMessage("There are no points selected. Select some points from the list and try again.",
                        kIconExclamation, "No Points Selected");
    return false;
  }
  if (params.DataType == kSeparationData && params.Points.size() < 2) {
    session.ShowMessage(
        "There are insufficient points selected. Select at least two points from the list and try again.",
        kIconExclamation, "Insufficient Points Selected");
    return false;
  }
  return true;
}

// ---------------------------------------------------------------------------
// The research chart of a record.

void LoadResearchChart(Session& session, ResearchChart& chart, const EventRecord& e, const EventPositionRecord& r,
                       int pass) {
  const int s = chart.Slot;
  const int c = session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
  ChartTables& t = session.charts;
  ChartSlot& slot = t.Slots[s];
  chart.NewChart(e.DetailLevel < 3);

  // The moment of the pass in universal time, and the record's own moment
  // (ephemeris time) for the slow quantities.
  const double span = EventHalfSpan(e);
  const double shift = pass == 1 ? -span : (pass == 2 ? span : 0.0);
  double ut = 12.0;
  if (e.DetailLevel > 0) ut += e.ZoneHours;
  if (e.DetailLevel > 1) ut = e.Hour + e.Minute / 60.0 + e.Second / 3600.0 + e.ZoneHours;
  ut += shift * 24.0;
  const double jd0 = JulDay(e.Day, e.Month, e.Year);
  slot.ChartJD = jd0 + ut / 24.0;
  slot.ChartZone = e.ZoneHours;
  slot.T = CenturiesFrom1900(RecordJulianDay(e) + shift);
  slot.Obliquity = MeanObliquity(slot.T);
  slot.Ramc = Ramc(LocalSidereal(SiderealAtZero(jd0), ut), e.Longitude);
  slot.Latitude = e.Latitude;
  slot.Longitude = e.Longitude;
  slot.ChartZodiac = session.prefs.Zodiac;
  slot.ChartHouseSystem = session.prefs.Houses;
  slot.ChartName = e.Description;
  slot.ChartPlace = e.Placename;
  const bool sidereal = session.prefs.Zodiac != 1;
  slot.SiderealOffset = sidereal ? SiderealOffset(session.prefs.Zodiac, session.prefs.UserAyan, r.PrecessionArcsec)
                                 : 0.0;

  for (int p = 1; p <= kPoints; ++p) {
    double lon = -1.0, lat = 0.0;
    const double a = r.StartPos[p], b = r.EndPos[p];
    if (a >= 0.0 && b >= 0.0 && std::isfinite(a) && std::isfinite(b)) {
      if (pass == 1) {
        lon = a, lat = r.StartLat[p];
      } else if (pass == 2) {
        lon = b, lat = r.EndLat[p];
      } else {
        // The nearer midpoint of the two ends.
        lon = Mod(a + (Mod(b - a + 180.0, 360.0) - 180.0) / 2.0, 360.0);
        lat = (r.StartLat[p] + r.EndLat[p]) / 2.0;
      }
      if (sidereal) lon = Mod(lon + slot.SiderealOffset, 360.0);
    }
    t.Longitude[c][s][p] = lon;
    t.Latitude[c][s][p] = lon >= 0.0 ? lat : -1.0;
    const int m = r.Motion[p];
    t.LongSpeed[c][s][p] = m == 1 || m == -1 ? 1.0 : (m == 2 || m == -2 ? -1.0 : 0.0);
    t.Retrograde[s][p] = static_cast<int16_t>(m == 2 || m == -2);
  }

  // The angles: the cached ones where the record has them, else those of
  // the moment; a chart without a located time has none. The sect needs an
  // Ascendant even then, so the moment's is kept for it.
  const Angles angles = ComputeAngleSet(slot.Ramc, slot.Obliquity, e.Latitude, slot.SiderealOffset);
  const double computed[4] = {angles.Ascendant, angles.Midheaven, angles.Vertex, angles.EastPoint};
  double ascendant = t.Longitude[c][s][kAscendant];
  if (ascendant < 0.0) ascendant = angles.Ascendant;
  for (int p = kAscendant; p <= kEastPoint; ++p) {
    if (chart.NoHouses) {
      t.Longitude[c][s][p] = -1.0;
    } else if (t.Longitude[c][s][p] < 0.0) {
      t.Longitude[c][s][p] = computed[p - kAscendant];
      t.Latitude[c][s][p] = 0.0;
      t.LongSpeed[c][s][p] = 1.0;
    }
  }
  chart.IsDay = IsDayChart(t.Longitude[c][s][kSun], ascendant);
}

namespace {

// The pairs of selected points, numbered as the table's columns.
int PairColumn(int a, int b, int n) {
  if (a > b) std::swap(a, b);
  int column = 0;
  for (int i = 0; i < a; ++i) column += n - 1 - i;
  return column + (b - a);
}

struct Classified {
  int Cell = 0;
  std::vector<int> Extra;
};

class Tabulator {
 public:
  Tabulator(Session& session, ResearchState& state, const TabulateParams& params, TabulationRun& run,
            const FilterBlock& filter, const std::function<void(int)>& extract)
      : session_(session), state_(state), p_(params), run_(run), filter_(filter), extract_(extract),
        rays_(RayWeights(params.Code == 11)) {
    in_.Code = p_.Code;
    in_.CellCount = run_.CellCount;
    in_.Harmonic = p_.Harmonic;
    in_.Anchor = p_.Anchor;
    in_.Orb = p_.Orb;
    in_.RayWeight = &rays_;
  }

  // One record's charts and counts.
  void Record(int n, const EventRecord& e, const EventPositionRecord& cached) {
    extracted_.assign(run_.ColumnCount + 2, 0);
    in_.Year = e.Year;
    in_.Hour = e.Hour;
    in_.PlaceLatitude = e.Latitude;
    in_.PlaceLongitude = e.Longitude;
    if (p_.DataType == kNatalDetailsData) {
      std::vector<int> extra;
      const int cell = ClassifyPoint(in_, extra);
      Count(n, 1, cell, extra);
      ++run_.ChartsUsed;
      return;
    }
    const bool inexact = e.DetailLevel < 2;
    std::vector<int> passes{1};
    if (inexact) passes = p_.InexactOption == 1 ? std::vector<int>{3} : std::vector<int>{1, 2};
    memory_.assign(run_.ColumnCount + 2, {});
    bool any = false;
    for (size_t k = 0; k < passes.size(); ++k) {
      const bool first = k == 0, last = k + 1 == passes.size();
      LoadResearchChart(session_, chart_, e, cached, passes[k]);
      state_.Scheme = p_.Scheme;
      if (state_.Scheme >= kAncientDayScheme && !chart_.IsDay) state_.Scheme = kAncientNightScheme;
      in_.Scheme = state_.Scheme;
      ExpandPoints(session_, state_, chart_, p_.Points, expanded_, origin_);
      EvaluatePoints(session_, state_, chart_, expanded_, values_);
      any = any || std::any_of(values_.begin(), values_.end(), [](const PointValue& v) { return v.Longitude >= 0; });
      if (p_.DataType == kHarmonicData) {
        if (last) Degrees(n);
        continue;
      }
      if (p_.DataType == kHouseData || p_.Code == 105 || p_.Code == 106) {
        if (!chart_.CuspsCast) EnsureCusps(session_, chart_);
        in_.Cusps = &session_.charts.Slots[chart_.Slot].Cusps;
      }
      FillGroups();
      Walk(n, first, last);
    }
    state_.Scheme = p_.Scheme;
    if (any) ++run_.ChartsUsed;
    else ++run_.SkippedNoPosition;
  }

 private:
  void FillGroups() {
    const int t = p_.DataType;
    const bool diurnal = t == kDiurnalData || p_.Code == 302 || p_.Code == 303;
    if (diurnal || t == kRightAscensionData || t == kDeclinationData || t == kAzimuthData || t == kAltitudeData)
      FillEquatorial(session_, chart_, values_);
    if (t == kAzimuthData || t == kAltitudeData) FillHorizon(session_, chart_, values_);
    if (diurnal) FillDiurnal(session_, chart_, values_);
  }

  // The primary and secondary value of a point by data type; false when
  // the point has no value.
  bool ValueOf(const PointValue& pv, double& v, double& y) const {
    if (pv.Longitude < 0.0) return false;
    switch (p_.DataType) {
      case kDiurnalData: v = pv.DiurnalPosition, y = 0; break;
      case kRightAscensionData: case kDeclinationData: v = pv.RightAscension, y = pv.Declination; break;
      case kAzimuthData: case kAltitudeData: v = pv.Azimuth, y = pv.Altitude; break;
      default: v = pv.Longitude, y = pv.Latitude; break;
    }
    return v >= 0.0;
  }

  void Walk(int n, bool first, bool last) {
    const int count = static_cast<int>(values_.size());
    std::vector<int> seen(run_.ColumnCount + 2, 0);
    auto item = [&](int column, int cell, const std::vector<int>& extra) {
      const int ordinal = seen[column]++;
      auto& memory = memory_[column];
      if (first) {
        if (static_cast<int>(memory.size()) <= ordinal) memory.resize(ordinal + 1);
        memory[ordinal] = {cell, extra};
      } else {
        const bool agree = ordinal < static_cast<int>(memory.size()) && memory[ordinal].Cell == cell &&
                           memory[ordinal].Extra == extra;
        if (!agree) {
          // An inexact chart whose point changes cell within its time range.
          ++run_.AmbiguousPoints;
          return;
        }
      }
      if (last) Count(n, column, cell, extra);
    };
    std::vector<int> extra;
    if (p_.DataType == kSeparationData) {
      const int selected = static_cast<int>(p_.Points.size());
      for (int i = 0; i < count; ++i) {
        if (values_[i].Longitude < 0.0) continue;
        for (int j = i + 1; j < count; ++j) {
          if (values_[j].Longitude < 0.0 || origin_[i] == origin_[j]) continue;
          in_.Value = Mod(values_[i].Longitude - values_[j].Longitude, 360.0);
          in_.Secondary = 0;
          in_.Planet = 0;
          const int column = PairColumn(origin_[i], origin_[j], selected);
          const int cell = ClassifyPoint(in_, extra);
          item(column, cell, extra);
        }
      }
      return;
    }
    for (int i = 0; i < count; ++i) {
      double v = 0, y = 0;
      if (!ValueOf(values_[i], v, y)) continue;
      in_.Value = v;
      in_.Secondary = y;
      in_.Speed = values_[i].Speed;
      in_.Planet = values_[i].Planet;
      const int cell = ClassifyPoint(in_, extra);
      item(origin_[i] + 1, cell, extra);
    }
  }

  void Degrees(int n) {
    const bool diurnal = p_.Code == 302 || p_.Code == 303;
    if (diurnal) {
      FillEquatorial(session_, chart_, values_);
      FillDiurnal(session_, chart_, values_);
    }
    (void)n;
    for (size_t i = 0; i < values_.size(); ++i) {
      if (values_[i].Longitude < 0.0) continue;
      const double v = diurnal ? values_[i].DiurnalPosition : values_[i].Longitude;
      if (v < 0.0) continue;
      const int degree = std::clamp(Floor(Mod(v, 360.0)) + 1, 1, 360);
      const int column = origin_[i] + 1;
      run_.Tally[degree][column] += 1;
      run_.Tally[degree][run_.ColumnCount + 1] += 1;
      run_.Tally[361][column] += 1;
    }
  }

  void Count(int n, int column, int cell, const std::vector<int>& extra) {
    if (column < 1 || column > run_.ColumnCount) return;
    auto& tally = run_.Tally;
    const int total = run_.CellCount + 1, all = run_.ColumnCount + 1;
    if (filter_.Active) {
      // A record is written once for each column of the block it matches,
      // and once only within a column.
      if (extracted_[column] || column < filter_.FirstColumn || column > filter_.LastColumn) return;
      bool hit = cell >= filter_.FirstCell && cell <= filter_.LastCell && cell != 0;
      for (size_t k = 1; k < extra.size(); ++k)
        hit = hit || (extra[k] >= filter_.FirstCell && extra[k] <= filter_.LastCell && extra[k] != 0);
      if (hit && extract_) {
        extract_(n);
        extracted_[column] = 1;
      }
      return;
    }
    if (p_.Code == 10 || p_.Code == 11) {
      if (cell == 0) {
        tally[total][column] += 1;
        return;
      }
      std::vector<int> cells{cell};
      for (size_t k = 1; k < extra.size(); ++k)
        if (extra[k] > 0) cells.push_back(extra[k]);
      const double share = p_.Code == 11 ? 1.0 : static_cast<double>(cells.size());
      for (int c : cells) {
        const auto w = static_cast<float>(1.0 / (share * rays_[c]));
        tally[c][column] += w;
        tally[c][all] += w;
        tally[total][column] += w;
      }
      return;
    }
    if (cell != 0) {
      tally[cell][column] += 1;
      tally[cell][all] += 1;
    }
    for (size_t k = 1; k < extra.size(); ++k)
      if (extra[k] > 0) {
        tally[extra[k]][column] += 1;
        tally[extra[k]][all] += 1;
      }
    tally[total][column] += 1;
  }

  Session& session_;
  ResearchState& state_;
  const TabulateParams& p_;
  TabulationRun& run_;
  const FilterBlock& filter_;
  const std::function<void(int)>& extract_;
  std::array<double, 8> rays_;
  ClassifyInput in_;
  ResearchChart chart_;
  std::vector<PointRef> expanded_;
  std::vector<int> origin_;
  std::vector<PointValue> values_;
  std::vector<std::vector<Classified>> memory_;
  std::vector<char> extracted_;  // per column, in filter mode
};

}  // namespace

TabulationRun TabulateRun(Session& session, ResearchState& state, const TabulateParams& params, Progress* progress,
                          const FilterBlock& filter, const std::function<void(int record)>& extract) {
  TabulationRun run;
  run.Params = params;
  TabulateParams& p = run.Params;
  // The dignity divisions of the classical tables count by the Ancient scheme.
  if (p.Code >= 208 && p.Code <= 211) p.Scheme = kAncientDayScheme;
  if (p.Code == 50 || p.Code == 51 || p.Code == 402) p.Orb = p.Orb > 0 ? p.Orb : p.Anchor;
  run.Triangles = p.Code == 11;
  const CellCounts counts = CellCountsOf(p);
  run.CellCount = counts.CellCount;
  run.UsedCells = counts.UsedCells;
  if (run.CellCount < 1) {
    session.ShowMessage("This division has no cells with these settings.", kIconExclamation, "Invalid Division");
    run.Failed = true;
    return run;
  }

  const int n = static_cast<int>(p.Points.size());
  run.ColumnCount = p.DataType == kSeparationData ? n * (n - 1) / 2 : (p.DataType == kNatalDetailsData ? 1 : n);
  run.ColumnNames.assign(run.ColumnCount + 1, "");
  if (p.DataType == kNatalDetailsData) {
    run.ColumnNames[1] = "Natal";
  } else if (p.DataType == kSeparationData) {
    for (int i = 0; i < n; ++i)
      for (int j = i + 1; j < n; ++j)
        run.ColumnNames[PairColumn(i, j, n)] =
            PointName(session, state, p.Points[i]) + "/" + PointName(session, state, p.Points[j]);
  } else {
    for (int i = 0; i < n; ++i) run.ColumnNames[i + 1] = PointName(session, state, p.Points[i]);
  }
  if (run.ColumnCount < 1) {
    session.ShowMessage("There are no points selected. Select some points from the list and try again.",
                        kIconExclamation, "No Points Selected");
    run.Failed = true;
    return run;
  }

  try {
    std::string error;
    if (!state.Header.PartsFile.empty()) LoadParts(session, state, ResolveListFile(session, state.Header.PartsFile), error);
    if (!state.Header.AlmutenFile.empty())
      LoadAlmutens(session, state, ResolveListFile(session, state.Header.AlmutenFile), error);
    int16_t failed = 0;
    LoadDignityData(session, state.Dignity, failed);

    if (progress) {
      progress->Caption(filter.Active ? "Extraction Status" : "Tally Status");
      progress->Status("Reading data records...");
    }
    const int coordinate = session.cache.Coordinate == kHeliocentric ? kHeliocentric : kGeocentric;
    const int method = std::clamp<int>(session.cache.ProgressionMethod, kNaibod, kMeanQuotidian);
    bool cancelled = false;
    if (p.DataType != kNatalDetailsData) {
      CalcEvents(session, coordinate, kTransits, method, cancelled, progress);
      if (cancelled) {
        run.Cancelled = true;
        return run;
      }
    }

    const int rows = p.DataType == kHarmonicData ? 362 : run.CellCount + 2;
    run.Tally.assign(rows, std::vector<float>(run.ColumnCount + 2, 0.0f));

    ProjectState& project = session.project;
    const int count = static_cast<int>(
        std::min<long long>(project.Header.RecordCount, static_cast<long long>(project.Events.size()) - 1));
    CacheReader cache;
    if (p.DataType != kNatalDetailsData && count > 0) {
      if (!cache.Open(CacheFileName(project.ProjectPath, coordinate, kTransits), count)) {
        session.ShowMessage("The position file of this project could not be read.", kIconExclamation, "Error");
        run.Failed = true;
        return run;
      }
    }

    Tabulator tabulator(session, state, p, run, filter, extract);
    EventPositionRecord cached;
    for (int i = 1; i <= count; ++i) {
      if (progress && i % 10 == 0) {
        progress->Status("Records Processed: " + std::to_string(i));
        progress->Fraction(static_cast<double>(i) / count);
        if (progress->Cancelled()) {
          run.Cancelled = true;
          break;
        }
      }
      ++run.ChartsRead;
      const EventRecord& e = project.Events[i];
      if (!e.Enabled) {
        ++run.SkippedDisabled;
        continue;
      }
      if (e.DetailLevel < 2 &&
          (p.InexactOption == 2 || p.DataType == kHouseData || p.DataType == kDiurnalData ||
           p.DataType == kAzimuthData || p.DataType == kAltitudeData || p.Code == 302 || p.Code == 303 ||
           (p.DataType == kNatalDetailsData && p.Code == 900))) {
        ++run.SkippedInexact;
        continue;
      }
      if (p.DataType != kNatalDetailsData) {
        const unsigned char* bytes = cache.Record(i);
        if (bytes == nullptr) {
          // The cache is shorter than the project: nothing to read here.
          ++run.SkippedNoPosition;
          continue;
        }
        cached = DecodeCacheRecord(bytes);
        if (!CacheRecordUsable(cached)) {
          ++run.SkippedNoPosition;
          continue;
        }
      }
      tabulator.Record(i, e, cached);
    }

    if (p.DataType == kHarmonicData && !run.Cancelled) FourierStep(run, progress);
    if (!filter.Active) {
      if (progress) progress->Status("Totalling...");
      double sum = 0;
      for (int c = 1; c <= run.ColumnCount; ++c) sum += run.Tally[run.CellCount + 1][c];
      run.Tally[run.CellCount + 1][run.ColumnCount + 1] = static_cast<float>(sum);
    }
  } catch (const std::exception& ex) {
    session.ShowMessage(std::string("An error occured during tabulation: ") + ex.what(), kIconStop, "Error");
    run.Failed = true;
  }
  return run;
}

}  // namespace vintar
