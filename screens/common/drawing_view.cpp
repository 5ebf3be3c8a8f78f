#include "screens/common/drawing_view.h"

#include <QContextMenuEvent>
#include <QFileDialog>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include "screens/common/qt_text.h"

namespace vintar {

DrawingView::DrawingView(QWidget* parent, Session* session) : QWidget(parent), session_(session) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void DrawingView::SetPaint(PaintFunction paint) {
  paint_ = std::move(paint);
  update();
}

void DrawingView::SetPreferredSize(QSizeF size) {
  if (size.width() < 1 || size.height() < 1) return;
  preferred_ = size;
  updateGeometry();
}

QSize DrawingView::sizeHint() const { return preferred_.toSize(); }

QSize DrawingView::minimumSizeHint() const { return QSize(120, 80); }

void DrawingView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (!paint_) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::TextAntialiasing);
  paint_(painter, QRectF(rect()));
}

void DrawingView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit clicked(event->position(), QRectF(rect()));
  QWidget::mousePressEvent(event);
}

void DrawingView::mouseMoveEvent(QMouseEvent* event) {
  emit hovered(event->position(), QRectF(rect()));
  QWidget::mouseMoveEvent(event);
}

void DrawingView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  QAction* save = menu.addAction(tr("&Save Picture..."));
  save->setEnabled(bool(paint_));
  connect(save, &QAction::triggered, this, &DrawingView::SavePicture);
  menu.exec(event->globalPos());
}

bool DrawingView::SavePictureTo(const QString& path) {
  if (!paint_) return false;
  std::string error;
  if (SaveDrawing(PathOf(path), preferred_, paint_, &error)) return true;
  if (session_) session_->ShowMessage(error, kIconExclamation, "Save Picture");
  return false;
}

void DrawingView::SavePicture() {
  if (!paint_) return;
  QString filter;
  QString path = QFileDialog::getSaveFileName(this, tr("Save Picture"), saveName_,
                                              tr("PNG Picture (*.png);;SVG Drawing (*.svg);;PDF Document (*.pdf)"),
                                              &filter);
  if (path.isEmpty()) return;
  // A name typed without an extension takes the one of the chosen kind.
  if (DrawingFormatOf(PathOf(path)) == DrawingFormat::Unknown)
    path += filter.contains("svg") ? ".svg" : filter.contains("pdf") ? ".pdf" : ".png";
  SavePictureTo(path);
}

}  // namespace vintar
