#include "core/preferences.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <unordered_map>
#include <unordered_set>
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
    std::string bytes;
    readError_ = ReadFileBytes(path, bytes, kMaxSmallFileBytes);
    if (readError_ == ENOENT) readError_ = 0;  // a first run: the file is made on the first save
    if (readError_ != 0) return;
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
    // The first key of the name in the first section of the name, found
    // through an index of the whole file so that a long file is read once.
    if (!indexed_) BuildIndex();
    auto found = index_.find(IndexKey(section, key));
    if (found == index_.end()) return false;
    const std::string& line = lines_[found->second];
    std::string v = Trim(line.substr(line.find('=') + 1));
    if (v.size() >= 2 && v.front() == '"' && v.back() == '"') v = v.substr(1, v.size() - 2);
    value = v;
    return true;
  }

  // An empty value removes the key.
  void Put(const std::string& section, const std::string& key, const std::string& value) {
    indexed_ = false;
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
    // A file that is there but could not be read is never written over:
    // its other settings would be lost.
    if (readError_ != 0) {
      error = FileErrorText(readError_);
      return false;
    }
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

  static std::string IndexKey(const std::string& section, const std::string& key) {
    return UCase(Trim(section)) + '\n' + UCase(Trim(key));
  }

  void BuildIndex() const {
    index_.clear();
    std::unordered_set<std::string> sectionsSeen;
    std::string section;
    bool firstOfItsName = false;
    for (size_t i = 0; i < lines_.size(); ++i) {
      std::string name, key;
      if (IsSectionLine(lines_[i], name)) {
        section = name;
        firstOfItsName = sectionsSeen.insert(UCase(name)).second;
      } else if (firstOfItsName && KeyOf(lines_[i], key)) {
        index_.emplace(IndexKey(section, key), i);  // the first of a name stays
      }
    }
    indexed_ = true;
  }

  std::string path_;
  std::vector<std::string> lines_;
  int readError_ = 0;
  mutable std::unordered_map<std::string, size_t> index_;
  mutable bool indexed_ = false;
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

// Readers over one profile, shared by the single-key functions below and by
// LoadPreferences, which reads the file once for all its keys.
std::string TextFrom(const ProfileFile& profile, const std::string& section, const std::string& key,
                     const std::string& def) {
  std::string value;
  if (!profile.Get(section, key, value)) value = def;
  if (value.size() > 254) value.resize(254);
  return value;
}

std::string PreferenceTextFrom(const ProfileFile& profile, const std::string& key, const std::string& def,
                               int capacity) {
  std::string value = TextFrom(profile, "Vintar", key, def);
  if (capacity > 0 && static_cast<int>(value.size()) > capacity - 1) value.resize(capacity - 1);
  return Trim(value);
}

long PreferenceIntegerFrom(const ProfileFile& profile, const std::string& key, long def) {
  std::string value;
  if (!profile.Get("Vintar", key, value)) return def;
  double v = Val(value);
  if (v > 2147483647.0 || v < -2147483648.0) return def;
  return static_cast<long>(v);
}

double PreferenceFloatFrom(const ProfileFile& profile, const std::string& key, double def) {
  std::string text = PreferenceTextFrom(profile, key, "", 21);
  if (text.empty()) return def;
  // Every preference number is held in single precision.
  const double v = Val(text);
  return std::fabs(v) <= std::numeric_limits<float>::max() ? v : def;
}

// The keys of section Vintar after the three folders, in load order, each
// bound to its field. The recent files are a list of four pairs.
struct PreferenceKey {
  const char* name;
  int16_t Preferences::*integer = nullptr;
  float Preferences::*number = nullptr;
  std::string Preferences::*text = nullptr;
  bool recentFiles = false;
};

const PreferenceKey kKeys[] = {
    {"SaveOnExit", &Preferences::SaveOnExit},
    {"Sound", &Preferences::Sound},
    {"Prompt", &Preferences::Prompt},
    {"TrueNode", &Preferences::TrueNode},
    {"MonthFirst", &Preferences::MonthFirst},
    {"AutoSave", &Preferences::AutoSave},
    {"CUAKeys", &Preferences::CUAKeys},
    {"AMPM", &Preferences::AMPM},
    {"PreferACSEmbedded", &Preferences::PreferACSEmbedded},
    {"Houses", &Preferences::Houses},
    {"Progressions", &Preferences::Progressions},
    {"PointOnCusp", &Preferences::PointOnCusp},
    {"WhichCusp", &Preferences::WhichCusp},
    {"Zodiac", &Preferences::Zodiac},
    {"UserAyan", nullptr, &Preferences::UserAyan},
    {"DynInterval", nullptr, &Preferences::DynInterval},
    {"DynStepDays", &Preferences::DynStepDays},
    {"WordProc", nullptr, nullptr, &Preferences::WordProc},
    {"UseOtherWP", &Preferences::UseOtherWP},
    {"FilePath/FileName", nullptr, nullptr, nullptr, true},
    {"MinPeakWidth", &Preferences::MinPeakWidth},
    {"PeakSDFactor", nullptr, &Preferences::PeakSDFactor},
    {"ForcePeakSDFactor", nullptr, &Preferences::ForcePeakSDFactor},
    {"MaxPeaks", &Preferences::MaxPeaks},
    {"MaxGapBars", &Preferences::MaxGapBars},
    {"AddCommonBars", &Preferences::AddCommonBars},
    {"HCTTFont", nullptr, nullptr, &Preferences::HCTTFont},
    {"AutoAtlasLookup", &Preferences::AutoAtlasLookup},
    {"UseACS", &Preferences::UseACS},
    {"IllinoisWarning", &Preferences::IllinoisWarning},
    {"UranusGlyph", nullptr, nullptr, &Preferences::UranusGlyph},
    {"PlutoGlyph", nullptr, nullptr, &Preferences::PlutoGlyph},
    {"CapricornGlyph", nullptr, nullptr, &Preferences::CapricornGlyph},
    {"AutoGraphMinWeight", nullptr, &Preferences::AutoGraphMinWeight},
    {"AutoScoreMode", &Preferences::AutoScoreMode},
};

std::string RecentKey(const char* kind, int i) { return kind + std::to_string(i); }

}  // namespace

std::string GetProfileText(const Session& session, const std::string& section, const std::string& key,
                           const std::string& def, const std::string& file) {
  return TextFrom(ProfileFile(FileOrPreferences(session, file)), section, key, def);
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
  return PreferenceTextFrom(ProfileFile(session.paths.PreferenceFile), key, def, capacity);
}

long GetPreferenceInteger(const Session& session, const std::string& key, long def) {
  return PreferenceIntegerFrom(ProfileFile(session.paths.PreferenceFile), key, def);
}

double GetPreferenceFloat(const Session& session, const std::string& key, double def) {
  return PreferenceFloatFrom(ProfileFile(session.paths.PreferenceFile), key, def);
}

void LoadPreferences(Session& session) {
  Preferences& p = session.prefs;
  const Preferences defaults;
  const ProfileFile profile(session.paths.PreferenceFile);

  // The data folders. The system folder is where the program's data is
  // installed; a stale key written by a moved installation is repaired at
  // start-up, so what is read here is normally that folder already.
  p.SystemDataPath = EnsureBackslash(PreferenceTextFrom(profile, "SystemDataPath", session.paths.SystemDataPath, 255));
  if (!FolderExists(p.SystemDataPath)) p.SystemDataPath = session.paths.SystemDataPath;

  // The ephemeris: the key, else Debian's ephemeris folder.
  p.SwissEphPath = PreferenceTextFrom(profile, "SwissEphPath", "", 255);
  if (p.SwissEphPath.empty() || !FolderExists(p.SwissEphPath)) p.SwissEphPath = "/usr/share/libswe/ephe/";
  p.SwissEphPath = EnsureBackslash(p.SwissEphPath);

  p.UserDataPath = EnsureBackslash(PreferenceTextFrom(profile, "UserDataPath", session.paths.UserDataPath, 255));

  for (const PreferenceKey& k : kKeys) {
    if (k.integer)
      p.*k.integer = ClampToInt16(PreferenceIntegerFrom(profile, k.name, defaults.*k.integer));
    else if (k.number)
      p.*k.number = static_cast<float>(PreferenceFloatFrom(profile, k.name, defaults.*k.number));
    else if (k.text)
      p.*k.text = PreferenceTextFrom(profile, k.name, defaults.*k.text, 255);
    else if (k.recentFiles)
      for (int i = 1; i <= 4; ++i) {
        p.FilePath[i] = PreferenceTextFrom(profile, RecentKey("FilePath", i), "", 255);
        p.FileName[i] = PreferenceTextFrom(profile, RecentKey("FileName", i), "", 255);
      }
  }

  // No atlas library is installed with this program, so the embedded atlas
  // preference is forced on.
  p.PreferACSEmbedded = -1;
  p.Houses = static_cast<int16_t>(ClampInteger(p.Houses, 0, 14));
  p.Progressions = static_cast<int16_t>(ClampInteger(p.Progressions, 1, 3));
  // The cusp's clamp lands in the point of the user house system: after a
  // load the point holds the cusp's value, and the cusp stays as read.
  p.PointOnCusp = static_cast<int16_t>(ClampInteger(p.WhichCusp, 1, 12));
  p.Zodiac = static_cast<int16_t>(ClampInteger(p.Zodiac, 1, 9));
  if (!(p.AutoGraphMinWeight >= 0.0f)) p.AutoGraphMinWeight = defaults.AutoGraphMinWeight;
  p.AutoScoreMode = static_cast<int16_t>(ClampInteger(p.AutoScoreMode, 0, 1));
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
  // The Auto Rectify settings are written once they differ from their
  // defaults or stand in the file, so that a file that never had them keeps
  // the same keys as ever.
  const Preferences defaults;
  std::string present;
  if (p.AutoGraphMinWeight != defaults.AutoGraphMinWeight || profile.Get("Vintar", "AutoGraphMinWeight", present))
    put("AutoGraphMinWeight", NumberText(p.AutoGraphMinWeight));
  if (p.AutoScoreMode != defaults.AutoScoreMode || profile.Get("Vintar", "AutoScoreMode", present))
    flag("AutoScoreMode", p.AutoScoreMode);
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
                          "Restore Preferences?") != kYes)
    return;
  LoadPreferences(session);
  // The names that follow the node and the user house system.
  SetNodePoint(session.vocab, session.prefs.NodePoint());
  SetUserHouseName(session.vocab, session.prefs.PointOnCusp, session.prefs.WhichCusp);
}

std::vector<std::pair<std::string, std::string>> PreferenceListing(const Preferences& p) {
  std::vector<std::pair<std::string, std::string>> list = {
      {"SystemDataPath", p.SystemDataPath}, {"SwissEphPath", p.SwissEphPath}, {"UserDataPath", p.UserDataPath}};
  for (const PreferenceKey& k : kKeys) {
    if (k.integer)
      list.emplace_back(k.name, std::to_string(p.*k.integer));
    else if (k.number)
      list.emplace_back(k.name, NumberText(p.*k.number));
    else if (k.text)
      list.emplace_back(k.name, p.*k.text);
    else if (k.recentFiles) {
      for (int i = 1; i <= 4; ++i) list.emplace_back(RecentKey("FilePath", i), p.FilePath[i]);
      for (int i = 1; i <= 4; ++i) list.emplace_back(RecentKey("FileName", i), p.FileName[i]);
    }
  }
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
