#include "core/menu_options.h"

#include "core/record_edit.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {

namespace {

int16_t* FlagOf(Session& session, MenuOption option) {
  Preferences& p = session.prefs;
  switch (option) {
    case MenuOption::Sound: return &p.Sound;
    case MenuOption::Prompt: return &p.Prompt;
    case MenuOption::TrueNode: return &p.TrueNode;
    case MenuOption::MonthFirst: return &p.MonthFirst;
    case MenuOption::CUAKeys: return &p.CUAKeys;
    case MenuOption::AMPM: return &p.AMPM;
    default: return nullptr;
  }
}

void MarkStale(Session& session) {
  if (session.project.Open) session.project.Status.ReCalculate = -1;
}

}  // namespace

int MenuOptionValue(const Session& session, MenuOption option) {
  const Preferences& p = session.prefs;
  switch (option) {
    case MenuOption::Houses: return p.Houses;
    case MenuOption::Zodiac: return p.Zodiac;
    case MenuOption::Progressions: return p.Progressions;
    default: return *FlagOf(const_cast<Session&>(session), option) ? 1 : 0;
  }
}

bool SetMenuOption(Session& session, MenuOption option, int value) {
  Preferences& p = session.prefs;
  switch (option) {
    case MenuOption::Houses:
      if (value < 0 || value > 14) return false;
      if (p.Houses != value) MarkStale(session);
      p.Houses = int16_t(value);
      return true;
    case MenuOption::Zodiac:
      if (value < 1 || value > 9) return false;
      if (p.Zodiac != value) MarkStale(session);
      p.Zodiac = int16_t(value);
      return true;
    case MenuOption::Progressions:
      if (value < 1 || value > 3) return false;
      p.Progressions = int16_t(value);
      return true;
    default: {
      int16_t* flag = FlagOf(session, option);
      const int16_t v = value ? kTrue : kFalse;
      if (option == MenuOption::TrueNode && *flag != v) MarkStale(session);
      *flag = v;
      if (option == MenuOption::TrueNode) SetNodePoint(session.vocab, p.NodePoint());
      return true;
    }
  }
}

std::vector<MenuChoice> MenuOptionChoices(const Session& session, MenuOption option) {
  std::vector<MenuChoice> out;
  const Vocabulary& v = session.vocab;
  switch (option) {
    case MenuOption::Houses:
      for (int i = 0; i <= 14 && i < int(v.HouseSystemName.size()); ++i) out.push_back({i, v.HouseSystemName[i]});
      break;
    case MenuOption::Zodiac:
      for (int i = 1; i <= 9 && i - 1 < int(v.ZodiacName.size()); ++i) out.push_back({i, v.ZodiacName[i - 1]});
      break;
    case MenuOption::Progressions:
      for (int i = 1; i <= 3 && i < int(v.ProgressionMethodName.size()); ++i)
        out.push_back({i, v.ProgressionMethodName[i]});
      break;
    default: break;
  }
  return out;
}

bool SetCenturyBase(Session& session, const std::string& text) {
  const std::string t = Trim(text);
  bool digits = !t.empty() && t.size() <= 4;
  for (char c : t) digits = digits && c >= '0' && c <= '9';
  const int year = digits ? std::stoi(t) : -1;
  if (year < 100 || year % 100 != 0) {
    session.ShowMessage("Please enter a century as a year ending in 00, such as 1900.", kIconExclamation,
                        kCenturyTitle);
    return false;
  }
  session.CenturyBase = int16_t(year);
  return true;
}

bool SetUserAyanamsa(Session& session, const std::string& text) {
  const std::string t = Trim(text);
  const double value = IsNumericText(t) ? Val(t) : -1.0;
  if (!(value >= 0.0 && value < 360.0)) {
    session.ShowMessage("Please enter the SVP in degrees from 0 up to 360, such as 336.6561.", kIconExclamation,
                        kAyanamsaTitle);
    return false;
  }
  if (session.prefs.UserAyan != float(value)) MarkStale(session);
  session.prefs.UserAyan = float(value);
  return true;
}

bool SetUserHouse(Session& session, int point, int cusp) {
  if (point < 1 || point > kPointCount || cusp < 1 || cusp > 12) return false;
  Preferences& p = session.prefs;
  if (p.PointOnCusp != point || p.WhichCusp != cusp) MarkStale(session);
  p.PointOnCusp = int16_t(point);
  p.WhichCusp = int16_t(cusp);
  SetUserHouseName(session.vocab, point, cusp);
  return true;
}

}  // namespace vintar
