#include "core/session.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "core/parse.h"
#include "core/text.h"

namespace vintar {
namespace {

std::string EnvFolder(const char* name) {
  const char* value = std::getenv(name);
  return value && *value ? EnsureBackslash(value) : std::string();
}

std::string HomeFolder(const std::string& below) {
  const char* home = std::getenv("HOME");
  return EnsureBackslash(std::string(home && *home ? home : ".") + "/" + below);
}

std::string DefaultConfigDir() {
  std::string dir = EnvFolder("VINTAR_CONFIG_DIR");
  if (!dir.empty()) return dir;
  dir = EnvFolder("XDG_CONFIG_HOME");
  if (!dir.empty()) return dir + "vintar/";
  return HomeFolder(".config/vintar");
}

std::string DefaultUserDataDir() {
  std::string dir = EnvFolder("XDG_DATA_HOME");
  if (!dir.empty()) return dir + "vintar/";
  return HomeFolder(".local/share/vintar");
}

// The installed data folder: beside the program in share/vintar, else the
// repository's data folder for a program run from its build tree.
std::string DefaultSystemDataDir() {
  std::error_code ec;
  auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    auto installed = exe.parent_path().parent_path() / "share" / "vintar";
    if (std::filesystem::is_directory(installed, ec)) return EnsureBackslash(installed.string());
  }
  return EnsureBackslash(VINTAR_SOURCE_DATA_DIR);
}

std::string NormalisedFolder(const std::string& folder) {
  std::error_code ec;
  auto p = std::filesystem::weakly_canonical(std::filesystem::path(folder), ec);
  return EnsureBackslash(ec ? folder : p.string());
}

}  // namespace

Clock Clock::Now() {
  std::time_t t = std::time(nullptr);
  std::tm local{};
  localtime_r(&t, &local);
  return Clock{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

int Session::ShowMessage(const std::string& text, int flags, const std::string& title) {
  if (prefs.Sound) sink_->Beep();
  return sink_->Show(text, flags, title);
}

void StartSession(Session& session, const StartupOptions& options) {
  SessionPaths& paths = session.paths;
  BuildVocabulary(session.vocab);
  session.project = ProjectState{};

  paths.ConfigDir = options.ConfigDir.empty() ? DefaultConfigDir() : EnsureBackslash(options.ConfigDir);
  paths.PreferenceFile = paths.ConfigDir + "VINTAR2.INI";
  paths.SystemDataPath =
      options.SystemDataPath.empty() ? DefaultSystemDataDir() : EnsureBackslash(options.SystemDataPath);
  paths.UserDataPath =
      options.UserDataPath.empty() ? DefaultUserDataDir() : EnsureBackslash(options.UserDataPath);

  // A moved installation repairs its key.
  std::string stored = GetPreferenceText(session, "SystemDataPath", "");
  if (stored.empty() || NormalisedFolder(stored) != NormalisedFolder(paths.SystemDataPath))
    PutProfileText(session, "Vintar", "SystemDataPath", paths.SystemDataPath);

  LoadPreferences(session);
  paths.SystemDataPath = session.prefs.SystemDataPath;
  paths.UserDataPath = session.prefs.UserDataPath;
  SetFolders(session);
  // Window placement is per user, so it lives beside the preferences rather
  // than in the shared data folder.
  paths.DesktopFile = paths.ConfigDir + "VTDesktop.ini";

  LoadTimeZones(session, paths.FolderTable[0] + paths.TimeZoneFile);
  paths.AlmutenFile = paths.FolderTable[1] + "vintar.alm";
  paths.PartsFile = paths.FolderTable[1] + "vintar.arp";

  SetNodePoint(session.vocab, session.prefs.NodePoint());
  SetUserHouseName(session.vocab, session.prefs.PointOnCusp, session.prefs.WhichCusp);
  BuildRayTables(session.vocab, false);
  BuildGlyphTables(session.vocab, session.prefs);

  std::string words = UCase(options.CommandLine);
  if (words.find("NORECTS") != std::string::npos) session.DrawRects = kFalse;
  if (words.find("DOFILL") != std::string::npos) session.FillRects = kTrue;

  ResetMainWindow(session);
}

void SetFolders(Session& session) {
  SessionPaths& paths = session.paths;
  paths.FolderTable[0] = paths.SystemDataPath;
  paths.FolderTable[1] = paths.UserDataPath;
  paths.FolderTable[2] = paths.UserDataPath;
  paths.FolderTable[3] = paths.SystemDataPath;
  paths.FolderTable[4] = paths.SystemDataPath;
  paths.FolderTable[5] = paths.SystemDataPath;
}

void ResetMainWindow(Session& session) {
  session.TitlePanel = "Current Project: None";
  session.WindowTitle = "Vintar";
  session.project.Open = false;
  ProjectHeader& h = session.project.Header;
  h.RecordCount = 0;
  h.CategoryCount = 0;
  h.CategoryNames.clear();
  h.CategoryTypes.clear();
  h.Name.clear();
  h.Date.clear();
  h.Time = "Unknown";
  h.Place.clear();
  h.Latitude.clear();
  h.Longitude.clear();
  h.ZoneMnemonic.clear();
  h.ZoneTime.clear();
  h.EarliestTime = "0:00 am";
  h.LatestTime = "11:59 pm";
}

void UpdateTitle(Session& session, const std::string& path) {
  std::string text = path.empty() ? std::string("New Project") : Trim(ShortenPath(path));
  text += " - Vintar";
  session.project.Open = true;
  const CurStatus& status = session.project.Status;
  if (status.DataChanged || status.NatChanged) text += " [Modified]";
  session.WindowTitle = text;
}

std::string EnsureBackslash(const std::string& folder) {
  if (folder.empty() || folder.back() == '/') return folder;
  return folder + '/';
}

std::string PathFileName(const std::string& path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string PathFolder(const std::string& path) {
  size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string PathExtension(const std::string& path) {
  std::string name = PathFileName(path);
  size_t dot = name.find_last_of('.');
  return dot == std::string::npos ? std::string() : name.substr(dot);
}

std::string PathStem(const std::string& path) {
  std::string name = PathFileName(path);
  size_t dot = name.find_last_of('.');
  return dot == std::string::npos ? name : name.substr(0, dot);
}

std::string ReplaceExtension(const std::string& path, const std::string& ext) {
  return PathFolder(path) + PathStem(path) + ext;
}

bool FileExists(const std::string& path) {
  if (Trim(path).empty()) return false;
  std::error_code ec;
  return std::filesystem::is_regular_file(path, ec);
}

bool SamePath(const std::string& a, const std::string& b) {
  std::error_code ec;
  return a == b || std::filesystem::equivalent(a, b, ec);
}

bool FolderExists(const std::string& path) {
  if (Trim(path).empty()) return false;
  std::error_code ec;
  return std::filesystem::is_directory(path, ec);
}

}  // namespace vintar
