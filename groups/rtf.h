// The small RTF writer of the group report: six text styles, the document
// head with its font and colour tables, styled paragraphs, escaping of
// Latin-1 text, the document file, and the hand-off of the finished
// document to a word processor. Sizes are in points (RTF counts half
// points). When the writer is disabled every helper gives its plain-text
// form. Checked by tests/groups against hand-written RTF.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/session.h"

namespace vintar {

// One text style. Colour holds three colour bytes, low byte first.
struct ReportStyle {
  uint32_t Colour = 0;
  std::string FontName = "Times New Roman";
  float Size = 12;
  bool Bold = false, Italic = false, Underline = false;
  int Alignment = 0;  // 0 left, 1 right, 2 centre, 3 justify
};

// Whether RTF is written, and the six styles of one report: 0 document
// title, 1 credits, 2 chapter heading, 3 sub-heading, 4 unused, 5 body.
struct RtfWriter {
  bool Enabled = true;
  std::array<ReportStyle, 6> Styles;
  // Every style back to its default, then the six report styles.
  void SetDefaultStyles();
};

// \ { } escaped, bytes from 128 up as \'xx; CR LF kept as they are.
std::string RtfEscape(std::string_view latin1);
// These wrap what they are given without escaping it (callers mix RTF
// codes into their strings and escape data texts with RtfEscape).
std::string RtfBold(const RtfWriter& w, const std::string& s);
std::string RtfItalic(const RtfWriter& w, const std::string& s);
std::string RtfUnderline(const RtfWriter& w, const std::string& s);
std::string RtfParagraph(const RtfWriter& w);
// The document's closing text.
std::string RtfEnd(const RtfWriter& w);
// `s` with each CR LF made a paragraph mark.
std::string RtfLines(const RtfWriter& w, const std::string& s);
// The document head, the default font at `size` points.
std::string RtfHead(const RtfWriter& w, int size);
// One paragraph of `s` in style 0..5.
std::string RtfStyled(const RtfWriter& w, const std::string& s, int style);

// The document file, written as it grows.
class RtfFile {
 public:
  RtfFile() = default;
  RtfFile(const RtfFile&) = delete;
  RtfFile& operator=(const RtfFile&) = delete;
  ~RtfFile() { Close(); }
  // Creates (or empties) the file; false when it cannot be written.
  bool Create(const std::string& path);
  // Appends `s`; nothing for an empty string or a closed file.
  void Put(const std::string& s);
  // False when any write failed or the file could not be closed cleanly.
  bool Close();
  bool IsOpen() const { return file_ != nullptr; }
  const std::string& Path() const { return path_; }

 private:
  std::FILE* file_ = nullptr;
  std::string path_;
  bool failed_ = false;
};

// Opens the document `path` in a word processor without waiting: the
// WordProc preference when UseOtherWP is on and the path is not blank,
// else "xdg-open". `launch` starts a program from its arguments and tells
// whether it started (SystemNotepadHooks().launch is the system's). A
// chosen word processor that cannot be started gives the "Invalid Word
// Processor" message and one try with xdg-open; when no program starts,
// "Cannot View Report". Returns whether a program was started.
bool StartWordProcessor(Session& session, const std::string& path,
                        const std::function<bool(const std::vector<std::string>&)>& launch);

}  // namespace vintar
