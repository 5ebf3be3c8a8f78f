// The report's RTF writer against hand-written RTF, its plain forms, the
// document file, and the hand-off to a word processor with a fake launcher.
#include <gtest/gtest.h>

#include <set>

#include "groups/rtf.h"
#include "support/test_support.h"

namespace vintar {
namespace {

using testing::TestSession;

RtfWriter ReportWriter() {
  RtfWriter w;
  w.SetDefaultStyles();
  return w;
}

TEST(Rtf, HeadOfTheSixReportStyles) {
  RtfWriter w = ReportWriter();
  w.Styles[4].FontName = "Arial     ";  // blank-padded names are trimmed
  const std::string expected =
      R"({\rtf1\ansi\deff0\deftab360{\fonttbl{\f0\froman Times New Roman;}{\f1\fswiss\fprq2 Univers;})"
      R"({\f2\froman\fcharset2 Symbol;}{\f3\fnil Times New Roman;}{\f4\fnil Times New Roman;})"
      R"({\f5\fnil Times New Roman;}{\f6\fnil Times New Roman;}{\f7\fnil Arial;}{\f8\fnil Times New Roman;}})"
      "\r\n"
      R"({\colortbl\red128\green0\blue128;\red0\green0\blue0;\red128\green0\blue0;\red0\green0\blue128;)"
      R"(\red0\green0\blue0;\red0\green0\blue0;})"
      "\r\n"
      R"(\deflang2057\pard\plain\f0\fs24 )"
      "\r\n"
      R"(\pard\plain\f0\fs24 )";
  EXPECT_EQ(RtfHead(w, 12), expected);
}

TEST(Rtf, StyledParagraphs) {
  RtfWriter w = ReportWriter();
  w.Styles[4].Bold = w.Styles[4].Italic = w.Styles[4].Underline = true;
  w.Styles[4].Alignment = 3;
  w.Styles[4].Size = 10.5f;
  struct Case {
    int style;
    const char* expected;
  } cases[] = {
      {0, "\\pard\\qc\\f3\\fs48\\cf0 {\\b Title}\\par \r\n"},
      {1, "\\pard\\qc\\f4\\fs24\\cf1 {\\i Title}\\par \r\n"},
      {3, "\\pard\\ql\\f6\\fs28\\cf3 {\\b Title}\\par \r\n"},
      {4, "\\pard\\qj\\f7\\fs21\\cf4 {\\ul {\\i {\\b Title}}}\\par \r\n"},
      {5, "\\pard\\ql\\f8\\fs24\\cf5 Title\\par \r\n"},
  };
  for (const Case& c : cases) EXPECT_EQ(RtfStyled(w, "Title", c.style), c.expected) << c.style;
}

TEST(Rtf, HelpersAndTheirPlainForms) {
  RtfWriter on = ReportWriter();
  RtfWriter off = ReportWriter();
  off.Enabled = false;
  struct Case {
    std::string rtf, plain, expectedRtf, expectedPlain;
  } cases[] = {
      {RtfBold(on, "s"), RtfBold(off, "s"), "{\\b s}", "s"},
      {RtfItalic(on, "s"), RtfItalic(off, "s"), "{\\i s}", "s"},
      {RtfUnderline(on, "s"), RtfUnderline(off, "s"), "{\\ul s}", "s"},
      {RtfParagraph(on), RtfParagraph(off), "\\par \r\n", "\r\n"},
      {RtfEnd(on), RtfEnd(off), "\\pard }\r\n", ""},
      {RtfLines(on, "a\r\nb\r\n"), RtfLines(off, "a\r\nb"), "a\\par \r\nb\\par \r\n", ""},
      {RtfLines(on, "one line\n"), "", "one line\n", ""},
      {RtfHead(on, 12).substr(0, 6), RtfHead(off, 12), "{\\rtf1", ""},
      {RtfStyled(on, "x", 9), RtfStyled(off, "x", 0), RtfStyled(on, "x", 5), "x\r\n"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.rtf, c.expectedRtf);
    EXPECT_EQ(c.plain, c.expectedPlain);
  }
}

TEST(Rtf, EscapesLatin1) {
  EXPECT_EQ(RtfEscape("M\xfcller {x}"), "M\\'fcller \\{x\\}");
  EXPECT_EQ(RtfEscape("a\\b\r\n\xff\x80"), "a\\\\b\r\n\\'ff\\'80");
}

TEST(Rtf, DocumentFile) {
  testing::TempDir dir;
  RtfFile file;
  file.Put("ignored while closed");
  EXPECT_TRUE(file.Close());
  EXPECT_FALSE(file.Create(dir.file("missing/GroupRep.rtf")));
  testing::WriteBytes(dir.file("GroupRep.rtf"), "an old report, longer than the new one");
  ASSERT_TRUE(file.Create(dir.file("GroupRep.rtf")));
  EXPECT_TRUE(file.IsOpen());
  file.Put("{\\rtf1 ");
  file.Put("");
  file.Put("}");
  EXPECT_TRUE(file.Close());
  EXPECT_FALSE(file.IsOpen());
  EXPECT_EQ(testing::ReadBytes(dir.file("GroupRep.rtf")), "{\\rtf1 }");
}

TEST(Rtf, WordProcessorAndItsFallback) {
  const std::string invalid = "Invalid Word Processor", cannot = "Cannot View Report";
  struct Case {
    int16_t useOther;
    const char* wordProc;
    std::set<std::string> starts;  // programs that can be started
    std::vector<std::string> tried;
    std::vector<std::string> titles;
    bool started;
  } cases[] = {
      {0, "/opt/wp", {"xdg-open", "/opt/wp"}, {"xdg-open"}, {}, true},
      {-1, " /opt/wp ", {"xdg-open", "/opt/wp"}, {"/opt/wp"}, {}, true},
      {-1, "   ", {"xdg-open"}, {"xdg-open"}, {}, true},
      {-1, "/opt/gone", {"xdg-open"}, {"/opt/gone", "xdg-open"}, {invalid}, true},
      {-1, "/opt/gone", {}, {"/opt/gone", "xdg-open"}, {invalid, cannot}, false},
      {0, "", {}, {"xdg-open"}, {cannot}, false},
  };
  for (const Case& c : cases) {
    TestSession t;
    t.session.prefs.UseOtherWP = c.useOther;
    t.session.prefs.WordProc = c.wordProc;
    std::vector<std::string> tried;
    auto launch = [&](const std::vector<std::string>& argv) {
      EXPECT_EQ(argv, (std::vector<std::string>{argv.at(0), "/tmp/GroupRep.rtf"}));
      tried.push_back(argv[0]);
      return c.starts.count(argv[0]) > 0;
    };
    EXPECT_EQ(StartWordProcessor(t.session, "/tmp/GroupRep.rtf", launch), c.started) << c.wordProc;
    EXPECT_EQ(tried, c.tried) << c.wordProc;
    std::vector<std::string> titles;
    for (const auto& m : t.sink.messages) titles.push_back(m.title);
    EXPECT_EQ(titles, c.titles) << c.wordProc;
    if (!c.titles.empty() && c.titles[0] == invalid) {
      EXPECT_EQ(t.sink.messages[0].text,
                "The file /OPT/GONE was not found.\r\n\r\nThe WRITE or WORDPAD utility will be tried instead.\r\n\r\n"
                "You may use the Word Processor menu item to specify the correct path and name of another word "
                "processor if you wish.");
      EXPECT_EQ(t.session.prefs.UseOtherWP, 0);
    }
  }
}

TEST(Rtf, WordProcessorChoiceIsAPreference) {
  TestSession t;
  EXPECT_EQ(t.session.prefs.UseOtherWP, 0);
  ASSERT_TRUE(PutProfileText(t.session, "Vintar", "UseOtherWP", "-1"));
  LoadPreferences(t.session);
  EXPECT_EQ(t.session.prefs.UseOtherWP, -1);
}

}  // namespace
}  // namespace vintar
