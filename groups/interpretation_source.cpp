// The interpretation source parser and the binary file builder.
#include "groups/interpretation_source.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <string_view>
#include <utility>

#include "core/file_io.h"
#include "core/session.h"
#include "core/text.h"
#include "groups/interpretation.h"

namespace vintar {
namespace {

// A comment line that the file reader puts between a source and its pairs
// companion, so that line numbers in messages name the right file.
constexpr std::string_view kSourceMarker = "#@source ";
constexpr int kMaxPairsNesting = 3;

struct NamedIndex {
  const char* name;
  int index;
};

constexpr NamedIndex kPoints[] = {
    {"Moon", 1},     {"Earth", 2},   {"Sun", 3},      {"Mercury", 5},    {"Venus", 6},     {"Mars", 7},
    {"Jupiter", 8},  {"Saturn", 9},  {"Uranus", 10},  {"Neptune", 11},   {"Pluto", 12},    {"Chiron", 13},
    {"Vesta", 14},   {"Pallas", 15}, {"Juno", 16},    {"Ceres", 17},     {"Hygeia", 18},   {"Astraea", 19},
    {"Node", 20},    {"Ascendant", 22}, {"Midheaven", 23}, {"Vertex", 24}, {"EastPoint", 25},
};

constexpr const char* kSigns[] = {"Aries", "Taurus", "Gemini",      "Cancer",   "Leo",      "Virgo",
                                  "Libra", "Scorpio", "Sagittarius", "Capricorn", "Aquarius", "Pisces"};

int PointIndex(std::string_view name) {
  for (const NamedIndex& p : kPoints)
    if (EqualsIgnoreCase(name, p.name)) return p.index;
  return 0;
}

int SignNumber(std::string_view name) {
  for (int i = 0; i < 12; ++i)
    if (EqualsIgnoreCase(name, kSigns[i])) return i + 1;
  return 0;
}

std::vector<std::string> Words(std::string_view s) {
  std::vector<std::string> words;
  size_t i = 0;
  while (i < s.size()) {
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t')) ++i;
    size_t start = i;
    while (i < s.size() && s[i] != ' ' && s[i] != '\t') ++i;
    if (i > start) words.emplace_back(s.substr(start, i - start));
  }
  return words;
}

// A whole number of plain digits with an optional minus sign, within limits.
bool ParseNumber(std::string_view s, long long low, long long high, int& out) {
  bool negative = !s.empty() && s[0] == '-';
  if (negative) s.remove_prefix(1);
  if (s.empty() || s.size() > 9) return false;
  long long v = 0;
  for (char ch : s) {
    if (ch < '0' || ch > '9') return false;
    v = v * 10 + (ch - '0');
  }
  if (negative) v = -v;
  if (v < low || v > high) return false;
  out = static_cast<int>(v);
  return true;
}

// Whether the text holds at least one well-formed UTF-8 sequence of more
// than one byte and nothing that is not well-formed UTF-8.
bool LooksLikeUtf8(std::string_view s) {
  bool multi = false;
  for (size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    const int extra = c >= 0xC2 && c <= 0xDF ? 1 : c >= 0xE0 && c <= 0xEF ? 2 : c >= 0xF0 && c <= 0xF4 ? 3 : 0;
    if (extra == 0 || i + extra >= s.size()) return false;
    for (int k = 1; k <= extra; ++k)
      if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
    multi = true;
    i += extra + 1;
  }
  return multi;
}

// One line of well-formed UTF-8 as Latin-1; false with the first code point
// that Latin-1 lacks.
bool Utf8LineToLatin1(std::string_view s, std::string& out, unsigned& bad) {
  out.clear();
  for (size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    const int extra = c < 0x80 ? 0 : c < 0xE0 ? 1 : c < 0xF0 ? 2 : 3;
    if (i + extra >= s.size() && extra > 0) {
      bad = c;
      return false;
    }
    unsigned code = extra == 0 ? c : c & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) code = code << 6 | (static_cast<unsigned char>(s[i + k]) & 0x3F);
    if (code > 0xFF) {
      bad = code;
      return false;
    }
    out += static_cast<char>(code);
    i += extra + 1;
  }
  return true;
}

// The lines of a body: leading and trailing blank lines dropped, the lines
// of a paragraph joined with one blank, paragraphs with CR LF.
std::string JoinBody(const std::vector<std::string>& lines) {
  std::vector<std::string> paragraphs;
  bool open = false;  // whether the last line belongs to the last paragraph
  for (const std::string& raw : lines) {
    const std::string line = Trim(raw);
    if (line.empty())
      open = false;
    else if (open)
      paragraphs.back() += ' ' + line;
    else
      paragraphs.push_back(line), open = true;
  }
  std::string text;
  for (const std::string& p : paragraphs) text += (text.empty() ? "" : kLineEnd) + p;
  return text;
}

InterpretationHeader HeaderFor(int version, int pairDepth) {
  InterpretationHeader h;
  h.Version = static_cast<int16_t>(version);
  h.PairDepth = static_cast<int16_t>(pairDepth);
  return h;
}

// The entry number of an address in a file of this version and pair depth,
// with the stricter ranges of a well-made file; empty `why` when valid.
long long CheckedEntry(const InterpretationSource& s, const InterpretationEntry& e, std::string& why) {
  const InterpretationHeader h = HeaderFor(s.Version, s.PairDepth);
  const int t = e.Table;
  why.clear();
  auto selector = [](int v) { return v >= -32768 && v <= 32767; };
  if (!selector(e.A) || !selector(e.B) || !selector(e.C) || s.PairDepth < 1 || s.PairDepth > 100) {
    why = "selectors are 16-bit numbers and the pair depth runs from 1 to 100";
    return -1;
  }
  if (t < 1 || t > kInterpretationTables) {
    why = "table " + std::to_string(t) + " does not exist (1 to 20)";
    return -1;
  }
  const bool threes = (t >= 6 && t <= 11) || t == 13 || t == 14;
  const bool twelves = t >= 16 && t <= 18;
  if ((threes && (e.B < 0 || e.B > 2)) || (twelves && (e.B < 1 || e.B > 12)) ||
      (t == 19 && (e.B < 1 || e.B > s.PairDepth))) {
    why = "the second selector " + std::to_string(e.B) + " is out of range for table " + std::to_string(t);
    return -1;
  }
  if (t == 19 && std::min(e.A, e.C) < 1) {
    why = "a pair needs two points";
    return -1;
  }
  int64_t entry = 0;
  if (!TableEntryNumber(h, t, e.A, e.B, e.C, entry) || entry < 0) {
    why = "the address is out of range for table " + std::to_string(t) + " of a version " +
          std::to_string(s.Version) + " file";
    return -1;
  }
  return entry;
}

class Parser {
 public:
  Parser(const std::string& includeDir, std::string& error, int nesting)
      : includeDir_(includeDir), error_(error), nesting_(nesting) {}

  bool Parse(const std::string& text, const std::string& name, InterpretationSource& out);

 private:
  bool Fail(int line, const std::string& what) {
    error_ = (name_.empty() ? "line " + std::to_string(line) : name_ + ":" + std::to_string(line)) + ": " + what;
    return false;
  }
  bool Directive(const std::string& line);
  bool Head(const std::string& line, InterpretationEntry& e);
  bool Finish(InterpretationSource& out);
  bool Add(InterpretationSource& out, InterpretationEntry e, int line, const std::string& where);
  bool MergePairs(InterpretationSource& out);

  const std::string& includeDir_;
  std::string& error_;
  int nesting_;
  std::string name_;
  int lineNumber_ = 0;
  int version_ = 200;
  int pairDepth_ = 1;
  std::string pairsFile_;
  int pairsLine_ = 0;
  // The head being read: its entry, its line and its body lines.
  bool inEntry_ = false;
  InterpretationEntry entry_;
  int entryLine_ = 0;
  std::vector<std::string> body_;
  // Where each entry number of each table was given, for duplicates.
  std::map<std::pair<int, long long>, std::string> seen_;
};

bool Parser::Directive(const std::string& line) {
  const std::vector<std::string> w = Words(line);
  const std::string& key = w[0];
  if (EqualsIgnoreCase(key, "@version") || EqualsIgnoreCase(key, "@pairdepth")) {
    const bool version = EqualsIgnoreCase(key, "@version");
    int value = 0;
    if (w.size() != 2) return Fail(lineNumber_, key + " takes one number");
    if (!ParseNumber(w[1], 1, version ? 299 : 100, value))
      return Fail(lineNumber_, key + " " + w[1] + " is out of range (" + (version ? "1 to 299" : "1 to 100") + ")");
    (version ? version_ : pairDepth_) = value;
    return true;
  }
  if (EqualsIgnoreCase(key, "@pairs")) {
    pairsFile_ = Trim(std::string_view(line).substr(line.find(key) + key.size()));
    pairsLine_ = lineNumber_;
    if (pairsFile_.empty()) return Fail(lineNumber_, "@pairs needs a file name");
    return true;
  }
  return Fail(lineNumber_, "unknown directive " + key);
}

bool Parser::Head(const std::string& line, InterpretationEntry& e) {
  if (line.back() != ']') return Fail(lineNumber_, "a head must end with ']'");
  const std::vector<std::string> w = Words(std::string_view(line).substr(1, line.size() - 2));
  if (w.empty()) return Fail(lineNumber_, "empty head []");
  const std::string& kind = w[0];
  const size_t args = w.size() - 1;
  auto count = [&](size_t n) {
    return args == n || Fail(lineNumber_, "[" + kind + "] takes " + std::to_string(n) + " argument" +
                                              (n == 1 ? "" : "s"));
  };
  auto number = [&](const std::string& s, int low, int high, int& out) {
    return ParseNumber(s, low, high, out) ||
           Fail(lineNumber_, "number " + s + " is out of range (" + std::to_string(low) + " to " +
                                 std::to_string(high) + ")");
  };
  auto point = [&](const std::string& s, int& out) {
    out = PointIndex(s);
    return out != 0 || Fail(lineNumber_, "unknown point name " + s);
  };
  e = InterpretationEntry{};
  if (EqualsIgnoreCase(kind, "introduction")) {
    e.Table = 3;
    return count(0);
  }
  if (EqualsIgnoreCase(kind, "text") || EqualsIgnoreCase(kind, "harmonic")) {
    e.Table = EqualsIgnoreCase(kind, "text") ? 4 : 5;
    return count(1) && number(w[1], 1, 32767, e.A);
  }
  if (EqualsIgnoreCase(kind, "house")) {
    e.Table = 13;
    e.B = 2;
    return count(1) && number(w[1], 1, 12, e.A);
  }
  if (EqualsIgnoreCase(kind, "sign")) {
    e.Table = 14;
    e.B = 2;
    if (!count(1)) return false;
    e.A = SignNumber(w[1]);
    return e.A != 0 || Fail(lineNumber_, "unknown sign name " + w[1]);
  }
  if (EqualsIgnoreCase(kind, "point")) {
    e.Table = 15;
    return count(1) && point(w[1], e.A);
  }
  if (EqualsIgnoreCase(kind, "pair")) {
    e.Table = 19;
    e.B = 1;
    return count(2) && point(w[1], e.A) && point(w[2], e.C);
  }
  if (EqualsIgnoreCase(kind, "table")) {
    if (args < 2 || args > 4) return Fail(lineNumber_, "[table] takes a table number and one to three selectors");
    int* fields[] = {&e.Table, &e.A, &e.B, &e.C};
    for (size_t i = 1; i <= args; ++i)
      if (!number(w[i], i == 1 ? 1 : 0, i == 1 ? kInterpretationTables : 32767, *fields[i - 1])) return false;
    return true;
  }
  return Fail(lineNumber_, "unknown head [" + kind + "]");
}

bool Parser::Add(InterpretationSource& out, InterpretationEntry e, int line, const std::string& where) {
  if (e.Table == 19 && e.C < e.A) std::swap(e.A, e.C);
  std::string why;
  const long long entry = CheckedEntry(out, e, why);
  if (entry < 0) return Fail(line, why);
  auto [it, added] = seen_.emplace(std::make_pair(e.Table, entry), where);
  if (!added) return Fail(line, "this entry was already given at " + it->second);
  out.Entries.push_back(std::move(e));
  return true;
}

bool Parser::Finish(InterpretationSource& out) {
  if (!inEntry_) return true;
  inEntry_ = false;
  entry_.Text = JoinBody(body_);
  body_.clear();
  if (entry_.Text.empty()) return Fail(entryLine_, "the entry has no text");
  if (entry_.Text.size() > static_cast<size_t>(kMaxInterpretationText))
    return Fail(entryLine_, "the text is " + std::to_string(entry_.Text.size()) + " bytes long, over the limit of " +
                                std::to_string(kMaxInterpretationText));
  return Add(out, std::move(entry_), entryLine_, name_ + (name_.empty() ? "line " : ":") + std::to_string(entryLine_));
}

bool Parser::MergePairs(InterpretationSource& out) {
  if (pairsFile_.empty()) return true;
  if (nesting_ >= kMaxPairsNesting) return Fail(pairsLine_, "@pairs files are nested too deeply");
  const std::string path = includeDir_.empty() ? pairsFile_ : EnsureBackslash(includeDir_) + pairsFile_;
  std::string text, error;
  if (!ReadInterpretationSourceFile(path, text, error)) return Fail(pairsLine_, error);
  InterpretationSource pairs;
  Parser inner(includeDir_, error_, nesting_ + 1);
  if (!inner.Parse(text, pairsFile_, pairs)) return false;
  for (InterpretationEntry& e : pairs.Entries) {
    if (e.Table != 19) continue;
    std::string why;
    const long long entry = CheckedEntry(out, e, why);
    if (entry >= 0 && seen_.count({19, entry})) continue;  // given here
    if (!Add(out, std::move(e), pairsLine_, pairsFile_)) return false;
  }
  return true;
}

bool Parser::Parse(const std::string& source, const std::string& name, InterpretationSource& out) {
  out = InterpretationSource{};
  name_ = name;
  const bool utf8 = LooksLikeUtf8(source);
  size_t start = 0;
  while (start <= source.size()) {
    size_t end = source.find('\n', start);
    if (end == std::string::npos) end = source.size();
    std::string line = source.substr(start, end - start);
    start = end + 1;
    while (!line.empty() && line.back() == '\r') line.pop_back();
    ++lineNumber_;
    if (line.rfind(kSourceMarker, 0) == 0) {
      name_ = line.substr(kSourceMarker.size());
      lineNumber_ = 0;
      continue;
    }
    if (!line.empty() && line[0] == '#') continue;
    if (utf8) {
      std::string latin1;
      unsigned bad = 0;
      if (!Utf8LineToLatin1(line, latin1, bad)) {
        char code[16];
        std::snprintf(code, sizeof code, "U+%04X", bad);
        return Fail(lineNumber_, std::string("character ") + code + " is not in Latin-1");
      }
      line = std::move(latin1);
    }
    const std::string trimmed = Trim(line);
    if (!trimmed.empty() && trimmed[0] == '[') {
      if (!Finish(out) || !Head(trimmed, entry_)) return false;
      inEntry_ = true;
      entryLine_ = lineNumber_;
      continue;
    }
    if (inEntry_) {
      if (!trimmed.empty() && trimmed[0] == '@')
        return Fail(lineNumber_, "directives come before the first entry");
      body_.push_back(line);
      continue;
    }
    if (trimmed.empty()) continue;
    if (trimmed[0] != '@') return Fail(lineNumber_, "text before the first entry");
    if (!Directive(trimmed)) return false;
    out.Version = version_;
    out.PairDepth = pairDepth_;
  }
  return Finish(out) && MergePairs(out);
}

}  // namespace

bool ParseInterpretationSource(const std::string& text, const std::string& includeDir, InterpretationSource& out,
                               std::string& error, const std::string& name) {
  error.clear();
  Parser parser(includeDir, error, 0);
  if (parser.Parse(text, name, out)) return true;
  out = InterpretationSource{};
  return false;
}

bool ReadInterpretationSourceFile(const std::string& path, std::string& text, std::string& error) {
  text.clear();
  if (int err = ReadFileBytes(path, text, kMaxSmallFileBytes); err != 0) {
    error = "cannot read " + path + ": " + FileErrorText(err);
    return false;
  }
  const std::string companion = PathFolder(path) + PathStem(path) + "_pairs" + PathExtension(path);
  if (!FileExists(companion)) return true;
  std::string pairs;
  if (int err = ReadFileBytes(companion, pairs, kMaxSmallFileBytes); err != 0) {
    error = "cannot read " + companion + ": " + FileErrorText(err);
    return false;
  }
  if (!text.empty() && text.back() != '\n') text += '\n';
  text += std::string(kSourceMarker) + PathFileName(companion) + "\n" + pairs;
  return true;
}

std::string BuildInterpretationFile(const InterpretationSource& source) {
  const int depth = std::max(source.PairDepth, 0);
  const size_t base = 207 + 12 * static_cast<size_t>(depth);  // 1-based
  InterpretationHeader header = HeaderFor(source.Version, source.PairDepth);

  // Entry numbers of the valid entries, and each table's size.
  std::vector<std::pair<long long, const InterpretationEntry*>> placed;
  std::array<long long, kInterpretationTables + 1> entries{};
  for (const InterpretationEntry& e : source.Entries) {
    std::string why;
    InterpretationEntry normal = e;
    if (normal.Table == 19 && normal.C < normal.A) std::swap(normal.A, normal.C);
    const long long entry = CheckedEntry(source, normal, why);
    if (entry < 0) continue;
    placed.emplace_back(entry, &e);
    entries[e.Table] = std::max(entries[e.Table], entry + 1);
  }
  // Tables follow the header in order, from offset 6, since offset 0 would
  // mark a table absent; the texts follow the tables.
  size_t offset = 6;
  for (int t = 1; t <= kInterpretationTables; ++t) {
    if (entries[t] == 0) continue;
    header.TableOffset[t] = static_cast<int32_t>(offset);
    offset += static_cast<size_t>(entries[t]) * 6;
  }
  std::string bytes(base - 1 + offset, '\0');
  auto put16 = [&bytes](size_t at, int v) {
    bytes[at] = static_cast<char>(v & 0xFF);
    bytes[at + 1] = static_cast<char>((v >> 8) & 0xFF);
  };
  auto put32 = [&bytes](size_t at, int64_t v) {
    for (int k = 0; k < 4; ++k) bytes[at + k] = static_cast<char>((v >> (8 * k)) & 0xFF);
  };
  put16(0, header.Version);
  for (int t = 1; t <= kInterpretationTables; ++t) put32(2 + 4 * (t - 1), header.TableOffset[t]);
  put16(82, header.PairDepth);
  for (const auto& [entry, e] : placed) {
    const size_t text = bytes.size() + 1;  // 1-based position of the text
    const size_t length = std::min(e->Text.size(), static_cast<size_t>(kMaxInterpretationText));
    const size_t row = base + header.TableOffset[e->Table] + static_cast<size_t>(entry) * 6 - 1;
    put32(row, static_cast<int64_t>(text));
    put16(row + 4, static_cast<int>(length));
    bytes.append(e->Text, 0, length);
  }
  return bytes;
}

}  // namespace vintar
