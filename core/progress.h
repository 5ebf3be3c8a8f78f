// The one interface through which long operations report progress and learn
// that the user wants them to stop. The command line draws a bar on a
// terminal, tests count calls, the desktop will show a status window.
#pragma once

#include <string>

namespace vintar {

class Progress {
 public:
  virtual ~Progress() = default;
  // The caption of the progress window ("Reading File ...").
  virtual void Caption(const std::string& /*text*/) {}
  // A status line ("Records Read: 10").
  virtual void Status(const std::string& /*text*/) {}
  // Done so far, 0 to 1, when the operation knows its length.
  virtual void Fraction(double /*done*/) {}
  // Polled by the operation; true ends it as a cancel does.
  virtual bool Cancelled() { return false; }
};

}  // namespace vintar
