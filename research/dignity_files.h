// The user-replaceable dignity tables: the rulership sets of rulers2.fil,
// the triplicity rulers of tripdig2.fil, the term rulers of degdig2.fil, the
// almuten definitions of .alm files (house.alm drives "Deg. Almuten of") and
// the Arabic parts of .arp files; with them the planetary day and hour
// rulers, the almuten of a zodiacal degree and the almuten of a chart.
//
// These tables are data beside the program and differ on purpose from the
// compiled ones of dignity.h (they carry Dorothean triplicities, for one).
// Binary files are read field by field, little-endian, and every reader
// takes any bytes: a short or corrupt file gives an error text, never a
// crash. Point codes in the files are the files' own numbering, converted
// on load by FilePointCode. Longitudes are degrees 0 up to 360 with the
// sidereal offset in them; times are the chart slot's universal time.
// Checked against hand-worked almutens and planetary hours in
// tests/research/dignity_files_test.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/session.h"

namespace vintar {

inline constexpr int kRulerSetSize = 163;
inline constexpr int kTriplicityRowSize = 9;
inline constexpr int kDegreeDignitySize = 5;
inline constexpr int kAlmutenDefSize = 579;
inline constexpr int kFortunePseudoPoint = 26;  // the Part of Fortune in almuten point lists

// A file's point code (0 to 36) as a point number of the chart, 0 where the
// code has none; codes 20 and 21 are the session's node (`nodePoint`).
// Returns -1 for a code of 37 or more, which the readers report as an error.
int FilePointCode(int code, int nodePoint);

// The dignities of one sign in a rulership set, point numbers converted.
struct SignDignity {
  int Ruler = 0;
  int RulerSect = 0;  // 1 day, 2 night, 3 both; carried
  int Exaltation = 0;
  int ExaltationExtra = 0;  // carried, unconverted
  int Extra1 = 0, Extra2 = 0;
  std::array<int, 3> Faces{};  // face rulers of the sign's three decanates
};

struct RulerSet {
  std::string Name;  // trimmed
  std::string Code;  // trimmed
  std::array<SignDignity, 13> Signs{};  // 1 Aries .. 12 Pisces
};

// Triplicity schemes and positions of tripdig2.fil.
inline constexpr int kTripPtolemy = 0, kTripLilly = 1, kTripDorothean = 2;
inline constexpr int kTripDay = 0, kTripNight = 1, kTripExtra = 2;

struct DegreeDignity {
  int TermPtolemy = 0, TermEgyptian = 0, TermOther = 0;
  int Carried1 = 0, Carried2 = 0;  // raw bytes
};

// One almuten definition, as laid out in 579 bytes on disk.
struct AlmutenDef {
  std::string ShortName;  // 20, trimmed on read, space padded on write
  std::string Name;       // 40
  std::string PartsFile;  // 255
  std::array<int16_t, 17> Weights{};  // 1..16
  std::array<int16_t, 13> HouseFlags{};  // 1..12
  int16_t TripScheme = 0;
  int16_t TermScheme = 0;
  std::array<int16_t, 6> KnockOut{};  // 1..5: ruler, exaltation, triplicity, term, face
  int16_t OnlyCalculated = 0;
  std::array<int16_t, 37> Points{};  // 1..36: weight * 1000 + item
  int16_t Reserved1 = 0;
  int16_t ForceDayFortune = 0;
  int16_t RulerSetIndex = 1;
  int16_t HouseSystem = 5;
  std::array<unsigned char, 12> Reserved2{};
  int16_t SignShift = 0;
  int16_t SectRule = 0;
  int16_t Reserved3 = 0;
  std::array<unsigned char, 8> Carried1{};
  std::array<unsigned char, 86> Carried2{};
};

void EncodeAlmutenDef(const AlmutenDef& def, unsigned char* out);  // 579 bytes
AlmutenDef DecodeAlmutenDef(const unsigned char* in);

// One Arabic part: longitude = A + B - C.
struct PartTerm {
  int16_t Kind = 0;  // 0 degrees, 1 point, 2 ruler of point's sign, 3 cusp, 4 ruler of cusp's sign, 5 part, 6 prenatal Moon
  int16_t Item = 0;
  double Degrees = 0.0;
};
struct PartDef {
  std::array<PartTerm, 3> Terms{};
  int16_t SectRule = 0;  // 0 always, 1 day charts only, 2 night charts only
  std::string Name;
  std::string Abbrev;
};

// Parsers of whole files (their bytes or text); on a failure `error` says
// what is wrong and the result holds what was read before it.
std::vector<RulerSet> ParseRulerSets(const std::string& bytes, int nodePoint, std::string& error);
std::array<std::array<int, 9>, 5> ParseTriplicities(const std::string& bytes, int nodePoint, std::string& error);
std::array<DegreeDignity, 361> ParseDegreeDignities(const std::string& bytes, int nodePoint, std::string& error);
std::vector<AlmutenDef> ParseAlmutens(const std::string& bytes);  // whole records only
std::vector<PartDef> ParseParts(const std::string& text, int nodePoint, std::string& error);
// Writers, for the data generator and the point editor.
std::string FormatRulerSet(const RulerSet& set);      // 163 bytes, codes in file numbering
std::string FormatPartsFile(const std::vector<PartDef>& parts);  // CR LF, quoted names, file point codes
std::string FormatAlmutens(const std::vector<AlmutenDef>& defs);
std::string FormatTriplicities(const std::array<std::array<int, 9>, 5>& rows);  // 36 bytes
std::string FormatDegreeDignities(const std::array<DegreeDignity, 361>& degrees);  // 1800 bytes
// A chart point number in the files' numbering (the inverse of FilePointCode).
int PointFileCode(int point);

// The file tables of a session, loaded on first need.
struct DignityData {
  bool Loaded = false;
  std::vector<RulerSet> RulerSets{1};  // from 1; slot 0 unused
  int ActiveRulerSet = 0;              // min(2, count); 0 when none
  // [element 1..4][scheme + 3 * position] as point numbers.
  std::array<std::array<int, 9>, 5> Triplicity{};
  std::array<DegreeDignity, 361> Degrees{};  // 1..360
  AlmutenDef DegreeAlmutenDef;               // first record of house.alm
  bool HaveDegreeAlmutenDef = false;
  std::string ShownError;  // the last load error told, so that a retry per chart tells it once
};

// Where a dignity data file is read from: the user data folder when it has
// one, else the system data folder.
std::string DignityFilePath(const Session& session, const std::string& name);

// Loads house.alm, rulers2.fil, tripdig2.fil and degdig2.fil once. `failed`
// is -1 when a file could not be opened or read (the next call tries again;
// the tables keep what they hold, a corrupt file the records before the
// fault) and 0 after a full load; a second call after a full load returns at
// once with `failed` untouched. A missing file is not told; a corrupt one (a
// point code of 37 or more, a short triplicity or degree file) is told
// through ShowMessage, once for the same fault.
void LoadDignityData(Session& session, DignityData& data, int16_t& failed);

// The ruler set's entry for a sign (0 when the set index is out of range).
const SignDignity& SetSign(const DignityData& data, int setIndex, int sign);
// The triplicity ruler of an element by scheme and position; 0 when none.
int TriplicityRuler(const DignityData& data, int element, int scheme, int position);

// Planetary day and hour of the chart in `slot` (its JD, zone, RAMC,
// obliquity, latitude and Sun). Returns false, setting nothing, when the Sun
// is circumpolar.
struct PlanetaryHour {
  int DayRuler = 0, HourRuler = 0, HourIndex = 0;  // hour 0..23; 0..11 by day
  int MinutesGone = 0, MinutesLeft = 0;
  int DayIndex = 0;  // 0 Sunday
};
bool PlanetaryHours(const Session& session, int slot, PlanetaryHour& out);

// Sect of the chart in a slot: day when Mod(Sun - Ascendant, 360) > 180.
bool SlotIsDay(const Session& session, int slot);

// The almuten of a degree: candidates sorted by score, highest first, and
// how many groups of equal score they form. Empty when the tables hold no
// ruler set.
//
// A point can score when the ruler set, the triplicity rulers of the chosen
// scheme and sect or the chosen term table names it anywhere (the node
// aside). Slot weights: 1 ruler, 2 exaltation, 3 triplicity, 6 term, 7 face,
// 8 detriment, 9 fall. Each candidate is also tested at its own place: when
// it holds ruler, exaltation, triplicity, term or face there, it gains
// Weights[10..14] and, with the matching KnockOut flag, loses its mark of
// essential dignity at the target.
struct AlmutenScores {
  std::vector<int> Planets;  // point numbers, best first
  std::vector<int> Scores;
  // ChartAlmuten only: per candidate, one character per nonzero item of
  // def.Points, the character of "+++  ++--" at the first slot holding the
  // candidate ('+' dignity, '-' detriment or fall), blank when it holds none
  // or its dignity there was knocked out.
  std::vector<std::string> Marks;
  int Groups = 0;
};
AlmutenScores DegreeAlmuten(const Session& session, int slot, const DignityData& data, double longitude,
                            const AlmutenDef& def);

// The almuten of a chart over the items of def.Points (weight * 1000 +
// item: the item's score counts weight times, a weight of 0 once). Items 1
// to 99 and 101, 102 are resolved here from the slot: a file point code through FilePointCode, 25 the point
// opposite the session's node, 26 the Part of Fortune (Ascendant + Moon - Sun
// by day or with ForceDayFortune, else Ascendant - Moon + Sun), 101 and 102
// the Descendant and the lower Midheaven. `itemLongitude` gives the rest
// (103..108 prenatal, 201..212 cusps in def.HouseSystem, 301..999 parts),
// negative for none; it may be empty. An item without a longitude is
// skipped. The day ruler gains Weights[15] and the hour ruler Weights[16].
// Empty when the definition's sect rule excludes the chart.
AlmutenScores ChartAlmuten(const Session& session, int slot, const DignityData& data, const AlmutenDef& def,
                           const std::function<double(int item)>& itemLongitude);

// How many planets share the top score; 6 or more gives 0.
int AlmutenTies(const std::vector<int>& planets, const std::vector<int>& scores);

}  // namespace vintar
