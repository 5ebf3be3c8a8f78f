#include "screens/common/tool_window.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QGuiApplication>
#include <QKeySequence>
#include <QScreen>
#include <QShortcut>

#include "core/form_places.h"
#include "screens/common/qt_text.h"

namespace vintar {

namespace {

class FormPlaceKeeper : public QObject {
 public:
  FormPlaceKeeper(QWidget* window, const Session& session, std::string form)
      : QObject(window), window_(window), session_(session), form_(std::move(form)) {
    window->installEventFilter(this);
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched != window_) return false;
    if (event->type() == QEvent::Show && !restored_) {
      restored_ = true;
      Restore();
    } else if (event->type() == QEvent::Close) {
      Store();
    }
    return false;
  }

 private:
  void Restore() {
    const FormPlace place = LoadFormPlace(session_, form_);
    if (!place.HasPosition) return;
    // The title bar must be reachable on one of the screens of today.
    if (!QGuiApplication::screenAt(QPoint(place.Left + 20, place.Top + 10))) return;
    if (place.HasSize)
      window_->setGeometry(place.Left, place.Top, place.Width, place.Height);
    else
      window_->move(place.Left, place.Top);
    if (place.State == kFormMaximised) window_->showMaximized();
  }

  void Store() {
    FormPlace place;
    place.State = window_->isMinimized() ? kFormMinimised : window_->isMaximized() ? kFormMaximised : kFormNormal;
    const QRect g = window_->geometry();
    place.Left = g.x();
    place.Top = g.y();
    place.Width = g.width();
    place.Height = g.height();
    SaveFormPlace(session_, form_, place);
  }

  QWidget* window_;
  const Session& session_;
  std::string form_;
  bool restored_ = false;
};

}  // namespace

void KeepFormPlace(QWidget* window, const Session& session, const QString& form) {
  if (!window || form.isEmpty() || session.paths.DesktopFile.empty()) return;
  new FormPlaceKeeper(window, session, L(form));
}

void ShowToolWindow(QWidget* window, const Session* session) {
  window->setWindowFlag(Qt::Window);
  // A dialog closes on Esc by itself; the other windows the same way.
  if (!qobject_cast<QDialog*>(window)) {
    auto* escape = new QShortcut(QKeySequence::Cancel, window);
    QObject::connect(escape, &QShortcut::activated, window, &QWidget::close);
  }
  if (session) KeepFormPlace(window, *session, window->objectName());
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
  window->raise();
  window->activateWindow();
}

void SettleTourWindow(QWidget* window) {
  window->setWindowFlag(Qt::Window);
  window->show();
  QApplication::processEvents();
}

}  // namespace vintar
