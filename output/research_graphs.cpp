#include "output/research_graphs.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "output/drawing.h"

namespace vintar {
namespace {

// The dial's full radius and the ring of its labels, in area heights; the
// pointer finds cells out to 0.42.
constexpr double kDialRadius = 0.33;
constexpr double kLabelRadius = 0.385;

// The bands of the layout, in device units.
struct Bands {
  double title, stats, axis, left, base;  // base: the text size
};

Bands BandsOf(const QRectF& area) {
  Bands b;
  b.base = std::max(6.0, std::min(area.width(), area.height()) * 0.026);
  b.title = 3.2 * b.base;
  b.stats = std::clamp(area.width() * 0.24, 8.0 * b.base, 15.0 * b.base);
  if (b.stats > area.width() * 0.4) b.stats = area.width() * 0.4;
  b.axis = 2.6 * b.base;
  b.left = 4.5 * b.base;
  return b;
}

QFont SizedFont(double pixels, bool bold = false) {
  QFont font(kGlyphFontName);
  font.setPixelSize(std::max(5, int(pixels + 0.5)));
  font.setBold(bold);
  return font;
}

QString Latin1(const std::string& text) { return QString::fromLatin1(text.data(), qsizetype(text.size())); }

bool FourierCode(int code) { return code >= 300 && code <= 303; }
bool SignCode(int code) { return code == 0 || code == 5 || code == 6 || code == 7; }

double Pen(const QRectF& area) { return std::max(1.0, std::min(area.width(), area.height()) / 500.0); }

// A value of the axis in the style's format: counts plain, proportions
// with up to three decimals, percentages with "%".
QString AxisText(double value, int style) {
  if (style == 2 || style == 4) return QString::number(value * 100.0, 'g', 4) + "%";
  return QString::number(value, 'g', 4);
}

// A round step for about four intervals up to `top`.
double NiceStep(double top) {
  const double raw = top / 4.0;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 2.5, 5.0, 10.0})
    if (m * power >= raw - 1e-12) return m * power;
  return 10 * power;
}

// The highest value to scale to: the largest cell or level, a little above.
double ScaleTop(const TabulationRun& run, int column, int style, double level, bool hasLevel) {
  double top = hasLevel ? level : 0.0;
  for (int cell = 1; cell <= run.UsedCells; ++cell) top = std::max(top, StyledValue(run, cell, column, style));
  if (!(top > 0) || !std::isfinite(top)) return 1.0;
  return top * 1.08;
}

bool HasCells(const TabulationRun& run, int column) {
  return run.UsedCells >= 1 && run.CellCount >= run.UsedCells && column >= 1 && column <= run.ColumnCount + 1 &&
         static_cast<int>(run.Tally.size()) > run.CellCount + 1 &&
         static_cast<int>(run.Tally[0].size()) > run.ColumnCount + 1;
}

// Every n-th label so that labels of `width` fit in slots of `slot`.
int LabelStep(double width, double slot, int count) {
  if (!(slot > 0)) return std::max(1, count);
  int step = std::max(1, int(std::ceil(width * 1.25 / slot)));
  // Steps that divide a circle or a zodiac evenly read best.
  for (int nice : {1, 2, 3, 4, 5, 6, 10, 12, 15, 20, 30, 36, 45, 60, 90, 120, 180, 360})
    if (nice >= step) return nice;
  return step;
}

void PaintTitle(QPainter& painter, const QRectF& area, const Bands& b, const std::string& title,
                const std::string& subtitle) {
  const QFont bold = SizedFont(b.base * 1.15, true);
  const QFont plain = SizedFont(b.base * 0.95);
  painter.setPen(Qt::black);
  painter.setFont(bold);
  const QFontMetricsF bm(bold, painter.device());
  painter.drawText(QRectF(area.left(), area.top() + 0.2 * b.base, area.width(), bm.height()), Qt::AlignHCenter,
                   Latin1(title));
  painter.setFont(plain);
  const QFontMetricsF pm(plain, painter.device());
  painter.drawText(QRectF(area.left(), area.top() + 0.3 * b.base + bm.height(), area.width(), pm.height()),
                   Qt::AlignHCenter, Latin1(subtitle));
}

// The statistics block in the right-hand column, with a swatch of the
// expected level under it.
void PaintStatistics(QPainter& painter, const QRectF& area, const Bands& b, const Session& session,
                     const TabulationRun& run, const ResearchGraphRequest& graph, bool hasLevel, double level) {
  const QRectF column(area.right() - b.stats, area.top() + b.title, b.stats, area.height() - b.title);
  const std::vector<std::string> block = StatisticsBlock(session, run, graph.Column);
  const QString expected = "Expected " + AxisText(level, graph.Style);
  const double x = column.left() + 0.8 * b.base, swatch = 2.5 * b.base;
  // The text as large as the column lets it be, up to its normal size.
  double pixels = b.base * 0.9;
  {
    const QFontMetricsF fm(SizedFont(pixels), painter.device());
    double widest = hasLevel ? swatch + fm.horizontalAdvance(expected) : 0.0;
    for (const std::string& line : block) widest = std::max(widest, fm.horizontalAdvance(Latin1(line)));
    const double room = column.right() - x - 0.2 * b.base;
    if (widest > room && room > 0) pixels *= room / widest;
  }
  const QFont font = SizedFont(pixels);
  const QFontMetricsF fm(font, painter.device());
  painter.setFont(font);
  painter.setPen(Qt::black);
  double y = column.top() + b.base;
  for (const std::string& line : block) {
    painter.drawText(QPointF(x, y + fm.ascent()), Latin1(line));
    y += fm.height() * 1.15;
  }
  if (!hasLevel) return;
  y += fm.height() * 0.6;
  painter.setPen(QPen(QColor(0, 120, 0), Pen(area) * 1.5, Qt::DashLine));
  painter.drawLine(QPointF(x, y + fm.height() / 2), QPointF(x + 0.8 * swatch, y + fm.height() / 2));
  painter.setPen(Qt::black);
  painter.drawText(QPointF(x + swatch, y + fm.ascent()), expected);
}

void PaintBars(QPainter& painter, const QRectF& area, const Bands& b, const Session& session,
               const TabulationRun& run, const ResearchGraphRequest& graph, bool hasLevel, double level) {
  const QRectF plot = ResearchBarPlotRect(area);
  const double top = ScaleTop(run, graph.Column, graph.Style, level, hasLevel);
  const auto yOf = [&](double v) { return plot.bottom() - std::clamp(v / top, 0.0, 1.0) * plot.height(); };
  const double pen = Pen(area);

  // Value grid and labels.
  const QFont small = SizedFont(b.base * 0.85);
  const QFontMetricsF sm(small, painter.device());
  painter.setFont(small);
  const double step = NiceStep(top);
  for (int i = 0; i * step <= top + 1e-12; ++i) {
    const double v = i * step, y = yOf(v);
    painter.setPen(QPen(QColor(225, 225, 225), pen));
    painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
    painter.setPen(Qt::black);
    const QString label = AxisText(v, graph.Style);
    painter.drawText(QPointF(plot.left() - 0.4 * b.base - sm.horizontalAdvance(label), y + sm.ascent() / 2.5), label);
  }

  // The bars, the peak cell of the statistics in red.
  const int cells = run.UsedCells;
  const double width = plot.width() / cells;
  const int peak = StatisticsBlock(session, run, graph.Column).empty()
                       ? 0
                       : ColumnStats(run, graph.Column, FourierCode(run.Params.Code)).PeakCell;
  painter.setPen(width > 4 * pen ? QPen(QColor(40, 60, 110), pen * 0.6) : QPen(Qt::NoPen));
  for (int cell = 1; cell <= cells; ++cell) {
    const double v = StyledValue(run, cell, graph.Column, graph.Style);
    if (!(v > 0)) continue;
    painter.setBrush(cell == peak ? QColor(200, 64, 40) : QColor(96, 132, 196));
    const double x = plot.left() + (cell - 1) * width;
    painter.drawRect(QRectF(x + width * 0.1, yOf(v), width * 0.8, plot.bottom() - yOf(v)));
  }

  if (hasLevel) {
    painter.setPen(QPen(QColor(0, 120, 0), pen * 1.5, Qt::DashLine));
    painter.drawLine(QPointF(plot.left(), yOf(level)), QPointF(plot.right(), yOf(level)));
  }
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::black, pen));
  painter.drawRect(plot);

  // Cell labels under the bars, as many as fit.
  const QFont labelFont = SizedFont(b.base * (SignCode(run.Params.Code) ? 1.1 : 0.85));
  const QFontMetricsF lm(labelFont, painter.device());
  painter.setFont(labelFont);
  double widest = 0;
  for (int cell = 1; cell <= cells; ++cell)
    widest = std::max(widest, lm.horizontalAdvance(ResearchCellLabel(session, run, cell)));
  const int every = LabelStep(widest, width, cells);
  for (int cell = 1; cell <= cells; cell += every) {
    const QString label = ResearchCellLabel(session, run, cell);
    const double mid = plot.left() + (cell - 0.5) * width;
    const double w = lm.horizontalAdvance(label);
    painter.drawLine(QPointF(mid, plot.bottom()), QPointF(mid, plot.bottom() + 0.3 * b.base));
    painter.drawText(QPointF(std::max(area.left(), std::min(mid - w / 2, area.right() - w)),
                             plot.bottom() + 0.4 * b.base + lm.ascent()),
                     label);
  }
}

QPointF OnDial(QPointF centre, double cellAngle, double radius) {
  const double a = (cellAngle - 90.0) * std::numbers::pi / 180.0;
  return centre + QPointF(std::cos(a) * radius, std::sin(a) * radius);
}

void PaintPolar(QPainter& painter, const QRectF& area, const Bands& b, const Session& session,
                const TabulationRun& run, const ResearchGraphRequest& graph, bool hasLevel, double level) {
  const QPointF centre = ResearchPolarCentre(area);
  const double radius = ResearchPolarRadius(area);
  const double top = ScaleTop(run, graph.Column, graph.Style, level, hasLevel);
  const double pen = Pen(area);
  const int cells = run.UsedCells;
  const double span = 360.0 / cells;
  const auto rOf = [&](double v) { return std::clamp(v / top, 0.0, 1.0) * radius; };

  // Rings of the value scale, and the spokes between cells when they are few.
  const QFont small = SizedFont(b.base * 0.8);
  const QFontMetricsF sm(small, painter.device());
  painter.setFont(small);
  painter.setBrush(Qt::NoBrush);
  const double step = NiceStep(top);
  painter.setPen(QPen(QColor(215, 215, 215), pen));
  for (int i = 1; i * step <= top + 1e-12; ++i) painter.drawEllipse(centre, rOf(i * step), rOf(i * step));
  if (cells <= 72) {
    painter.setPen(QPen(QColor(225, 225, 225), pen));
    for (int cell = 0; cell < cells; ++cell) painter.drawLine(centre, OnDial(centre, cell * span, radius));
  }

  // The sectors, the peak cell of the statistics in red.
  const int peak = StatisticsBlock(session, run, graph.Column).empty()
                       ? 0
                       : ColumnStats(run, graph.Column, FourierCode(run.Params.Code)).PeakCell;
  painter.setPen(cells <= 120 ? QPen(QColor(40, 60, 110), pen * 0.6) : QPen(Qt::NoPen));
  for (int cell = 1; cell <= cells; ++cell) {
    const double r = rOf(StyledValue(run, cell, graph.Column, graph.Style));
    if (!(r > 0)) continue;
    QPolygonF sector;
    sector << centre;
    const double from = (cell - 1) * span;
    const int steps = std::max(1, int(std::ceil(span / 2.0)));
    for (int k = 0; k <= steps; ++k) sector << OnDial(centre, from + span * k / steps, r);
    painter.setBrush(cell == peak ? QColor(200, 64, 40) : QColor(96, 132, 196));
    painter.drawPolygon(sector);
  }
  painter.setBrush(Qt::NoBrush);
  if (hasLevel) {
    const double r = rOf(level);
    painter.setPen(QPen(QColor(0, 120, 0), pen * 1.5, Qt::DashLine));
    painter.drawEllipse(centre, r, r);
  }
  painter.setPen(QPen(Qt::black, pen));
  painter.drawEllipse(centre, radius, radius);
  // The scale's values up the first spoke, over the sectors.
  painter.setFont(small);
  painter.setPen(QColor(90, 90, 90));
  for (int i = 1; i * step <= top + 1e-12; ++i)
    painter.drawText(centre + QPointF(0.2 * b.base, -rOf(i * step) + sm.ascent()), AxisText(i * step, graph.Style));

  // The cells' labels round the rim, as many as the circumference holds.
  const QFont labelFont = SizedFont(b.base * (SignCode(run.Params.Code) ? 1.15 : 0.8));
  const QFontMetricsF lm(labelFont, painter.device());
  painter.setFont(labelFont);
  const double labelRadius = kLabelRadius * area.height() - 0.6 * lm.height();
  double widest = 0;
  for (int cell = 1; cell <= cells; ++cell)
    widest = std::max(widest, std::min(lm.horizontalAdvance(ResearchCellLabel(session, run, cell)), 3.0 * lm.height()));
  const int every = LabelStep(widest, 2 * std::numbers::pi * labelRadius / cells, cells);
  for (int cell = 1; cell <= cells; cell += every) {
    const QString label = ResearchCellLabel(session, run, cell);
    const QPointF at = OnDial(centre, (cell - 0.5) * span, labelRadius);
    const double w = lm.horizontalAdvance(label);
    painter.drawText(QRectF(at.x() - w / 2 - 2, at.y() - lm.height() / 2, w + 4, lm.height()), Qt::AlignCenter, label);
  }
}

}  // namespace

std::string ResearchGraphTitle(const Session& session, const TabulationRun& run, int column) {
  const std::vector<std::string> names = DisplayPoints(run, "All Points");
  std::string title = column >= 1 && column <= static_cast<int>(names.size()) ? names[column - 1] : "";
  const auto& divisions = session.vocab.DivisionName;
  const auto& coordinates = session.vocab.CoordinateName;
  const int code = run.Params.Code, type = run.Params.DataType;
  if (code >= 0 && code < static_cast<int>(divisions.size()) && !divisions[code].empty())
    title += (title.empty() ? "" : " - ") + divisions[code];
  if (type >= 0 && type < static_cast<int>(coordinates.size())) title += " (" + coordinates[type] + ")";
  return title;
}

std::string ResearchGraphSubtitle(const TabulationRun& run, int style) {
  return std::string(kTabStyleNames[std::clamp(style, 0, kTabStyles - 1)]) + " - " + std::to_string(run.ChartsUsed) +
         (run.ChartsUsed == 1 ? " Chart" : " Charts");
}

QString ResearchCellLabel(const Session& session, const TabulationRun& run, int cell) {
  const int code = run.Params.Code;
  const auto& glyphs = session.vocab.UnicodeSignGlyph;
  const int sign = code == 5 ? (cell - 1) / 3 + 1 : cell;
  if (SignCode(code) && sign >= 1 && sign < static_cast<int>(glyphs.size()) && sign <= 12) {
    const QString glyph = QString::fromUtf8(glyphs[sign].c_str());
    if (code != 5) return glyph;
    const int from = (cell - 1) % 3 * 10;
    return glyph + " " + QString::number(from) + "-" + QString::number(from + 10);
  }
  return Latin1(CellName(session, run, cell, true));
}

bool ExpectedLevel(const TabulationRun& run, int column, int style, double& level) {
  level = 0;
  if (FourierCode(run.Params.Code) || !HasCells(run, column)) return false;
  const double total = run.At(run.CellCount + 1, column);
  if (!(total > 0)) return false;
  switch (std::clamp(style, 0, kTabStyles - 1)) {
    case 0: level = total / run.CellCount; break;
    case 1:
    case 2: level = 1.0 / run.CellCount; break;
    default: level = 1.0; break;
  }
  return true;
}

QRectF ResearchBarPlotRect(const QRectF& area) {
  const Bands b = BandsOf(area);
  QRectF plot(area.left() + b.left, area.top() + b.title, area.width() - b.left - b.stats,
              area.height() - b.title - b.axis);
  if (plot.width() < 1) plot.setWidth(1);
  if (plot.height() < 1) plot.setHeight(1);
  return plot;
}

QPointF ResearchPolarCentre(const QRectF& area) {
  const Bands b = BandsOf(area);
  const double x = area.left() + (area.width() - b.stats) / 2;
  // Below the title, but never so low that the labels leave the area.
  const double y = std::min(area.top() + b.title + (area.height() - b.title) / 2,
                            area.bottom() - kLabelRadius * area.height());
  return {x, std::max(area.top() + area.height() / 2, y)};
}

double ResearchPolarRadius(const QRectF& area) {
  const Bands b = BandsOf(area);
  const double room = (area.width() - b.stats) / 2 - (kLabelRadius - kDialRadius) * area.height();
  return std::max(1.0, std::min(kDialRadius * area.height(), room));
}

int ResearchGraphCellAt(const TabulationRun& run, int display, const QRectF& area, QPointF point) {
  if (area.height() <= 0) return 0;
  if (display == kPolarGraph) {
    const QPointF d = point - ResearchPolarCentre(area);
    const double angle = std::atan2(d.y(), d.x()) * 180.0 / std::numbers::pi;
    return PolarCellAt(run, angle, std::hypot(d.x(), d.y()) / area.height());
  }
  const QRectF plot = ResearchBarPlotRect(area);
  if (point.y() < plot.top() || point.y() > plot.bottom()) return 0;
  return BarCellAt(run, (point.x() - plot.left()) / plot.width());
}

void PaintResearchGraph(QPainter& painter, const QRectF& area, const Session& session, const TabulationRun& run,
                        const ResearchGraphRequest& graph) {
  if (area.width() < 8 || area.height() < 8) return;
  const Bands b = BandsOf(area);
  painter.save();
  painter.setClipRect(area);
  painter.setRenderHint(QPainter::Antialiasing);
  const int style = std::clamp(graph.Style, 0, kTabStyles - 1);
  ResearchGraphRequest s = graph;
  s.Style = style;
  PaintTitle(painter, area, b, graph.Title.empty() ? ResearchGraphTitle(session, run, graph.Column) : graph.Title,
             ResearchGraphSubtitle(run, style));
  if (!HasCells(run, graph.Column)) {
    painter.setFont(SizedFont(b.base));
    painter.setPen(Qt::darkGray);
    painter.drawText(area.adjusted(0, b.title, 0, 0), Qt::AlignCenter, QStringLiteral("No data"));
    painter.restore();
    return;
  }
  double level = 0;
  const bool hasLevel = ExpectedLevel(run, graph.Column, style, level);
  if (graph.Display == kPolarGraph)
    PaintPolar(painter, area, b, session, run, s, hasLevel, level);
  else
    PaintBars(painter, area, b, session, run, s, hasLevel, level);
  PaintStatistics(painter, area, b, session, run, s, hasLevel, level);
  painter.restore();
}

bool SaveResearchGraph(const std::string& path, QSizeF size, const Session& session, const TabulationRun& run,
                       const ResearchGraphRequest& graph, std::string* error) {
  return SaveDrawing(path, size, [&](QPainter& painter, const QRectF& area) {
    PaintResearchGraph(painter, area, session, run, graph);
  }, error);
}

}  // namespace vintar
