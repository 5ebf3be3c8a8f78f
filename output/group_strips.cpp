#include "output/group_strips.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPolygonF>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "output/drawing.h"

namespace vintar {
namespace {

const QColor kInk(25, 25, 25);
const QColor kBaseInk(70, 70, 70);
const QColor kGridInk(228, 228, 228);
const QColor kMarkInk(200, 40, 40);

QFont SizedFont(double pixels, bool bold = false) {
  QFont font(kGlyphFontName);
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(pixels))));
  font.setBold(bold);
  return font;
}

// Where everything goes inside the area.
struct Layout {
  int rows = 1;
  double text = 10.0;   // label text size, pixels
  double glyph = 14.0;  // glyph size, pixels
  double titleHeight = 0.0;
  double rowHeight = 1.0;
  double top = 0.0;  // the first row's top
  double labelWidth = 0.0;
  double plotLeft = 0.0, plotRight = 1.0;
  double scaleY = 0.0;  // the scale's line

  double Width() const { return std::max(1.0, plotRight - plotLeft); }
};

Layout MakeLayout(const QRectF& area, const StripTable& table, bool withTitle) {
  Layout l;
  l.rows = StripRowsShown(table);
  const double base =
      std::max(4.0, std::min(area.width() * 0.014, area.height() / (l.rows * 3.5 + 6.0)));
  l.titleHeight = withTitle ? base * 2.2 : 0.0;
  const double scaleHeight = base * 3.4;
  l.rowHeight = std::max(1.0, (area.height() - l.titleHeight - scaleHeight) / l.rows);
  l.text = std::max(3.0, std::min(base, l.rowHeight * 0.2));
  l.glyph = std::max(4.0, std::min(area.width() * 0.02, l.rowHeight * 0.27));
  l.top = area.top() + l.titleHeight;
  l.labelWidth = area.width() * 0.2;
  l.plotLeft = area.left() + l.labelWidth + l.glyph;
  l.plotRight = area.right() - l.glyph * 0.8;
  l.scaleY = l.top + l.rows * l.rowHeight + base * 0.6;
  return l;
}

// Degrees as the scale labels them: "30°", "7°30'".
QString DegreeLabel(double degrees) {
  const long minutes = std::lround(degrees * 60.0);
  QString text = QString::number(minutes / 60) + QChar(0x00B0);
  if (minutes % 60) text += QString("%1'").arg(minutes % 60, 2, 10, QChar('0'));
  return text;
}

// The scale's major step and its number of minor divisions: at most twelve
// steps across the modulus.
void ScaleStep(double modulus, double& step, int& minors) {
  static const double kSteps[] = {0.1, 0.25, 0.5, 1, 2, 2.5, 5, 10, 15, 30, 45, 60, 90};
  static const int kMinors[] = {5, 5, 5, 4, 4, 5, 5, 5, 3, 3, 3, 3, 3};
  for (size_t i = 0; i < std::size(kSteps); ++i) {
    step = kSteps[i];
    minors = kMinors[i];
    if (modulus / step <= 12.0 + 1e-9) return;
  }
}

void CentredText(QPainter& p, const QPointF& at, const QString& text, double pixels) {
  const QRectF box(at.x() - pixels * 4.0, at.y() - pixels, pixels * 8.0, pixels * 2.0);
  p.drawText(box, Qt::AlignCenter, text);
}

QString GlyphOf(const Session& session, int point) {
  const auto& glyphs = session.vocab.UnicodePointGlyph;
  if (point < 1 || point >= static_cast<int>(glyphs.size())) return QString::number(point);
  return QString::fromUtf8(glyphs[point].c_str());
}

// A glyph of more than one character (a short name) is drawn smaller.
double GlyphPixels(const QString& glyph, double size) { return glyph.size() > 1 ? size * 0.62 : size; }

// The words of `text` in at most two lines of `room`, the second cut short
// with an ellipsis when it does not fit.
QStringList WrapLabel(const QString& text, const QFontMetricsF& metrics, double room) {
  if (metrics.horizontalAdvance(text) <= room) return {text};
  const QStringList words = text.split(' ', Qt::SkipEmptyParts);
  QString first;
  int used = 0;
  while (used < words.size()) {
    const QString tried = first.isEmpty() ? words[used] : first + ' ' + words[used];
    if (!first.isEmpty() && metrics.horizontalAdvance(tried) > room) break;
    first = tried;
    ++used;
  }
  if (used == words.size()) return {metrics.elidedText(first, Qt::ElideRight, room)};
  return {metrics.elidedText(first, Qt::ElideRight, room),
          metrics.elidedText(words.mid(used).join(' '), Qt::ElideRight, room)};
}

// The label at the left of a strip: the numbered description (wrapped to
// two lines when long) and the date under it.
void PaintLabel(QPainter& painter, const Layout& l, const QRectF& row, const std::string& label) {
  const size_t cut = label.find('\n');
  const QString first = QString::fromLatin1(label.substr(0, cut).c_str());
  const QString date = cut == std::string::npos ? QString() : QString::fromLatin1(label.substr(cut + 1).c_str());
  const double room = l.labelWidth - l.text * 0.6;
  const QFont bold = SizedFont(l.text, true), plain = SizedFont(l.text);
  const QFontMetricsF boldMetrics(bold, painter.device()), plainMetrics(plain, painter.device());
  const QStringList lines = WrapLabel(first, boldMetrics, room);
  const double step = plainMetrics.height() * 1.05;
  const double count = lines.size() + (date.isEmpty() ? 0 : 1);
  double y = row.top() + l.rowHeight * 0.58 - step * count / 2.0 + plainMetrics.ascent();
  const double x = row.left() + l.text * 0.3;
  painter.setPen(kInk);
  painter.setFont(bold);
  for (const QString& line : lines) {
    painter.drawText(QPointF(x, y), line);
    y += step;
  }
  painter.setFont(plain);
  painter.drawText(QPointF(x, y), plainMetrics.elidedText(date, Qt::ElideRight, room));
}

void PaintStrip(QPainter& painter, const Layout& l, const QRectF& row, const Session& session,
                const StripTable& table, int s, double step) {
  if (!table.Used(s)) return;  // an empty strip stays blank
  PaintLabel(painter, l, row, ChartLabel(session, table, s));

  const double modulus = table.Modulus();
  const double g = l.glyph;
  const double baseY = row.top() + l.rowHeight * 0.82;
  // The grid of the scale's steps, and the match's column.
  painter.setPen(QPen(kGridInk, std::max(0.5, g * 0.03)));
  for (int i = 0; i * step <= modulus + 1e-9; ++i) {
    const double x = l.plotLeft + i * step / modulus * l.Width();
    painter.drawLine(QPointF(x, row.top()), QPointF(x, baseY));
  }
  if (table.StripSelected[s]) {
    QColor faint = kMarkInk;
    faint.setAlpha(90);
    const double x = l.plotLeft + std::clamp(table.ScaleStart, 0.0, 1.0) * l.Width();
    painter.setPen(QPen(faint, std::max(0.6, g * 0.05), Qt::DashLine));
    painter.drawLine(QPointF(x, row.top()), QPointF(x, baseY));
  }
  painter.setPen(QPen(kBaseInk, std::max(0.8, g * 0.06)));
  painter.drawLine(QPointF(l.plotLeft, baseY), QPointF(l.plotRight, baseY));
  painter.setPen(QPen(kBaseInk, std::max(0.5, g * 0.03)));
  for (int i = 0; i * step <= modulus + 1e-9; ++i) {
    const double x = l.plotLeft + i * step / modulus * l.Width();
    painter.drawLine(QPointF(x, baseY), QPointF(x, baseY + g * 0.18));
  }

  const int partner = table.MidpointPartner;
  const bool withPartner = partner >= 1 && partner <= kPoints;
  const double tickMin = g * 0.35;
  const double partnerDrop = withPartner ? g * 0.8 : 0.0;
  const double pitch = g * 1.05 + partnerDrop;
  const int levels = std::max(1, static_cast<int>((baseY - row.top() - tickMin - partnerDrop - g * 0.1) / pitch));
  std::vector<double> lastRight(levels, -1e300);
  const QString partnerGlyph = withPartner ? GlyphOf(session, partner) : QString();

  const std::vector<int>& order = table.StripOrder[s];
  for (size_t i = 1; i < order.size(); ++i) {
    const int p = order[i];
    if (p < 1 || p > kPoints) continue;
    const double place = table.StripX[p][s];
    if (place < 0.0) continue;
    const double x = l.plotLeft + place / modulus * l.Width();
    const QString glyph = GlyphOf(session, p);
    const double size = GlyphPixels(glyph, g);
    const QFont font = SizedFont(size);
    const double half = QFontMetricsF(font, painter.device()).horizontalAdvance(glyph) / 2.0;
    // The lowest level with room; with none, the least crowded one, the
    // glyph moved right of its neighbour and its tick slanting to its place.
    const double gap = g * 0.08;
    int level = 0;
    while (level < levels && x - half < lastRight[level] + gap) ++level;
    double shown = x;
    if (level == levels) {
      level = static_cast<int>(std::min_element(lastRight.begin(), lastRight.end()) - lastRight.begin());
      shown = lastRight[level] + gap + half;
    }
    lastRight[level] = shown + half;

    const double cy = baseY - tickMin - partnerDrop - g * 0.5 - level * pitch;
    const bool highlight = p == table.HighlightPoint;
    const QColor ink = highlight ? StripClassColour(PointColourClass(p)) : kInk;
    painter.setPen(QPen(level == 0 ? kBaseInk : QColor(160, 160, 160), std::max(0.5, g * 0.04)));
    painter.drawLine(QPointF(shown, cy + g * 0.5 + partnerDrop + g * 0.05), QPointF(x, baseY));
    painter.setPen(ink);
    painter.setFont(SizedFont(size, highlight));
    CentredText(painter, QPointF(shown, cy), glyph, size);
    if (withPartner) {
      const double partnerSize = GlyphPixels(partnerGlyph, g * 0.8);
      painter.setFont(SizedFont(partnerSize));
      CentredText(painter, QPointF(shown, cy + partnerDrop), partnerGlyph, partnerSize);
    }
    if (table.StripSelected[s] && table.StripFocusPoint[s] == p) {
      // The point that put this chart into the match.
      painter.setPen(Qt::NoPen);
      painter.setBrush(kMarkInk);
      const double t = g * 0.22;
      painter.drawPolygon(QPolygonF({QPointF(x, baseY - t * 0.2), QPointF(x - t, baseY + t * 1.4),
                                     QPointF(x + t, baseY + t * 1.4)}));
      painter.setBrush(Qt::NoBrush);
    }
  }
}

}  // namespace

QColor StripClassColour(int colourClass) {
  static const QColor colours[] = {QColor(205, 125, 0), QColor(200, 35, 35), QColor(30, 90, 190),
                                   QColor(130, 50, 160), QColor(20, 130, 70)};
  return colours[std::clamp(colourClass, 0, 4)];
}

int StripRowsShown(const StripTable& table) { return std::max(1, table.LastUsed()); }

QRectF StripRowRect(const QRectF& area, const StripTable& table, int s, bool withTitle) {
  const Layout l = MakeLayout(area, table, withTitle);
  if (s < 1 || s > l.rows) return {};
  return QRectF(area.left(), l.top + (s - 1) * l.rowHeight, area.width(), l.rowHeight);
}

void PictureScale(QPainter& painter, const QRectF& plot, double y, const Session& session, const StripTable& table) {
  const double modulus = table.Modulus();
  const double width = std::max(1.0, plot.width());
  const double text = std::max(3.0, std::min(plot.width() * 0.018, 40.0));
  double step = 30.0;
  int minors = 3;
  ScaleStep(modulus, step, minors);
  const auto xOf = [&](double degrees) { return plot.left() + degrees / modulus * width; };

  painter.save();
  painter.setPen(QPen(kInk, std::max(0.8, text * 0.07)));
  painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
  painter.setPen(QPen(kInk, std::max(0.5, text * 0.05)));
  const double minorStep = step / minors;
  for (int i = 0; i * minorStep <= modulus + 1e-9; ++i) {
    const bool major = i % minors == 0;
    const double x = xOf(i * minorStep);
    painter.drawLine(QPointF(x, y), QPointF(x, y + text * (major ? 0.55 : 0.3)));
  }
  painter.drawLine(QPointF(plot.right(), y), QPointF(plot.right(), y + text * 0.55));

  const QFont font = SizedFont(text * 0.85);
  const QFontMetricsF metrics(font, painter.device());
  painter.setFont(font);
  const double labelY = y + text * 0.65 + metrics.ascent();
  const QString end = DegreeLabel(modulus);
  const double endWidth = metrics.horizontalAdvance(end);
  // The modulus ends at the strips' right end, inside the picture.
  painter.drawText(QPointF(plot.right() - endWidth, labelY), end);
  for (int i = 0; i * step < modulus - 1e-9; ++i) {
    const double x = xOf(i * step);
    const QString label = DegreeLabel(i * step);
    const double w = metrics.horizontalAdvance(label);
    if (x + w / 2.0 + text * 0.4 > plot.right() - endWidth) break;
    painter.drawText(QPointF(x - w / 2.0, labelY), label);
  }
  // On the whole zodiac the signs stand between the ticks.
  if (table.PlotModulus == 1 && std::fabs(step - 30.0) < 1e-9) {
    const QFont signFont = SizedFont(text * 1.05);
    painter.setFont(signFont);
    painter.setPen(QColor(90, 90, 90));
    const auto& signs = session.vocab.UnicodeSignGlyph;
    for (int sign = 1; sign <= 12 && sign < static_cast<int>(signs.size()); ++sign) {
      const double x = xOf(sign * 30.0 - 15.0);
      if (x + text * 0.6 > plot.right() - endWidth) break;  // the modulus label is there
      CentredText(painter, QPointF(x, labelY - metrics.ascent() * 0.35), QString::fromUtf8(signs[sign].c_str()),
                  text * 1.05);
    }
  }
  // The match's position, the start the strips were opened with.
  bool selected = false;
  for (int s = 1; s <= kStripCount; ++s) selected = selected || table.StripSelected[s];
  if (selected) {
    const double x = plot.left() + std::clamp(table.ScaleStart, 0.0, 1.0) * width;
    const double t = text * 0.35;
    painter.setPen(Qt::NoPen);
    painter.setBrush(kMarkInk);
    painter.drawPolygon(QPolygonF({QPointF(x, y - t * 0.2), QPointF(x - t, y - t * 1.8), QPointF(x + t, y - t * 1.8)}));
  }
  painter.restore();
}

void PaintGroupStrips(QPainter& painter, const QRectF& area, const Session& session, const StripTable& table,
                      const QString& title) {
  const Layout l = MakeLayout(area, table, !title.isEmpty());
  painter.save();
  painter.setClipRect(area);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::TextAntialiasing);
  if (!title.isEmpty()) {
    const QFont font = SizedFont(l.text * 1.15, true);
    painter.setFont(font);
    painter.setPen(kInk);
    painter.drawText(QPointF(area.left() + l.text * 0.3, area.top() + QFontMetricsF(font, painter.device()).ascent() +
                                                             l.text * 0.4),
                     title);
  }

  double step = 30.0;
  int minors = 3;
  ScaleStep(table.Modulus(), step, minors);
  for (int s = 1; s <= l.rows; ++s) {
    const QRectF row(area.left(), l.top + (s - 1) * l.rowHeight, area.width(), l.rowHeight);
    PaintStrip(painter, l, row, session, table, s, step);
  }
  PictureScale(painter, QRectF(l.plotLeft, l.scaleY, l.Width(), 1.0), l.scaleY, session, table);
  painter.restore();
}

QSizeF StripsPictureSize(const StripTable& table) {
  return QSizeF(1100.0, 70.0 + 88.0 * StripRowsShown(table) + 60.0);
}

bool SaveStripsPicture(const std::string& path, const Session& session, const StripTable& table,
                       const QString& title, std::string* error, QSizeF size) {
  if (size.isEmpty()) size = StripsPictureSize(table);
  return SaveDrawing(
      path, size,
      [&](QPainter& painter, const QRectF& area) {
        painter.fillRect(area, Qt::white);
        PaintGroupStrips(painter, area, session, table, title);
      },
      error);
}

int StripRowAt(const QRectF& area, const StripTable& table, const QPointF& point, bool withTitle) {
  const Layout l = MakeLayout(area, table, withTitle);
  if (point.x() < area.left() || point.x() >= area.right() || point.y() < l.top) return 0;
  const int s = static_cast<int>(std::floor((point.y() - l.top) / l.rowHeight)) + 1;
  return s <= l.rows ? s : 0;
}

}  // namespace vintar
