// What every command of the `vintar` program shares: the message sink that
// prints to stderr and answers boxes from the --yes/--no policy, the JSON
// envelope with its "messages" list, and the exit codes (0 success, 1 a
// reported failure, 2 a usage error).
#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "core/messages.h"
#include "core/progress.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar::cli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// Prints each message to stderr (the title, then the text with its line
// ends as newlines) and keeps it for the JSON output.
class ConsoleSink : public MessageSink {
 public:
  int Show(const std::string& text, int flags, const std::string& title) override;
  int answer = 0;  // kYes, kNo or 0 for the box's default button
  bool quiet = false;
  std::vector<CapturingSink::Entry> messages;
};

// Global options and the started session, shared by all commands.
struct Context {
  bool json = false;
  bool yes = false;
  bool no = false;
  std::string configDir;
  ConsoleSink sink;
  Session session{sink};

  void Start();  // StartSession with the options above and today's clock
  nlohmann::json Messages() const;
  // Prints `body` (plus "messages") as JSON on stdout when --json is set.
  void PrintJson(nlohmann::json body) const;
};

// Progress of a long run: a bar on stderr while stdout is a terminal and
// --json is off, nothing otherwise. Ctrl-C asks the run to stop, as its
// cancel button would.
class TerminalProgress : public Progress {
 public:
  explicit TerminalProgress(const Context& ctx);
  ~TerminalProgress() override;
  void Caption(const std::string& text) override { caption_ = text; }
  void Status(const std::string& text) override;
  void Fraction(double done) override;
  bool Cancelled() override;

 private:
  void Draw();
  bool show_;
  bool drawn_ = false;
  int percent_ = -1;
  std::string caption_, status_;
};

// Opens the project of a command: on failure prints {"failed": true} with
// --json (the reader has already said why) and returns false.
bool OpenProjectForCommand(Context& ctx, const std::string& datPathArg);

std::string Latin1ToUtf8View(const std::string& latin1);
// Latin-1 text of the files as a JSON string (JSON is UTF-8).
inline nlohmann::json J(const std::string& latin1) { return Latin1ToUtf8View(latin1); }
// Text as given on the command line (UTF-8) to the files' Latin-1. Never
// for file names: those are the system's bytes and stay as they are.
std::string FromArg(const std::string& utf8);
// A file name, or a text that holds one, for JSON (always valid UTF-8).
inline nlohmann::json JPath(const std::string& path) { return DisplayText(path); }
// Latin-1 text for the terminal.
std::string ForTerminal(const std::string& latin1);

}  // namespace vintar::cli
