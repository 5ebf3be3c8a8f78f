// The vocabulary tables: see vocabulary.h for the numbering.
#include "core/vocabulary.h"

#include "core/parse.h"

#include <algorithm>
#include <initializer_list>

#include "core/preferences.h"
#include "core/text.h"

namespace vintar {
namespace {

using Names = std::vector<std::string>;

// A list numbered from 1: slot 0 is left empty.
Names FromOne(std::initializer_list<const char*> names) {
  Names list{""};
  list.insert(list.end(), names.begin(), names.end());
  return list;
}

Names FromZero(std::initializer_list<const char*> names) { return Names(names.begin(), names.end()); }

// The interpretation list numbering leaves 4 free and folds both nodes onto 20;
// list 21 comes from point 25, which has no row in the point table.
constexpr std::array<uint8_t, kPointListSize> kPointToList = {
    0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 20, 22, 23, 24, 25, 21, 0};
// Back again; 20 and 21 are set to the live node by SetNodePoint.
constexpr std::array<uint8_t, kPointListSize> kListToPoint = {
    0, 1, 2, 3, 0, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 20, 20, 21, 22, 23, 24, 26};

constexpr int kDivisionCodeCount = 904;
constexpr int kDeclinationCoordinate = 8;
constexpr int kLatitudeCoordinate = 5;

// Division names by coordinate, with the first division code of each.
// Declination (8) has none of its own: it reads the Latitude codes.
void BuildDivisions(Vocabulary& v) {
  struct DivisionList {
    int First;
    std::vector<const char*> Names;
  };
  const std::array<DivisionList, kCoordinateCount> lists = {{
      {0,
       {"Sign", "Sign Axis", "Element", "Mode", "Polarity", "Decanate", "Modern Dec. Sign", "Ancient Dec. Sign",
        "Degree", "Direction", "Ray (Weighted)", "Ray (Triangles)", "User Defined"}},
      {100, {"House", "House Mode", "Quadrant", "Hemisphere E/W", "Hemisphere N/S", "Houses Ruled", "Acc. Dignity"}},
      {50, {"Aspect", "Harmonic Aspect", "Phase"}},
      {200,
       {"Planet", "Essential Dignity", "Rulership", "Detriment", "Exaltation", "Fall", "Modern Dec. Rulers",
        "Ancient Dec. Rulers", "Triplicity (Lilly/In Sect)", "Face", "Ptolemaic Term", "Egyptian Term"}},
      {300, {"Amplitude (Zodiac)", "Phase Angle (Zod.)", "Amplitude (Diurnal)", "Phase Angle (Diu.)"}},
      {400, {"North/South", "Degree", "User Defined"}},
      {500, {"Semi-Arc", "10% Arc", "Gauquelin 12 sector", "Gauquelin 18 sector", "Gauquelin 36 sector"}},
      {600, {"30 Degrees", "User Defined"}},
      {400, {}},
      {700, {"30 Degree", "User Defined"}},
      {800, {"Above/Below", "10 Degree", "User Defined"}},
      {900, {"Time (Local)", "Year", "Latitude", "Longitude"}},
  }};
  v.DivisionName.assign(kDivisionCodeCount, "");
  for (int c = 0; c < kCoordinateCount; ++c) {
    int code = lists[c].First;
    for (const char* name : lists[c].Names) v.DivisionName[code++] = name;
    v.DivisionBounds[c] = {lists[c].First, code - 1};
  }
  v.DivisionBounds[kDeclinationCoordinate] = v.DivisionBounds[kLatitudeCoordinate];
}

// Rays of each sign, first ray first; 0 ends a row.
constexpr std::array<std::array<int, 3>, kSignCount + 1> kSignRays = {{
    {0, 0, 0},
    {1, 7, 0},  // Aries
    {4, 0, 0},  // Taurus
    {2, 0, 0},  // Gemini
    {3, 7, 0},  // Cancer
    {1, 5, 0},  // Leo
    {2, 6, 0},  // Virgo
    {3, 0, 0},  // Libra
    {4, 0, 0},  // Scorpio
    {6, 5, 4},  // Sagittarius
    {7, 3, 1},  // Capricorn
    {5, 0, 0},  // Aquarius
    {2, 6, 0},  // Pisces
}};

// Unicode symbols, UTF-8. Hygeia and Astraea have symbols only in recent
// Unicode, which DejaVu Sans lacks, so they keep their short names; the
// angles have no symbols and use the usual chart abbreviations. For the
// aspects DejaVu Sans lacks the sextile, semi-sextile, quincunx and
// sesquisquare symbols: the six-pointed star and the two logic signs of the
// same shape stand in, and the sesquisquare is drawn as square and angle.
constexpr std::array<const char*, kPointCount + 1> kUnicodePoints = {
    "", "\u263D", "\u2641", "\u2609", "\u263F", "\u2640", "\u2642", "\u2643", "\u2644",  // Moon to Saturn
    "\u2645", "\u2646", "\u2647", "\u26B7", "\u26B6", "\u26B4", "\u26B5", "\u26B3",  // Uranus to Ceres
    "Hyg", "Ast", "\u260A", "\u260A", "AC", "MC", "Vx", "EP",
};
constexpr std::array<const char*, kSignCount + 1> kUnicodeSigns = {
    "", "\u2648", "\u2649", "\u264A", "\u264B", "\u264C", "\u264D",
    "\u264E", "\u264F", "\u2650", "\u2651", "\u2652", "\u2653",
};
constexpr std::array<const char*, kAspectCount + 1> kUnicodeAspects = {
    "", "\u260C", "\u260D", "\u25B3", "\u25A1", "\u2736", "\u2220", "\u25A1\u2220", "\u22BB", "\u22BC",
};
constexpr const char* kUnicodeRetrograde = "\u211E";
constexpr const char* kUnicodeDegree = "\u00B0";

// A glyph code preference: digits only, 127 to 255; anything else keeps `def`.
int GlyphCodeFromText(const std::string& text, int def) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return def;
  const auto last = text.find_last_not_of(" \t");
  int value = 0;
  for (auto i = first; i <= last; ++i) {
    const char ch = text[i];
    if (ch < '0' || ch > '9') return def;
    value = value * 10 + (ch - '0');
    if (value > 255) return def;
  }
  return value >= kGlyphFirstCode ? value : def;
}

bool InGlyphRange(int code) { return code >= kGlyphFirstCode && code < kGlyphFirstCode + kGlyphTableSize; }

// Texts of the point codes 181 + list number; the node entries follow the live node.
void FillPointGlyphTexts(Vocabulary& v) {
  if (v.GlyphText.size() != kGlyphTableSize || v.GlyphUnicode.size() != kGlyphTableSize) return;
  for (int n = 1; n < kPointListSize; ++n) {
    const int point = v.ListToPoint[n];
    const int index = kPointGlyphBase + n - kGlyphFirstCode;
    const bool known = point >= 1 && point <= kPointCount;
    v.GlyphText[index] = known ? v.PointShort[point] : "";
    v.GlyphUnicode[index] = known ? kUnicodePoints[point] : "";
  }
}

}  // namespace

void BuildVocabulary(Vocabulary& v) {
  v.PointShort = FromOne({"Mon", "Ear", "Sun", "Mer", "Ven", "Mar", "Jup", "Sat", "Ura", "Nep", "Plu", "Chi",
                          "Ves", "Pal", "Jun", "Cer", "Hyg", "Ast", "TNo", "MNo", "Asc", "MC", "Vtx", "EP"});
  v.PointName = FromOne({"The Moon", "The Earth", "The Sun", "Mercury", "Venus", "Mars", "Jupiter", "Saturn",
                         "Uranus", "Neptune", "Pluto", "Chiron", "Vesta", "Pallas", "Juno", "Ceres", "Hygeia",
                         "Astraea", "North Node", "North Node", "Ascendant", "Midheaven", "Vertex", "EastPoint"});

  v.KeywordHeading.assign(v.PointName.begin() + 1, v.PointName.end());
  v.KeywordHeading.push_back("Descendant");
  v.KeywordHeading.push_back("IC");
  for (int house = 1; house <= 12; ++house) v.KeywordHeading.push_back(FormatOrdinal(house) + " House");

  v.PointToList = kPointToList;
  v.ListToPoint = kListToPoint;
  SetNodePoint(v, kMeanNodePoint);

  v.SignName = FromOne({"Aries", "Taurus", "Gemini", "Cancer", "Leo", "Virgo", "Libra", "Scorpio", "Sagittarius",
                        "Capricorn", "Aquarius", "Pisces"});
  v.SignShort = FromOne({"Ar", "Ta", "Ge", "Cn", "Le", "Vi", "Li", "Sc", "Sg", "Cp", "Aq", "Pi"});
  v.PolarityName = FromOne({"Yang", "Yin"});
  v.ModeName = FromOne({"Cardinal", "Fixed", "Mutable"});
  v.ElementName = FromOne({"Fire", "Earth", "Air", "Water"});
  v.SignAxisName = FromOne({"Aries/Libra", "Taurus/Scorpio", "Gemini/Sagittarius", "Cancer/Capricorn",
                            "Leo/Aquarius", "Virgo/Pisces"});

  v.DirectionName = FromOne({"Direct", "Retrograde", "Changing"});
  v.DignityStateName = FromOne({"In Rulership", "In Detriment", "In Exaltation", "In Fall", "No Rulerships"});
  v.NorthSouthName = FromOne({"North", "South"});
  v.EastWestName = FromOne({"East", "West"});
  v.HouseModeName = FromOne({"Angular", "Succedent", "Cadent"});
  v.AccidentalName = FromOne({"Acc. Dignified", "None"});
  v.HorizonName = FromOne({"Below Horizon", "Above Horizon"});
  v.QuadrantName = FromOne({"Below/Rising", "Below/Setting", "Above/Setting", "Above/Rising"});
  v.NodeKindName = FromOne({"True", "Mean"});

  v.AspectName = FromOne({"Conjunction", "Opposition", "Trine", "Square", "Sextile", "SemiSquare", "SesquiSquare",
                          "SemiSextile", "Quincunx"});
  v.AspectAngle = {0.0, 0.0, 180.0, 120.0, 90.0, 60.0, 45.0, 135.0, 30.0, 150.0};

  v.MonthName = FromOne({"January", "February", "March", "April", "May", "June", "July", "August", "September",
                         "October", "November", "December"});

  v.HouseSystemName = FromZero({"Alcabitius", "Campanus", "Koch", "Meridian", "Morinus", "Placidus", "Porphyry",
                                "Regiomontanus", "Topocentric", "Hindu Bhava", "Equal", "", "Whole Sign",
                                "Solar Sign", "User Defined..."});
  v.HouseSystemName[11] = std::string("0") + kDegreeSign + "Aries";

  v.ZodiacName = FromZero({"Tropical", "Fagan-Bradley", "Lahiri", "DeLuce", "Raman", "Usha Shashi", "Krishnamurti",
                           "Djwhal Khul", "User Ayanamsa"});
  v.CoordName = FromOne({"Geocentric", "Heliocentric"});
  v.DynamicMethodName =
      FromZero({"Transits", "Secondary Progressions", "Tertiary Progressions", "Solar Arc Directions"});
  v.DynamicMethodShort = FromZero({"Transits", "Secondary Progns", "Tertiary Progns", "Solar Arc Dirns"});
  v.ProgressionMethodName = FromOne({"Naibod in R.A.", "Solar Arc in Longitude", "Mean Quotidian"});

  v.CoordinateName = FromZero({"Longitude", "Houses", "Angular Separations", "Dignities & Planets",
                               "Harmonic Components", "Latitude", "Oblique Ascension", "Right Ascension",
                               "Declination", "Azimuth", "Altitude", "Natal Details"});
  BuildDivisions(v);

  v.PointTypeName = FromZero({"Chart Points", "Fixed Positions", "Midpoints", "House Cusps", "Arabic Parts",
                              "Chart Almutens", "Prenatal Positions"});
  v.PrenatalName = FromZero({"Prenatal Syz Moon", "Prenatal Syz Sun", "Prenatal Syz Elevated",
                             "Prenatal New Moon", "Prenatal Full Moon", "Prenatal Sun (Full Moon)"});
  v.TransformName = FromZero({"None", "Antiscia", "ContraAntiscia", "Ruler (New)", "Ruler (Old)",
                              "Trip. Ruler (Ptolemy - In Sect)", "Trip. Ruler (Ptolemy - Out Sect)",
                              "Trip. Ruler (Ptolemy - Extra)", "Trip. Ruler (Dorothean - In Sect)",
                              "Trip. Ruler (Dorothean - Out Sect)", "Trip. Ruler (Dorothean - Extra)",
                              "Trip. Ruler (Lilly - In Sect)", "Trip. Ruler (Lilly - Out Sect)",
                              "Term Ruler (Ptolemy)", "Term Ruler (Egyptian)", "Face Ruler", "Degree Almuten"});
  // Each prefix is the name and " of", except the two antiscia and the degree almuten.
  v.TransformPrefix.assign(v.TransformName.size(), "");
  for (size_t i = 1; i < v.TransformName.size(); ++i) v.TransformPrefix[i] = v.TransformName[i] + " of";
  v.TransformPrefix[1] = "Antiscia of";
  v.TransformPrefix[2] = "C.Antiscia of";
  v.TransformPrefix[16] = "Deg. Almuten of";

  v.ComparisonName = FromZero({"is equal to", "is not equal to", "is greater than", "is greater or equal to",
                               "is less than", "is less or equal to", "matches characters", "contains characters",
                               "starts with characters"});
  v.ConnectiveName = FromZero({"And", "Or", "Xor"});
  v.RecordFieldName = FromZero({"Description", "Date", "Day Range", "Detail Level", "Zone Abbr", "Zone Time", "Time",
                                "Placename", "Latitude", "Longitude", "Category"});

  v.GroupTypeName = FromZero({"Family", "Hunting Group", "Gathering Group", "Play/Peer Group", "Tribal Elders",
                              "Undefined"});
  v.GroupTypeShort = FromZero({"Family", "Hunt", "Gather", "Play", "Tribe", "Other"});

  v.DeltaT = kDeltaTTable;
}

void SetNodePoint(Vocabulary& v, int nodePoint) {
  v.NodePoint = nodePoint == kTrueNodePoint ? kTrueNodePoint : kMeanNodePoint;
  v.ListToPoint[20] = static_cast<uint8_t>(v.NodePoint);
  v.ListToPoint[21] = static_cast<uint8_t>(v.NodePoint);
  FillPointGlyphTexts(v);
}

void SetUserHouseName(Vocabulary& v, int pointOnCusp, int whichCusp) {
  if (v.HouseSystemName.size() != kHouseSystemCount || v.PointShort.size() != kPointCount + 1) return;
  const int point = std::clamp(pointOnCusp, 1, kPointCount);
  const int cusp = std::clamp(whichCusp, 1, 12);
  v.HouseSystemName[kUserHouseSystem] = v.PointShort[point] + " on " + FormatOrdinal(cusp);
}

void BuildRayTables(Vocabulary& v, bool equalWeights) {
  for (int sign = 1; sign <= kSignCount; ++sign) {
    v.RayCount[sign] = 0;
    v.SignRay[sign] = {0, 0, 0, 0};
    for (int ray : kSignRays[sign]) {
      if (ray == 0) break;
      v.SignRay[sign][++v.RayCount[sign]] = ray;
    }
  }
  // Each ray's share of the twelve signs, scaled so that the seven weights sum to 7.
  constexpr double k = 1.714286;
  constexpr std::array<double, kRays + 1> shares = {
      0.0, 1.0 + 1.0 / 3.0, 2.0, 1.0 + 5.0 / 6.0, 2.0 + 1.0 / 3.0, 1.0 + 5.0 / 6.0, 1.0 + 1.0 / 3.0, 1.0 + 1.0 / 3.0};
  v.EqualRayWeights = equalWeights;
  v.RayWeight[0] = 0.0;
  for (int ray = 1; ray <= kRays; ++ray) v.RayWeight[ray] = equalWeights ? 1.0 : shares[ray] / k;
}

void BuildGlyphTables(Vocabulary& v, const Preferences& prefs) {
  v.UranusGlyph = GlyphCodeFromText(prefs.UranusGlyph, 191);
  v.PlutoGlyph = GlyphCodeFromText(prefs.PlutoGlyph, 193);
  v.CapricornGlyph = GlyphCodeFromText(prefs.CapricornGlyph, 137);

  v.GlyphText.assign(kGlyphTableSize, "");
  v.GlyphUnicode.assign(kGlyphTableSize, "");
  auto set = [&v](int code, const std::string& text, const std::string& unicode) {
    v.GlyphText[code - kGlyphFirstCode] = text;
    v.GlyphUnicode[code - kGlyphFirstCode] = unicode;
  };
  const bool namesBuilt = v.SignShort.size() == kSignCount + 1 && v.AspectName.size() == kAspectCount + 1 &&
                          v.PointShort.size() == kPointCount + 1;
  if (namesBuilt) {
    for (int s = 1; s <= kSignCount; ++s) set(kSignGlyphBase + s, v.SignShort[s], kUnicodeSigns[s]);
    for (int a = 1; a <= kAspectCount; ++a) set(kAspectGlyphBase + a, v.AspectName[a], kUnicodeAspects[a]);
    set(220, v.SignShort[1], kUnicodeSigns[1]);
    set(221, v.SignShort[2], kUnicodeSigns[2]);
    for (int a = 1; a <= 3; ++a) set(222 + a, v.AspectName[a], kUnicodeAspects[a]);
  }
  set(kRetrogradeGlyph, "R", kUnicodeRetrograde);
  set(kDirectGlyph, "D", "D");
  set(kDegreeGlyph, std::string(1, kDegreeSign), kUnicodeDegree);
  set(222, "D", "D");
  if (namesBuilt) FillPointGlyphTexts(v);

  v.PointGlyph[0] = 0;
  for (int p = 1; p <= kPointCount; ++p) v.PointGlyph[p] = kPointGlyphBase + v.PointToList[p];
  v.PointGlyph[9] = v.UranusGlyph;
  v.PointGlyph[11] = v.PlutoGlyph;

  v.SignGlyph[0] = 0;
  for (int s = 1; s <= kSignCount; ++s) v.SignGlyph[s] = kSignGlyphBase + s;
  v.SignGlyph[1] = 220;
  v.SignGlyph[2] = 221;
  v.SignGlyph[10] = v.CapricornGlyph;
  v.SignGlyph[13] = kRetrogradeGlyph;

  v.AspectGlyph = {0, 223, 224, 225, 145, 146, 147, 148, 149, 150};

  v.UnicodePointGlyph.assign(kUnicodePoints.begin(), kUnicodePoints.end());
  v.UnicodeSignGlyph.assign(kUnicodeSigns.begin(), kUnicodeSigns.end());
  v.UnicodeAspectGlyph.assign(kUnicodeAspects.begin(), kUnicodeAspects.end());
}

HouseCodeChoice HouseCodeEntry(const Vocabulary& v, int code) {
  if (code >= 0 && code <= 8) return {code, 0, 0};
  switch (code) {
    case 9: return {10, 0, 0};
    case 10: return {11, 0, 0};
    case 11: return {13, 0, 0};
    case 12: return {kUserHouseSystem, 3, 1};
    case 13: return {kUserHouseSystem, 1, 1};
    case 22: return {kUserHouseSystem, v.NodePoint, 1};
    case 23: return {kUserHouseSystem, 23, 7};
    case 24: return {kUserHouseSystem, 24, 1};
    case 25: return {kUserHouseSystem, 22, 10};
    case 26: return {12, 0, 0};
    case 27: return {9, 0, 0};
    case 28: return {0, 0, 0};
    default: break;
  }
  // 14 to 21: Mercury to Pluto on the first cusp.
  if (code >= 14 && code <= 21) return {kUserHouseSystem, code - 10, 1};
  return {10, 0, 0};
}

int GlyphOf(const Vocabulary& v, int point) {
  if (point < 1 || point > kPointCount) return 0;
  return v.PointGlyph[point];
}

std::string GlyphCharOf(const Vocabulary& v, int point) {
  const int code = GlyphOf(v, point);
  return code > 0 ? std::string(1, static_cast<char>(code)) : std::string();
}

std::string GlyphFallbackText(const Vocabulary& v, int code) {
  if (!InGlyphRange(code) || v.GlyphText.size() != kGlyphTableSize) return "";
  return v.GlyphText[code - kGlyphFirstCode];
}

std::string GlyphUnicodeText(const Vocabulary& v, int code) {
  if (!InGlyphRange(code) || v.GlyphUnicode.size() != kGlyphTableSize) return "";
  return v.GlyphUnicode[code - kGlyphFirstCode];
}

std::vector<std::string> DivisionsOf(const Vocabulary& v, int coordinate) {
  if (coordinate < 0 || coordinate >= kCoordinateCount) return {};
  const DivisionRange range = v.DivisionBounds[coordinate];
  if (range.Last < range.First || range.Last >= static_cast<int>(v.DivisionName.size())) return {};
  return {v.DivisionName.begin() + range.First, v.DivisionName.begin() + range.Last + 1};
}

}  // namespace vintar
