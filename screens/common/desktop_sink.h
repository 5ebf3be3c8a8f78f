// The desktop's message box: every Session::ShowMessage ends here and shows a
// QMessageBox with the title, text, icon and buttons of its flags. The beep
// of the Sound preference comes from the session before the box.
#pragma once

#include <QPointer>
#include <QWidget>

#include "core/messages.h"

namespace vintar {

class DesktopSink : public MessageSink {
 public:
  // Boxes are centred on `parent` (the main window) when it is set.
  void SetParent(QWidget* parent) { parent_ = parent; }
  int Show(const std::string& text, int flags, const std::string& title) override;
  void Beep() override;

 private:
  QPointer<QWidget> parent_;
};

}  // namespace vintar
