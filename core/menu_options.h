// The options that live on the main window's Options menu: each command
// flips or sets its session value at once (the preference file is written
// only by "Save Preferences"). Changing the houses, the zodiac or the node
// marks the derived results of the open project stale. Checked by
// tests/core/menu_options_test.cpp.
#pragma once

#include <string>
#include <vector>

namespace vintar {

class Session;

enum class MenuOption {
  Sound,         // flag
  Prompt,        // flag: offer the notepad on opening
  TrueNode,      // flag: true node, else mean
  MonthFirst,    // flag: month before day in dates
  CUAKeys,       // flag: Enter and arrows move between entry fields when off
  AMPM,          // flag: 12-hour clock, else 24-hour
  Houses,        // 0 to 14
  Zodiac,        // 1 to 9
  Progressions,  // 1 to 3
};

// The option's current value (flags as true/false: 1 or 0).
int MenuOptionValue(const Session& session, MenuOption option);
// Sets it; false, and nothing changed, when the value is out of range.
bool SetMenuOption(Session& session, MenuOption option, int value);

// The entries of the three list options, in menu order with their values.
struct MenuChoice {
  int Value;
  std::string Caption;
};
std::vector<MenuChoice> MenuOptionChoices(const Session& session, MenuOption option);

// The century screen: the century of two-digit years ("Century Selection").
// Accepts a year that is a multiple of 100 from 100 to 9900; otherwise the
// message is shown and false returned. Not kept between sessions.
inline constexpr const char* kCenturyTitle = "Century Selection";
inline constexpr const char* kCenturyPrompt =
    "Enter the century which will be used whenever a year is entered with only two digits.";
bool SetCenturyBase(Session& session, const std::string& text);

}  // namespace vintar
