// The automatic group report on a planted group: its chapters for a type
// with and without interpretation, the notes on untimed charts, the
// scoring's ties and duplicates, and the RTF's group structure.
#include "groups/group_report.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "core/preferences.h"
#include "groups/planted_group.h"

namespace vintar {
namespace {

// Braces balance outside escapes, and the document is one group.
bool BalancedRtf(const std::string& rtf) {
  int depth = 0;
  for (size_t i = 0; i < rtf.size(); ++i) {
    if (rtf[i] == '\\') {
      ++i;
    } else if (rtf[i] == '{') {
      ++depth;
    } else if (rtf[i] == '}') {
      if (--depth < 0) return false;
      if (depth == 0 && rtf.find_first_not_of("\r\n", i + 1) != std::string::npos) return false;
    }
  }
  return depth == 0;
}

class GroupReport : public PlantedGroup {
 protected:
  std::string Write(int type) {
    const double m7 = 360.0 / 7.0;
    for (int i = 0; i < 5; ++i) Plant(i + 2, kMoon, 10.0 + i * m7 + 0.02 * i);
    GroupReportOptions options;
    options.GroupType = type;
    options.Path = t.dir.file("GroupRep.rtf");
    options.UserName = "Tester";
    outcome = WriteGroupReport(t.session, state, options);
    return testing::ReadBytes(options.Path);
  }
  GroupReportOutcome outcome;
};

TEST_F(GroupReport, ChaptersWithAndWithoutInterpretation) {
  struct Case {
    int type;
    std::vector<const char*> present, absent;
  };
  const Case cases[] = {
      {0,
       {"Group Type: {\\b Family}", "Introduction", "Sign Emphasis", "House Emphasis", "Strongest Sign",
        "Each Person's Role in the Group", "How Your Group Works", "Conclusion", "Charts Included in Search:",
        "Total Charts: 8", "Report produced by Tester"},
       {"* * * Report End * * *", "No text available"}},
      {5,
       {"Group Type: {\\b Undefined}", "Primary Point Patterns", "Midpoint Patterns", "* * * Report End * * *"},
       {"Introduction\\par", "Each Person's Role", "Conclusion"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.type);
    const std::string rtf = Write(c.type);
    ASSERT_EQ(outcome.Result, GroupReportResult::Written);
    EXPECT_EQ(rtf.rfind("{\\rtf1\\ansi", 0), 0u);
    EXPECT_TRUE(BalancedRtf(rtf));
    for (const char* text : c.present) EXPECT_NE(rtf.find(text), std::string::npos) << text;
    for (const char* text : c.absent) EXPECT_EQ(rtf.find(text), std::string::npos) << text;
  }
  EXPECT_EQ(outcome.StepLine, "Finished");
}

// A match the user picked: its search points, the members by point, the
// others who come near, no chapters of the full report.
TEST_F(GroupReport, DescribesASelectedMatch) {
  const double m7 = 360.0 / 7.0;
  for (int i = 0; i < 5; ++i) Plant(i + 2, kMoon, 10.0 + i * m7 + 0.02 * i);
  Points({{kMoon, kMoon}, {kSun, kSun}});
  GroupSearchParams p;
  p.FromHarmonic = p.ToHarmonic = 7;
  p.Orb = 8.0f;
  p.Combination = false;
  SearchGroupPatterns(t.session, state, p);
  ASSERT_GE(state.MatchCount, 1);
  GroupReportOptions options;
  options.SelectedMatch = 1;
  options.Path = t.dir.file("Selected.rtf");
  outcome = WriteGroupReport(t.session, state, options);
  ASSERT_EQ(outcome.Result, GroupReportResult::Written);
  const std::string rtf = testing::ReadBytes(options.Path);
  EXPECT_TRUE(BalancedRtf(rtf));
  for (const char* text : {"User-Selected Pattern", "Same Point Search: The Moon", "{\\b The Moon} is contributed by:",
                           "Pattern Harmonic: 7th;  Vacant Points: 2"})
    EXPECT_NE(rtf.find(text), std::string::npos) << text;
  EXPECT_EQ(rtf.find("Each Person's Role"), std::string::npos);
}

TEST_F(GroupReport, UntimedChartsDropTheMoonAnglesAndHouses) {
  for (int n : {2, 4}) t.session.project.Events[n].DetailLevel = 1;
  const auto primary = PrimaryPoints(t.session, GroupSearchCharts(t.session));
  EXPECT_FALSE(primary[kMoon] || primary[kAscendant] || primary[kMidheaven]);
  EXPECT_TRUE(primary[kSun] && primary[kPluto] && primary[t.session.vocab.NodePoint]);
  const std::string rtf = Write(0);
  EXPECT_NE(rtf.find("Untimed Charts: 2"), std::string::npos);
  EXPECT_EQ(rtf.find("House Emphasis"), std::string::npos);
  EXPECT_TRUE(BalancedRtf(rtf));
}

// The report button keeps another word processor only with a path, and
// writes both keys to the preference file.
TEST_F(GroupReport, WordProcessorChoiceIsSaved) {
  EXPECT_TRUE(ApplyWordProcessorChoice(t.session, true, "  "));
  EXPECT_FALSE(LoadWordProcessorChoice(t.session).UseOther);
  EXPECT_TRUE(ApplyWordProcessorChoice(t.session, true, " /usr/bin/abiword "));
  EXPECT_EQ(GetProfileText(t.session, "Vintar", "WordProc", ""), "/usr/bin/abiword");
  EXPECT_EQ(GetProfileText(t.session, "Vintar", "UseOtherWP", ""), "-1");
  EXPECT_TRUE(LoadWordProcessorChoice(t.session).UseOther);
}

// The document as a word processor reads it: LibreOffice turns it into a
// PDF whose text holds the title, the chapters and a member's line.
TEST_F(GroupReport, OpensInLibreOffice) {
  if (std::system("command -v soffice >/dev/null 2>&1 && command -v pdftotext >/dev/null 2>&1") != 0)
    GTEST_SKIP() << "LibreOffice (soffice) or pdftotext is not installed";
  Write(0);
  ASSERT_EQ(outcome.Result, GroupReportResult::Written);
  const std::string dir = t.dir.path().string();
  const std::string command = "cd '" + dir + "' && timeout 300 soffice --headless -env:UserInstallation=file://" +
                              dir + "/lo --convert-to pdf GroupRep.rtf >/dev/null 2>&1 && pdftotext GroupRep.pdf";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::string text = testing::ReadBytes(t.dir.file("GroupRep.txt"));
  for (const char* line : {"Kinfold Analysis", "Group Type: Family", "Sign Emphasis", "Each Person's Role in the Group",
                           "How Your Group Works", "Conclusion", "Member 2"})
    EXPECT_NE(text.find(line), std::string::npos) << line;
}

// Charts decide first and density next; a pattern of the same harmonic and
// vacant count within 1/36 of the circle of the last kept one is dropped;
// too few charts score 0; the node ratio floor is lowered until one passes.
TEST(GroupReportScoring, TiesDuplicatesAndTheNodeFloor) {
  GroupSearchState state;
  auto add = [&](int h, float pos, int vacant, int charts, int hits) {
    GroupMatch m;
    m.Harmonic = static_cast<int16_t>(h);
    m.Position = pos;
    m.Vacant = static_cast<int16_t>(vacant);
    m.Charts = static_cast<int16_t>(charts);
    m.Hits = static_cast<int16_t>(hits);
    state.Matches.push_back(m);
    state.MatchCount = static_cast<int>(state.Matches.size()) - 1;
  };
  add(7, 10.0f, 2, 5, 5);  // best
  add(7, 11.0f, 2, 5, 5);  // within 51.4/36 of it: a duplicate
  add(9, 3.0f, 2, 5, 5);   // an equal score that is no duplicate
  add(5, 1.0f, 0, 4, 8);   // fewer charts
  add(12, 1.0f, 6, 8, 8);  // nodes half filled: skipped at the first floor
  float best = 0;
  int count = 0;
  ScorePatterns(state, best, count, 0.2f, 10);
  EXPECT_FLOAT_EQ(best, 5001.0f);
  EXPECT_EQ(count, 2);
  EXPECT_FLOAT_EQ(state.Matches[2].Score, 0.0f);
  EXPECT_FLOAT_EQ(state.Matches[4].Score, 4002.0f);
  EXPECT_FLOAT_EQ(state.Matches[5].Score, 0.0f);  // never scored

  // Only the half-filled pattern: found on the third floor (0.5).
  state.Matches.resize(1);
  add(12, 1.0f, 6, 8, 8);
  ScorePatterns(state, best, count, 0.9f, 10);  // and its charts fall short of the ratio
  EXPECT_EQ(count, 1);
  EXPECT_FLOAT_EQ(best, 0.0f);

  ScoreChartRatio(state, best, count, 0.4f, 10);
  EXPECT_FLOAT_EQ(best, 1.0f);
  EXPECT_EQ(GroupTypeByName("Hunt"), 1);
  EXPECT_EQ(GroupTypeByName("tribal"), -1);
  EXPECT_EQ(GroupTypeByName("Undefined"), 5);
}

}  // namespace
}  // namespace vintar
