#include "output/drawing.h"

#include <QFile>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace vintar {

DrawingFormat DrawingFormatOf(const std::string& path) {
  std::string ext = std::filesystem::path(path).extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
  if (ext == ".png") return DrawingFormat::Png;
  if (ext == ".svg") return DrawingFormat::Svg;
  if (ext == ".pdf") return DrawingFormat::Pdf;
  return DrawingFormat::Unknown;
}

QImage RenderDrawing(QSizeF size, const PaintFunction& paint, double scale) {
  QImage image(std::max(1, int(size.width() * scale + 0.5)), std::max(1, int(size.height() * scale + 0.5)),
               QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::TextAntialiasing);
  painter.scale(scale, scale);
  paint(painter, QRectF(QPointF(0, 0), size));
  painter.end();
  return image;
}

bool SaveDrawing(const std::string& path, QSizeF size, const PaintFunction& paint, std::string* error) {
  auto fail = [&](const std::string& why) {
    if (error) *error = why;
    return false;
  };
  DrawingFormat format = DrawingFormatOf(path);
  if (format == DrawingFormat::Unknown) return fail("Pictures are saved as .png, .svg or .pdf files.");
  const QString target = QFile::decodeName(path.c_str());
  const QString temp = target + ".part";
  QFile::remove(temp);
  bool ok = true;
  if (format == DrawingFormat::Png) {
    ok = RenderDrawing(size, paint, 2.0).save(temp, "PNG");
  } else if (format == DrawingFormat::Svg) {
    QSvgGenerator svg;
    svg.setFileName(temp);
    svg.setSize(size.toSize());
    svg.setViewBox(QRectF(QPointF(0, 0), size));
    svg.setResolution(96);
    QPainter painter;
    ok = painter.begin(&svg);
    if (ok) {
      painter.setRenderHint(QPainter::Antialiasing);
      paint(painter, QRectF(QPointF(0, 0), size));
      ok = painter.end();
    }
  } else {
    QPdfWriter pdf(temp);
    pdf.setResolution(96);
    pdf.setPageSize(QPageSize(size * 72.0 / 96.0, QPageSize::Point));
    pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
    QPainter painter;
    ok = painter.begin(&pdf);
    if (ok) {
      painter.setRenderHint(QPainter::Antialiasing);
      paint(painter, QRectF(QPointF(0, 0), size));
      ok = painter.end();
    }
  }
  if (!ok || !QFile::exists(temp)) {
    QFile::remove(temp);
    return fail("The picture could not be written to " + path + ".");
  }
  std::error_code ec;
  std::filesystem::rename(QFile::encodeName(temp).toStdString(), path, ec);
  if (ec) {
    QFile::remove(temp);
    return fail("The picture could not be written to " + path + ": " + ec.message());
  }
  return true;
}

}  // namespace vintar
