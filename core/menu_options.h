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

// The same screen for the user's ayanamsa (zodiac entry 9): the Sidereal
// Vernal Point of 1 January 1900 in degrees, from 0 up to 360, into UserAyan.
// Other text shows the message and returns false. Marks results stale.
inline constexpr const char* kAyanamsaTitle = "Sidereal Ayanamsa";
inline constexpr const char* kAyanamsaPrompt = "Enter the Sidereal Vernal Point (SVP) for 1st Jan 1900.";
bool SetUserAyanamsa(Session& session, const std::string& text);

// The house point selection of the user house system (entry 14): point
// 1 to 24 on cusp 1 to 12. Renames entry 14 ("Sun on 1st") and marks results
// stale; false, and nothing changed, when either is out of range.
bool SetUserHouse(Session& session, int point, int cusp);

}  // namespace vintar
