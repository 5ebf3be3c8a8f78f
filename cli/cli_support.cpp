#include "cli/cli_support.h"

#include <unistd.h>

#include <cmath>
#include <csignal>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "core/project_file.h"
#include "core/text.h"

namespace vintar::cli {

int ConsoleSink::Show(const std::string& text, int flags, const std::string& title) {
  messages.push_back({text, flags, title});
  if (!quiet) {
    std::string shown;
    for (char c : text)
      if (c != '\r') shown += c;
    std::cerr << DisplayText(title) << ": " << DisplayText(shown) << "\n";
  }
  // --no on a box of OK and Cancel means Cancel; --yes means OK.
  int wanted = answer;
  if (wanted == kNo && !ButtonAllowed(flags, kNo) && ButtonAllowed(flags, kCancel)) wanted = kCancel;
  if (wanted == kYes && !ButtonAllowed(flags, kYes) && ButtonAllowed(flags, kOk)) wanted = kOk;
  return ButtonAllowed(flags, wanted) ? wanted : DefaultButton(flags);
}

void Context::Start() {
  sink.answer = yes ? kYes : no ? kNo : 0;
  StartupOptions options;
  options.ConfigDir = configDir;
  StartSession(session, options);
  session.clock = Clock::Now();
}

nlohmann::json Context::Messages() const {
  nlohmann::json list = nlohmann::json::array();
  for (const auto& m : sink.messages) {
    std::string text;
    for (char c : m.text)
      if (c != '\r') text += c;
    list.push_back({{"title", DisplayText(m.title)}, {"text", DisplayText(text)}});
  }
  return list;
}

void Context::PrintJson(nlohmann::json body) const {
  body["messages"] = Messages();
  std::cout << body.dump(2) << "\n";
}

namespace {
volatile std::sig_atomic_t interrupted = 0;
extern "C" void OnInterrupt(int) { interrupted = 1; }
}  // namespace

TerminalProgress::TerminalProgress(const Context& ctx) : show_(!ctx.json && ::isatty(STDOUT_FILENO)) {
  interrupted = 0;
  std::signal(SIGINT, OnInterrupt);
}

TerminalProgress::~TerminalProgress() {
  std::signal(SIGINT, SIG_DFL);
  if (drawn_) std::cerr << "\n";
}

void TerminalProgress::Status(const std::string& text) {
  status_ = text;
  Draw();
}

void TerminalProgress::Fraction(double done) {
  int percent = static_cast<int>(done * 100.0 + 0.5);
  if (percent == percent_) return;
  percent_ = percent;
  Draw();
}

bool TerminalProgress::Cancelled() { return interrupted != 0; }

void TerminalProgress::Draw() {
  if (!show_) return;
  int percent = percent_ < 0 ? 0 : percent_;
  int filled = percent * 30 / 100;
  std::string line = caption_ + " [" + std::string(filled, '#') + std::string(30 - filled, ' ') + "] ";
  std::ostringstream p;
  p << std::setw(3) << percent << "%";
  line += p.str();
  if (!status_.empty()) line += "  " + status_;
  if (line.size() > 110) line.resize(110);
  std::cerr << "\r\033[K" << DisplayText(line) << std::flush;
  drawn_ = true;
}

bool OpenProjectForCommand(Context& ctx, const std::string& datPathArg) {
  if (OpenProjectFiles(ctx.session, datPathArg, nullptr)) return true;
  if (ctx.json) ctx.PrintJson({{"failed", true}});
  return false;
}

std::string Latin1ToUtf8View(const std::string& latin1) { return Latin1ToUtf8(latin1); }
std::string FromArg(const std::string& utf8) { return Utf8ToLatin1(utf8); }
std::string ForTerminal(const std::string& latin1) { return Latin1ToUtf8(latin1); }

}  // namespace vintar::cli
