#include "output/event_graph.h"

#include <QFont>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/parse.h"
#include "output/drawing.h"

namespace vintar {
namespace {

// The bands round the plot, as shares of the area held between bounds.
struct GraphBands {
  double caption, axis, left, right;
};

GraphBands BandsOf(const QRectF& area) {
  GraphBands b;
  b.caption = std::clamp(area.height() * 0.17, 14.0, 52.0);
  b.axis = std::clamp(area.height() * 0.11, 10.0, 30.0);
  b.left = std::clamp(area.width() * 0.05, 16.0, 44.0);
  b.right = std::clamp(area.width() * 0.015, 3.0, 12.0);
  return b;
}

bool GraphInRange(int graph) { return graph >= 1 && graph <= kGraphRecords; }

std::string Fixed(double value, int decimals) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  return buffer;
}

// A degree label without trailing zeros: "7.5°", "10°".
QString DegreeLabel(double degrees) {
  QString text = QString::number(degrees, 'f', 2);
  while (text.contains('.') && (text.endsWith('0') || text.endsWith('.'))) text.chop(1);
  return text + QChar(0x00B0);
}

// The step of the degree labels: the smallest of a few round steps that
// gives at most eight intervals over the segment.
double DegreeStep(double segment) {
  static constexpr double kSteps[] = {0.05, 0.1, 0.25, 0.5, 1, 2, 5, 10, 15, 30};
  for (double step : kSteps)
    if (segment / step <= 8.0 + 1e-9) return step;
  return 30;
}

// A round step for the height labels: about four intervals up to `top`.
double HeightStep(double top) {
  const double raw = top / 4.0;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 2.5, 5.0, 10.0})
    if (m * power >= raw) return m * power;
  return 10 * power;
}

QFont SizedFont(double pixels, bool bold = false) {
  QFont font(kGlyphFontName);
  font.setPixelSize(std::max(6, int(pixels + 0.5)));
  font.setBold(bold);
  return font;
}

}  // namespace

QRectF EventGraphPlotRect(const QRectF& area) {
  const GraphBands b = BandsOf(area);
  QRectF plot = area.adjusted(b.left, b.caption, -b.right, -b.axis);
  if (plot.width() < 1) plot.setWidth(1);
  if (plot.height() < 1) plot.setHeight(1);
  return plot;
}

int EventGraphBarAt(const QRectF& area, QPointF point) {
  const QRectF plot = EventGraphPlotRect(area);
  if (point.x() < plot.left() || point.x() >= plot.right() || point.y() < plot.top() || point.y() > plot.bottom())
    return 0;
  const int bar = int((point.x() - plot.left()) / plot.width() * kBars) + 1;
  return std::clamp(bar, 1, kBars);
}

std::string EventGraphTitle(const Session& session, const GraphState& graphs, int graph) {
  if (!GraphInRange(graph)) return {};
  const GraphRecord& r = graphs.Graph[graph];
  const Vocabulary& v = session.vocab;
  const int coordinate = GraphCoordinate(r);
  const int type = ClampInteger(r.DynamicType, kTransits, kSolarArc);
  std::string text = "Graph " + std::to_string(graph) + ": ";
  if (coordinate < int(v.CoordName.size())) text += v.CoordName[coordinate] + " ";
  if (type < int(v.DynamicMethodName.size())) text += v.DynamicMethodName[type];
  if ((type == kSecondary || type == kTertiary) && r.ProgressionMethod >= 1 && r.ProgressionMethod <= 3 &&
      r.ProgressionMethod < int(v.ProgressionMethodName.size()))
    text += " (" + v.ProgressionMethodName[r.ProgressionMethod] + ")";
  text += ", Harmonic " + std::to_string(r.MasterHarmonic);
  return text;
}

std::string EventGraphPoints(const Session& session, const GraphState& graphs, int graph) {
  if (!GraphInRange(graph)) return {};
  const auto& set = graphs.Selection[GraphCoordinate(graphs.Graph[graph])][graph];
  std::string text;
  for (int p = 1; p <= kPoints; ++p) {
    if (!set[p] || p >= int(session.vocab.PointShort.size())) continue;
    if (!text.empty()) text += " ";
    text += session.vocab.PointShort[p];
  }
  return text;
}

std::string EventGraphStatistics(const GraphState& graphs, int graph) {
  if (!GraphInRange(graph)) return {};
  const GraphRecord& r = graphs.Graph[graph];
  return "Weight " + Fixed(r.TotalWeight, 2) + "   Mean " + Fixed(r.Mean, 2) + "   SD " + Fixed(r.SD, 2) +
         "   Max " + Fixed(r.MaxHeight, 2) + "   Quality " + Fixed(r.Quality, 2);
}

void PaintEventGraph(QPainter& painter, const QRectF& area, const Session& session, const Rectification& rect,
                     int graph) {
  if (!GraphInRange(graph) || area.width() < 4 || area.height() < 4) return;
  const GraphState& graphs = rect.graphs;
  const GraphRecord& record = graphs.Graph[graph];
  const GraphBands bands = BandsOf(area);
  const QRectF plot = EventGraphPlotRect(area);
  painter.save();
  painter.setClipRect(area);

  // Caption: settings with the points' glyphs, then the statistics.
  const double captionPixels = bands.caption / 3.0;
  const QFont titleFont = SizedFont(captionPixels, true);
  const QFont textFont = SizedFont(captionPixels);
  painter.setPen(Qt::black);
  painter.setFont(titleFont);
  const QFontMetricsF titleMetrics(titleFont, painter.device());
  const QString title = QString::fromLatin1(EventGraphTitle(session, graphs, graph).c_str());
  const double line1 = area.top() + bands.caption * 0.08 + titleMetrics.ascent();
  painter.drawText(QPointF(area.left() + 2, line1), title);
  QString glyphs;
  const auto& set = graphs.Selection[GraphCoordinate(record)][graph];
  for (int p = 1; p <= kPoints; ++p)
    if (set[p] && p < int(session.vocab.UnicodePointGlyph.size()))
      glyphs += QString::fromUtf8(session.vocab.UnicodePointGlyph[p].c_str()) + " ";
  painter.setFont(textFont);
  painter.drawText(QPointF(area.left() + 2 + titleMetrics.horizontalAdvance(title) + captionPixels, line1),
                   glyphs.trimmed());
  const QFontMetricsF textMetrics(textFont, painter.device());
  painter.drawText(QPointF(area.left() + 2, line1 + textMetrics.height() * 1.05),
                   QString::fromLatin1(EventGraphStatistics(graphs, graph).c_str()));

  // Scale: the common height of all graphs, so that they compare.
  double top = std::max({double(graphs.GraphMaxHeight), double(record.MaxHeight),
                         double(record.Mean + record.SD)});
  if (!(top > 0)) top = 1.0;
  top *= 1.08;
  const auto yOf = [&](double value) { return plot.bottom() - value / top * plot.height(); };

  // Height grid and labels.
  const QFont smallFont = SizedFont(std::clamp(bands.axis * 0.5, 6.0, 13.0));
  const QFontMetricsF smallMetrics(smallFont, painter.device());
  painter.setFont(smallFont);
  const double step = HeightStep(top);
  for (double v = 0; v <= top + 1e-9; v += step) {
    const double y = yOf(v);
    painter.setPen(QPen(QColor(225, 225, 225), 0));
    painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    painter.setPen(Qt::black);
    const QString label = QString::number(v, 'g', 4);
    painter.drawText(QPointF(plot.left() - 3 - smallMetrics.horizontalAdvance(label), y + smallMetrics.ascent() / 2.5),
                     label);
  }

  // The bars, those of selected peaks filled darker.
  const double barWidth = plot.width() / kBars;
  const QColor barColour(96, 132, 196), peakColour(200, 64, 40);
  painter.setPen(Qt::NoPen);
  for (int b = 0; b < kBars; ++b) {
    const double value = BarValue(graphs, graph, b);
    if (!(value > 0)) continue;
    const QRectF bar(plot.left() + b * barWidth, yOf(value), barWidth, plot.bottom() - yOf(value));
    painter.setBrush(record.PeakFlags[b] ? peakColour : barColour);
    painter.drawRect(bar.adjusted(barWidth * 0.08, 0, -barWidth * 0.08, 0));
  }

  // Mean and mean + SD.
  if (record.Mean > 0) {
    painter.setPen(QPen(QColor(0, 120, 0), 0, Qt::DashLine));
    painter.drawLine(QPointF(plot.left(), yOf(record.Mean)), QPointF(plot.right(), yOf(record.Mean)));
    painter.setPen(QPen(QColor(180, 0, 0), 0, Qt::DashLine));
    const double y = yOf(record.Mean + record.SD);
    painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
  } else {
    painter.setPen(Qt::darkGray);
    painter.setFont(textFont);
    painter.drawText(plot, Qt::AlignCenter, QStringLiteral("No events on this graph"));
  }

  // Frame and axis: degrees of the segment, and the signs when it spans them.
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::black, 0));
  painter.drawRect(plot);
  const int harmonic = std::max<int>(1, record.MasterHarmonic);
  const double segment = 360.0 / harmonic;
  const double tick = bands.axis * 0.2;
  const double labelY = plot.bottom() + tick + smallMetrics.ascent();
  painter.setFont(smallFont);
  const auto xOf = [&](double degrees) { return plot.left() + degrees / segment * plot.width(); };
  if (segment >= 60.0) {
    const QFont signFont = SizedFont(std::clamp(bands.axis * 0.6, 7.0, 16.0));
    const QFontMetricsF signMetrics(signFont, painter.device());
    for (int s = 0; s * 30.0 < segment - 1e-9; ++s) {
      painter.drawLine(QPointF(xOf(s * 30.0), plot.bottom()), QPointF(xOf(s * 30.0), plot.bottom() + tick));
      const int sign = s % 12 + 1;
      const QString glyph = sign < int(session.vocab.UnicodeSignGlyph.size())
                                ? QString::fromUtf8(session.vocab.UnicodeSignGlyph[sign].c_str())
                                : QString();
      painter.setFont(signFont);
      const double mid = xOf(std::min(segment, s * 30.0 + 15.0));
      painter.drawText(QPointF(mid - signMetrics.horizontalAdvance(glyph) / 2,
                               plot.bottom() + tick + signMetrics.ascent()),
                       glyph);
    }
    painter.setFont(smallFont);
  } else {
    const double degreeStep = DegreeStep(segment);
    for (int i = 0; i * degreeStep <= segment + 1e-9; ++i) {
      const double d = i * degreeStep;
      const double x = xOf(d);
      painter.drawLine(QPointF(x, plot.bottom()), QPointF(x, plot.bottom() + tick));
      const QString label = DegreeLabel(d);
      const double w = smallMetrics.horizontalAdvance(label);
      painter.drawText(QPointF(std::clamp(x - w / 2, area.left(), area.right() - w), labelY), label);
    }
  }
  painter.restore();
}

}  // namespace vintar
