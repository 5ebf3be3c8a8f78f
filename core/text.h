// Small text helpers shared by every subsystem.
//
// Strings hold single-byte text (Latin-1 / Windows-1252) exactly as it stands
// in the project files; nothing here assumes UTF-8 except Latin1ToUtf8, which
// is only for output to JSON and terminals. Case folding is ASCII plus the
// Latin-1 letters, so "é" and "É" compare equal the way the files' code page
// would have them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vintar {

inline constexpr const char* kLineEnd = "\r\n";
inline constexpr char kDegreeSign = '\xB0';

std::string Trim(std::string_view s);   // blanks and tabs at both ends
std::string LTrim(std::string_view s);
std::string RTrim(std::string_view s);
std::string UCase(std::string_view s);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
int CompareIgnoreCase(std::string_view a, std::string_view b);  // <0, 0, >0
bool StartsWithIgnoreCase(std::string_view s, std::string_view prefix);
bool EndsWithIgnoreCase(std::string_view s, std::string_view suffix);

// The lenient numeric value of a text: skip leading blanks, an optional sign,
// digits, a point and digits, an exponent; stop at the first character that
// does not fit; nothing readable gives 0.
double Val(std::string_view s);

// A real number as an int, saturating at the ends of the int range; NaN
// gives 0. Every number that comes from a file or a user and becomes an
// integer, an index or a size goes through this or a range check, since a
// plain conversion of a value out of range is undefined.
int ToIntSaturated(double value);
long long ToLongSaturated(double value);
// Rounded to the nearest whole number and forced into 16 bits; NaN gives 0.
int16_t ClampToInt16(double value);

// Format an integer with at least `width` digits, zero padded ("0", "00", "0000").
std::string ZeroPad(long long value, int width);

// Latin-1 bytes to UTF-8, for JSON and terminal output.
std::string Latin1ToUtf8(std::string_view s);
// UTF-8 from a command line back to the files' single-byte form; characters
// outside Latin-1 become '?'.
std::string Utf8ToLatin1(std::string_view s);
// Text for the screen, the terminal and JSON that may hold both kinds of
// bytes: a message is Latin-1 but a file name in it is the system's own
// (UTF-8) bytes, which are never converted. Well-formed UTF-8 sequences are
// kept as they stand and every other byte above 127 is read as Latin-1, so
// the result is always valid UTF-8.
std::string DisplayText(std::string_view s);

}  // namespace vintar
