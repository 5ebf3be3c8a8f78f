// Pictures drawn by one function on a QPainter, saved as PNG, SVG or PDF.
// Sizes are in device-independent pixels (1/96 inch); a PDF page takes the
// picture's size. Checked by saving each kind and reading the file back.
#pragma once

#include <QPainter>
#include <QRectF>
#include <QSizeF>

#include <functional>
#include <string>

namespace vintar {

// The font of the astrological glyphs (the Unicode symbols) in every picture.
inline constexpr const char* kGlyphFontName = "DejaVu Sans";

// Paints a picture into `area` of the painter's device.
using PaintFunction = std::function<void(QPainter& painter, const QRectF& area)>;

enum class DrawingFormat { Png, Svg, Pdf, Unknown };

// The format a file name asks for, by its extension (any case).
DrawingFormat DrawingFormatOf(const std::string& path);

// Saves the picture; false with `error` set when the kind is unknown or the
// file cannot be written. The file is written beside its target and renamed
// into place, so a failed save leaves an older file as it was.
bool SaveDrawing(const std::string& path, QSizeF size, const PaintFunction& paint, std::string* error = nullptr);

// The picture as an image (white background), for the screen and for tests.
QImage RenderDrawing(QSizeF size, const PaintFunction& paint, double scale = 1.0);

}  // namespace vintar
