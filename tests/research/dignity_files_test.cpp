// The dignity data files: point codes, the binary layouts and the parts
// text, readers given damaged input, the shipped files, planetary hours on
// hand-worked charts and almutens against Lilly's score table worked by hand.
#include <gtest/gtest.h>

#include <filesystem>

#include "calc/chart.h"
#include "research/dignity_files.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

constexpr int Moon = 1, Sun = 3, Mercury = 4, Venus = 5, Mars = 6, Jupiter = 7, Saturn = 8, Pluto = 11;

TEST(DignityFiles, PointCodesAndTheirInverse) {
  struct Case {
    int code, point;
  } cases[] = {{0, 0},   {1, 1},   {3, 3},   {4, 0},   {5, 4},   {12, 11}, {19, 18}, {20, 19}, {21, 19},
               {22, 21}, {25, 24}, {26, 26}, {27, 0},  {36, 0},  {37, -1}, {-1, -1}, {255, -1}};
  for (const Case& c : cases) EXPECT_EQ(FilePointCode(c.code, 19), c.point) << c.code;
  EXPECT_EQ(FilePointCode(20, 20), 20);
  for (int point : {1, 2, 3, 4, 11, 12, 18, 19, 20, 21, 24, 26})
    EXPECT_EQ(FilePointCode(PointFileCode(point), point == 20 ? 20 : 19), point) << point;
  EXPECT_EQ(PointFileCode(25), 0);
}

TEST(DignityFiles, BinaryLayoutsRoundTrip) {
  AlmutenDef def;
  def.ShortName = "Short";
  def.Name = "A name";
  def.PartsFile = "parts.arp";
  def.Weights[1] = 5;
  def.Weights[16] = -300;
  def.HouseFlags[12] = -1;
  def.KnockOut[5] = 1;
  def.Points[1] = 1022;
  def.Points[36] = 2301;
  def.RulerSetIndex = 2;
  def.SignShift = 1;
  def.SectRule = 2;
  def.Carried2[85] = 0xAB;
  const std::string bytes = FormatAlmutens({def, def});
  ASSERT_EQ(bytes.size(), 2u * kAlmutenDefSize);
  auto at16 = [&bytes](size_t i) { return static_cast<int16_t>(uint8_t(bytes[i]) | uint8_t(bytes[i + 1]) << 8); };
  EXPECT_EQ(bytes.substr(20, 6), "A name");
  EXPECT_EQ(bytes[59], ' ');
  EXPECT_EQ(at16(315), 5);
  EXPECT_EQ(at16(345), -300);
  EXPECT_EQ(at16(369), -1);
  EXPECT_EQ(at16(383), 1);
  EXPECT_EQ(at16(387), 1022);
  EXPECT_EQ(at16(457), 2301);
  EXPECT_EQ(at16(463), 2);
  EXPECT_EQ(at16(479), 1);
  EXPECT_EQ(at16(481), 2);
  EXPECT_EQ(uint8_t(bytes[578]), 0xAB);
  const std::vector<AlmutenDef> back = ParseAlmutens(bytes + "short tail");
  ASSERT_EQ(back.size(), 2u);
  EXPECT_EQ(FormatAlmutens(back), bytes);
  EXPECT_EQ(back[1].PartsFile, "parts.arp");

  RulerSet set;
  set.Name = "Test";
  set.Signs[1] = {Mars, 1, Sun, 19, Venus, Saturn, {Mars, Sun, Venus}};
  set.Signs[12].Ruler = 20;
  const std::string rulers = FormatRulerSet(set);
  ASSERT_EQ(rulers.size(), size_t(kRulerSetSize));
  EXPECT_EQ(rulers.substr(55, 9), std::string("\x07\x01\x03\x13\x06\x09\x07\x03\x06", 9));
  EXPECT_EQ(rulers[55 + 99], 20);
  std::string error;
  const std::vector<RulerSet> sets = ParseRulerSets(rulers, 19, error);
  ASSERT_EQ(sets.size(), 1u);
  EXPECT_EQ(error, "");
  EXPECT_EQ(sets[0].Signs[12].Ruler, 19);  // the file's node is the session's
  EXPECT_EQ(sets[0].Signs[1].Faces[2], Venus);

  std::array<std::array<int, 9>, 5> trip{};
  trip[4] = {Venus, Mars, Moon, Mars, Mars, Jupiter, 0, 0, Pluto};
  EXPECT_EQ(ParseTriplicities(FormatTriplicities(trip), 20, error), trip);
  std::array<DegreeDignity, 361> degrees{};
  degrees[360] = {Saturn, Mars, Mercury, 9, 200};
  const std::array<DegreeDignity, 361> read = ParseDegreeDignities(FormatDegreeDignities(degrees), 20, error);
  EXPECT_EQ(read[360].TermEgyptian, Mars);
  EXPECT_EQ(read[360].Carried2, 200);
  EXPECT_EQ(error, "");
}

TEST(DignityFiles, PartsTextRoundTrips) {
  const std::string text =
      "1,22,0,1,1,0,1,3,0,1,\"Part of Fortune (day)\",\"FortD  \"\r\n"
      " 0 , 0 , 12.5 ,5,1,0,3,8,0,0,\"Odd, name\",\"Odd\"\r\n\r\n";
  std::string error;
  const std::vector<PartDef> parts = ParseParts(text, 20, error);
  EXPECT_EQ(error, "");
  ASSERT_EQ(parts.size(), 2u);
  EXPECT_EQ(parts[0].Terms[0].Item, 21);  // file code 22 is the Ascendant
  EXPECT_EQ(parts[0].Abbrev, "FortD");
  EXPECT_EQ(parts[1].Terms[0].Degrees, 12.5);
  EXPECT_EQ(parts[1].Terms[2].Item, 8);  // a cusp is not converted
  EXPECT_EQ(parts[1].Name, "Odd, name");
  EXPECT_EQ(FormatPartsFile(ParseParts(FormatPartsFile(parts), 20, error)), FormatPartsFile(parts));
}

TEST(DignityFiles, DamagedInputGivesAnErrorNeverACrash) {
  std::string code37(kRulerSetSize, '\0');
  code37[55 + 6] = 37;
  struct Case {
    const char* what;
    std::function<std::string()> run;
  } cases[] = {
      {"ruler code", [&] { std::string e; ParseRulerSets(code37, 20, e); return e; }},
      {"ruler tail", [&] { std::string e; ParseRulerSets(std::string(200, '\1'), 20, e); return e; }},
      {"trip short", [&] { std::string e; ParseTriplicities(std::string(35, '\1'), 20, e); return e; }},
      {"trip code", [&] { std::string e; ParseTriplicities(std::string(36, '\xFF'), 20, e); return e; }},
      {"deg short", [&] { std::string e; ParseDegreeDignities(std::string(1799, '\1'), 20, e); return e; }},
      {"deg code", [&] { std::string e; ParseDegreeDignities(std::string(1800, '%'), 20, e); return e; }},
      {"arp code", [&] { std::string e; ParseParts("1,37,0,0,0,0,0,0,0,0,\"a\",\"b\"", 20, e); return e; }},
      {"arp short", [&] { std::string e; ParseParts("1,22,0,1,1,0,1,3,0,1,\"Fortune", 20, e); return e; }},
      {"arp garbage", [&] { std::string e; ParseParts(std::string("\"\0,\xFF,,\r\r\"", 10), 20, e); return e; }},
  };
  for (const Case& c : cases) EXPECT_NE(c.run(), "") << c.what;
  EXPECT_TRUE(ParseAlmutens(std::string(578, '\xFF')).empty());

  // A corrupt user file is told once and the load fails safely.
  TestSession t;
  std::filesystem::create_directories(t.session.paths.UserDataPath);
  testing::WriteBytes(t.session.paths.UserDataPath + "rulers2.fil", code37);
  DignityData data;
  int16_t failed = 0;
  LoadDignityData(t.session, data, failed);
  LoadDignityData(t.session, data, failed);
  EXPECT_EQ(failed, kTrue);
  EXPECT_FALSE(data.Loaded);
  ASSERT_EQ(t.sink.messages.size(), 1u);
  EXPECT_NE(t.sink.messages[0].text.find("point code 37"), std::string::npos);
}

TEST(DignityFiles, ShippedFilesLoad) {
  TestSession t;
  DignityData data;
  int16_t failed = 1;
  LoadDignityData(t.session, data, failed);
  ASSERT_EQ(failed, kFalse);
  ASSERT_TRUE(data.Loaded);
  failed = 7;
  LoadDignityData(t.session, data, failed);
  EXPECT_EQ(failed, 7);  // loaded once per session
  EXPECT_EQ(data.ActiveRulerSet, 2);
  EXPECT_EQ(SetSign(data, 2, 1).Ruler, Mars);
  EXPECT_EQ(SetSign(data, 2, 8).Ruler, Mars);
  EXPECT_EQ(SetSign(data, 1, 8).Ruler, Pluto);
  EXPECT_EQ(SetSign(data, 2, 10).Exaltation, Mars);
  EXPECT_EQ(SetSign(data, 2, 12).Faces[2], Mars);  // the Chaldean order closes on Mars
  EXPECT_EQ(TriplicityRuler(data, 1, kTripDorothean, kTripExtra), Saturn);
  EXPECT_EQ(TriplicityRuler(data, 4, kTripLilly, kTripNight), Mars);
  EXPECT_EQ(data.Degrees[15].TermPtolemy, Mercury);
  EXPECT_EQ(data.Degrees[211].TermEgyptian, Mars);
  EXPECT_EQ(data.Degrees[9].TermOther, Venus);  // Chaldean: Jupiter 8 degrees, then Venus
  EXPECT_TRUE(data.HaveDegreeAlmutenDef);
  EXPECT_EQ(data.DegreeAlmutenDef.Weights[1], 5);
  std::string error;
  EXPECT_GE(ParseParts(testing::ReadBytes(VINTAR_SOURCE_DATA_DIR "/vintar.arp"), 20, error).size(), 20u);
  EXPECT_EQ(error, "");
  EXPECT_GE(ParseAlmutens(testing::ReadBytes(VINTAR_SOURCE_DATA_DIR "/vintar.alm")).size(), 5u);
}

// Greenwich, Sunday 17 March 2024: the Sun near 27 Pisces, declination about
// -1.1, diurnal semi-arc about 88.6 degrees, noon hour angle about -2.
TEST(DignityFiles, PlanetaryHoursOfAHandWorkedSunday) {
  struct Case {
    int day;
    double hours;
    int dayRuler, hourIndex, hourRuler;
  } cases[] = {
      {17, 12.0, Sun, 5, Jupiter},    // sixth hour of Sunday: Sun, Venus, Mercury, Moon, Saturn, Jupiter
      {17, 7.0, Sun, 0, Sun},         // just after sunrise
      {17, 23.0, Sun, 16, Mercury},   // fifth hour of Sunday night
      {18, 2.0, Sun, 19, Jupiter},    // Monday 2 am still belongs to Sunday's night
      {18, 12.0, Moon, 5, Venus},     // Monday: Moon, Saturn, Jupiter, Mars, Sun, Venus
  };
  TestSession t;
  for (const Case& c : cases) {
    CastChart(t.session, 7, c.day, 3, 2024, c.hours, 0.0, 0.0, 51.5);
    PlanetaryHour h;
    ASSERT_TRUE(PlanetaryHours(t.session, 7, h)) << c.day << " " << c.hours;
    EXPECT_EQ(h.DayRuler, c.dayRuler) << c.day << " " << c.hours;
    EXPECT_EQ(h.HourIndex, c.hourIndex) << c.day << " " << c.hours;
    EXPECT_EQ(h.HourRuler, c.hourRuler) << c.day << " " << c.hours;
    EXPECT_NEAR(h.MinutesGone + h.MinutesLeft, c.hourIndex < 12 ? 59 : 61, 1);
  }
  CastChart(t.session, 7, 21, 6, 2024, 12.0, 0.0, 0.0, 80.0);  // midnight Sun
  PlanetaryHour none;
  none.DayRuler = -5;
  EXPECT_FALSE(PlanetaryHours(t.session, 7, none));
  EXPECT_EQ(none.DayRuler, -5);
}

TEST(DignityFiles, DegreeAlmutenByLillysScores) {
  TestSession t;
  DignityData data;
  int16_t failed = 0;
  LoadDignityData(t.session, data, failed);
  ASSERT_EQ(failed, kFalse);
  AlmutenDef def = data.DegreeAlmutenDef;
  struct Case {
    int hours;  // 12 day, 23 night
    double longitude;
    int shift;
    std::vector<int> planets, scores;
    int groups;
  } cases[] = {
      // 15 Aries: Mars house 5, Sun exaltation 4, triplicity 3 (Jupiter by
      // night), face 1; Mercury term 2.
      {12, 15.0, 0, {Sun, Mars, Mercury}, {8, 5, 2}, 4},
      {23, 15.0, 0, {Sun, Mars, Jupiter, Mercury}, {5, 5, 3, 2}, 4},
      // 30.0 shifted back one degree is 29 Aries: Saturn's term, Venus's face.
      {12, 30.0, 1, {Sun, Mars, Saturn, Venus}, {7, 5, 2, 1}, 5},
      // 0 Taurus: Venus house, triplicity and term, Moon exaltation, Mercury face.
      {12, 30.0, 0, {Venus, Moon, Mercury}, {10, 4, 1}, 4},
  };
  for (const Case& c : cases) {
    CastChart(t.session, 7, 17, 3, 2024, c.hours, 0.0, 0.0, 51.5);
    def.SignShift = static_cast<int16_t>(c.shift);
    const AlmutenScores r = DegreeAlmuten(t.session, 7, data, c.longitude, def);
    ASSERT_EQ(r.Planets.size(), 7u) << c.longitude;  // the seven planets, the node aside
    for (size_t i = 0; i < c.planets.size(); ++i) {
      EXPECT_EQ(r.Planets[i], c.planets[i]) << c.longitude << " #" << i;
      EXPECT_EQ(r.Scores[i], c.scores[i]) << c.longitude << " #" << i;
    }
    EXPECT_EQ(r.Scores[c.planets.size()], 0);
    EXPECT_EQ(r.Groups, c.groups) << c.longitude;
  }
}

TEST(DignityFiles, ChartAlmutenItemsSectAndTies) {
  TestSession t;
  DignityData data;
  int16_t failed = 0;
  LoadDignityData(t.session, data, failed);
  CastChart(t.session, 7, 17, 3, 2024, 12.0, 0.0, 0.0, 51.5);  // a day chart
  ASSERT_TRUE(SlotIsDay(t.session, 7));
  AlmutenDef def = data.DegreeAlmutenDef;
  def.Weights[8] = -5;
  def.Points[1] = 2000 + PointFileCode(Sun);  // the Sun in Pisces, counted twice
  def.Points[2] = 201;                        // from the caller
  int asked = 0;
  auto at15Aries = [&asked](int item) { return ++asked, item == 201 ? 15.0 : -1.0; };
  const AlmutenScores r = ChartAlmuten(t.session, 7, data, def, at15Aries);
  EXPECT_EQ(asked, 1);
  // 27 Pisces, twice: Jupiter house 5, Venus exaltation 4, Mars triplicity
  // 3 and face 1, Saturn term 2, Mercury detriment -5. 15 Aries: Sun 8,
  // Mars 5, Mercury 2, Venus detriment -5, Saturn fall (weight 0).
  const std::vector<int> planets = {Mars, Jupiter, Sun, Saturn, Venus, Moon, Mercury};
  const std::vector<int> scores = {13, 10, 8, 4, 3, 0, -8};
  EXPECT_EQ(r.Planets, planets);
  EXPECT_EQ(r.Scores, scores);
  const std::vector<std::string> marks = {"++", "+ ", " +", "+-", "+-", "  ", "-+"};
  EXPECT_EQ(r.Marks, marks);
  EXPECT_EQ(r.Groups, 7);

  def.SectRule = 2;  // night charts only
  EXPECT_TRUE(ChartAlmuten(t.session, 7, data, def, nullptr).Planets.empty());

  EXPECT_EQ(AlmutenTies({1, 3, 4, 5, 6, 7}, {9, 9, 9, 9, 9, 9}), 0);
  EXPECT_EQ(AlmutenTies({1, 3, 4, 5, 6, 7}, {9, 9, 9, 9, 9, 8}), 5);
  EXPECT_EQ(AlmutenTies({6}, {3}), 1);
  EXPECT_EQ(AlmutenTies({}, {}), 0);
}

}  // namespace
}  // namespace vintar
