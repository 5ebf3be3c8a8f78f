#include "core/messages.h"

namespace vintar {

int DefaultButton(int flags) {
  const bool second = (flags & kDefaultButton2) != 0;
  switch (flags & 15) {
    case kYesNoCancel:
    case kYesNo:
      return second ? kNo : kYes;
    case kOkCancel:
      return second ? kCancel : kOk;
    default:
      return kOk;
  }
}

bool ButtonAllowed(int flags, int button) {
  switch (flags & 15) {
    case kOkCancel:
      return button == kOk || button == kCancel;
    case kYesNoCancel:
      return button == kYes || button == kNo || button == kCancel;
    case kYesNo:
      return button == kYes || button == kNo;
    default:
      return button == kOk;
  }
}

int CapturingSink::Show(const std::string& text, int flags, const std::string& title) {
  messages.push_back({text, flags, title});
  return ButtonAllowed(flags, answer) ? answer : DefaultButton(flags);
}

}  // namespace vintar
