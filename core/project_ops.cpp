#include "core/project_ops.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

#include "core/file_io.h"
#include "core/messages.h"
#include "core/parse.h"
#include "core/preferences.h"
#include "core/project_file.h"
#include "core/session.h"
#include "core/text.h"

extern char** environ;

namespace vintar {
namespace {

constexpr const char* kReadErrorTitle = "File Read Error";
constexpr int kMaxFileNameChars = 80;

void ShowWriteFailure(Session& session, const std::string& errorText) {
  session.ShowMessage(std::string("Error whilst writing file:") + kLineEnd + kLineEnd + errorText, kIconExclamation,
                      "Vintar");
}

void ShowMissingFile(Session& session, const std::string& path) {
  session.ShowMessage("Error whilst attempting to read from file: " + path + kLineEnd + kLineEnd +
                          FileErrorText(ENOENT),
                      kIconExclamation, kReadErrorTitle);
}

bool AnyChange(const Session& session) {
  const CurStatus& st = session.project.Status;
  return st.DataChanged || st.NatChanged;
}

int32_t HeldRecords(const ProjectState& p) {
  return std::clamp<int32_t>(p.Header.RecordCount, 0, static_cast<int32_t>(p.Events.size()) - 1);
}

// The no-project state after a failed open: nothing left that a save could
// write over the last project's files.
void EnterNoProjectState(Session& session) {
  ProjectState& p = session.project;
  ResetMainWindow(session);
  p.Header.Title.clear();
  p.Header.FormatVersion = 2;
  p.Events.assign(101, EventRecord{});
  p.Categories = CategoryIndex{};
  p.ProjectPath.clear();
  p.ProjectFolder.clear();
  p.ProjectStem.clear();
  p.Status.DataChanged = kFalse;
  p.Status.NatChanged = kFalse;
  p.Status.NatalValid = kFalse;
  p.Status.NatPath.clear();
  session.cache.Clear();
}

std::string StemOf(const std::string& datPath) {
  std::string name = PathFileName(RTrim(datPath));
  return name.size() >= 4 ? name.substr(0, name.size() - 4) : std::string();
}

struct CategoryDef {
  std::string name;  // trimmed
  int type = 0;
};

// Category definitions 1..count of a header (index 0 unused), read once.
std::vector<CategoryDef> Definitions(const ProjectHeader& h, int count) {
  std::vector<CategoryDef> defs(static_cast<size_t>(std::max(count, 0)) + 1);
  std::vector<std::string> names = SplitOnText(h.CategoryNames, "|", count + 1);
  std::vector<std::string> types = SplitOnText(h.CategoryTypes, "|", count + 1);
  for (int i = 1; i <= count; ++i) {
    if (static_cast<size_t>(i - 1) < names.size()) defs[i].name = Trim(names[i - 1]);
    if (static_cast<size_t>(i - 1) < types.size()) defs[i].type = ToIntSaturated(Val(types[i - 1]));
  }
  return defs;
}

// Reads another project beside the open one and adds its records.
bool MergeInto(Session& session, const std::string& path, Progress* progress) {
  ProjectState& p = session.project;
  if (!FileExists(path)) {
    ShowMissingFile(session, path);
    return false;
  }
  RecoverInterruptedSave(path);
  ProjectHeader side;
  ResetProjectHeader(side);
  bool failed = false;
  ReadProjectHeader(session, NatPathFor(path), side, progress, failed);
  if (failed) return false;

  // The other project is read whole before anything of the open one changes,
  // so a damaged file or a cancel leaves it as it was.
  ProjectHeader read = side;
  std::vector<EventRecord> records;
  CategoryIndex scratchIndex;
  const int16_t merge = session.MergeActive;
  const int16_t natalValid = p.Status.NatalValid;
  session.MergeActive = 0;
  bool ok = ReadDataFile(session, path, read, records, scratchIndex, progress, {}, true);
  session.MergeActive = merge;
  p.Status.NatalValid = natalValid;
  if (!ok) return false;
  const int32_t added = std::clamp<int32_t>(read.RecordCount, 0, static_cast<int32_t>(records.size()) - 1);
  const int32_t held = HeldRecords(p);
  if (static_cast<int64_t>(held) + added > kMaxProjectRecords) {
    session.ShowMessage("The merged project would hold " + std::to_string(static_cast<int64_t>(held) + added) +
                            " records, but a project holds at most " + std::to_string(kMaxProjectRecords) + ".",
                        kIconExclamation, "Vintar");
    return false;
  }

  // Categories found in the records beyond those the .nat defines.
  int mergedCount = side.CategoryCount;
  if (added > 0) mergedCount = std::max(mergedCount, CategoryElementCount(records[1].Categories));
  if (static_cast<int64_t>(p.Header.CategoryCount) + mergedCount > kMaxCategories) {
    session.ShowMessage("The merged project would have more than " + std::to_string(kMaxCategories) +
                            " categories of data.",
                        kIconExclamation, "Vintar");
    return false;
  }
  bool cancelled = false;
  std::vector<int> map = BuildMergeCategoryMap(session, p.Header, side, mergedCount, cancelled);
  if (cancelled) return false;

  ProjectHeader header = p.Header;
  const int currentCount = header.CategoryCount;
  std::vector<CategoryDef> sideDefs = Definitions(side, side.CategoryCount);
  for (int i = 1; i <= mergedCount; ++i) {
    if (map[i] <= currentCount) continue;
    if (i <= side.CategoryCount)
      SetCategoryDefinition(header, map[i], sideDefs[i].name, sideDefs[i].type);
    else
      SetCategoryDefinition(header, map[i], "Untitled" + std::to_string(map[i]), 2);
  }

  bool resizeFailed = false;
  ResizeEvents(p.Events, held + added, resizeFailed);
  if (resizeFailed) {
    session.ShowMessage("Not enough memory to merge the project.", kIconExclamation, "Vintar");
    return false;
  }
  for (int32_t k = 1; k <= added; ++k) {
    EventRecord& r = records[k];
    MapCategoryElements(r.Categories, map);
    p.Events[held + k] = std::move(r);
  }
  header.RecordCount = held + added;
  header.FormatVersion = read.FormatVersion;
  p.Header = std::move(header);
  RebuildCategoryIndex(session, p.Header, p.Events, p.Categories, progress);
  p.Status.NatChanged = kTrue;
  p.Status.DataChanged = kTrue;
  p.Status.NatalValid = NatalCheck(session, p.Header) ? kTrue : kFalse;
  UpdateTitle(session, p.ProjectPath);
  return true;
}

bool ParseIsoDate(const std::string& text, int& y, int& m, int& d) {
  char tail = 0;
  if (std::sscanf(Trim(text).c_str(), "%d-%d-%d%c", &y, &m, &d, &tail) != 3) return false;
  return m >= 1 && m <= 12 && d >= 1 && d <= 31;
}

// Text for a quoted field of the version 1 form, which has no escapes.
std::string Unquoted(std::string text) {
  std::replace(text.begin(), text.end(), '"', '\'');
  return "\"" + text + "\"";
}

// The next comma-separated field of a .nat: quoted up to the next quote,
// otherwise up to a comma or line end, trimmed.
std::string NextField(const std::string& bytes, size_t& pos) {
  while (pos < bytes.size() && (bytes[pos] == ' ' || bytes[pos] == '\t')) ++pos;
  std::string field;
  if (pos < bytes.size() && bytes[pos] == '"') {
    size_t close = bytes.find('"', pos + 1);
    if (close == std::string::npos) close = bytes.size();
    field = bytes.substr(pos + 1, close - pos - 1);
    pos = close + 1;
    while (pos < bytes.size() && bytes[pos] != ',' && bytes[pos] != '\r' && bytes[pos] != '\n') ++pos;
  } else {
    size_t end = pos;
    while (end < bytes.size() && bytes[end] != ',' && bytes[end] != '\r' && bytes[end] != '\n') ++end;
    field = Trim(bytes.substr(pos, end - pos));
    pos = end;
  }
  if (pos < bytes.size()) {
    if (bytes[pos] == '\r' && pos + 1 < bytes.size() && bytes[pos + 1] == '\n') ++pos;
    ++pos;
  }
  return field;
}

}  // namespace

// ---------------------------------------------------------------------------

void ConfirmSaveChanges(Session& session, bool& cancelled) {
  cancelled = false;
  int answer = session.ShowMessage(std::string("The current project has been changed.") + kLineEnd +
                                       "Do you wish to save the changes?",
                                   kYesNoCancel + kIconQuestion, "Save Changes?");
  if (answer == kCancel) {
    cancelled = true;
  } else if (answer == kYes) {
    bool failed = false;
    SaveProject(session, session.project.ProjectPath, failed);
    if (failed) cancelled = true;
  }
}

bool OpenProject(Session& session, const std::string& path, bool& failed, Progress* progress,
                 const CacheFileNamer& namer) {
  failed = false;
  ProjectState& p = session.project;
  try {
    session.cache.Clear();
    if (session.MergeActive) {
      failed = !MergeInto(session, path, progress);
    } else {
      failed = !OpenProjectFiles(session, path, progress);
      if (failed) EnterNoProjectState(session);
    }
  } catch (...) {
    failed = true;
    if (!session.MergeActive) EnterNoProjectState(session);
  }
  if (!failed && namer && !Trim(p.ProjectPath).empty()) CheckPositionCacheDates(session, p.ProjectPath, namer);
  return !failed;
}

bool ProjectFileExists(Session& session, const std::string& datPath) {
  if (FileExists(datPath)) return true;
  ShowMissingFile(session, datPath);
  return false;
}

bool MergeProject(Session& session, const std::string& otherPath, Progress* progress, const CacheFileNamer& namer) {
  const int16_t before = session.MergeActive;
  session.MergeActive = kTrue;
  bool failed = false;
  OpenProject(session, otherPath, failed, progress, namer);
  session.MergeActive = before;
  if (failed) return false;
  session.ShowMessage(std::string("The merge was successful.") + kLineEnd + "The current project now contains " +
                          std::to_string(session.project.Header.RecordCount) + " events." + kLineEnd +
                          "If you wish to eliminate any duplicated events then use the \"Sort\" option." +
                          kLineEnd +
                          "If you wish to retain the changes for future sessions, then remember to SAVE this "
                          "project before exiting.",
                      kIconInformation, "Merge Finished");
  return true;
}

std::vector<int> BuildMergeCategoryMap(Session& session, const ProjectHeader& current, const ProjectHeader& merged,
                                       int mergedCount, bool& cancelled) {
  cancelled = false;
  mergedCount = std::max(mergedCount, 0);
  const int count = std::max<int>(current.CategoryCount, 0);
  std::vector<int> map(static_cast<size_t>(mergedCount) + 1, 0);
  std::vector<CategoryDef> mine = Definitions(current, count);
  std::vector<CategoryDef> theirs = Definitions(merged, std::min<int>(merged.CategoryCount, mergedCount));
  std::map<std::pair<std::string, int>, int> byName;
  for (int j = count; j >= 1; --j)
    if (!mine[j].name.empty()) byName[{UCase(mine[j].name), mine[j].type}] = j;

  std::vector<bool> taken(static_cast<size_t>(count) + 1, false);
  std::vector<std::string> matched;
  int next = count;
  for (int i = 1; i <= mergedCount; ++i) {
    if (static_cast<size_t>(i) < theirs.size() && !theirs[i].name.empty()) {
      auto it = byName.find({UCase(theirs[i].name), theirs[i].type});
      if (it != byName.end() && !taken[it->second]) {
        taken[it->second] = true;
        map[i] = it->second;
        matched.push_back(theirs[i].name);
        continue;
      }
    }
    map[i] = ++next;
  }
  if (matched.empty()) return map;

  std::string text = std::string("The merged project has one or more categories of data with the same name and "
                                 "type as in the original project.") +
                     kLineEnd + "These categories are: " + kLineEnd;
  for (const std::string& name : matched) text += name + kLineEnd;
  text += std::string("Do you wish to merge the data in these categories?") + kLineEnd +
          "Choose YES to merge the data. Choose NO to keep them separate.";
  int answer = session.ShowMessage(text, kYesNoCancel + kIconQuestion, "Merge Categories?");
  if (answer == kCancel) {
    cancelled = true;
  } else if (answer == kNo) {
    for (int i = 1; i <= mergedCount; ++i) map[i] = count + i;
  }
  return map;
}

int CheckPositionCacheDates(Session& session, const std::string& datPath, const CacheFileNamer& namer) {
  int removed = 0;
  try {
    std::string stored = GetPreferenceText(session, kCacheDateKey, "");
    if (Trim(stored).empty()) {
      const Clock& c = session.clock;
      stored = ZeroPad(c.Year, 4) + "-" + ZeroPad(c.Month, 2) + "-" + ZeroPad(c.Day, 2);
      PutProfileText(session, "Vintar", kCacheDateKey, stored);
    }
    int y = 0, m = 0, d = 0;
    if (!ParseIsoDate(stored, y, m, d) || !namer) return 0;
    const long limit = static_cast<long>(y) * 10000 + m * 100 + d;
    const std::string dat = RTrim(datPath);
    for (int coordinate = 1; coordinate <= 2; ++coordinate) {
      for (int type = 0; type <= 3; ++type) {
        const std::string file = namer(dat, coordinate, type);
        // The cache never stands in for a project file.
        if (file.empty() || file == dat || file == NatPathFor(dat)) continue;
        struct stat st {};
        if (::stat(file.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) continue;
        std::tm local{};
        const std::time_t when = st.st_mtime;
        if (!::localtime_r(&when, &local)) continue;
        const long fileDate =
            static_cast<long>(local.tm_year + 1900) * 10000 + (local.tm_mon + 1) * 100 + local.tm_mday;
        if (fileDate < limit && std::remove(file.c_str()) == 0) ++removed;
      }
    }
  } catch (...) {
    // Errors of this check are ignored: a stale cache is rebuilt record by record anyway.
  }
  return removed;
}

void SaveProject(Session& session, const std::string& path, bool& failed) {
  ProjectState& p = session.project;
  WriteProject(session, path, p.Header, p.Events, failed, true);
  if (!failed && !Trim(p.Header.Title).empty()) session.TitlePanel = "Current Project: " + p.Header.Title;
}

bool SaveCommand(Session& session) {
  ProjectState& p = session.project;
  p.Status.DataChanged = kTrue;
  p.Status.NatChanged = kTrue;
  bool failed = false;
  SaveProject(session, Trim(p.ProjectPath).empty() ? std::string() : p.ProjectPath, failed);
  UpdateTitle(session, p.ProjectPath);
  return !failed;
}

bool SaveAsCommand(Session& session) {
  bool failed = false;
  SaveProject(session, std::string(), failed);
  UpdateTitle(session, session.project.ProjectPath);
  return !failed;
}

bool NewProject(Session& session, const std::optional<std::string>& title) {
  if (AnyChange(session)) {
    bool cancelled = false;
    ConfirmSaveChanges(session, cancelled);
    if (cancelled) return false;
  }
  EnterNoProjectState(session);
  ProjectState& p = session.project;
  ResetProjectHeader(p.Header);
  p.Status.NatalEdited = kFalse;
  p.Status.ReCalculate = 0;
  if (!title) {
    session.DialogCancelled = 0;
    return false;
  }
  if (Trim(*title).empty()) {
    session.ShowMessage("Name must not be blank. Please enter a name for this person or project.",
                        kIconExclamation, "Error in Name");
    return false;
  }
  p.Header.Title = *title;
  p.Status.NatChanged = kTrue;
  UpdateTitle(session, p.ProjectPath);
  session.TitlePanel = "Current Project: " + p.Header.Title;
  return true;
}

bool EditProjectTitle(Session& session, const std::string& title, bool& failed, bool save) {
  failed = false;
  if (Trim(title).empty()) {
    session.ShowMessage("Name must not be blank. Please enter a name for this person or project.",
                        kIconExclamation, "Error in Name");
    return false;
  }
  ProjectState& p = session.project;
  if (title == p.Header.Title) return true;
  p.Header.Title = title;
  p.Status.NatChanged = kTrue;
  if (save) SaveProject(session, p.ProjectPath, failed);
  session.TitlePanel = "Current Project: " + p.Header.Title;
  UpdateTitle(session, p.ProjectPath);
  return true;
}

std::string RectifyCaption(const Session& session) { return "Rectify: " + session.project.Header.Title; }

// Sort ----------------------------------------------------------------------

bool SameEvent(const EventRecord& a, const EventRecord& b) {
  return EqualsIgnoreCase(a.Description, b.Description) && a.Year == b.Year && a.Month == b.Month &&
         a.Day == b.Day && a.Hour == b.Hour && a.Minute == b.Minute && a.ZoneHours == b.ZoneHours &&
         a.Longitude == b.Longitude && a.Latitude == b.Latitude && a.ZoneAbbr == b.ZoneAbbr &&
         a.DayRange == b.DayRange && a.DetailLevel == b.DetailLevel && EqualsIgnoreCase(a.Placename, b.Placename);
}

SortResult SortProject(Session& session, const SortRequest& request) {
  SortResult result;
  if (ProjectTooLarge(session)) return result;
  if (request.key == SortKey::Sun && !request.sunLongitude) return result;
  ProjectState& p = session.project;
  try {
    const int32_t n = HeldRecords(p);
    std::vector<int32_t> index(static_cast<size_t>(n));
    std::iota(index.begin(), index.end(), 1);
    auto order = [&](auto key) {
      // Keys are taken once; a NaN sorts first so that the order stays strict.
      using Key = decltype(key(p.Events[0]));
      std::vector<Key> keys(static_cast<size_t>(n) + 1);
      for (int32_t i = 1; i <= n; ++i) keys[i] = key(p.Events[i]);
      auto less = [&](int32_t a, int32_t b) {
        if constexpr (std::is_same_v<Key, std::string>)
          return CompareIgnoreCase(keys[a], keys[b]) < 0;
        else
          return keys[a] < keys[b];
      };
      if (request.descending)
        std::stable_sort(index.begin(), index.end(), [&](int32_t a, int32_t b) { return less(b, a); });
      else
        std::stable_sort(index.begin(), index.end(), less);
    };
    switch (request.key) {
      case SortKey::Date:
        order([](const EventRecord& r) {
          return std::isnan(r.JulianDay) ? -std::numeric_limits<double>::infinity() : r.JulianDay;
        });
        break;
      case SortKey::Description:
        order([](const EventRecord& r) { return r.Description; });
        break;
      case SortKey::Sun:
        order([&](const EventRecord& r) {
          const double lon = request.sunLongitude(r);
          // Whole minutes of arc in 16 bits, truncated.
          return static_cast<int16_t>(std::clamp(ToIntSaturated(std::trunc(lon * 60.0)), -32768, 32767));
        });
        break;
    }
    for (int32_t k = 0; k < n; ++k)
      if (index[k] != k + 1) result.moved = true;
    if (result.moved) {
      std::vector<EventRecord> sorted(static_cast<size_t>(n) + 1);
      for (int32_t k = 0; k < n; ++k) sorted[k + 1] = std::move(p.Events[index[k]]);
      for (int32_t k = 1; k <= n; ++k) p.Events[k] = std::move(sorted[k]);
      p.Status.DataChanged = kTrue;
    }
    if (request.fromFileMenu) {
      p.Status.DataChanged = kTrue;
      int32_t kept = n > 0 ? 1 : 0;
      for (int32_t k = 2; k <= n; ++k) {
        if (SameEvent(p.Events[kept], p.Events[k])) {
          ++result.duplicatesRemoved;
        } else if (++kept != k) {
          p.Events[kept] = std::move(p.Events[k]);
        }
      }
      for (int32_t k = kept + 1; k <= n; ++k) p.Events[k] = EventRecord{};
      p.Header.RecordCount = kept;
    }
    RebuildCategoryIndex(session, p.Header, p.Events, p.Categories, nullptr);
    UpdateTitle(session, p.ProjectPath);
  } catch (...) {
    session.ShowMessage("Not enough memory to sort the project.", kIconExclamation, "Vintar");
    return result;
  }
  result.done = true;
  session.ShowMessage("The sort was successful.", kIconInformation, "Sort Finished");
  return result;
}

// Split ---------------------------------------------------------------------

std::string FormatVersion1Record(const Session& session, const EventRecord& r) {
  std::string out = Unquoted(r.Description);
  out += "," + Unquoted(FormatDate(session, r.Day, r.Month, r.Year));
  out += "," + std::to_string(r.DayRange) + "," + std::to_string(r.DetailLevel);
  out += "," + Unquoted(r.ZoneAbbr);
  out += "," + Unquoted(FormatZone(r.ZoneHours));
  out += "," + Unquoted(FormatTime(r.Hour, r.Minute, r.Second, session.prefs.AMPM != 0));
  out += "," + Unquoted(r.Placename);
  out += "," + Unquoted(FormatLongitude(r.Longitude));
  out += "," + Unquoted(FormatLatitude(r.Latitude));
  out += kLineEnd;
  return out;
}

std::string SplitRangeText(const Session& session) {
  return "Available Range: 1 to " + std::to_string(HeldRecords(session.project));
}

SplitResult SplitProject(Session& session, int32_t first, int32_t last, const std::string& target, bool save) {
  SplitResult result;
  ProjectState& p = session.project;
  const int32_t n = HeldRecords(p);
  if (n < 2) {
    session.ShowMessage("There are not enough events in the current project to split.", kIconExclamation,
                        "Cannot Split Events");
    return result;
  }
  first = std::clamp(first, 1, n);
  last = std::clamp(last, 1, n);
  if (first > last) std::swap(first, last);
  result.first = first;
  result.last = last;
  try {
    const std::string dest = RTrim(target);
    const bool same = !Trim(p.ProjectPath).empty() && SamePath(dest, RTrim(p.ProjectPath));
    if (dest.empty() || same) {
      session.ShowMessage("The split events cannot be written over the current project. Please choose another file.",
                          kIconExclamation, "File Error");
      return result;
    }
    if (save) {
      std::string bytes;
      for (int32_t k = first; k <= last; ++k) bytes += FormatVersion1Record(session, p.Events[k]);
      std::string error;
      if (!WriteFileAtomically(dest, bytes, error)) {
        ShowWriteFailure(session, error);
        return result;
      }
    }
    // Only now, with the target on disk, do the records leave the project.
    const int32_t moved = last - first + 1;
    for (int32_t k = last + 1; k <= n; ++k) p.Events[k - moved] = std::move(p.Events[k]);
    for (int32_t k = n - moved + 1; k <= n; ++k) p.Events[k] = EventRecord{};
    p.Header.RecordCount = n - moved;
    result.moved = moved;
    p.Status.DataChanged = kTrue;
    p.Status.NatChanged = kTrue;
    session.cache.Clear();
    RebuildCategoryIndex(session, p.Header, p.Events, p.Categories, nullptr);
  } catch (...) {
    session.ShowMessage("Not enough memory to split the project.", kIconExclamation, "Vintar");
    return result;
  }
  result.done = true;
  if (save) {
    bool failed = false;
    SaveProject(session, p.ProjectPath, failed);
    if (failed) return result;
  }
  UpdateTitle(session, p.ProjectPath);
  session.ShowMessage(std::string("The split was successful.") + kLineEnd + "The current project now contains " +
                          std::to_string(p.Header.RecordCount) + " events.",
                      kIconInformation, "Merge Finished");
  return result;
}

// The save dialogue -----------------------------------------------------------

SaveNameCheck CheckSaveFileName(Session& session, const std::string& folder, const std::string& name,
                                std::string& path) {
  const std::string trimmed = Trim(name);
  path.clear();
  if (trimmed.empty() || trimmed.size() > kMaxFileNameChars || trimmed.find('/') != std::string::npos ||
      trimmed == "." || trimmed == "..") {
    session.ShowMessage("File name is not valid. Please enter a name with up to 80 characters with no extension.",
                        kIconExclamation, "File Error");
    return SaveNameCheck::Invalid;
  }
  path = EnsureBackslash(folder) + trimmed + ".dat";
  if (FileExists(path) || FolderExists(path)) {
    // No is the default: an unanswered question never overwrites a project.
    int answer = session.ShowMessage("A file with this name already exists. Do you wish to overwrite it?",
                                     kYesNoCancel + kIconQuestion + kDefaultButton2, "File Exists");
    if (answer == kYes) return SaveNameCheck::Accepted;
    return answer == kNo ? SaveNameCheck::Declined : SaveNameCheck::StayOpen;
  }
  return SaveNameCheck::Accepted;
}

void AcceptSaveFileName(Session& session, const std::string& path) {
  ProjectState& p = session.project;
  p.ProjectPath = path;
  p.ProjectFolder = PathFolder(path);
  p.ProjectStem = StemOf(path);
}

// The open dialogue -----------------------------------------------------------

std::string OpenDialogCaption(const Session& session) {
  return session.MergeActive ? "Merge Project with Current Project" : "Open Project";
}

std::string OpenDialogButton(const Session& session) { return session.MergeActive ? "&Merge" : "&Open"; }

std::string ProjectTitlePreview(const std::string& datPath) {
  try {
    std::string bytes;
    if (ReadFilePrefix(NatPathFor(datPath), bytes, 64 * 1024) != 0) return "No Title Stored";
    size_t pos = 0;
    std::string field = NextField(bytes, pos);
    if (StartsWithIgnoreCase(field, "VINTAR")) field = NextField(bytes, pos);
    return field;
  } catch (...) {
    return "No Title Stored";
  }
}

std::vector<std::string> ProjectFamilyFiles(const std::string& datPath) {
  std::vector<std::string> files;
  try {
    const std::string stem = StemOf(datPath);
    if (stem.empty() || !EndsWithIgnoreCase(RTrim(datPath), ".dat")) return files;
    std::string folder = PathFolder(RTrim(datPath));
    std::error_code ec;
    for (std::filesystem::directory_iterator it(folder.empty() ? "." : folder, ec), end; !ec && it != end;
         it.increment(ec)) {
      const std::string name = it->path().filename().string();
      if (name.size() <= stem.size() || name.compare(0, stem.size() + 1, stem + ".") != 0) continue;
      std::error_code typeError;
      if (it->is_directory(typeError)) continue;
      files.push_back(folder + name);
    }
    std::sort(files.begin(), files.end());
  } catch (...) {
    files.clear();
  }
  return files;
}

int DeleteProjectFiles(Session& session, const std::string& datPath) {
  const int answer = session.ShowMessage(
      std::string("Are you sure that you wish to permanently delete the following project and all its "
                  "associated files?") +
          kLineEnd + kLineEnd + PathFileName(RTrim(datPath)),
      kOkCancel, "Confirm Deletion");
  if (answer != kOk) return -1;
  int deleted = 0;
  for (const std::string& file : ProjectFamilyFiles(datPath)) {
    std::error_code ec;
    if (std::filesystem::remove(file, ec)) ++deleted;
  }
  return deleted;
}

// Recent files ----------------------------------------------------------------

void UpdateRecentFiles(Session& session, RecentFilesMenu& menu) {
  Preferences& prefs = session.prefs;
  const ProjectState& p = session.project;
  if (Trim(p.ProjectStem).empty()) return;
  const std::string current = UCase(p.ProjectFolder + p.ProjectStem);
  int hit = 0;
  for (int i = 1; i <= 4 && !hit; ++i)
    if (!prefs.FileName[i].empty() && UCase(prefs.FilePath[i] + prefs.FileName[i]) == current) hit = i;
  if (!hit) {
    for (int i = 4; i >= 2; --i) {
      prefs.FilePath[i] = prefs.FilePath[i - 1];
      prefs.FileName[i] = prefs.FileName[i - 1];
    }
    prefs.FilePath[1] = p.ProjectFolder;
    prefs.FileName[1] = p.ProjectStem;
    hit = 1;
  }
  menu.Count = 0;
  for (int i = 1; i <= 4; ++i) {
    menu.Checked[i] = i == hit;
    if (prefs.FileName[i].empty()) {
      menu.Captions[i].clear();
    } else {
      ++menu.Count;
      menu.Captions[i] = "&" + std::to_string(i) + " " + prefs.FilePath[i] + prefs.FileName[i] + ".dat";
    }
  }
}

bool OpenRecentFile(Session& session, RecentFilesMenu& menu, int position, Progress* progress,
                    const CacheFileNamer& namer) {
  if (position < 1 || position > 4 || session.prefs.FileName[position].empty()) return false;
  if (AnyChange(session)) {
    bool cancelled = false;
    ConfirmSaveChanges(session, cancelled);
    if (cancelled) return false;
  }
  const std::string path = session.prefs.FilePath[position] + session.prefs.FileName[position] + ".dat";
  session.MergeActive = 0;
  bool failed = false;
  if (!FileExists(path)) {
    // Opening a missing .dat would give an empty project under its name.
    ShowMissingFile(session, path);
    EnterNoProjectState(session);
    return false;
  }
  if (!OpenProject(session, path, failed, progress, namer)) return false;
  for (int i = 1; i <= 4; ++i) menu.Checked[i] = i == position;
  return true;
}

// The notepad companion -------------------------------------------------------

NotepadHooks SystemNotepadHooks() {
  NotepadHooks hooks;
  hooks.launch = [](const std::vector<std::string>& argv) {
    if (argv.empty()) return false;
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    pid_t pid = 0;
    if (::posix_spawnp(&pid, args[0], nullptr, nullptr, args.data(), environ) != 0) return false;
    int status = 0;
    ::waitpid(pid, &status, WNOHANG);
    return true;
  };
  hooks.environment = [](const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return std::string(value ? value : "");
  };
  return hooks;
}

std::string NotepadPath(const Session& session) {
  return EnsureBackslash(session.project.ProjectFolder) + session.project.ProjectStem + ".txt";
}

bool OpenNotepad(Session& session, const NotepadHooks& hooks) {
  if (Trim(session.project.ProjectStem).empty()) return false;
  const std::string path = NotepadPath(session);
  if (!FileExists(path)) {
    std::string error;
    if (!WriteFileAtomically(path, "Vintar Project: " + session.project.Header.Title + kLineEnd, error)) {
      ShowWriteFailure(session, error);
      return false;
    }
  }
  std::string editor;
  if (hooks.environment) {
    editor = Trim(hooks.environment("VISUAL"));
    if (editor.empty()) editor = Trim(hooks.environment("EDITOR"));
  }
  if (editor.empty()) editor = "xdg-open";
  std::vector<std::string> argv = SplitOnAny(editor, " \t", 64);
  argv.erase(std::remove(argv.begin(), argv.end(), std::string()), argv.end());
  argv.push_back(path);
  const std::string command = editor + " " + path;
  bool started = false;
  try {
    started = hooks.launch && hooks.launch(argv);
  } catch (...) {
    started = false;
  }
  if (!started)
    session.ShowMessage(std::string("Error occured when trying to run the command:") + kLineEnd + command,
                        kIconExclamation, "Unable to Start Program");
  return started;
}

bool OfferNotepad(Session& session, const NotepadHooks& hooks) {
  if (!session.prefs.Prompt) return false;
  const int answer = session.ShowMessage(
      std::string("The project has been opened.") + kLineEnd +
          "To see the project's data click on the File menu, then on the      'Edit Data' menu option." +
          kLineEnd + kLineEnd + "Do you wish to now open the Notepad for this project?",
      kYesNo + kIconQuestion, "Open Notepad?");
  if (answer != kYes) return false;
  return OpenNotepad(session, hooks);
}

}  // namespace vintar
