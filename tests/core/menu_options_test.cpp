// The Options menu: flags flip, lists take only their range, and the
// choices that change chart results mark an open project stale.
#include <gtest/gtest.h>

#include "core/menu_options.h"
#include "support/test_support.h"

namespace vintar {
namespace {

TEST(MenuOptions, RangesAndStaleResults) {
  struct Case {
    MenuOption option;
    int value;
    bool accepted;
    bool stale;
  } cases[] = {
      {MenuOption::Houses, 14, true, true},      {MenuOption::Houses, 15, false, false},
      {MenuOption::Zodiac, 9, true, true},       {MenuOption::Zodiac, 0, false, false},
      {MenuOption::Progressions, 3, true, false}, {MenuOption::Progressions, 4, false, false},
      {MenuOption::TrueNode, 1, true, true},     {MenuOption::Sound, 0, true, false},
      {MenuOption::AMPM, 0, true, false},
  };
  for (const Case& c : cases) {
    testing::TestSession ts;
    Session& s = ts.session;
    s.project.Open = true;
    const int before = MenuOptionValue(s, c.option);
    EXPECT_EQ(SetMenuOption(s, c.option, c.value), c.accepted) << int(c.option) << " " << c.value;
    EXPECT_EQ(MenuOptionValue(s, c.option), c.accepted ? c.value : before);
    EXPECT_EQ(s.project.Status.ReCalculate != 0, c.stale) << int(c.option);
  }
}

TEST(MenuOptions, ChoicesNameEveryEntry) {
  testing::TestSession ts;
  EXPECT_EQ(MenuOptionChoices(ts.session, MenuOption::Houses).size(), 15u);
  EXPECT_EQ(MenuOptionChoices(ts.session, MenuOption::Zodiac).size(), 9u);
  auto methods = MenuOptionChoices(ts.session, MenuOption::Progressions);
  ASSERT_EQ(methods.size(), 3u);
  EXPECT_EQ(methods[0].Caption, "Naibod in R.A.");
  for (const char* bad : {"", "19", "1950", "abcd"}) EXPECT_FALSE(SetCenturyBase(ts.session, bad)) << bad;
  EXPECT_TRUE(SetCenturyBase(ts.session, "2000"));
  EXPECT_EQ(ts.session.CenturyBase, 2000);
}

}  // namespace
}  // namespace vintar
