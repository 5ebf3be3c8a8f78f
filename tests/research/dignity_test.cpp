// The built-in dignity tables: rulers with the sect fallback, exaltations,
// the cell lists, decanates, triplicities, faces and the two term tables.
#include <gtest/gtest.h>

#include <array>

#include "research/dignity.h"

namespace vintar {
namespace {

constexpr int Moon = 1, Sun = 3, Mercury = 4, Venus = 5, Mars = 6, Jupiter = 7, Saturn = 8, Uranus = 9,
              Neptune = 10, Pluto = 11;
constexpr int Aries = 1, Taurus = 2, Gemini = 3, Cancer = 4, Leo = 5, Libra = 7, Scorpio = 8, Capricorn = 10,
              Aquarius = 11, Pisces = 12;

TEST(Dignity, RulersFallBackOnTheOtherSect) {
  struct Case {
    int sign, scheme, ruler;
  } cases[] = {
      {Taurus, 2, Venus},      // no day ruler: the night one
      {Aries, 3, Mars},        // no night ruler: the day one
      {Scorpio, 1, Pluto},     {Scorpio, 2, Mars},     {Aquarius, 1, Uranus}, {Aquarius, 3, Saturn},
      {Pisces, 2, Jupiter},    {Leo, 3, Sun},          {Capricorn, 2, Saturn},
      {0, 1, 0},               {13, 2, 0},             {Aries, 0, 0},         {Aries, 4, 0},
  };
  for (const Case& c : cases) EXPECT_EQ(RulerOf(c.sign, c.scheme), c.ruler) << c.sign << "/" << c.scheme;
  EXPECT_EQ(SignRuler(Taurus, 2), 0);  // the table itself keeps its gaps
  for (int scheme = 1; scheme <= 3; ++scheme)
    for (int sign = 1; sign <= 12; ++sign) EXPECT_NE(RulerOf(sign, scheme), 0) << sign << "/" << scheme;

  // A night chart under the Ancient scheme reads the night column.
  EXPECT_EQ(SchemeForChart(2, false), 3);
  EXPECT_EQ(SchemeForChart(2, true), 2);
  EXPECT_EQ(SchemeForChart(1, false), 1);
  EXPECT_EQ(SignRuler(Aries, SchemeForChart(2, false)), 0);
}

TEST(Dignity, ExaltationsAndCellLists) {
  struct Case {
    int sign, modern, ancient;
  } cases[] = {{Gemini, 19, 19}, {Leo, Pluto, 0}, {Scorpio, Uranus, 0}, {9, 0, 0}, {Capricorn, Mars, Mars},
               {Aquarius, Neptune, 0}};
  for (const Case& c : cases) {
    EXPECT_EQ(SignExaltation(c.sign, 1), c.modern) << c.sign;
    EXPECT_EQ(SignExaltation(c.sign, 2), c.ancient) << c.sign;
    EXPECT_EQ(SignExaltation(c.sign, 3), c.ancient) << c.sign;
  }
  // The node closes both exaltation lists; Pluto has no Ancient cell.
  EXPECT_EQ(CellOf(ExaltationList(1), 19), 11);
  EXPECT_EQ(CellOf(ExaltationList(3), 19), 8);
  EXPECT_EQ(CellOf(RulerList(1), Pluto), 10);
  EXPECT_EQ(CellOf(RulerList(2), Pluto), 0);
  EXPECT_EQ(RulerList(3).size(), 8u);
  EXPECT_EQ(CellOf(SevenPlanetList(), Saturn), 7);
  EXPECT_EQ(CellOf(FivePlanetList(), Mercury), 1);
  EXPECT_EQ(CellOf(FivePlanetList(), Moon), 0);
}

TEST(Dignity, DecanatesTriplicitiesAndFaces) {
  struct Decanate {
    int decanate, modern, ancient, face;
  } decanates[] = {
      {1, Aries, Aries, 5},          // Mars
      {2, Leo, Taurus, 2},           // Sun
      {7, Gemini, Libra, 6},         // Jupiter closes the cycle
      {8, Libra, Scorpio, 5},        // which starts again
      {13, Leo, Aries, 7},           // Saturn, first face of Leo
      {35, Cancer, Aquarius, 6},
      {36, Scorpio, Pisces, 5},      // Mars, last face of Pisces
  };
  for (const Decanate& d : decanates) {
    EXPECT_EQ(DecanateSign(d.decanate, 1), d.modern) << d.decanate;
    EXPECT_EQ(DecanateSign(d.decanate, 3), d.ancient) << d.decanate;
    EXPECT_EQ(FaceCell(d.decanate), d.face) << d.decanate;
  }
  EXPECT_EQ(DecanateSign(0, 1), 0);
  EXPECT_EQ(FaceCell(37), 0);

  const int day[] = {0, 2, 4, 7, 5}, night[] = {0, 6, 1, 3, 5};  // Lilly's rulers, by element
  for (int element = 1; element <= 4; ++element) {
    EXPECT_EQ(TriplicityCell(element, 2), day[element]);
    EXPECT_EQ(TriplicityCell(element, 3), night[element]);
    EXPECT_EQ(TriplicityCell(element, 1), 0);
  }
}

TEST(Dignity, TermCells) {
  struct Case {
    double longitude;
    int ptolemaic, egyptian;
  } cases[] = {
      {0.0, 4, 4},     {5.999, 4, 4},  {6.0, 2, 2},
      {13.0, 2, 1},    // Ptolemaic Venus to 14, Egyptian Mercury from 12
      {29.99, 5, 5},   {30.0, 2, 2},   // half-open: 30.0 is Venus's, not Saturn's
      {208.5, 3, 3},   {210.0, 3, 1},  {210.5, 3, 1},  // the Egyptian gap: cell 1
      {211.0, 3, 3},   {359.99, 5, 5},
      {360.0, 1, 1},   {-1.0, 1, 1},   // beyond every range
  };
  for (const Case& c : cases) {
    EXPECT_EQ(PtolemaicTermCell(c.longitude), c.ptolemaic) << c.longitude;
    EXPECT_EQ(EgyptianTermCell(c.longitude), c.egyptian) << c.longitude;
  }

  // Degrees per planet over the zodiac. The Egyptian bounds are the
  // classical years of the planets (Mercury 76, Venus 82, Mars 66, Jupiter
  // 79, Saturn 57) with the gap degree moved from Mars to cell 1; the
  // Ptolemaic sums guard the transcription of that table.
  std::array<int, 6> ptolemaic{}, egyptian{};
  for (int d = 0; d < 360; ++d) {
    ++ptolemaic[PtolemaicTermCell(d + 0.5)];
    ++egyptian[EgyptianTermCell(d + 0.5)];
  }
  EXPECT_EQ(egyptian, (std::array<int, 6>{0, 77, 82, 65, 79, 57}));
  EXPECT_EQ(ptolemaic, (std::array<int, 6>{0, 76, 82, 65, 80, 57}));
}

TEST(Dignity, ZodiacArithmeticAndSect) {
  struct Case {
    double longitude;
    int sign, decanate, degree;
  } cases[] = {{0.0, 1, 1, 1}, {29.999, 1, 3, 30}, {30.0, 2, 4, 31}, {359.999, 12, 36, 360}, {-0.5, 12, 36, 360}};
  for (const Case& c : cases) {
    EXPECT_EQ(SignOf(c.longitude), c.sign) << c.longitude;
    EXPECT_EQ(DecanateOf(c.longitude), c.decanate) << c.longitude;
    EXPECT_EQ(DegreeOf(c.longitude), c.degree) << c.longitude;
  }
  EXPECT_EQ(ElementOf(Pisces), 4);
  EXPECT_EQ(OppositeSign(Aries), Libra);

  struct Sect {
    double sun, asc;
    bool day;
  } sects[] = {
      {100.0, 100.0, false},  // the Sun on the Ascendant: night
      {280.0, 100.0, false},  // on the Descendant: night
      {99.0, 100.0, true},    // just risen
      {281.0, 100.0, true},   // just above the western horizon
      {10.0, 350.0, false},
  };
  for (const Sect& s : sects) EXPECT_EQ(IsDayChart(s.sun, s.asc), s.day) << s.sun << " " << s.asc;
}

}  // namespace
}  // namespace vintar
