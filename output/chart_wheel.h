// The chart wheel of the dynamic chart: a zodiac ring with its sign glyphs,
// the radix houses with the Ascendant and Midheaven marked, the radix
// points inside the ring, the moving chart's points outside it, and the
// aspects between the two wheels drawn across the middle.
//
// Painting reads only the plain data below (longitudes in degrees from
// 0 Aries with the zodiac's offset in them, glyphs as Unicode text), so the
// same code draws the screen, a PNG, an SVG or a PDF. The Ascendant lies at
// the left and the signs run counter-clockwise. Glyphs that would overlap
// are spread apart along their ring, each with a line to its true degree.
// Checked by tests/output/chart_wheel_test.cpp (crowded placements never
// overlap; a wheel renders).
#pragma once

#include <QPainter>
#include <QRectF>
#include <QString>

#include <array>
#include <vector>

namespace vintar {

struct WheelPoint {
  int Point = 0;            // the point number, 1 to 24
  double Longitude = 0.0;   // degrees
  QString Glyph;            // its symbol (or short name)
  bool Retrograde = false;
};

// One aspect between the wheels: a line across the middle from the moving
// point's degree to the radix point's degree.
struct WheelAspect {
  double Moving = 0.0;  // longitude of the moving point
  double Radix = 0.0;   // longitude of the radix point
  double Angle = 0.0;   // the aspect, 0 to 180
  double Orb = 0.0;     // distance from exact, degrees
};

struct WheelData {
  bool HasHouses = false;
  std::array<double, 13> Cusps{};  // 1 to 12
  double Ascendant = 0.0;          // sets the orientation even without houses
  double Midheaven = 0.0;
  std::array<QString, 13> SignGlyphs;  // 1 to 12; empty: the Unicode signs
  std::vector<WheelPoint> Inner;       // the radix
  std::vector<WheelPoint> Outer;       // the moving chart
  std::vector<WheelAspect> Aspects;
  double OrbLimit = 1.0;  // the orb of the aspects, for the weight of their lines
  QString Title;          // lines at the top left
  QString Caption;        // lines at the bottom left
};

void PaintChartWheel(QPainter& painter, const QRectF& area, const WheelData& data);

// Where glyphs go on a ring: display longitudes, one for each longitude
// given and in the same order, such that no two lie closer than `gap`
// degrees around the circle. Glyphs keep their order around the ring and
// move as little as the crowd allows (a glyph with room stays on its
// degree). With more glyphs than the ring holds the gap shrinks to 360 / n.
std::vector<double> SpreadLongitudes(const std::vector<double>& longitudes, double gap);

// The gaps the wheel keeps between glyphs of the inner and the outer ring,
// degrees (the same at any size).
double InnerGlyphGap();
double OuterGlyphGap();

}  // namespace vintar
