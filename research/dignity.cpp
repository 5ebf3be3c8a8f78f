#include "research/dignity.h"

#include <array>
#include <cmath>

#include "calc/astro.h"

namespace vintar {
namespace {

constexpr int Moon = 1, Sun = 3, Mercury = 4, Venus = 5, Mars = 6, Jupiter = 7, Saturn = 8, Uranus = 9,
              Neptune = 10, Pluto = 11, Node = 19;

bool ValidSign(int sign) { return sign >= 1 && sign <= 12; }
bool ValidScheme(int scheme) { return scheme >= kModernScheme && scheme <= kAncientNightScheme; }

// [sign][scheme], row 0 and column 0 unused.
constexpr std::array<std::array<int, 4>, 13> kSignRuler = {{
    {0, 0, 0, 0},
    {0, Mars, Mars, 0},            // Aries
    {0, Venus, 0, Venus},          // Taurus
    {0, Mercury, Mercury, 0},      // Gemini
    {0, Moon, Moon, Moon},         // Cancer
    {0, Sun, Sun, Sun},            // Leo
    {0, Mercury, 0, Mercury},      // Virgo
    {0, Venus, Venus, 0},          // Libra
    {0, Pluto, 0, Mars},           // Scorpio
    {0, Jupiter, Jupiter, 0},      // Sagittarius
    {0, Saturn, 0, Saturn},        // Capricorn
    {0, Uranus, Saturn, 0},        // Aquarius
    {0, Neptune, 0, Jupiter},      // Pisces
}};

// [sign][0 Modern, 1 Ancient].
constexpr std::array<std::array<int, 2>, 13> kSignExaltation = {{
    {0, 0},
    {Sun, Sun},          // Aries
    {Moon, Moon},        // Taurus
    {Node, Node},        // Gemini
    {Jupiter, Jupiter},  // Cancer
    {Pluto, 0},          // Leo
    {Mercury, Mercury},  // Virgo
    {Saturn, Saturn},    // Libra
    {Uranus, 0},         // Scorpio
    {0, 0},              // Sagittarius
    {Mars, Mars},        // Capricorn
    {Neptune, 0},        // Aquarius
    {Venus, Venus},      // Pisces
}};

constexpr std::array<int, 11> kModernRulers = {0,       Moon,   Sun,    Mercury, Venus, Mars,
                                               Jupiter, Saturn, Uranus, Neptune, Pluto};
constexpr std::array<int, 8> kAncientRulers = {0, Moon, Sun, Mercury, Venus, Mars, Jupiter, Saturn};
constexpr std::array<int, 12> kModernExaltations = {0,      Moon,   Sun,    Mercury, Venus, Mars,
                                                    Jupiter, Saturn, Uranus, Neptune, Pluto, Node};
constexpr std::array<int, 9> kAncientExaltations = {0, Moon, Sun, Mercury, Venus, Mars, Jupiter, Saturn, Node};
constexpr std::array<int, 8> kSevenPlanets = {0, Moon, Sun, Mercury, Venus, Mars, Jupiter, Saturn};
constexpr std::array<int, 6> kFivePlanets = {0, Mercury, Venus, Mars, Jupiter, Saturn};

// Lilly's triplicity rulers as cells of the seven-planet list, [element][day, night].
constexpr std::array<std::array<int, 2>, 5> kTriplicityCell = {{
    {0, 0},
    {2, 6},  // Fire: Sun by day, Jupiter by night
    {4, 1},  // Earth: Venus, Moon
    {7, 3},  // Air: Saturn, Mercury
    {5, 5},  // Water: Mars
}};

// The Chaldean order of the faces from the first decanate of Aries.
constexpr std::array<int, 7> kFaceCycle = {5, 2, 4, 3, 1, 7, 6};

struct TermRange {
  int from, to;  // [from, to) degrees of absolute longitude
};
// Ranges of one planet; unused entries stay {0, 0} and hold nothing.
using TermRow = std::array<TermRange, 12>;
// Mercury, Venus, Mars, Jupiter, Saturn: the cells of the five-planet list.
using TermTable = std::array<TermRow, 5>;

constexpr TermTable kPtolemaicTerms = {{
    {{{14, 21}, {38, 45}, {60, 67}, {103, 110}, {126, 133}, {150, 157}, {199, 204}, {231, 237}, {254, 259},
      {276, 282}, {306, 312}, {344, 350}}},
    {{{6, 14}, {30, 38}, {74, 81}, {110, 117}, {133, 139}, {157, 163}, {186, 191}, {224, 231}, {248, 254},
      {270, 276}, {312, 320}, {330, 338}}},
    {{{21, 26}, {56, 60}, {85, 96}, {145, 150}, {174, 180}, {204, 216}, {265, 270}, {289, 295}, {325, 330},
      {350, 356}}},
    {{{0, 6}, {45, 52}, {67, 74}, {96, 103}, {139, 145}, {163, 168}, {191, 199}, {216, 224}, {240, 248},
      {282, 289}, {320, 325}, {338, 344}}},
    {{{26, 30}, {52, 56}, {81, 85}, {117, 126}, {168, 174}, {180, 186}, {237, 240}, {259, 265}, {295, 306},
      {356, 360}}},
}};

// The Egyptian bounds leave 210 up to 211 to no planet; that gap is kept.
constexpr TermTable kEgyptianTerms = {{
    {{{12, 20}, {38, 44}, {60, 66}, {103, 109}, {138, 144}, {150, 157}, {186, 194}, {221, 229}, {257, 261},
      {270, 277}, {300, 307}, {346, 349}}},
    {{{6, 12}, {30, 38}, {72, 77}, {97, 103}, {126, 131}, {157, 167}, {201, 208}, {217, 221}, {252, 257},
      {284, 292}, {307, 313}, {330, 342}}},
    {{{20, 25}, {57, 60}, {77, 84}, {90, 97}, {144, 150}, {171, 178}, {208, 210}, {211, 217}, {266, 270},
      {296, 300}, {320, 325}, {349, 358}}},
    {{{0, 6}, {44, 52}, {66, 72}, {109, 116}, {120, 126}, {167, 171}, {194, 201}, {229, 234}, {240, 252},
      {277, 284}, {313, 320}, {342, 346}}},
    {{{25, 30}, {52, 57}, {84, 90}, {116, 120}, {131, 138}, {178, 186}, {234, 240}, {261, 266}, {292, 296},
      {325, 330}, {358, 360}}},
}};

// The first range, planet by planet from Mercury, that holds the value.
int TermCell(const TermTable& table, double longitude) {
  for (int planet = 0; planet < 5; ++planet)
    for (const TermRange& r : table[planet])
      if (r.to > r.from && longitude >= r.from && longitude < r.to) return planet + 1;
  return 1;
}

template <size_t N>
std::span<const int> AsSpan(const std::array<int, N>& a) {
  return std::span<const int>(a.data(), a.size());
}

}  // namespace

int SignRuler(int sign, int scheme) {
  if (!ValidSign(sign) || !ValidScheme(scheme)) return 0;
  return kSignRuler[sign][scheme];
}

int RulerOf(int sign, int scheme) {
  if (!ValidScheme(scheme)) return 0;
  int ruler = SignRuler(sign, scheme);
  if (ruler == 0 && scheme > kModernScheme) ruler = SignRuler(sign, 5 - scheme);
  return ruler;
}

int SignExaltation(int sign, int scheme) {
  if (!ValidSign(sign) || !ValidScheme(scheme)) return 0;
  return kSignExaltation[sign][scheme == kModernScheme ? 0 : 1];
}

std::span<const int> RulerList(int scheme) {
  return scheme == kModernScheme ? AsSpan(kModernRulers) : AsSpan(kAncientRulers);
}

std::span<const int> ExaltationList(int scheme) {
  return scheme == kModernScheme ? AsSpan(kModernExaltations) : AsSpan(kAncientExaltations);
}

std::span<const int> SevenPlanetList() { return AsSpan(kSevenPlanets); }
std::span<const int> FivePlanetList() { return AsSpan(kFivePlanets); }

int CellOf(std::span<const int> list, int point) {
  if (point == 0) return 0;
  for (size_t cell = 1; cell < list.size(); ++cell)
    if (list[cell] == point) return static_cast<int>(cell);
  return 0;
}

int DecanateSign(int decanate, int scheme) {
  if (decanate < 1 || decanate > 36 || !ValidScheme(scheme)) return 0;
  if (scheme == kModernScheme) {
    const int s = (decanate - 1) / 3 + 1;
    const int k = (decanate - 1) % 3 + 1;
    return (s + (k - 1) * 4 - 1) % 12 + 1;
  }
  return (decanate - 1) % 12 + 1;
}

int TriplicityCell(int element, int scheme) {
  if (element < 1 || element > 4 || (scheme != kAncientDayScheme && scheme != kAncientNightScheme)) return 0;
  return kTriplicityCell[element][scheme - kAncientDayScheme];
}

int FaceCell(int decanate) {
  if (decanate < 1 || decanate > 36) return 0;
  return kFaceCycle[(decanate - 1) % 7];
}

int PtolemaicTermCell(double longitude) { return TermCell(kPtolemaicTerms, longitude); }
int EgyptianTermCell(double longitude) { return TermCell(kEgyptianTerms, longitude); }

int SignOf(double longitude) {
  const int sign = static_cast<int>(Mod(longitude, 360.0) / 30.0) + 1;
  return sign > 12 ? 12 : sign;
}

int DecanateOf(double longitude) {
  const int decanate = static_cast<int>(Mod(longitude, 360.0) / 10.0) + 1;
  return decanate > 36 ? 36 : decanate;
}

int DegreeOf(double longitude) {
  const int degree = static_cast<int>(Mod(longitude, 360.0)) + 1;
  return degree > 360 ? 360 : degree;
}

bool IsDayChart(double sun, double ascendant) { return Mod(sun - ascendant, 360.0) > 180.0; }

int SchemeForChart(int scheme, bool isDay) {
  return scheme == kAncientDayScheme && !isDay ? kAncientNightScheme : scheme;
}

}  // namespace vintar
