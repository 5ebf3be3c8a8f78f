// The RTF writer of the group report and the hand-off to a word processor.
#include "groups/rtf.h"

#include <cmath>

#include "core/messages.h"
#include "core/text.h"

namespace vintar {
namespace {

// Colours of the classic sixteen-colour palette, stored the Windows way:
// red in the low byte, blue in the third.
constexpr uint32_t kDarkBlue = 0x800000;  // palette 1
constexpr uint32_t kDarkRed = 0x000080;   // palette 4
constexpr uint32_t kMagenta = 0x800080;   // palette 5

std::string HalfPoints(double points) { return std::to_string(ToIntSaturated(std::round(points * 2))); }

char AlignmentLetter(int alignment) {
  switch (alignment) {
    case 1: return 'r';
    case 2: return 'c';
    case 3: return 'j';
    default: return 'l';
  }
}

}  // namespace

void RtfWriter::SetDefaultStyles() {
  Styles.fill(ReportStyle{});
  auto set = [this](int i, float size, int alignment, bool bold, bool italic, uint32_t colour) {
    ReportStyle& s = Styles[i];
    s.Size = size;
    s.Alignment = alignment;
    s.Bold = bold;
    s.Italic = italic;
    s.Colour = colour;
  };
  set(0, 24, 2, true, false, kMagenta);    // document title
  set(1, 12, 2, false, true, 0);           // credits
  set(2, 14, 2, true, false, kDarkBlue);   // chapter heading
  set(3, 14, 0, true, false, kDarkRed);    // sub-heading
  set(4, 12, 0, false, false, 0);          // not used
  set(5, 12, 0, false, false, 0);          // body
}

std::string RtfEscape(std::string_view latin1) {
  static const char kHex[] = "0123456789abcdef";
  std::string out;
  out.reserve(latin1.size());
  for (char ch : latin1) {
    const auto c = static_cast<unsigned char>(ch);
    if (ch == '\\' || ch == '{' || ch == '}') {
      out += '\\';
      out += ch;
    } else if (c >= 128) {
      out += "\\'";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    } else {
      out += ch;
    }
  }
  return out;
}

std::string RtfBold(const RtfWriter& w, const std::string& s) { return w.Enabled ? "{\\b " + s + "}" : s; }
std::string RtfItalic(const RtfWriter& w, const std::string& s) { return w.Enabled ? "{\\i " + s + "}" : s; }
std::string RtfUnderline(const RtfWriter& w, const std::string& s) { return w.Enabled ? "{\\ul " + s + "}" : s; }

std::string RtfParagraph(const RtfWriter& w) { return w.Enabled ? std::string("\\par ") + kLineEnd : kLineEnd; }

std::string RtfEnd(const RtfWriter& w) { return w.Enabled ? std::string("\\pard }") + kLineEnd : ""; }

std::string RtfLines(const RtfWriter& w, const std::string& s) {
  if (!w.Enabled) return "";
  const std::string mark = RtfParagraph(w);
  std::string out;
  size_t from = 0;
  for (size_t at; (at = s.find(kLineEnd, from)) != std::string::npos; from = at + 2)
    out += s.substr(from, at - from) + mark;
  return out + s.substr(from);
}

std::string RtfHead(const RtfWriter& w, int size) {
  if (!w.Enabled) return "";
  std::string head = "{\\rtf1\\ansi\\deff0\\deftab360{\\fonttbl";
  head += "{\\f0\\froman Times New Roman;}";
  head += "{\\f1\\fswiss\\fprq2 Univers;}";
  head += "{\\f2\\froman\\fcharset2 Symbol;}";
  for (int i = 0; i < 6; ++i) head += "{\\f" + std::to_string(i + 3) + "\\fnil " + RTrim(w.Styles[i].FontName) + ";}";
  head += std::string("}") + kLineEnd + "{\\colortbl";
  // The high colour byte goes to \red and the low one to \blue: the colour
  // table of this report has always been written that way round.
  for (const ReportStyle& s : w.Styles)
    head += "\\red" + std::to_string((s.Colour >> 16) & 0xFF) + "\\green" + std::to_string((s.Colour >> 8) & 0xFF) +
            "\\blue" + std::to_string(s.Colour & 0xFF) + ";";
  const std::string fs = HalfPoints(size);
  head += std::string("}") + kLineEnd + "\\deflang2057\\pard\\plain\\f0\\fs" + fs + " " + kLineEnd +
          "\\pard\\plain\\f0\\fs" + fs + " ";
  return head;
}

std::string RtfStyled(const RtfWriter& w, const std::string& s, int style) {
  if (style < 0 || style > 5) style = 5;
  const ReportStyle& st = w.Styles[style];
  std::string text = s;
  if (st.Bold) text = RtfBold(w, text);
  if (st.Italic) text = RtfItalic(w, text);
  if (st.Underline) text = RtfUnderline(w, text);
  if (!w.Enabled) return text + RtfParagraph(w);
  return std::string("\\pard\\q") + AlignmentLetter(st.Alignment) + "\\f" + std::to_string(style + 3) + "\\fs" +
         HalfPoints(st.Size) + "\\cf" + std::to_string(style) + " " + text + RtfParagraph(w);
}

bool RtfFile::Create(const std::string& path) {
  Close();
  failed_ = false;
  file_ = std::fopen(path.c_str(), "wb");
  path_ = file_ ? path : "";
  return file_ != nullptr;
}

void RtfFile::Put(const std::string& s) {
  if (!file_ || s.empty()) return;
  if (std::fwrite(s.data(), 1, s.size(), file_) != s.size()) failed_ = true;
}

bool RtfFile::Close() {
  if (!file_) return true;
  const bool ok = std::fclose(file_) == 0 && !failed_;
  file_ = nullptr;
  failed_ = false;
  return ok;
}

bool StartWordProcessor(Session& session, const std::string& path,
                        const std::function<bool(const std::vector<std::string>&)>& launch) {
  static const std::string kViewer = "xdg-open";
  const std::string chosen = Trim(session.prefs.WordProc);
  bool other = session.prefs.UseOtherWP != 0 && !chosen.empty();
  std::string program = other ? chosen : kViewer;
  for (;;) {
    if (launch && launch({program, path})) return true;
    if (!other) break;
    session.ShowMessage("The file " + UCase(program) + " was not found." + kLineEnd + kLineEnd +
                            "The WRITE or WORDPAD utility will be tried instead." + kLineEnd + kLineEnd +
                            "You may use the Word Processor menu item to specify the correct path and name of "
                            "another word processor if you wish.",
                        kOkOnly + kIconStop, "Invalid Word Processor");
    program = kViewer;
    other = false;
    session.prefs.UseOtherWP = 0;
  }
  // A program that cannot be started is, as a rule, one that is not there.
  session.ShowMessage("An error occurred whilst attempting to start the Word Processor: " + program + kLineEnd +
                          kLineEnd + "Error: 53" + kLineEnd + "File not found",
                      kOkOnly + kIconStop, "Cannot View Report");
  return false;
}

}  // namespace vintar
