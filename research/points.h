// Research points: the identifiers of what a research run measures (chart
// points, fixed degrees, midpoints, cusps, Arabic parts, chart almutens,
// prenatal positions, each through one of sixteen transformations), the
// point list files (.vpt), the editing rules of the point list, and the
// evaluation of a list for one chart: expansion, values, transformations and
// the equatorial, horizon and diurnal coordinates on demand.
//
// Longitudes are degrees 0 up to 360 with the sidereal offset of the
// session's zodiac in them; a negative longitude means the point has no
// value in this chart. The chart is the one in a session slot (7 for
// research), whose ChartSlot facts (JD in universal time, RAMC, obliquity,
// place, zone, sidereal offset) are current. Right ascension, declination,
// azimuth, altitude and the diurnal position are checked against the
// ephemeris library's own swe_cotrans, swe_azalt and swe_gauquelin_sector in
// tests/research/points_test.cpp.
//
// The diurnal position falls as the day goes on: a point rises at 360 (= 0),
// culminates at 270, sets at 180 and passes the lower meridian at 90, each
// quarter scaled by its own semi-arc. Gauquelin numbers his sectors with the
// diurnal motion from the rising point, 1 to 18 (of 36) above the horizon;
// his fractional sector g is v = 370 - 10 g, so sector s of 36 is v in
// (360 - 10 s, 370 - 10 s]. Apart from the boundaries the 36-sector
// division's cell c (code 504, Int(v / 10) + 1) is Gauquelin sector 37 - c,
// and the 12-sector cell c (code 502) is sector 13 - c. His key sectors
// after rising and after culmination (1-3 and 10-12 of 36) are the cells
// 34-36 and 25-27 of code 504.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "calc/cache.h"
#include "core/session.h"
#include "research/dignity_files.h"

namespace vintar {

inline constexpr int kResearchSlot = 7;
inline constexpr int kMaxSelectedPoints = 124;
inline constexpr int kPointRefSize = 14;
inline constexpr int kPointListHeaderSize = 1536;

enum PointTypeCode : int32_t {
  kChartPointType = 0,
  kFixedPositionType = 1,
  kMidpointType = 2,
  kHouseCuspType = 3,
  kArabicPartType = 4,
  kChartAlmutenType = 5,
  kPrenatalType = 6,
};

struct PointRef {
  int32_t PointType = 0;
  uint8_t Item1 = 0;
  uint8_t Item2 = 0;
  float Position = 0.0f;
  int32_t Transform = 0;
  bool operator==(const PointRef&) const = default;  // positions compared exactly
};

struct PointValue {
  int Planet = 0;
  double Longitude = -1.0;
  double Speed = 0.0;
  double Latitude = 0.0;
  double RightAscension = 0.0, Declination = 0.0;
  double Azimuth = 0.0, Altitude = 0.0;
  double DiurnalPosition = -1.0;
};

struct PointListHeader {
  std::string PartsFile;    // 255 on disk
  std::string AlmutenFile;  // 255 on disk
  int16_t PointCount = 0;
  std::string Carried;      // the 1024 bytes after the count, kept as read
};

// The research state of a session: the file tables, the selected points,
// the parts and almuten lists, the rulership scheme of the run.
struct ResearchState {
  DignityData Dignity;
  PointListHeader Header;
  std::vector<PointRef> Selected;
  std::vector<PartDef> Parts;  // Item1 n is Parts[n - 1]
  std::string PartsFileName;
  std::vector<AlmutenDef> Almutens;  // Item1 n is Almutens[n - 1]
  std::string AlmutenFileName;
  int Scheme = 1;  // DignityScheme: 1 Modern, 2 Ancient day, 3 Ancient night
  // Parts files named by almuten definitions, read once: (path, parts).
  std::vector<std::pair<std::string, std::vector<PartDef>>> AlmutenParts;
};

// Display name: "Mars", "Sun/Moon", "10th House Cusp", a part's name,
// "Prenatal New Moon", with the transformation prefix: "Ruler (New) of Mars".
std::string PointName(const Session& session, const ResearchState& state, const PointRef& ref);

// Part and almuten lists. A path that does not exist empties the list and
// says nothing; a file that reads in error keeps what was read and returns
// false with `error` set. Reload happens only when the name (upper case)
// differs or the list is empty.
bool LoadParts(Session& session, ResearchState& state, const std::string& path, std::string& error);
bool LoadAlmutens(Session& session, ResearchState& state, const std::string& path, std::string& error);
// The path rule: as given when it exists, else the same name in the
// project's folder, the user data folder and the system data folder.
std::string ResolveListFile(const Session& session, const std::string& path);

// .vpt files: a header and PointCount 14-byte records, little-endian.
std::string EncodePointList(const PointListHeader& header, const std::vector<PointRef>& refs);
// False with `error` for a file shorter than its count says, a count out of
// 0..124, or a record with a type or transformation out of range.
bool DecodePointList(const std::string& bytes, PointListHeader& header, std::vector<PointRef>& refs,
                     std::string& error);
bool SavePointList(Session& session, const std::string& path, const ResearchState& state);  // staged write
// Reads the list, then loads its parts and almuten files; messages through
// ShowMessage on failure, nothing changed.
bool OpenPointList(Session& session, ResearchState& state, const std::string& path);

// The point editor's Add: at the limit shows "The limit of 124 has been
// reached..." (title "Cannot Add") and returns -1; a point already listed
// is not added and its index (from 0) returned; else appended, index returned.
int AddPoint(Session& session, std::vector<PointRef>& list, const PointRef& ref);
// "Add All Midpoints of highlighted point": every point 1 to 24 but `point`.
void AddAllMidpoints(Session& session, std::vector<PointRef>& list, int point, int transform);
// The warning when the parts or almuten file changes under selected points.
std::string ChangeFileWarning(int selectedCount);
// The editor's file button for a point type: its caption, the dialog's
// title and filter ("Parts File...", "Select Parts File", "Parts Files
// (*.arp)|*.arp" for Arabic parts; the almuten file for chart almutens);
// empty for the other types, which have no file.
struct ListFileButton {
  std::string Caption, Title, Filter;
};
ListFileButton ListFileButtonFor(int pointType);

// Finds a point by its display name (case ignored) for the command line:
// "Mars", "Sun/Moon", "10th House Cusp", "Prenatal New Moon", a part's name
// or abbreviation, an almuten's name, "15Ar30" for a fixed degree.
// Returns false when nothing matches.
bool PointByName(const Session& session, const ResearchState& state, const std::string& name, PointRef& ref);
// The transformation named in cmbTransformations ("Ruler (New)"), -1 for none.
int TransformByName(const Session& session, const std::string& name);

// The last moment before `jd` (backward) or the first after it when the
// elongation Moon - Sun reached `target` (mod 180 with `syzygy`, else mod
// 360). `elongation` negative means compute it at jd. Uses slot 6. `jd` is
// handed to the ephemeris as it stands, the chart's own time scale; Moon and
// Sun carry the sidereal offset and are -1 when the ephemeris failed.
struct PrenatalResult {
  double JD = 0, Moon = -1, Sun = -1;
};

// One chart under evaluation: the slot holding it and its per-chart flags,
// with what was found for it once and is read again by later points.
struct ResearchChart {
  int Slot = kResearchSlot;
  bool IsDay = false;     // the sect, set by whoever loads the chart
  bool NoHouses = false;  // DetailLevel below 3
  bool CuspsCast = false;
  bool EquatorialDone = false, HorizonDone = false, DiurnalDone = false;
  // Prenatal lunations: [0] the last syzygy, [1 + q] the last moment the
  // elongation was q * 90 degrees (so [1] the new moon, [3] the full moon).
  std::array<PrenatalResult, 5> Prenatal{};
  std::array<bool, 5> PrenatalDone{};
  // Cusps in a chart almuten's own house system, beside the slot's own.
  int AlmutenHouseSystem = -1;
  std::array<double, 13> AlmutenCusps{};
  void NewChart(bool noHouses) {
    NoHouses = noHouses;
    CuspsCast = EquatorialDone = HorizonDone = DiurnalDone = false;
    PrenatalDone = {};
    AlmutenHouseSystem = -1;
  }
};

// Casts the slot's cusps in the session's house system from its RAMC,
// obliquity and latitude, once per chart.
void EnsureCusps(Session& session, ResearchChart& chart);

PrenatalResult PrenatalSearch(Session& session, double jd, double elongation, double target, bool backward,
                              bool syzygy);

// Value of one ref in the chart, before transformation.
PointValue PointValueOf(Session& session, ResearchState& state, ResearchChart& chart, const PointRef& ref);

// Turns the selected refs into the chart's expanded refs; origin[i] is the
// index (from 0) of the selected ref that gave expanded ref i.
void ExpandPoints(Session& session, ResearchState& state, ResearchChart& chart, const std::vector<PointRef>& refs,
                  std::vector<PointRef>& expanded, std::vector<int>& origin);
// Values of the expanded refs with their transformations applied.
void EvaluatePoints(Session& session, ResearchState& state, ResearchChart& chart,
                    const std::vector<PointRef>& expanded, std::vector<PointValue>& values);

// The lazily filled groups for every value of the chart (negative
// longitudes skipped); each runs once per chart.
void FillEquatorial(const Session& session, ResearchChart& chart, std::vector<PointValue>& values);
void FillHorizon(const Session& session, ResearchChart& chart, std::vector<PointValue>& values);
void FillDiurnal(const Session& session, ResearchChart& chart, std::vector<PointValue>& values);

// The single-value forms behind them. `longitude` and `latitude` are
// tropical ecliptic degrees; ramc, obliquity and geographic latitude in
// degrees; the azimuth runs from the north through the east (the library's
// south-based westward azimuth plus 180); the diurnal position is -1 for a
// circumpolar point.
void EclipticToEquatorial(double longitude, double latitude, double obliquity, double& ra, double& declination);
void EquatorialToHorizon(double ra, double declination, double ramc, double geoLatitude, double& azimuth,
                         double& altitude);
double DiurnalPositionOf(double ra, double declination, double ramc, double geoLatitude);

}  // namespace vintar
