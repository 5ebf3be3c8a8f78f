#include "core/preferences.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <vector>

#include "core/file_io.h"
#include "core/parse.h"
#include "core/session.h"
#include "core/text.h"

namespace vintar {
namespace {

// A profile file: "[Section]" lines and "key=value" lines. Sections and keys
// are found ignoring case; values are trimmed and lose one pair of enclosing
// double quotes. Lines that are neither (comments, blanks) are kept as they
// stand when the file is rewritten.
class ProfileFile {
 public:
  explicit ProfileFile(const std::string& path) : path_(path) {
    std::string bytes, error;
    if (!ReadWholeFile(path, bytes, error)) return;
    size_t start = 0;
    while (start < bytes.size()) {
      size_t end = bytes.find('\n', start);
      if (end == std::string::npos) end = bytes.size();
      std::string line = bytes.substr(start, end - start);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      lines_.push_back(line);
      start = end + 1;
    }
  }

  bool Get(const std::string& section, const std::string& key, std::string& value) const {
    auto [first, last] = SectionRange(section);
    for (size_t i = first; i < last; ++i) {
      std::string k;
      if (KeyOf(lines_[i], k) && EqualsIgnoreCase(k, Trim(key))) {
        std::string v = Trim(lines_[i].substr(lines_[i].find('=') + 1));
        if (v.size() >= 2 && v.front() == '"' && v.back() == '"') v = v.substr(1, v.size() - 2);
        value = v;
        return true;
      }
    }
    return false;
  }

  // An empty value removes the key.
  void Put(const std::string& section, const std::string& key, const std::string& value) {
    auto [first, last] = SectionRange(section);
    if (first == npos) {
      if (value.empty()) return;
      if (!lines_.empty() && !Trim(lines_.back()).empty()) lines_.push_back("");
      lines_.push_back("[" + section + "]");
      lines_.push_back(key + "=" + value);
      return;
    }
    for (size_t i = first; i < last; ++i) {
      std::string k;
      if (KeyOf(lines_[i], k) && EqualsIgnoreCase(k, Trim(key))) {
        if (value.empty())
          lines_.erase(lines_.begin() + static_cast<long>(i));
        else
          lines_[i] = key + "=" + value;
        return;
      }
    }
    if (value.empty()) return;
    size_t at = last;
    while (at > first && Trim(lines_[at - 1]).empty()) --at;
    lines_.insert(lines_.begin() + static_cast<long>(at), key + "=" + value);
  }

  bool Save(std::string& error) const {
    std::error_code ec;
    std::filesystem::path p(path_);
    if (p.has_parent_path()) std::filesystem::create_directories(p.parent_path(), ec);
    std::string bytes;
    for (const auto& line : lines_) bytes += line + kLineEnd;
    return WriteFileAtomically(path_, bytes, error);
  }

 private:
  static constexpr size_t npos = static_cast<size_t>(-1);

  static bool IsSectionLine(const std::string& line, std::string& name) {
    std::string t = Trim(line);
    if (t.size() < 2 || t.front() != '[') return false;
    size_t close = t.find(']');
    if (close == std::string::npos) return false;
    name = Trim(t.substr(1, close - 1));
    return true;
  }

  static bool KeyOf(const std::string& line, std::string& key) {
    std::string t = LTrim(line);
    if (t.empty() || t[0] == ';' || t[0] == '[') return false;
    size_t eq = line.find('=');
    if (eq == std::string::npos) return false;
    key = Trim(line.substr(0, eq));
    return true;
  }

  // Lines after the section's header up to the next section: [first, last).
  std::pair<size_t, size_t> SectionRange(const std::string& section) const {
    for (size_t i = 0; i < lines_.size(); ++i) {
      std::string name;
      if (IsSectionLine(lines_[i], name) && EqualsIgnoreCase(name, Trim(section))) {
        size_t j = i + 1;
        std::string other;
        while (j < lines_.size() && !IsSectionLine(lines_[j], other)) ++j;
        return {i + 1, j};
      }
    }
    return {npos, npos};
  }

  std::string path_;
  std::vector<std::string> lines_;
};

const std::string& FileOrPreferences(const Session& session, const std::string& file) {
  return file.empty() ? session.paths.PreferenceFile : file;
}

std::string NumberText(double number) {
  if (number == std::floor(number) && std::fabs(number) < 1e15)
    return std::to_string(static_cast<long long>(number));
  char buffer[32];
  auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<float>(number));
  return std::string(buffer, result.ptr);
}

int16_t Flag(const Session& session, const char* key, int16_t def) {
  return static_cast<int16_t>(GetPreferenceInteger(session, key, def));
}

}  // namespace

std::string GetProfileText(const Session& session, const std::string& section, const std::string& key,
                           const std::string& def, const std::string& file) {
  ProfileFile profile(FileOrPreferences(session, file));
  std::string value;
  if (!profile.Get(section, key, value)) value = def;
  if (value.size() > 254) value.resize(254);
  return value;
}

double GetProfileNumber(const Session& session, const std::string& section, const std::string& key, double def,
                        const std::string& file) {
  std::string text = GetProfileText(session, section, key, NumberText(def), file);
  size_t zeros = 0;
  while (zeros + 1 < text.size() && text[zeros] == '0') ++zeros;
  return Val(text.substr(zeros));
}

bool PutProfileText(const Session& session, const std::string& section, const std::string& key,
                    const std::string& value, const std::string& file) {
  ProfileFile profile(FileOrPreferences(session, file));
  profile.Put(section, key, value);
  std::string error;
  return profile.Save(error);
}

bool PutProfileNumber(const Session& session, const std::string& section, const std::string& key, double number,
                      const std::string& file) {
  return PutProfileText(session, section, key, NumberText(number), file);
}

std::string GetPreferenceText(const Session& session, const std::string& key, const std::string& def,
                              int capacity) {
  std::string value = GetProfileText(session, "Vintar", key, def);
  if (capacity > 0 && static_cast<int>(value.size()) > capacity - 1) value.resize(capacity - 1);
  return Trim(value);
}

long GetPreferenceInteger(const Session& session, const std::string& key, long def) {
  std::string value;
  ProfileFile profile(session.paths.PreferenceFile);
  if (!profile.Get("Vintar", key, value)) return def;
  double v = Val(value);
  if (v > 2147483647.0 || v < -2147483648.0) return def;
  return static_cast<long>(v);
}

double GetPreferenceFloat(const Session& session, const std::string& key, double def) {
  std::string text = GetPreferenceText(session, key, "", 21);
  if (text.empty()) return def;
  return Val(text);
}

void LoadPreferences(Session& session) {
  Preferences& p = session.prefs;
  const Preferences defaults;

  // The data folders. The system folder is where the program's data is
  // installed; a stale key written by a moved installation is repaired at
  // start-up, so what is read here is normally that folder already.
  p.SystemDataPath = EnsureBackslash(GetPreferenceText(session, "SystemDataPath", session.paths.SystemDataPath));
  if (!FolderExists(p.SystemDataPath)) p.SystemDataPath = session.paths.SystemDataPath;

  // The ephemeris: the key, else Debian's ephemeris folder.
  p.SwissEphPath = GetPreferenceText(session, "SwissEphPath", "");
  if (p.SwissEphPath.empty() || !FolderExists(p.SwissEphPath)) p.SwissEphPath = "/usr/share/libswe/ephe/";
  p.SwissEphPath = EnsureBackslash(p.SwissEphPath);

  std::string userDefault = session.paths.UserDataPath;
  p.UserDataPath = EnsureBackslash(GetPreferenceText(session, "UserDataPath", userDefault));

  p.SaveOnExit = Flag(session, "SaveOnExit", defaults.SaveOnExit);
  p.Sound = Flag(session, "Sound", defaults.Sound);
  p.Prompt = Flag(session, "Prompt", defaults.Prompt);
  p.TrueNode = Flag(session, "TrueNode", defaults.TrueNode);
  p.MonthFirst = Flag(session, "MonthFirst", defaults.MonthFirst);
  p.AutoSave = Flag(session, "AutoSave", defaults.AutoSave);
  p.CUAKeys = Flag(session, "CUAKeys", defaults.CUAKeys);
  p.AMPM = Flag(session, "AMPM", defaults.AMPM);
  // No atlas library is installed with this program, so the embedded atlas
  // preference is forced on.
  p.PreferACSEmbedded = -1;
  p.Houses = static_cast<int16_t>(ClampInteger(Flag(session, "Houses", defaults.Houses), 0, 14));
  p.Progressions = static_cast<int16_t>(ClampInteger(Flag(session, "Progressions", defaults.Progressions), 1, 3));
  p.PointOnCusp = static_cast<int16_t>(ClampInteger(Flag(session, "PointOnCusp", defaults.PointOnCusp), 1, 24));
  p.WhichCusp = Flag(session, "WhichCusp", defaults.WhichCusp);
  // The cusp's clamp lands in the point of the user house system: after a
  // load the point holds the cusp's value.
  p.PointOnCusp = static_cast<int16_t>(ClampInteger(p.WhichCusp, 1, 12));
  p.Zodiac = static_cast<int16_t>(ClampInteger(Flag(session, "Zodiac", defaults.Zodiac), 1, 9));
  p.UserAyan = static_cast<float>(GetPreferenceFloat(session, "UserAyan", defaults.UserAyan));
  p.DynInterval = static_cast<float>(GetPreferenceFloat(session, "DynInterval", defaults.DynInterval));
  p.DynStepDays = Flag(session, "DynStepDays", defaults.DynStepDays);
  p.WordProc = GetPreferenceText(session, "WordProc", "");
  for (int i = 1; i <= 4; ++i) {
    p.FilePath[i] = GetPreferenceText(session, "FilePath" + std::to_string(i), "");
    p.FileName[i] = GetPreferenceText(session, "FileName" + std::to_string(i), "");
  }
  p.MinPeakWidth = Flag(session, "MinPeakWidth", defaults.MinPeakWidth);
  p.PeakSDFactor = static_cast<float>(GetPreferenceFloat(session, "PeakSDFactor", defaults.PeakSDFactor));
  p.ForcePeakSDFactor =
      static_cast<float>(GetPreferenceFloat(session, "ForcePeakSDFactor", defaults.ForcePeakSDFactor));
  p.MaxPeaks = Flag(session, "MaxPeaks", defaults.MaxPeaks);
  p.MaxGapBars = Flag(session, "MaxGapBars", defaults.MaxGapBars);
  p.AddCommonBars = Flag(session, "AddCommonBars", defaults.AddCommonBars);
  p.HCTTFont = GetPreferenceText(session, "HCTTFont", defaults.HCTTFont);
  p.AutoAtlasLookup = Flag(session, "AutoAtlasLookup", defaults.AutoAtlasLookup);
  p.UseACS = Flag(session, "UseACS", defaults.UseACS);
  p.UranusGlyph = GetPreferenceText(session, "UranusGlyph", defaults.UranusGlyph);
  p.PlutoGlyph = GetPreferenceText(session, "PlutoGlyph", defaults.PlutoGlyph);
  p.CapricornGlyph = GetPreferenceText(session, "CapricornGlyph", defaults.CapricornGlyph);
}

bool SavePreferences(Session& session) {
  const Preferences& p = session.prefs;
  const Clock& c = session.clock;
  static const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  int hour12 = c.Hour % 12 == 0 ? 12 : c.Hour % 12;
  std::string stamp = std::to_string(c.Day) + " " + kMonths[ClampInteger(c.Month, 1, 12) - 1] + " " +
                      std::to_string(c.Year) + " " + std::to_string(hour12) + ":" + ZeroPad(c.Minute, 2) +
                      (c.Hour < 12 ? " AM" : " PM");

  // Written in one pass so that a failure leaves the old file whole.
  ProfileFile profile(session.paths.PreferenceFile);
  auto put = [&](const char* key, const std::string& value) { profile.Put("Vintar", key, value); };
  auto flag = [&](const char* key, int value) { put(key, std::to_string(value)); };
  put("Last Updated", stamp);
  put("SystemDataPath", p.SystemDataPath);
  put("UserDataPath", p.UserDataPath);
  flag("SaveOnExit", p.SaveOnExit);
  flag("Sound", p.Sound);
  flag("Prompt", p.Prompt);
  flag("TrueNode", p.TrueNode);
  flag("MonthFirst", p.MonthFirst);
  flag("CUAKeys", p.CUAKeys);
  flag("AMPM", p.AMPM);
  flag("Houses", p.Houses);
  flag("Progressions", p.Progressions);
  flag("PointOnCusp", p.PointOnCusp);
  flag("WhichCusp", p.WhichCusp);
  flag("Zodiac", p.Zodiac);
  put("UserAyan", NumberText(p.UserAyan));
  std::string error;
  return profile.Save(error);
}

void SavePreferencesCommand(Session& session) {
  if (session.ShowMessage("Do you wish to save all the current preference settings?", kYesNo + kIconQuestion,
                          "Save Preferences?") == kYes)
    SavePreferences(session);
}

void RestorePreferencesCommand(Session& session) {
  if (session.ShowMessage("Do you wish to restore all the saved preference settings?", kYesNo + kIconQuestion,
                          "Restore Preferences?") == kYes)
    LoadPreferences(session);
}

std::vector<std::pair<std::string, std::string>> PreferenceListing(const Preferences& p) {
  std::vector<std::pair<std::string, std::string>> list = {
      {"SystemDataPath", p.SystemDataPath},
      {"SwissEphPath", p.SwissEphPath},
      {"UserDataPath", p.UserDataPath},
      {"SaveOnExit", std::to_string(p.SaveOnExit)},
      {"Sound", std::to_string(p.Sound)},
      {"Prompt", std::to_string(p.Prompt)},
      {"TrueNode", std::to_string(p.TrueNode)},
      {"MonthFirst", std::to_string(p.MonthFirst)},
      {"AutoSave", std::to_string(p.AutoSave)},
      {"CUAKeys", std::to_string(p.CUAKeys)},
      {"AMPM", std::to_string(p.AMPM)},
      {"PreferACSEmbedded", std::to_string(p.PreferACSEmbedded)},
      {"Houses", std::to_string(p.Houses)},
      {"Progressions", std::to_string(p.Progressions)},
      {"PointOnCusp", std::to_string(p.PointOnCusp)},
      {"WhichCusp", std::to_string(p.WhichCusp)},
      {"Zodiac", std::to_string(p.Zodiac)},
      {"UserAyan", NumberText(p.UserAyan)},
      {"DynInterval", NumberText(p.DynInterval)},
      {"DynStepDays", std::to_string(p.DynStepDays)},
      {"WordProc", p.WordProc},
  };
  for (int i = 1; i <= 4; ++i) list.emplace_back("FilePath" + std::to_string(i), p.FilePath[i]);
  for (int i = 1; i <= 4; ++i) list.emplace_back("FileName" + std::to_string(i), p.FileName[i]);
  std::vector<std::pair<std::string, std::string>> rest = {
      {"MinPeakWidth", std::to_string(p.MinPeakWidth)},
      {"PeakSDFactor", NumberText(p.PeakSDFactor)},
      {"ForcePeakSDFactor", NumberText(p.ForcePeakSDFactor)},
      {"MaxPeaks", std::to_string(p.MaxPeaks)},
      {"MaxGapBars", std::to_string(p.MaxGapBars)},
      {"AddCommonBars", std::to_string(p.AddCommonBars)},
      {"HCTTFont", p.HCTTFont},
      {"AutoAtlasLookup", std::to_string(p.AutoAtlasLookup)},
      {"UseACS", std::to_string(p.UseACS)},
      {"UranusGlyph", p.UranusGlyph},
      {"PlutoGlyph", p.PlutoGlyph},
      {"CapricornGlyph", p.CapricornGlyph},
  };
  list.insert(list.end(), rest.begin(), rest.end());
  return list;
}

bool IsPreferenceKey(const std::string& key) {
  if (EqualsIgnoreCase(key, "Last Updated") || EqualsIgnoreCase(key, "v2.1.2")) return true;
  for (const auto& [name, value] : PreferenceListing(Preferences{}))
    if (EqualsIgnoreCase(name, key)) return true;
  return false;
}

void SaveShutdownPreferences(Session& session) {
  ProfileFile profile(session.paths.PreferenceFile);
  for (int i = 1; i <= 4; ++i) {
    profile.Put("Vintar", "FilePath" + std::to_string(i), session.prefs.FilePath[i]);
    profile.Put("Vintar", "FileName" + std::to_string(i), session.prefs.FileName[i]);
  }
  profile.Put("Vintar", "DynStepDays", std::to_string(session.prefs.DynStepDays));
  std::string error;
  profile.Save(error);
}

}  // namespace vintar
