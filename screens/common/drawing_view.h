// A widget that shows a picture painted by a PaintFunction, scaled to the
// widget, with a context menu to save it as PNG, SVG or PDF. Clicks are
// passed on with the drawing's area so that the owner can hit-test them
// (the bar of an event graph under the mouse, say).
#pragma once

#include <QSizeF>
#include <QWidget>

#include <string>

#include "core/session.h"
#include "output/drawing.h"

namespace vintar {

class DrawingView : public QWidget {
  Q_OBJECT
 public:
  explicit DrawingView(QWidget* parent = nullptr, Session* session = nullptr);

  void SetPaint(PaintFunction paint);
  // The picture's natural size: the size hint and the size of saved files.
  void SetPreferredSize(QSizeF size);
  QSizeF PreferredSize() const { return preferred_; }
  // Where save errors are told.
  void SetSession(Session* session) { session_ = session; }
  // The default file name the save dialog offers.
  void SetSaveName(const QString& name) { saveName_ = name; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

  // Saves the picture at its preferred size; the kind follows the extension.
  // A failure is told through the session and gives false.
  bool SavePictureTo(const QString& path);

 public slots:
  // "Save Picture...": asks for a file name (PNG, SVG or PDF), then saves.
  void SavePicture();

 signals:
  // A left click at `point` (widget coordinates) on the drawing in `area`.
  void clicked(QPointF point, QRectF area);
  // The mouse moving over the drawing, for read-outs.
  void hovered(QPointF point, QRectF area);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  PaintFunction paint_;
  QSizeF preferred_{640, 400};
  Session* session_ = nullptr;
  QString saveName_ = QStringLiteral("picture.png");
};

}  // namespace vintar
