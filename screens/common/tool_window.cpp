#include "screens/common/tool_window.h"

#include <QDialog>
#include <QKeySequence>
#include <QShortcut>

namespace vintar {

void ShowToolWindow(QWidget* window) {
  window->setWindowFlag(Qt::Window);
  // A dialog closes on Esc by itself; the other windows the same way.
  if (!qobject_cast<QDialog*>(window)) {
    auto* escape = new QShortcut(QKeySequence::Cancel, window);
    QObject::connect(escape, &QShortcut::activated, window, &QWidget::close);
  }
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
  window->raise();
  window->activateWindow();
}

}  // namespace vintar
