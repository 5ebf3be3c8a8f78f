#include "output/chart_wheel.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "output/drawing.h"

namespace vintar {
namespace {

// Radii as shares of the wheel's radius, from the outside in.
constexpr double kOuterGlyph = 0.925;
constexpr double kOuterLabel = 0.855;
constexpr double kZodiacOuter = 0.80;
constexpr double kSignGlyph = 0.735;
constexpr double kZodiacInner = 0.67;
constexpr double kInnerGlyph = 0.595;
constexpr double kInnerLabel = 0.525;
constexpr double kHouseNumber = 0.482;
constexpr double kAspectCircle = 0.455;

// Glyph and label sizes as shares of the radius.
constexpr double kGlyphSize = 0.064;
constexpr double kLabelSize = 0.030;
constexpr double kSignSize = 0.070;

double Norm(double degrees) {
  const double x = std::fmod(degrees, 360.0);
  return x < 0.0 ? x + 360.0 : x;
}

// The room one glyph takes on a ring, degrees.
double GapAt(double radius) { return kGlyphSize * 1.25 / radius * 180.0 / std::numbers::pi; }

struct Geometry {
  QPointF centre;
  double radius = 1.0;
  double ascendant = 0.0;

  // The Ascendant lies at the left; longitudes grow counter-clockwise.
  QPointF At(double longitude, double share) const {
    const double a = (180.0 + longitude - ascendant) * std::numbers::pi / 180.0;
    return {centre.x() + radius * share * std::cos(a), centre.y() - radius * share * std::sin(a)};
  }
};

QFont GlyphFont(double pixels) {
  QFont font(kGlyphFontName);
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
  return font;
}

void CentredText(QPainter& p, const QPointF& at, const QString& text, double pixels) {
  p.setFont(GlyphFont(pixels));
  const QRectF box(at.x() - pixels * 3.0, at.y() - pixels, pixels * 6.0, pixels * 2.0);
  p.drawText(box, Qt::AlignCenter, text);
}

// The element of a sign: 0 fire, 1 earth, 2 air, 3 water.
int Element(int sign) { return (sign - 1) % 4; }

QColor ElementInk(int element) {
  static const QColor inks[] = {QColor(190, 40, 30), QColor(60, 120, 40), QColor(170, 120, 0), QColor(30, 80, 170)};
  return inks[element];
}

QColor ElementFill(int element) {
  static const QColor fills[] = {QColor(252, 232, 226), QColor(234, 243, 226), QColor(252, 246, 220),
                                 QColor(226, 236, 250)};
  return fills[element];
}

// Hard aspects red, soft ones blue, the minor ones of the twelfth harmonic
// green, conjunctions dark gold.
QColor AspectInk(double angle) {
  const double a = std::fmod(angle, 90.0);
  if (angle < 1e-6) return QColor(150, 110, 0);
  if (std::fabs(a) < 1e-6 || std::fabs(a - 45.0) < 1e-6) return QColor(200, 30, 30);
  if (std::fabs(angle - 60.0) < 1e-6 || std::fabs(angle - 120.0) < 1e-6) return QColor(30, 70, 200);
  return QColor(40, 140, 60);
}

QString DegreeText(double longitude) {
  const int degrees = static_cast<int>(std::floor(Norm(longitude))) % 30;
  return QString::number(degrees) + QChar(0x00B0);
}

void DrawRingPoints(QPainter& p, const Geometry& g, const std::vector<WheelPoint>& points, bool outer) {
  if (points.empty()) return;
  std::vector<double> longitudes;
  for (const WheelPoint& w : points) longitudes.push_back(Norm(w.Longitude));
  const double glyphShare = outer ? kOuterGlyph : kInnerGlyph;
  const double labelShare = outer ? kOuterLabel : kInnerLabel;
  const std::vector<double> shown = SpreadLongitudes(longitudes, outer ? OuterGlyphGap() : InnerGlyphGap());

  const double r = g.radius;
  const double glyphPixels = r * kGlyphSize;
  const double labelPixels = r * kLabelSize;
  const double edge = outer ? kZodiacOuter : kZodiacInner;
  const double tickEnd = outer ? edge + 0.02 : edge - 0.02;
  const double linkEnd = outer ? labelShare - kLabelSize * 0.7 : labelShare + kLabelSize * 0.7;
  const QColor ink = outer ? QColor(20, 90, 60) : QColor(20, 20, 20);

  for (size_t i = 0; i < points.size(); ++i) {
    const WheelPoint& w = points[i];
    // The tick at the true degree and the line from it to the glyph's place.
    p.setPen(QPen(ink, std::max(0.6, r * 0.004)));
    p.drawLine(g.At(longitudes[i], edge), g.At(longitudes[i], tickEnd));
    p.setPen(QPen(QColor(150, 150, 150), std::max(0.4, r * 0.0018)));
    p.drawLine(g.At(longitudes[i], tickEnd), g.At(shown[i], linkEnd));
    if (!outer) {
      // The degree on the aspect circle where the aspect lines meet.
      p.setPen(Qt::NoPen);
      p.setBrush(ink);
      p.drawEllipse(g.At(longitudes[i], kAspectCircle), r * 0.006, r * 0.006);
      p.setBrush(Qt::NoBrush);
    }

    p.setPen(ink);
    const double size = w.Glyph.size() > 1 ? glyphPixels * 0.62 : glyphPixels;
    CentredText(p, g.At(shown[i], glyphShare), w.Glyph, size);
    QString label = DegreeText(w.Longitude);
    if (w.Retrograde) label += QChar(0x211E);
    p.setPen(QColor(70, 70, 70));
    CentredText(p, g.At(shown[i], labelShare), label, labelPixels);
  }
}

}  // namespace

double InnerGlyphGap() { return GapAt(kInnerGlyph); }
double OuterGlyphGap() { return GapAt(kOuterGlyph); }

std::vector<double> SpreadLongitudes(const std::vector<double>& longitudes, double gap) {
  const size_t n = longitudes.size();
  std::vector<double> shown(n);
  if (n == 0) return shown;
  if (n == 1) {
    shown[0] = Norm(longitudes[0]);
    return shown;
  }
  gap = std::min(std::max(gap, 0.0), 360.0 / static_cast<double>(n));

  // Order around the ring, opened at the widest empty arc so that the run
  // of glyphs starts where nothing presses on it.
  std::vector<size_t> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return Norm(longitudes[a]) < Norm(longitudes[b]); });
  size_t start = 0;
  double widest = -1.0;
  for (size_t k = 0; k < n; ++k) {
    const double here = Norm(longitudes[order[k]]);
    const double next = Norm(longitudes[order[(k + 1) % n]]) + (k + 1 == n ? 360.0 : 0.0);
    if (next - here > widest) {
      widest = next - here;
      start = (k + 1) % n;
    }
  }
  std::vector<double> x(n);  // unrolled true longitudes, ascending
  std::vector<size_t> index(n);
  for (size_t k = 0; k < n; ++k) {
    index[k] = order[(start + k) % n];
    x[k] = Norm(longitudes[index[k]]);
    if (k > 0) {
      while (x[k] < x[k - 1]) x[k] += 360.0;
    }
  }

  // Clusters of glyphs laid out at the gap round the mean of their true
  // degrees; neighbours that overlap merge, the last with the first across
  // the opening as well, until nothing overlaps. This is the least-squares
  // placement that keeps the order and the gap.
  struct Cluster {
    std::vector<double> members;  // unrolled true degrees in order
    double centre = 0.0;
    double First() const { return centre - (members.size() - 1) * 0.5 * gap_; }
    double Last() const { return centre + (members.size() - 1) * 0.5 * gap_; }
    double gap_ = 0.0;
    void Centre() {
      centre = std::accumulate(members.begin(), members.end(), 0.0) / static_cast<double>(members.size());
    }
  };
  std::vector<Cluster> clusters;
  constexpr double kSlack = 1e-9;
  for (size_t k = 0; k < n; ++k) {
    Cluster c;
    c.members = {x[k]};
    c.gap_ = gap;
    c.Centre();
    clusters.push_back(c);
    while (clusters.size() > 1) {
      Cluster& b = clusters.back();
      Cluster& a = clusters[clusters.size() - 2];
      if (a.Last() + gap <= b.First() + kSlack) break;
      a.members.insert(a.members.end(), b.members.begin(), b.members.end());
      a.Centre();
      clusters.pop_back();
    }
  }
  // Across the opening: the first cluster follows the last one round.
  size_t rotated = 0;  // how many glyphs moved from the front to the back
  while (clusters.size() > 1) {
    Cluster& last = clusters.back();
    Cluster& first = clusters.front();
    if (last.Last() + gap <= first.First() + 360.0 + kSlack) break;
    for (double m : first.members) last.members.push_back(m + 360.0);
    rotated += first.members.size();
    last.Centre();
    clusters.erase(clusters.begin());
    // The grown cluster may now reach back into its other neighbour.
    while (clusters.size() > 1) {
      Cluster& b = clusters.back();
      Cluster& a = clusters[clusters.size() - 2];
      if (a.Last() + gap <= b.First() + kSlack) break;
      a.members.insert(a.members.end(), b.members.begin(), b.members.end());
      a.Centre();
      clusters.pop_back();
    }
  }

  // Read the places back in the rotated order.
  std::vector<double> placed;
  for (const Cluster& c : clusters)
    for (size_t j = 0; j < c.members.size(); ++j) placed.push_back(c.First() + static_cast<double>(j) * gap);
  for (size_t k = 0; k < n; ++k) shown[index[(k + rotated) % n]] = Norm(placed[k]);
  return shown;
}

void PaintChartWheel(QPainter& p, const QRectF& area, const WheelData& data) {
  p.save();
  p.setRenderHint(QPainter::Antialiasing);
  p.setRenderHint(QPainter::TextAntialiasing);

  Geometry g;
  g.centre = area.center();
  g.radius = std::max(1.0, std::min(area.width(), area.height()) / 2.0 * 0.97);
  g.ascendant = data.HasHouses ? data.Cusps[1] : data.Ascendant;
  if (!data.HasHouses || !std::isfinite(g.ascendant)) g.ascendant = data.Ascendant;
  const double r = g.radius;
  const double hair = std::max(0.5, r * 0.0025);

  auto circle = [&](double share) { p.drawEllipse(g.centre, r * share, r * share); };

  // The zodiac ring: sign sectors tinted by element, glyphs in their ink.
  for (int sign = 1; sign <= 12; ++sign) {
    const double from = (sign - 1) * 30.0;
    QPainterPath sector;
    sector.moveTo(g.At(from, kZodiacInner));
    for (int step = 0; step <= 30; ++step) sector.lineTo(g.At(from + step, kZodiacOuter));
    for (int step = 30; step >= 0; --step) sector.lineTo(g.At(from + step, kZodiacInner));
    sector.closeSubpath();
    p.fillPath(sector, ElementFill(Element(sign)));
    p.setPen(QPen(QColor(110, 110, 110), hair));
    p.drawLine(g.At(from, kZodiacInner), g.At(from, kZodiacOuter));
    p.setPen(ElementInk(Element(sign)));
    static const char16_t kSigns[] = u"\u2648\u2649\u264A\u264B\u264C\u264D\u264E\u264F\u2650\u2651\u2652\u2653";
    const QString glyph = data.SignGlyphs[sign].isEmpty() ? QString(QChar(kSigns[sign - 1])) : data.SignGlyphs[sign];
    CentredText(p, g.At(from + 15.0, kSignGlyph), glyph, r * kSignSize);
  }
  // Degree ticks on the inside of the ring.
  p.setPen(QPen(QColor(110, 110, 110), hair * 0.8));
  for (int d = 0; d < 360; ++d) {
    const double length = d % 10 == 0 ? 0.03 : (d % 5 == 0 ? 0.02 : 0.01);
    p.drawLine(g.At(d, kZodiacInner), g.At(d, kZodiacInner + length));
  }
  p.setBrush(Qt::NoBrush);
  p.setPen(QPen(QColor(60, 60, 60), hair * 1.4));
  circle(kZodiacOuter);
  circle(kZodiacInner);
  p.setPen(QPen(QColor(160, 160, 160), hair));
  circle(1.0);
  circle(kAspectCircle);

  // The radix houses, the angles in bold with their names.
  if (data.HasHouses) {
    for (int cusp = 1; cusp <= 12; ++cusp) {
      const bool angle = cusp == 1 || cusp == 10 || cusp == 4 || cusp == 7;
      p.setPen(QPen(angle ? QColor(150, 20, 20) : QColor(120, 120, 120), angle ? hair * 2.2 : hair));
      p.drawLine(g.At(data.Cusps[cusp], kAspectCircle), g.At(data.Cusps[cusp], angle ? kZodiacOuter : kZodiacInner));
      const double next = data.Cusps[cusp % 12 + 1];
      const double middle = data.Cusps[cusp] + Norm(next - data.Cusps[cusp]) / 2.0;
      p.setPen(QColor(130, 130, 130));
      CentredText(p, g.At(middle, kHouseNumber), QString::number(cusp), r * kLabelSize * 0.85);
    }
  }
  p.setPen(QColor(150, 20, 20));
  QFont bold = GlyphFont(r * kLabelSize * 1.1);
  bold.setBold(true);
  p.setFont(bold);
  const std::pair<double, QString> angles[] = {{data.Ascendant, QStringLiteral("Asc")},
                                               {data.Midheaven, QStringLiteral("MC")}};
  for (const auto& [longitude, name] : angles) {
    const QPointF at = g.At(longitude + 4.0, kAspectCircle - 0.05);
    p.drawText(QRectF(at.x() - r * 0.06, at.y() - r * 0.03, r * 0.12, r * 0.06), Qt::AlignCenter, name);
  }

  // The aspects between the wheels.
  for (const WheelAspect& a : data.Aspects) {
    const double closeness = data.OrbLimit > 0.0 ? 1.0 - std::min(1.0, std::fabs(a.Orb) / data.OrbLimit) : 1.0;
    p.setPen(QPen(AspectInk(a.Angle), hair * (0.8 + 1.8 * closeness)));
    if (a.Angle < 1e-6) {
      // A conjunction has no length across the middle: a short arc marks it.
      p.drawLine(g.At(a.Radix, kAspectCircle), g.At(a.Moving, kAspectCircle - 0.06));
    } else {
      p.drawLine(g.At(a.Moving, kAspectCircle), g.At(a.Radix, kAspectCircle));
    }
  }

  DrawRingPoints(p, g, data.Inner, false);
  DrawRingPoints(p, g, data.Outer, true);

  // The texts in the corners.
  p.setPen(QColor(40, 40, 40));
  p.setFont(GlyphFont(std::clamp(r * 0.032, 8.0, 16.0)));
  const double margin = std::clamp(r * 0.02, 2.0, 10.0);
  const QRectF corner = area.adjusted(margin, margin, -margin, -margin);
  if (!data.Title.isEmpty()) p.drawText(corner, Qt::AlignLeft | Qt::AlignTop, data.Title);
  if (!data.Caption.isEmpty()) p.drawText(corner, Qt::AlignLeft | Qt::AlignBottom, data.Caption);
  p.restore();
}

}  // namespace vintar
