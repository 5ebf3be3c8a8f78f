#include "screens/common/desktop_sink.h"

#include <QApplication>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>

#include "screens/common/qt_text.h"

namespace vintar {

namespace {

QMessageBox::Icon IconOf(int flags) {
  switch (flags & 0x70) {
    case kIconStop: return QMessageBox::Critical;
    case kIconQuestion: return QMessageBox::Question;
    case kIconExclamation: return QMessageBox::Warning;
    case kIconInformation: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
  }
}

}  // namespace

int DesktopSink::Show(const std::string& text, int flags, const std::string& title) {
  // A busy pointer set by a long operation would hide that the box waits.
  const bool busy = QGuiApplication::overrideCursor() != nullptr;
  if (busy) QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
  QMessageBox box(IconOf(flags), Q(title), Q(text), QMessageBox::NoButton, parent_);
  struct Choice {
    QMessageBox::StandardButton button;
    int code;
  };
  std::vector<Choice> choices;
  switch (flags & 0x0f) {
    case kOkCancel: choices = {{QMessageBox::Ok, kOk}, {QMessageBox::Cancel, kCancel}}; break;
    case kYesNoCancel:
      choices = {{QMessageBox::Yes, kYes}, {QMessageBox::No, kNo}, {QMessageBox::Cancel, kCancel}};
      break;
    case kYesNo: choices = {{QMessageBox::Yes, kYes}, {QMessageBox::No, kNo}}; break;
    default: choices = {{QMessageBox::Ok, kOk}}; break;
  }
  for (const Choice& c : choices) box.addButton(c.button);
  const int defaultCode = DefaultButton(flags);
  for (const Choice& c : choices)
    if (c.code == defaultCode) box.setDefaultButton(c.button);
  if (choices.size() > 1 && ButtonAllowed(flags, kCancel)) box.setEscapeButton(QMessageBox::Cancel);
  if (choices.size() == 2 && (flags & 0x0f) == kYesNo) box.setEscapeButton(QMessageBox::No);
  const int pressed = box.exec();
  if (busy) QGuiApplication::restoreOverrideCursor();
  for (const Choice& c : choices)
    if (c.button == pressed) return c.code;
  return ButtonAllowed(flags, kCancel) ? kCancel : defaultCode;
}

void DesktopSink::Beep() { QApplication::beep(); }

}  // namespace vintar
