#include "core/text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace vintar {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Upper case of a Latin-1 byte: ASCII letters and the accented letters
// 0xE0-0xFE except the division sign 0xF7.
unsigned char UpperByte(unsigned char c) {
  if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 32);
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<unsigned char>(c - 32);
  return c;
}

}  // namespace

std::string LTrim(std::string_view s) {
  size_t b = 0;
  while (b < s.size() && IsBlank(s[b])) ++b;
  return std::string(s.substr(b));
}

std::string RTrim(std::string_view s) {
  size_t e = s.size();
  while (e > 0 && IsBlank(s[e - 1])) --e;
  return std::string(s.substr(0, e));
}

std::string Trim(std::string_view s) { return LTrim(RTrim(s)); }

std::string UCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(UpperByte(static_cast<unsigned char>(c)));
  return out;
}

int CompareIgnoreCase(std::string_view a, std::string_view b) {
  size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    unsigned char x = UpperByte(static_cast<unsigned char>(a[i]));
    unsigned char y = UpperByte(static_cast<unsigned char>(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && CompareIgnoreCase(a, b) == 0;
}

bool StartsWithIgnoreCase(std::string_view s, std::string_view prefix) {
  return s.size() >= prefix.size() && CompareIgnoreCase(s.substr(0, prefix.size()), prefix) == 0;
}

bool EndsWithIgnoreCase(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() && CompareIgnoreCase(s.substr(s.size() - suffix.size()), suffix) == 0;
}

double Val(std::string_view s) {
  size_t i = 0;
  while (i < s.size() && IsBlank(s[i])) ++i;
  std::string number;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) number += s[i++];
  bool digits = false;
  while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) {
    number += s[i++];
    digits = true;
  }
  if (i < s.size() && s[i] == '.') {
    number += s[i++];
    while (i < s.size() && std::isdigit(static_cast<unsigned char>(s[i]))) {
      number += s[i++];
      digits = true;
    }
  }
  if (!digits) return 0.0;
  // An exponent counts only when digits follow it.
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    size_t j = i + 1;
    std::string exponent = "e";
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) exponent += s[j++];
    size_t expDigits = 0;
    while (j < s.size() && std::isdigit(static_cast<unsigned char>(s[j]))) {
      exponent += s[j++];
      ++expDigits;
    }
    if (expDigits > 0) number += exponent;
  }
  double value = std::strtod(number.c_str(), nullptr);
  return std::isfinite(value) ? value : 0.0;
}

int ToIntSaturated(double value) {
  if (std::isnan(value)) return 0;
  if (value <= static_cast<double>(std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
  if (value >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
  return static_cast<int>(value);
}

int16_t ClampToInt16(double value) {
  if (std::isnan(value)) return 0;
  const double r = std::clamp(std::nearbyint(value), static_cast<double>(std::numeric_limits<int16_t>::min()),
                              static_cast<double>(std::numeric_limits<int16_t>::max()));
  return static_cast<int16_t>(r);
}

long long ToLongSaturated(double value) {
  // 2^63 is exactly representable; every double below it converts.
  constexpr double kLimit = 9223372036854775808.0;
  if (std::isnan(value)) return 0;
  if (value <= -kLimit) return std::numeric_limits<long long>::min();
  if (value >= kLimit) return std::numeric_limits<long long>::max();
  return static_cast<long long>(value);
}

std::string ZeroPad(long long value, int width) {
  bool negative = value < 0;
  unsigned long long magnitude = negative ? 0ULL - static_cast<unsigned long long>(value)
                                          : static_cast<unsigned long long>(value);
  std::string digits = std::to_string(magnitude);
  if (static_cast<int>(digits.size()) < width) digits.insert(0, width - digits.size(), '0');
  return negative ? "-" + digits : digits;
}

std::string Latin1ToUtf8(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (char ch : s) {
    auto c = static_cast<unsigned char>(ch);
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

namespace {

// The length of the well-formed UTF-8 sequence at s[i] (2 to 4), or 0.
size_t Utf8SequenceAt(std::string_view s, size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  size_t n = 0;
  unsigned low = 0x80, high = 0xBF;  // the range of the second byte
  if (c >= 0xC2 && c <= 0xDF) {
    n = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    n = 3;
    if (c == 0xE0) low = 0xA0;
    if (c == 0xED) high = 0x9F;  // no surrogates
  } else if (c >= 0xF0 && c <= 0xF4) {
    n = 4;
    if (c == 0xF0) low = 0x90;
    if (c == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (i + n > s.size()) return 0;
  for (size_t k = 1; k < n; ++k) {
    const auto cc = static_cast<unsigned char>(s[i + k]);
    if (cc < (k == 1 ? low : 0x80) || cc > (k == 1 ? high : 0xBF)) return 0;
  }
  return n;
}

}  // namespace

std::string DisplayText(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      out += static_cast<char>(c);
      ++i;
    } else if (size_t n = Utf8SequenceAt(s, i)) {
      out.append(s.substr(i, n));
      i += n;
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
      ++i;
    }
  }
  return out;
}

std::string Utf8ToLatin1(std::string_view s) {
  std::string out;
  for (size_t i = 0; i < s.size();) {
    auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      out += static_cast<char>(c);
      ++i;
      continue;
    }
    int extra = (c >= 0xF0) ? 3 : (c >= 0xE0) ? 2 : (c >= 0xC0) ? 1 : 0;
    if (extra == 0 || i + extra >= s.size()) {
      // A stray continuation byte or a sequence cut short: taken as Latin-1 already.
      out += static_cast<char>(c);
      ++i;
      continue;
    }
    unsigned code = c & (0x3F >> extra);
    bool valid = true;
    for (int k = 1; k <= extra; ++k) {
      auto cc = static_cast<unsigned char>(s[i + k]);
      if ((cc & 0xC0) != 0x80) valid = false;
      code = (code << 6) | (cc & 0x3F);
    }
    if (!valid) {
      out += static_cast<char>(c);
      ++i;
      continue;
    }
    out += code <= 0xFF ? static_cast<char>(code) : '?';
    i += extra + 1;
  }
  return out;
}

}  // namespace vintar
