// The one message box of the system. Every message goes through
// Session::ShowMessage, which hands it to a MessageSink: the command line
// prints to stderr and answers from a policy, tests capture, the desktop will
// show a box. Flags and returned buttons keep their classic numeric codes.
#pragma once

#include <string>
#include <vector>

namespace vintar {

// Button sets (low nibble) and icons, added together as in a message box.
enum MessageFlags : int {
  kOkOnly = 0,
  kOkCancel = 1,
  kYesNoCancel = 3,
  kYesNo = 4,
  kIconStop = 16,
  kIconQuestion = 32,
  kIconExclamation = 48,
  kIconInformation = 64,
  kDefaultButton2 = 256,  // the second button is the default
};

// Buttons a box returns.
enum MessageButton : int { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

// The button a box answers with when nobody presses one: the first of its
// set, or the second with kDefaultButton2.
int DefaultButton(int flags);
// Whether `button` is one of the buttons the box shows.
bool ButtonAllowed(int flags, int button);

class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual int Show(const std::string& text, int flags, const std::string& title) = 0;
  virtual void Beep() {}
};

// Keeps every message; answers with `answer` when the box shows that button,
// otherwise with the box's default button.
class CapturingSink : public MessageSink {
 public:
  struct Entry {
    std::string text;
    int flags;
    std::string title;
  };
  int Show(const std::string& text, int flags, const std::string& title) override;
  void Beep() override { ++beeps; }
  void Clear() { messages.clear(); }

  std::vector<Entry> messages;
  int answer = 0;  // 0: default button
  int beeps = 0;
};

}  // namespace vintar
