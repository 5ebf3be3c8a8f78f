// The project operations of the File menu as plain functions: new, open,
// merge (with its category map), sort, split, save, edit title, the recent
// file list, the save dialogue's name checks, the open dialogue's title
// preview and delete, the notepad companion, and the position cache date
// check. Screens gather values and call these; so do the command line and
// the tests. Every message goes through Session::ShowMessage; nothing here
// throws. No ephemeris: the Sun key of the sort and the cache file names
// are handed in by the caller.
//
// Times: record moments are the JulianDay of each record (ephemeris time,
// see core/records.h); the cache check reads file modification times in
// the machine's local time against a date in the preference file.
// Checked by tests/core/project_ops_test.cpp: merges read back, sorts by
// each key, version 1 split output read back by the project file reader.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/records.h"

namespace vintar {

class Progress;
class Session;

// The preference key of the cache date check, in section "Vintar".
inline constexpr const char* kCacheDateKey = "v2.1.2";

// The cache file of a project for a frame (1, 2) and dynamic method (0 to 3).
using CacheFileNamer = std::function<std::string(const std::string& datPath, int coordinate, int dynamicType)>;

// "The current project has been changed..." question; Yes saves, No drops
// the changes, Cancel sets `cancelled`. A failed save also cancels.
void ConfirmSaveChanges(Session& session, bool& cancelled);

// Open or merge, told apart by session.MergeActive. Opening replaces the
// project (core/project_file.h OpenProjectFiles); merging reads the other
// project beside the current one, maps its categories (asking when names
// match), adds its records and marks both files changed, nothing written.
// A failed open leaves the no-project state; a failed or cancelled merge
// leaves the current project as it was. Then the cache date check runs
// when `namer` is given. Returns !failed.
bool OpenProject(Session& session, const std::string& path, bool& failed, Progress* progress = nullptr,
                 const CacheFileNamer& namer = {});

// Whether the .dat of a project to open or merge is there; false after the
// "File Read Error" message when it is missing.
bool ProjectFileExists(Session& session, const std::string& datPath);

// The merge command after the open dialogue: OpenProject with MergeActive
// set, then the "Merge Finished" box.
bool MergeProject(Session& session, const std::string& otherPath, Progress* progress = nullptr,
                  const CacheFileNamer& namer = {});

// The category map of a merge: for each category i (1-based) of `merged`,
// its number in `current`. Matching trimmed names (ignoring case) of the
// same type share a number after the "Merge Categories?" question's Yes;
// all others, and all on No, take numbers above current.CategoryCount.
// Cancel sets `cancelled`. `mergedCount` may exceed merged.CategoryCount
// (categories present only in the records; those never match).
std::vector<int> BuildMergeCategoryMap(Session& session, const ProjectHeader& current, const ProjectHeader& merged,
                                       int mergedCount, bool& cancelled);

// Removes the cache files of the open project older than the date under
// kCacheDateKey (stored as YYYY-MM-DD; today's date, from session.clock,
// when missing). Errors are ignored. Returns the number removed.
int CheckPositionCacheDates(Session& session, const std::string& datPath, const CacheFileNamer& namer);

// Save: marks both files changed and writes them to ProjectPath (the save
// dialogue when there is none). Save As: always the dialogue.
void SaveProject(Session& session, const std::string& path, bool& failed);
bool SaveCommand(Session& session);
bool SaveAsCommand(Session& session);

// New: after ConfirmSaveChanges (a cancel does nothing) the project is
// cleared; `title` is what the title screen gave, nullopt for its cancel
// (DialogCancelled set, no project). Returns whether a new project began.
bool NewProject(Session& session, const std::optional<std::string>& title);

// Edit Title: a blank title shows "Error in Name" and returns false; a
// changed one is stored, marks the .nat changed, saves and refreshes the
// captions (`save` false skips the save). `failed` tells a save failure
// apart from a refused title.
bool EditProjectTitle(Session& session, const std::string& title, bool& failed, bool save = true);
// The rectify screen's caption for the open project.
std::string RectifyCaption(const Session& session);

// Sort --------------------------------------------------------------------

enum class SortKey { Date, Description, Sun };
struct SortRequest {
  SortKey key = SortKey::Date;
  bool descending = false;
  bool fromFileMenu = false;  // also removes adjacent duplicates
  // The Sun's longitude in degrees for a record; required for SortKey::Sun.
  std::function<double(const EventRecord&)> sunLongitude;
};
struct SortResult {
  bool done = false;  // false: refused (too large, no Sun key)
  bool moved = false;
  int32_t duplicatesRemoved = 0;
};
SortResult SortProject(Session& session, const SortRequest& request);
// Whether two records count as the same event for the de-duplication.
bool SameEvent(const EventRecord& a, const EventRecord& b);

// Split -------------------------------------------------------------------

// Records first..last (clamped, swapped when reversed) go to `target` as a
// version 1 .dat, then leave the project, which is saved. Refused with a
// message when there are fewer than 2 records or `target` is the project
// itself; a target that cannot be written leaves the project untouched.
// `save` false writes nothing, neither target nor project (a dry run).
struct SplitResult {
  bool done = false;
  int32_t first = 0, last = 0, moved = 0;
};
SplitResult SplitProject(Session& session, int32_t first, int32_t last, const std::string& target, bool save = true);
// The Split screen's range caption.
std::string SplitRangeText(const Session& session);
// The version 1 text of one record (date, zone, time and coordinates as
// text through the formatters).
std::string FormatVersion1Record(const Session& session, const EventRecord& record);

// The save dialogue -------------------------------------------------------

enum class SaveNameCheck { Accepted, Invalid, Declined, StayOpen };
// Trims `name`, adds ".dat" and checks it: over 80 characters (or blank)
// is refused with "File Error"; an existing file asks "File Exists" (Yes
// accepts, No declines, Cancel keeps the screen open). `path` gets
// folder + name + ".dat".
SaveNameCheck CheckSaveFileName(Session& session, const std::string& folder, const std::string& name,
                                std::string& path);
// An accepted name becomes the project's path and stem (not for a split,
// whose target is only returned).
void AcceptSaveFileName(Session& session, const std::string& path);

// The open dialogue -------------------------------------------------------

// The caption and button of the dialogue for open or merge.
std::string OpenDialogCaption(const Session& session);
std::string OpenDialogButton(const Session& session);
// The title shown for a .dat: "No Title Stored" without a .nat, else the
// .nat's first field, or the next one after the VINTAR marker.
std::string ProjectTitlePreview(const std::string& datPath);
// After "Confirm Deletion" is accepted, deletes every file of the folder
// named stem + ".*". Returns the number deleted, -1 when declined.
int DeleteProjectFiles(Session& session, const std::string& datPath);
// The paths DeleteProjectFiles would delete, sorted.
std::vector<std::string> ProjectFamilyFiles(const std::string& datPath);

// Recent files ------------------------------------------------------------

struct RecentFilesMenu {
  std::array<std::string, 5> Captions;  // 1..4
  std::array<bool, 5> Checked{};
  int Count = 0;
};
// Ticks the entry of the open project, or shifts the list down and puts it
// first (the fourth falls off). The pairs live in session.prefs.
void UpdateRecentFiles(Session& session, RecentFilesMenu& menu);
// Opens recent entry `position` (1..4): "Vintar" message when empty or the
// file is gone, the no-project state on failure.
bool OpenRecentFile(Session& session, RecentFilesMenu& menu, int position, Progress* progress = nullptr,
                    const CacheFileNamer& namer = {});

// The notepad companion ---------------------------------------------------

struct NotepadHooks {
  // Starts a program with these arguments; false when it could not start.
  std::function<bool(const std::vector<std::string>& argv)> launch;
  // Looks an environment variable up ("" when unset).
  std::function<std::string(const std::string& name)> environment;
};
// The hooks of the real system: posix_spawnp and getenv.
NotepadHooks SystemNotepadHooks();
std::string NotepadPath(const Session& session);
// Creates the companion when missing, with its first line, and opens it with
// $VISUAL, else $EDITOR, else xdg-open. A failure to start shows "Unable to
// Start Program". Returns whether the editor started.
bool OpenNotepad(Session& session, const NotepadHooks& hooks);
// The "Open Notepad?" offer after an open, when the Prompt preference is on.
bool OfferNotepad(Session& session, const NotepadHooks& hooks);

}  // namespace vintar
