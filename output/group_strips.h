// Painting of the chart strips: one row per strip, the chart's label at the
// left, a base line that is the harmonic circle of 360/H degrees cut open at
// 0, and each shown point's glyph above the line at its place on the
// modulus, joined to the line by a tick (with a midpoint partner, the
// partner's glyph under it); the highlight point in its class colour; and
// under the strips the common scale of the modulus in degrees.
//
// The painting reads only the StripTable and the session's names, glyphs
// (Unicode symbols in DejaVu Sans) and date form, and scales with the rect
// it is given, so one code draws the screen, a report page, PNG, SVG and
// PDF. Checked by tests/output/group_reports_test.cpp (rendered strips are
// not blank; an empty strip's row stays white).
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <string>

#include "core/session.h"
#include "groups/strips.h"

namespace vintar {

// The highlight colour of a colour class (kStripLuminaries ...).
QColor StripClassColour(int colourClass);

// The number of rows painted: up to the last strip that holds a chart (at
// least one), so that empty strips between full ones stay as blank rows.
int StripRowsShown(const StripTable& table);

// The row of strip s inside `area` (the title band above and the scale
// below excluded); empty for a strip past the rows shown.
QRectF StripRowRect(const QRectF& area, const StripTable& table, int s, bool withTitle = false);

// Paints the strips into `area`; `title`, when given, is a line above them.
void PaintGroupStrips(QPainter& painter, const QRectF& area, const Session& session, const StripTable& table,
                      const QString& title = {});

// The common scale, 0 to the modulus in degrees, across `plot` (its left
// and right are those of the strips) with its labels below `y`.
void PictureScale(QPainter& painter, const QRectF& plot, double y, const Session& session, const StripTable& table);

// A size that suits a picture file of the strips, in pixels (1/96 inch).
QSizeF StripsPictureSize(const StripTable& table);

// Saves the strips as PNG, SVG or PDF by the file's extension; false with
// `error` set when it cannot. An empty `size` takes StripsPictureSize.
bool SaveStripsPicture(const std::string& path, const Session& session, const StripTable& table,
                       const QString& title = {}, std::string* error = nullptr, QSizeF size = {});

// The strip whose row holds `point` (the inverse of StripRowRect): 1 to the
// rows shown, 0 above, below or beside them.
int StripRowAt(const QRectF& area, const StripTable& table, const QPointF& point, bool withTitle = false);

}  // namespace vintar
