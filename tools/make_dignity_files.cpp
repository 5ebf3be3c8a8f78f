// Writes the shipped dignity data: data/rulers2.fil, data/tripdig2.fil,
// data/degdig2.fil, data/house.alm, data/vintar.alm and data/vintar.arp.
// Run from the build tree:
//   make_dignity_files [DATA_FOLDER]
// The folder defaults to the repository's data folder.
//
// Sources.
// - Ptolemy, Tetrabiblos I.17-I.21: the houses (sign rulers) of the planets,
//   the exaltations, the triplicity rulers, the Egyptian terms and the
//   Chaldean terms, and the faces of the decans in the Chaldean order.
// - Dorotheus of Sidon, Carmen Astrologicum I.1: the triplicity rulers by
//   day and by night with the third, participating ruler.
// - William Lilly, Christian Astrology (1647), book I, his table of the
//   essential dignities: the day and night houses, the exaltations with their
//   degrees, the triplicities by day and by night (Mars both for water),
//   the terms as he gives them after Ptolemy, the faces, and the scores of
//   the dignities: 5 house, 4 exaltation, 3 triplicity, 2 term, 1 face.
// - The modern rulerships: Uranus of Aquarius, Neptune of Pisces, Pluto of
//   Scorpio, with the modern exaltations that the compiled Modern scheme
//   already uses (Pluto in Leo, Uranus in Scorpio, Neptune in Aquarius).
// - Abraham Ibn Ezra, The Beginning of Wisdom and The Book of Nativities:
//   the almuten of the figure over the five hylegical places, with the lord
//   of the day and of the hour.
// - Paulus Alexandrinus, Introduction ch. 23: the seven Hermetic lots
//   (Fortune, Spirit, Eros, Necessity, Courage, Victory, Nemesis), each
//   reversed by night. Vettius Valens, Anthology II.3 and IV.25, for the lots
//   of Fortune and Spirit reversed by night; Ptolemy, Tetrabiblos III.10,
//   for Fortune by the day formula in every chart.
// - Al-Biruni, Book of Instruction in the Elements of the Art of Astrology
//   (1029), sections 476-479, for the lots of father, mother, brothers,
//   children, marriage, illness, death and journeys, and whether each is
//   reversed by night; Lilly, Christian Astrology, for the part of death
//   (Ascendant + cusp of the eighth - Moon).
//
// rulers2.fil. Record 1 is "Modern", record 2 "Traditional". The Arabic
// parts (the ruler of a sign in a lot) and "Face Ruler of" read record
// min(2, count), so with both records shipped they use the traditional
// rulers, which is what the lots were defined with; almutens choose their
// record themselves, and all the shipped ones choose 2. A user file of a
// single record still works: it is then used for everything. Per sign:
// `RulerSect` is the sect of the house (Lilly's day and night houses; 3 for
// the luminaries and the modern rulers, which have one house each),
// `ExaltationExtra` the degree of the exaltation (0 where the sources give
// none), `Extra1` the planet in its detriment there and `Extra2` the planet
// in its fall. The faces of the traditional record are the Chaldean decans
// of Ptolemy and Lilly (Mars, Sun, Venus, Mercury, Moon, Saturn, Jupiter
// from 0 Aries); those of the modern record are the modern decanates, the
// rulers of the signs of the same element starting from the sign itself.
// `Code` is a short key of the record's source.
//
// tripdig2.fil, per element [scheme: Ptolemy, Lilly, Dorothean][day, night,
// participating]. Ptolemy: Sun and Jupiter for fire, Venus and the Moon for
// earth, Saturn and Mercury for air; water is Mars's, with Venus by day and
// the Moon by night, so Mars stands as its third ruler. Lilly: the same, but
// Mars by day and by night for water, and no third ruler. Dorotheus: fire
// Sun, Jupiter, Saturn; earth Venus, Moon, Mars; air Saturn, Mercury,
// Jupiter; water Venus, Mars, Moon.
//
// degdig2.fil: byte 0 the terms of Ptolemy as Lilly tabulates them, byte 1
// the Egyptian terms (whole, 0 to 7 Scorpio Mars's), byte 2 the Chaldean
// terms of Tetrabiblos I.21 (by triplicity: 8, 7, 6, 5 and 4 degrees to the
// lords in the order of the triplicities, Saturn before Mercury by day),
// byte 3 the Chaldean term ruler by night (Mercury before Saturn), in the
// files' point numbering, byte 4 zero.
//
// house.alm: the degree almuten of "Deg. Almuten of": Lilly's scores 5, 4,
// 3, 2, 1 for house, exaltation, triplicity (Lilly's), term (Ptolemy's) and
// face in the traditional set. Detriment and fall score 0: the almuten of a
// degree is the planet with the most dignity in it, and Ibn Ezra and Lilly
// count no debility against the others. No own-place or hour weights.
//
// vintar.alm: the same scores over the Ascendant, the Midheaven, the Sun,
// the Moon, the Part of Fortune and the prenatal syzygy one by one, and the
// almuten of the figure, which adds the five hylegical places of Ibn Ezra
// (Sun, Moon, Ascendant, Part of Fortune, prenatal syzygy: the luminary of
// the last lunation nearer the Midheaven) and gives the lord of the day 7
// and the lord of the hour 6. Fortune follows the sect of the chart.
//
// vintar.arp: a part that is reversed by night comes twice, once for day
// charts only and once for night charts only, so that every lot keeps its
// own formula and the lots built on Fortune and Spirit take the one of the
// same sect. Fortune also comes once by Ptolemy's rule, the day formula in
// every chart, for a value in every chart.
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "core/file_io.h"
#include "core/session.h"
#include "research/dignity_files.h"

namespace {

using vintar::AlmutenDef;
using vintar::DegreeDignity;
using vintar::PartDef;
using vintar::PartTerm;
using vintar::RulerSet;

constexpr int Moon = 1, Sun = 3, Mercury = 4, Venus = 5, Mars = 6, Jupiter = 7, Saturn = 8, Uranus = 9,
              Neptune = 10, Pluto = 11, Node = 20, Ascendant = 21, Midheaven = 22;

// Signs from 1 (Aries), slot 0 unused.
constexpr int kTraditionalRuler[13] = {0, Mars, Venus, Mercury, Moon, Sun, Mercury,
                                       Venus, Mars, Jupiter, Saturn, Saturn, Jupiter};
constexpr int kModernRuler[13] = {0, Mars, Venus, Mercury, Moon, Sun, Mercury,
                                  Venus, Pluto, Jupiter, Saturn, Uranus, Neptune};
// Lilly's day (1) and night (2) houses; 3 for a planet of one house.
constexpr int kTraditionalSect[13] = {0, 1, 2, 1, 3, 3, 2, 1, 2, 1, 2, 1, 2};
constexpr int kModernSect[13] = {0, 1, 2, 1, 3, 3, 2, 1, 3, 1, 2, 3, 3};
constexpr int kTraditionalExaltation[13] = {0, Sun, Moon, Node, Jupiter, 0, Mercury, Saturn, 0, 0, Mars, 0, Venus};
constexpr int kModernExaltation[13] = {0, Sun, Moon, Node, Jupiter, Pluto, Mercury,
                                       Saturn, Uranus, 0, Mars, Neptune, Venus};
constexpr int kExaltationDegree[13] = {0, 19, 3, 3, 15, 0, 15, 21, 0, 0, 28, 0, 27};
constexpr int kChaldeanOrder[7] = {Mars, Sun, Venus, Mercury, Moon, Saturn, Jupiter};

RulerSet MakeSet(const std::string& name, const std::string& code, const int* ruler, const int* sect,
                 const int* exaltation, bool modernFaces) {
  RulerSet set;
  set.Name = name;
  set.Code = code;
  for (int sign = 1; sign <= 12; ++sign) {
    const int opposite = (sign + 5) % 12 + 1;
    vintar::SignDignity& s = set.Signs[sign];
    s.Ruler = ruler[sign];
    s.RulerSect = sect[sign];
    s.Exaltation = exaltation[sign];
    s.ExaltationExtra = exaltation[sign] == kTraditionalExaltation[sign] ? kExaltationDegree[sign] : 0;
    s.Extra1 = ruler[opposite];
    s.Extra2 = exaltation[opposite];
    for (int k = 0; k < 3; ++k) {
      if (modernFaces) {
        s.Faces[k] = ruler[(sign - 1 + 4 * k) % 12 + 1];
      } else {
        s.Faces[k] = kChaldeanOrder[(3 * (sign - 1) + k) % 7];
      }
    }
  }
  return set;
}

// [element][scheme + 3 * position].
std::array<std::array<int, 9>, 5> Triplicities() {
  struct Row {
    int ptolemy[3], lilly[3], dorotheus[3];
  };
  const Row rows[5] = {{},
                       {{Sun, Jupiter, 0}, {Sun, Jupiter, 0}, {Sun, Jupiter, Saturn}},
                       {{Venus, Moon, 0}, {Venus, Moon, 0}, {Venus, Moon, Mars}},
                       {{Saturn, Mercury, 0}, {Saturn, Mercury, 0}, {Saturn, Mercury, Jupiter}},
                       {{Venus, Moon, Mars}, {Mars, Mars, 0}, {Venus, Mars, Moon}}};
  std::array<std::array<int, 9>, 5> out{};
  for (int e = 1; e <= 4; ++e)
    for (int position = 0; position < 3; ++position) {
      out[e][0 + 3 * position] = rows[e].ptolemy[position];
      out[e][1 + 3 * position] = rows[e].lilly[position];
      out[e][2 + 3 * position] = rows[e].dorotheus[position];
    }
  return out;
}

// Terms of one sign: five lords with the degree where each term ends.
struct Term {
  int lord, end;
};
using SignTerms = std::array<Term, 5>;

const SignTerms kPtolemaic[12] = {
    {{{Jupiter, 6}, {Venus, 14}, {Mercury, 21}, {Mars, 26}, {Saturn, 30}}},   // Aries
    {{{Venus, 8}, {Mercury, 15}, {Jupiter, 22}, {Saturn, 26}, {Mars, 30}}},   // Taurus
    {{{Mercury, 7}, {Jupiter, 14}, {Venus, 21}, {Saturn, 25}, {Mars, 30}}},   // Gemini
    {{{Mars, 6}, {Jupiter, 13}, {Mercury, 20}, {Venus, 27}, {Saturn, 30}}},   // Cancer
    {{{Saturn, 6}, {Mercury, 13}, {Venus, 19}, {Jupiter, 25}, {Mars, 30}}},   // Leo
    {{{Mercury, 7}, {Venus, 13}, {Jupiter, 18}, {Saturn, 24}, {Mars, 30}}},   // Virgo
    {{{Saturn, 6}, {Venus, 11}, {Jupiter, 19}, {Mercury, 24}, {Mars, 30}}},   // Libra
    {{{Mars, 6}, {Jupiter, 14}, {Venus, 21}, {Mercury, 27}, {Saturn, 30}}},   // Scorpio
    {{{Jupiter, 8}, {Venus, 14}, {Mercury, 19}, {Saturn, 25}, {Mars, 30}}},   // Sagittarius
    {{{Venus, 6}, {Mercury, 12}, {Jupiter, 19}, {Mars, 25}, {Saturn, 30}}},   // Capricorn
    {{{Saturn, 6}, {Mercury, 12}, {Venus, 20}, {Jupiter, 25}, {Mars, 30}}},   // Aquarius
    {{{Venus, 8}, {Jupiter, 14}, {Mercury, 20}, {Mars, 26}, {Saturn, 30}}},   // Pisces
};

const SignTerms kEgyptian[12] = {
    {{{Jupiter, 6}, {Venus, 12}, {Mercury, 20}, {Mars, 25}, {Saturn, 30}}},   // Aries
    {{{Venus, 8}, {Mercury, 14}, {Jupiter, 22}, {Saturn, 27}, {Mars, 30}}},   // Taurus
    {{{Mercury, 6}, {Jupiter, 12}, {Venus, 17}, {Mars, 24}, {Saturn, 30}}},   // Gemini
    {{{Mars, 7}, {Venus, 13}, {Mercury, 19}, {Jupiter, 26}, {Saturn, 30}}},   // Cancer
    {{{Jupiter, 6}, {Venus, 11}, {Saturn, 18}, {Mercury, 24}, {Mars, 30}}},   // Leo
    {{{Mercury, 7}, {Venus, 17}, {Jupiter, 21}, {Mars, 28}, {Saturn, 30}}},   // Virgo
    {{{Saturn, 6}, {Mercury, 14}, {Jupiter, 21}, {Venus, 28}, {Mars, 30}}},   // Libra
    {{{Mars, 7}, {Venus, 11}, {Mercury, 19}, {Jupiter, 24}, {Saturn, 30}}},   // Scorpio
    {{{Jupiter, 12}, {Venus, 17}, {Mercury, 21}, {Saturn, 26}, {Mars, 30}}},  // Sagittarius
    {{{Mercury, 7}, {Jupiter, 14}, {Venus, 22}, {Saturn, 26}, {Mars, 30}}},   // Capricorn
    {{{Mercury, 7}, {Venus, 13}, {Jupiter, 20}, {Mars, 25}, {Saturn, 30}}},   // Aquarius
    {{{Venus, 12}, {Jupiter, 16}, {Mercury, 19}, {Mars, 28}, {Saturn, 30}}},  // Pisces
};

// Chaldean terms: the lords of fire, earth, air and water in turn, Saturn
// and Mercury together as the lords of air, starting from the sign's own
// triplicity, with 8, 7, 6, 5 and 4 degrees.
SignTerms Chaldean(int sign, bool night) {
  const int orders[4][5] = {{Jupiter, Venus, Saturn, Mercury, Mars},
                            {Venus, Saturn, Mercury, Mars, Jupiter},
                            {Saturn, Mercury, Mars, Jupiter, Venus},
                            {Mars, Jupiter, Venus, Saturn, Mercury}};
  const int* order = orders[(sign - 1) % 4];
  SignTerms terms{};
  int end = 0;
  for (int i = 0; i < 5; ++i) {
    int lord = order[i];
    if (night && lord == Saturn) lord = Mercury;
    else if (night && lord == Mercury) lord = Saturn;
    end += 8 - i;
    terms[i] = {lord, end};
  }
  return terms;
}

int LordAt(const SignTerms& terms, int degreeInSign) {
  for (const Term& t : terms)
    if (degreeInSign < t.end) return t.lord;
  return 0;
}

std::array<DegreeDignity, 361> Degrees() {
  std::array<DegreeDignity, 361> out{};
  for (int d = 1; d <= 360; ++d) {
    const int sign = (d - 1) / 30 + 1;
    const int inSign = (d - 1) % 30;
    out[d].TermPtolemy = LordAt(kPtolemaic[sign - 1], inSign);
    out[d].TermEgyptian = LordAt(kEgyptian[sign - 1], inSign);
    out[d].TermOther = LordAt(Chaldean(sign, false), inSign);
    out[d].Carried1 = vintar::PointFileCode(LordAt(Chaldean(sign, true), inSign));
  }
  return out;
}

// Lilly's scores in the traditional set, Lilly's triplicities, Ptolemy's terms.
AlmutenDef LillyAlmuten(const std::string& shortName, const std::string& name) {
  AlmutenDef def;
  def.ShortName = shortName;
  def.Name = name;
  def.PartsFile = "vintar.arp";
  def.Weights[1] = 5;
  def.Weights[2] = 4;
  def.Weights[3] = 3;
  def.Weights[6] = 2;
  def.Weights[7] = 1;
  def.TripScheme = vintar::kTripLilly;
  def.TermScheme = 0;
  def.OnlyCalculated = vintar::kTrue;
  def.RulerSetIndex = 2;
  def.HouseSystem = 5;
  return def;
}

// Items in the files' numbering: file point codes, 26 Fortune, 105 the
// prenatal syzygy's luminary nearer the Midheaven.
constexpr int kFortuneItem = 26, kSyzygyItem = 105;

AlmutenDef Almuten(const std::string& shortName, const std::string& name, std::initializer_list<int> items) {
  AlmutenDef def = LillyAlmuten(shortName, name);
  int i = 1;
  for (int item : items) def.Points[i++] = static_cast<int16_t>(1000 + item);
  return def;
}

std::vector<AlmutenDef> ChartAlmutens() {
  const int asc = vintar::PointFileCode(Ascendant), mc = vintar::PointFileCode(Midheaven);
  const int sun = vintar::PointFileCode(Sun), moon = vintar::PointFileCode(Moon);
  AlmutenDef figuris =
      Almuten("Alm. Figuris", "Almuten Figuris (Ibn Ezra)", {sun, moon, asc, kFortuneItem, kSyzygyItem});
  figuris.Weights[15] = 7;
  figuris.Weights[16] = 6;
  return {figuris,
          Almuten("Alm. Asc", "Almuten of the Ascendant", {asc}),
          Almuten("Alm. MC", "Almuten of the Midheaven", {mc}),
          Almuten("Alm. Sun", "Almuten of the Sun", {sun}),
          Almuten("Alm. Moon", "Almuten of the Moon", {moon}),
          Almuten("Alm. Fortune", "Almuten of the Part of Fortune", {kFortuneItem}),
          Almuten("Alm. Syzygy", "Almuten of the Prenatal Syzygy", {kSyzygyItem})};
}

// Part terms.
PartTerm P(int point) { return {1, static_cast<int16_t>(point), 0.0}; }
PartTerm Cusp(int cusp) { return {3, static_cast<int16_t>(cusp), 0.0}; }
PartTerm CuspRuler(int cusp) { return {4, static_cast<int16_t>(cusp), 0.0}; }
PartTerm Part(int number) { return {5, static_cast<int16_t>(number), 0.0}; }

PartDef Def(const std::string& name, const std::string& abbrev, int sect, PartTerm a, PartTerm b, PartTerm c) {
  PartDef part;
  part.Terms = {a, b, c};
  part.SectRule = static_cast<int16_t>(sect);
  part.Name = name;
  part.Abbrev = abbrev;
  return part;
}

// A lot of Ascendant + b - c by day and Ascendant + c - b by night.
void Reversed(std::vector<PartDef>& parts, const std::string& name, const std::string& abbrev, PartTerm b,
              PartTerm c) {
  parts.push_back(Def(name + " (day)", abbrev + "D", 1, P(Ascendant), b, c));
  parts.push_back(Def(name + " (night)", abbrev + "N", 2, P(Ascendant), c, b));
}

std::vector<PartDef> Parts() {
  std::vector<PartDef> parts;
  // 1: Ptolemy, Tetrabiblos III.10: the day formula in every chart.
  parts.push_back(Def("Part of Fortune", "Fortune", 0, P(Ascendant), P(Moon), P(Sun)));
  // 2, 3 and 4, 5: Valens and Paulus, reversed by night.
  Reversed(parts, "Part of Fortune", "Fort", P(Moon), P(Sun));
  Reversed(parts, "Part of Spirit", "Spir", P(Sun), P(Moon));
  // The Hermetic lots of Paulus Alexandrinus, built on Fortune (2, 3) and
  // Spirit (4, 5) of the same sect.
  auto hermetic = [&parts](const std::string& name, const std::string& abbrev, int planet, int lotByDay,
                           bool planetFirst) {
    // By day Ascendant + planet - lot (Eros, Victory) or + lot - planet
    // (Necessity, Courage, Nemesis); reversed by night.
    const int lotByNight = lotByDay + 1;
    if (planetFirst) {
      parts.push_back(Def(name + " (day)", abbrev + "D", 1, P(Ascendant), P(planet), Part(lotByDay)));
      parts.push_back(Def(name + " (night)", abbrev + "N", 2, P(Ascendant), Part(lotByNight), P(planet)));
    } else {
      parts.push_back(Def(name + " (day)", abbrev + "D", 1, P(Ascendant), Part(lotByDay), P(planet)));
      parts.push_back(Def(name + " (night)", abbrev + "N", 2, P(Ascendant), P(planet), Part(lotByNight)));
    }
  };
  hermetic("Part of Eros", "Eros", Venus, 4, true);          // Venus from Spirit
  hermetic("Part of Necessity", "Nece", Mercury, 2, false);  // Fortune from Mercury
  hermetic("Part of Courage", "Cour", Mars, 2, false);       // Fortune from Mars
  hermetic("Part of Victory", "Vict", Jupiter, 4, true);     // Jupiter from Spirit
  hermetic("Part of Nemesis", "Neme", Saturn, 2, false);     // Fortune from Saturn
  // Al-Biruni's lots of the houses.
  Reversed(parts, "Part of the Father", "Fath", P(Saturn), P(Sun));    // Sun to Saturn
  Reversed(parts, "Part of the Mother", "Moth", P(Moon), P(Venus));    // Venus to Moon
  parts.push_back(Def("Part of Brothers", "Broth", 0, P(Ascendant), P(Jupiter), P(Saturn)));  // not reversed
  Reversed(parts, "Part of Children", "Chil", P(Saturn), P(Jupiter));  // Jupiter to Saturn
  parts.push_back(Def("Part of Marriage (men)", "MarrM", 0, P(Ascendant), P(Venus), P(Saturn)));
  parts.push_back(Def("Part of Marriage (women)", "MarrW", 0, P(Ascendant), P(Saturn), P(Venus)));
  Reversed(parts, "Part of Illness", "Ill", P(Mars), P(Saturn));       // Saturn to Mars
  // Lilly: from the Moon to the cusp of the eighth, from the Ascendant.
  parts.push_back(Def("Part of Death", "Death", 0, P(Ascendant), Cusp(8), P(Moon)));
  // Al-Biruni: from the lord of the ninth to its cusp, from the Ascendant.
  parts.push_back(Def("Part of Travel", "Travel", 0, P(Ascendant), Cusp(9), CuspRuler(9)));
  return parts;
}

bool Write(const std::string& path, const std::string& bytes) {
  std::string error;
  if (!vintar::WriteFileAtomically(path, bytes, error)) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), error.c_str());
    return false;
  }
  std::printf("wrote %s (%zu bytes)\n", path.c_str(), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = vintar::EnsureBackslash(argc > 1 ? argv[1] : VINTAR_SOURCE_DATA_DIR);
  const std::string rulers =
      vintar::FormatRulerSet(MakeSet("Modern", "MODERN", kModernRuler, kModernSect, kModernExaltation, true)) +
      vintar::FormatRulerSet(MakeSet("Traditional", "LILLY1647", kTraditionalRuler, kTraditionalSect,
                                     kTraditionalExaltation, false));
  bool ok = Write(folder + "rulers2.fil", rulers);
  ok = Write(folder + "tripdig2.fil", vintar::FormatTriplicities(Triplicities())) && ok;
  ok = Write(folder + "degdig2.fil", vintar::FormatDegreeDignities(Degrees())) && ok;
  const AlmutenDef degree = LillyAlmuten("Deg. Almuten", "Degree Almuten (Lilly)");
  ok = Write(folder + "house.alm", vintar::FormatAlmutens({degree})) && ok;
  ok = Write(folder + "vintar.alm", vintar::FormatAlmutens(ChartAlmutens())) && ok;
  ok = Write(folder + "vintar.arp", vintar::FormatPartsFile(Parts())) && ok;
  return ok ? 0 : 1;
}
