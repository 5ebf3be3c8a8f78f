// Essential dignity: the built-in rulership tables that name the cells of
// the planet-valued research divisions and that the dynamic search uses for
// the houses a point rules.
//
// Compiled constants, indexed by dignity scheme: 1 Modern, 2 Ancient for a
// day chart, 3 Ancient for a night chart. Point numbers are the chart's
// (1 Moon, 3 Sun, 4 Mercury to 11 Pluto, 19 true node); signs run 1 Aries to
// 12 Pisces; decanates 1 to 36 over the zodiac; cell numbers count from 1
// and 0 means no cell. Longitudes are degrees 0 up to 360. The tables follow
// the traditional rulerships (Lilly's day and night triplicity rulers, the
// Chaldean order of the faces) and the Ptolemaic and Egyptian bounds; they
// are checked cell by cell in tests/research/dignity_test.cpp.
//
// The user-replaceable dignity files (rulers, triplicities, degrees,
// almutens) are a separate family and deliberately not merged with these.
#pragma once

#include <span>

namespace vintar {

inline constexpr int kModernScheme = 1;
inline constexpr int kAncientDayScheme = 2;
inline constexpr int kAncientNightScheme = 3;

// The raw table: the ruler of a sign in a scheme, 0 for no entry (the
// Ancient columns hold each planet only in the sect of its sign).
int SignRuler(int sign, int scheme);
// The ruler of a sign: the table, and for an Ancient scheme with no entry
// the other sect's entry. 0 for a sign or scheme out of range.
int RulerOf(int sign, int scheme);
// The exaltation ruler of a sign; schemes 2 and 3 share one column.
int SignExaltation(int sign, int scheme);

// Cell lists: the point of each cell, slot 0 unused, so list[c] is the point
// of cell c and list.size() - 1 the number of cells.
std::span<const int> RulerList(int scheme);       // 10 Modern, 7 Ancient
std::span<const int> ExaltationList(int scheme);  // 11 Modern, 8 Ancient
std::span<const int> SevenPlanetList();           // Moon to Saturn
std::span<const int> FivePlanetList();            // Mercury to Saturn
// The cell of a point in a list, 0 when the list does not hold it.
int CellOf(std::span<const int> list, int point);

// The sign of each of the 36 decanates: Modern by triplicity (the signs of
// the element starting from the sign itself), Ancient the zodiac three times.
int DecanateSign(int decanate, int scheme);
// The triplicity ruler of an element (1 Fire to 4 Water) as a cell of the
// seven-planet list; schemes 2 and 3 only, else 0.
int TriplicityCell(int element, int scheme);
// The face ruler of a decanate (1 to 36) as a cell of the seven-planet list:
// Mars, Sun, Venus, Mercury, Moon, Saturn, Jupiter from decanate 1 on.
int FaceCell(int decanate);

// The term ruler of a longitude as a cell of the five-planet list. The
// ranges are half-open [from, to) in whole degrees of absolute longitude; a
// value that no range holds (the Egyptian table leaves 210 up to 211 open)
// gets cell 1.
int PtolemaicTermCell(double longitude);
int EgyptianTermCell(double longitude);

// Zodiac arithmetic of the same tables.
int SignOf(double longitude);                          // 1 to 12
inline int ElementOf(int sign) { return (sign - 1) % 4 + 1; }  // 1 Fire, 2 Earth, 3 Air, 4 Water
inline int OppositeSign(int sign) { return (sign + 5) % 12 + 1; }
int DecanateOf(double longitude);                      // 1 to 36
int DegreeOf(double longitude);                        // 1 to 360

// The sect of a chart from its Sun and Ascendant: day when the Sun stands
// above the horizon, that is Mod(Sun - Ascendant, 360) above 180. A Sun on
// the Ascendant or the Descendant is a night chart.
bool IsDayChart(double sun, double ascendant);
// The scheme a chart is evaluated under: Ancient (2) becomes 3 for a night
// chart; the others are kept.
int SchemeForChart(int scheme, bool isDay);

}  // namespace vintar
