// The session: everything that lives for the length of one run of the
// program, split by concern. Nothing here is global; two sessions can live
// side by side. The clock is the session's own so that tests fix "today".
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "core/chart_slots.h"
#include "core/messages.h"
#include "core/preferences.h"
#include "core/records.h"
#include "core/vocabulary.h"
#include "core/zone_table.h"

namespace vintar {

struct Clock {
  int Year = 2000, Month = 1, Day = 1, Hour = 0, Minute = 0, Second = 0;
  static Clock Now();  // local time of the machine
};

// Folders and files found at start-up. Folder strings end with '/'.
struct SessionPaths {
  std::string SystemDataPath;
  std::string UserDataPath;
  std::array<std::string, 6> FolderTable;
  std::string ConfigDir;         // where the preference file lives
  std::string PreferenceFile;    // full path of VINTAR2.INI
  std::string DesktopFile;       // full path of VTDesktop.ini
  std::string TimeZoneFile = "timezone.fil";
  std::string PlaceFile = "places.fil";
  std::string PlaceTempFile = "places.tmp";
  std::string AlmutenFile;
  std::string PartsFile;
  std::string SiblingPath;
};

class Session {
 public:
  explicit Session(MessageSink& sink) : sink_(&sink) {}
  // A copy of `other` whose messages go to `sink`: the session of a worker
  // that computes beside the main one.
  Session(const Session& other, MessageSink& sink) : Session(other) { sink_ = &sink; }

  // The only message box: beeps when the Sound preference is on, shows the
  // box and returns the button pressed.
  int ShowMessage(const std::string& text, int flags = kOkOnly, const std::string& title = "Vintar");
  MessageSink& Sink() { return *sink_; }

  Clock clock;
  SessionPaths paths;
  Preferences prefs;
  Vocabulary vocab;
  ZoneTable zones;
  ProjectState project;
  ChartTables charts;
  CacheState cache;
  std::string EphemerisPath;  // as handed to the ephemeris, for its messages

  int16_t CenturyBase = 1900;  // two-digit years; not stored between sessions
  int16_t MergeActive = 0;
  int16_t DialogCancelled = 0;
  int16_t DrawRects = kTrue;
  int16_t FillRects = kFalse;
  std::string WindowTitle = "Vintar";
  std::string TitlePanel = "Current Project: None";

  // The save dialogue: asked for a path when a project is saved without one.
  // Returns false when the user cancels. Unset, a save without a path is a cancel.
  std::function<bool(std::string& path)> AskSavePath;

 private:
  MessageSink* sink_;
};

// Where the program finds its files. Empty fields take their defaults:
// the configuration folder from VINTAR_CONFIG_DIR, then $XDG_CONFIG_HOME/vintar,
// then ~/.config/vintar; the system data folder is the installed data folder
// (the repository's data/ in a build tree); the user data folder comes from
// the preferences, else $XDG_DATA_HOME/vintar, else ~/.local/share/vintar.
struct StartupOptions {
  std::string ConfigDir;
  std::string SystemDataPath;
  std::string UserDataPath;
  std::string CommandLine;  // searched for NORECTS and DOFILL
};

// Start-up: vocabulary, preferences, folders, the zone table, glyph tables.
// Leaves no project open.
void StartSession(Session& session, const StartupOptions& options);

// Fills FolderTable from the two data paths: 0 system, 1 and 2 user,
// 3 to 5 system.
void SetFolders(Session& session);

// Clears the open project to the no-project state: counts, categories and
// the natal strings of the header.
void ResetMainWindow(Session& session);

// The window title: "New Project" or the shortened path, " - Vintar", and
// " [Modified]" while the project has unsaved changes.
void UpdateTitle(Session& session, const std::string& path);

// Folder helpers. A folder always ends with the path separator.
std::string EnsureBackslash(const std::string& folder);
std::string PathStem(const std::string& path);       // file name without extension
std::string PathExtension(const std::string& path);  // with the dot, or empty
std::string PathFileName(const std::string& path);
std::string PathFolder(const std::string& path);     // with trailing separator
std::string ReplaceExtension(const std::string& path, const std::string& ext);  // ext with dot
bool FileExists(const std::string& path);
bool FolderExists(const std::string& path);
// Whether two paths name the same file: equal texts, or one file reached by
// two names (links, "./", case on a folding file system).
bool SamePath(const std::string& a, const std::string& b);

}  // namespace vintar
