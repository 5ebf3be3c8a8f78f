#include "cli/cli_support.h"

#include <iostream>

#include "core/text.h"

namespace vintar::cli {

int ConsoleSink::Show(const std::string& text, int flags, const std::string& title) {
  messages.push_back({text, flags, title});
  if (!quiet) {
    std::string shown;
    for (char c : text)
      if (c != '\r') shown += c;
    std::cerr << Latin1ToUtf8(title) << ": " << Latin1ToUtf8(shown) << "\n";
  }
  return ButtonAllowed(flags, answer) ? answer : DefaultButton(flags);
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
    list.push_back({{"title", J(m.title)}, {"text", J(text)}});
  }
  return list;
}

void Context::PrintJson(nlohmann::json body) const {
  body["messages"] = Messages();
  std::cout << body.dump(2) << "\n";
}

std::string Latin1ToUtf8View(const std::string& latin1) { return Latin1ToUtf8(latin1); }
std::string FromArg(const std::string& utf8) { return Utf8ToLatin1(utf8); }
std::string ForTerminal(const std::string& latin1) { return Latin1ToUtf8(latin1); }

}  // namespace vintar::cli
