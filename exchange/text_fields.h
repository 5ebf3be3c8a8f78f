// Small pieces that the text readers of this folder share (events lists,
// AAF, delimited text): a file's lines, whole-number fields and ASCII case.
// Internal to exchange/.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace vintar::exchange_text {

// The lines of a text, without their LF or CR LF ends; no line after a
// final line end.
inline std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t at = 0;
  while (at < text.size()) {
    size_t end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    at = end + 1;
  }
  return lines;
}

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool AllDigits(const std::string& s) { return !s.empty() && std::all_of(s.begin(), s.end(), IsDigit); }
inline bool HasDigit(const std::string& s) { return std::any_of(s.begin(), s.end(), IsDigit); }

// The leading digits as a number, saturating far beyond any field's range.
inline int DigitsValue(const std::string& s) {
  long long n = 0;
  for (char c : s) {
    if (!IsDigit(c)) break;
    n = std::min<long long>(n * 10 + (c - '0'), 1000000000LL);
  }
  return static_cast<int>(n);
}

// ASCII case only: the readers' keywords and letters, never a place's own letters.
inline std::string AsciiUpper(std::string s) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return s;
}
inline std::string AsciiLower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

}  // namespace vintar::exchange_text
