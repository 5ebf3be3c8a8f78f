// The vocabulary: the numbering of chart points and every fixed name list
// that menus, reports, research divisions and criteria show, built in code at
// start-up and held by the session.
//
// Numbers here are a contract for the rest of the program: point 1 is the
// Moon, 2 the Earth, 3 the Sun, 4 Mercury to 11 Pluto, 12 Chiron to
// 18 Astraea, 19 the true node, 20 the mean node, 21 Ascendant, 22 Midheaven,
// 23 Vertex, 24 EastPoint; 0 is none. Lists that are numbered from 1 keep
// slot 0 empty; lists numbered from 0 (house systems, zodiacs, dynamic types,
// research coordinates, point types, transforms, criteria, group types) start
// at 0. Texts are single-byte Latin-1. Angles are degrees; delta-T is minutes.
//
// Symbol glyphs are character codes of the chart symbol font (127 to 255);
// each code also has a plain-text fallback and a Unicode (UTF-8) form for
// drawing with an ordinary font such as DejaVu Sans.
//
// Checked by tests/core/vocabulary_test.cpp against the numbering that the
// chart, research and group code rely on.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vintar {

struct Preferences;

inline constexpr int kPointCount = 24;
inline constexpr int kSignCount = 12;
inline constexpr int kAspectCount = 9;
inline constexpr int kHouseSystemCount = 15;  // 0 to 14
inline constexpr int kUserHouseSystem = 14;
inline constexpr int kCoordinateCount = 12;   // research coordinates 0 to 11
inline constexpr int kRays = 7;
inline constexpr int kPointListSize = 27;     // PointToList / ListToPoint, 0 to 26
inline constexpr int kTrueNodePoint = 19;
inline constexpr int kMeanNodePoint = 20;

// Symbol font codes.
inline constexpr int kGlyphFirstCode = 127;   // code of index 0 of the glyph tables
inline constexpr int kGlyphTableSize = 129;   // codes 127 to 255
inline constexpr int kSignGlyphBase = 127;    // sign s is code 127 + s
inline constexpr int kAspectGlyphBase = 141;  // aspect a is code 141 + a
inline constexpr int kPointGlyphBase = 181;   // list number n is code 181 + n
inline constexpr int kRetrogradeGlyph = 140;
inline constexpr int kDirectGlyph = 141;
inline constexpr int kDegreeGlyph = 176;

// Year and delta-T correction in minutes. The calendar code keeps its own
// copy for its interpolation; this one is for display and checks.
struct DeltaTPair {
  int Year;
  double Minutes;
};
inline constexpr int kDeltaTCount = 21;
inline constexpr std::array<DeltaTPair, kDeltaTCount> kDeltaTTable = {{
    {1710, -0.2}, {1730, -0.1}, {1750, 0.0},  {1770, 0.1},  {1800, 0.1},  {1840, 0.0},    {1870, 0.0},
    {1880, -0.1}, {1895, -0.1}, {1903, 0.0},  {1912, 0.2},  {1927, 0.4},  {1940, 0.4},    {1950, 0.5},
    {1965, 0.6},  {1971, 0.7},  {1977, 0.8},  {1987, 0.9},  {1993, 1.0},  {2000, 1.117},  {2010, 1.3333},
}};

// First and last division code of a research coordinate; the division
// chosen is First plus the index in the coordinate's list.
struct DivisionRange {
  int First;
  int Last;
};

// A house system named in outside settings, mapped onto ours. PointOnCusp
// and WhichCusp are set only for the user-defined system 14; 0 leaves the
// user settings as they are.
struct HouseCodeChoice {
  int System = 10;
  int PointOnCusp = 0;
  int WhichCusp = 0;
};

struct Vocabulary {
  // Chart points, 1 to 24. PointShort is a three-character field.
  std::vector<std::string> PointShort;
  std::vector<std::string> PointName;
  // 0 to 37: the 24 point names, "Descendant", "IC", "1st House" to "12th House".
  std::vector<std::string> KeywordHeading;
  // The interpretation list numbering and back, both 0 to 26; 0 where undefined.
  std::array<uint8_t, kPointListSize> PointToList{};
  std::array<uint8_t, kPointListSize> ListToPoint{};
  // The live node: 19 true, 20 mean.
  int NodePoint = kMeanNodePoint;

  // Signs 1 to 12 and their groups, each numbered from 1.
  std::vector<std::string> SignName;
  std::vector<std::string> SignShort;
  std::vector<std::string> PolarityName;
  std::vector<std::string> ModeName;
  std::vector<std::string> ElementName;
  std::vector<std::string> SignAxisName;

  // Division value names, numbered from 1 (the cell number).
  std::vector<std::string> DirectionName;
  std::vector<std::string> DignityStateName;
  std::vector<std::string> NorthSouthName;
  std::vector<std::string> EastWestName;
  std::vector<std::string> HouseModeName;
  std::vector<std::string> AccidentalName;
  std::vector<std::string> HorizonName;
  std::vector<std::string> QuadrantName;
  std::vector<std::string> NodeKindName;

  // Aspects 1 to 9, angles in degrees.
  std::vector<std::string> AspectName;
  std::vector<double> AspectAngle;

  std::vector<std::string> MonthName;        // 1 to 12
  std::vector<std::string> HouseSystemName;  // 0 to 14; 14 is rebuilt by SetUserHouseName
  std::vector<std::string> ZodiacName;       // 0 to 8; the Zodiac preference z is entry z - 1
  std::vector<std::string> CoordName;        // 1 Geocentric, 2 Heliocentric
  std::vector<std::string> DynamicMethodName;      // dynamic type 0 to 3
  std::vector<std::string> DynamicMethodShort;     // dynamic type 0 to 3
  std::vector<std::string> ProgressionMethodName;  // 1 to 3, the Progressions preference

  // Research coordinates 0 to 11; division names by division code (0 to
  // 903, empty between the ranges); the code range of each coordinate.
  // Coordinate 8 (Declination) shares the range of 5 (Latitude).
  std::vector<std::string> CoordinateName;
  std::vector<std::string> DivisionName;
  std::array<DivisionRange, kCoordinateCount> DivisionBounds{};

  std::vector<std::string> PointTypeName;    // 0 to 6
  std::vector<std::string> PrenatalName;     // 0 to 5
  std::vector<std::string> TransformName;    // 0 to 16
  std::vector<std::string> TransformPrefix;  // 0 to 16, 0 empty

  // Criteria and record selection.
  std::vector<std::string> ComparisonName;   // 0 to 8
  std::vector<std::string> ConnectiveName;   // 0 to 2
  std::vector<std::string> RecordFieldName;  // 0 to 10

  std::vector<std::string> GroupTypeName;   // 0 to 5
  std::vector<std::string> GroupTypeShort;  // 0 to 5

  // Rays, filled by BuildRayTables: per sign 1 to 12 the count of rays and
  // the rays SignRay[sign][1..RayCount[sign]], first ray first; weights 1 to 7.
  std::array<int, kSignCount + 1> RayCount{};
  std::array<std::array<int, 4>, kSignCount + 1> SignRay{};
  std::array<double, kRays + 1> RayWeight{};
  bool EqualRayWeights = false;

  std::array<DeltaTPair, kDeltaTCount> DeltaT{};

  // Glyphs, filled by BuildGlyphTables. GlyphText and GlyphUnicode are
  // indexed by code - 127. PointGlyph is the code of each point 1 to 24,
  // SignGlyph the sign row 1 to 13 (Aries and Taurus alternates at 1 and 2,
  // the retrograde mark at 13), AspectGlyph the one-character aspect glyphs
  // 1 to 9.
  std::vector<std::string> GlyphText;
  std::vector<std::string> GlyphUnicode;
  std::array<int, kPointCount + 1> PointGlyph{};
  std::array<int, kSignCount + 2> SignGlyph{};
  std::array<int, kAspectCount + 1> AspectGlyph{};
  int UranusGlyph = 191;
  int PlutoGlyph = 193;
  int CapricornGlyph = 137;

  // Unicode symbols in UTF-8 for drawing with an ordinary font (DejaVu Sans
  // has all of them). Where Unicode has no symbol the font can show, the entry
  // is a short text or a near form (noted in vocabulary.cpp).
  std::vector<std::string> UnicodePointGlyph;   // 1 to 24
  std::vector<std::string> UnicodeSignGlyph;    // 1 to 12
  std::vector<std::string> UnicodeAspectGlyph;  // 1 to 9
};

// All tables but the rays and glyphs; sets the node to the mean node and
// house system 14 to "User Defined...". Runs first.
void BuildVocabulary(Vocabulary& vocab);

// Makes `nodePoint` (19 true, anything else 20 mean) the live node, with the
// two node entries of ListToPoint.
void SetNodePoint(Vocabulary& vocab, int nodePoint);

// Names house system 14: "Sun on 1st" for point 3 on cusp 1. Values out of
// range are held to 1..24 and 1..12.
void SetUserHouseName(Vocabulary& vocab, int pointOnCusp, int whichCusp);

// Ray counts, rays per sign and weights; with `equalWeights` all weights are 1.
void BuildRayTables(Vocabulary& vocab, bool equalWeights);

// Glyph codes, texts and Unicode forms; reads the UranusGlyph, PlutoGlyph and
// CapricornGlyph preferences (a text that is not a code of 127 to 255 keeps
// the default). Runs last, after the preferences are loaded.
void BuildGlyphTables(Vocabulary& vocab, const Preferences& prefs);

// House system code of outside settings (0 to 28) to ours; other codes give 10.
HouseCodeChoice HouseCodeEntry(const Vocabulary& vocab, int code);

// The symbol font code of a point, 0 for a point out of range.
int GlyphOf(const Vocabulary& vocab, int point);
// The point's glyph as a one-character symbol font text, empty when none.
std::string GlyphCharOf(const Vocabulary& vocab, int point);
// The fallback text and the Unicode form of a symbol font code; empty
// outside 127 to 255 or for a code with no meaning.
std::string GlyphFallbackText(const Vocabulary& vocab, int code);
std::string GlyphUnicodeText(const Vocabulary& vocab, int code);

// The division names of a research coordinate, in index order; empty for a
// coordinate out of range.
std::vector<std::string> DivisionsOf(const Vocabulary& vocab, int coordinate);

}  // namespace vintar
