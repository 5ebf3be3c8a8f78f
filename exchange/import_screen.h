// The import screen as plain functions: its source kinds, the remembered
// folders and names, the destination name's checks with their messages, the
// name proposed for a chosen source, and the run that makes the project.
//
// Checked by tests/exchange/import_screen_test.cpp.
#pragma once

#include <string>
#include <vector>

#include "core/project_ops.h"
#include "core/session.h"

namespace vintar {

// The kinds of source, one option each: charts in the exchange format,
// delimited text by one of the CSV formats, and the simple events list.
enum class ImportKind { Aaf, Csv, EventsList };

struct ImportKindInfo {
  ImportKind Kind;
  const char* Label;
  const char* Filter;
};
const std::vector<ImportKindInfo>& ImportKinds();

// The four remembered keys of the preference file's section: ImportFromDir,
// ImportFromFile, ImportToDir (both default the user data folder) and
// ImportToFile (default "imported.dat", also when read back empty).
struct ImportSettings {
  std::string FromDir, FromFile, ToDir, ToFile;
};
ImportSettings LoadImportSettings(const Session& session);
bool SaveImportSettings(const Session& session, const ImportSettings& settings);

// The transfer button's checks, in order: a destination name, its ".dat"
// extension (added to a name without a "."), source files listed, a source
// chosen. Shows the message and returns false at the first that fails;
// on success `name` holds the name with its extension.
bool CheckImportTransfer(Session& session, std::string& name, bool filesListed, bool sourceChosen);

// The destination proposed when a source file is chosen: its name without
// the extension, in lower case, with ".dat".
std::string ProposedImportName(const std::string& sourceFileName);

// The import itself into folder + name, by kind (the CSV format by its
// number from 1). Shows its messages under "Import Data" (or "Importing
// from " + the source's name); returns the new project's path, empty when
// nothing was made. Reports its reading to `progress`; a cancel there
// writes nothing, says nothing and returns empty.
std::string RunImport(Session& session, ImportKind kind, const std::string& sourcePath, const std::string& datPath,
                      int csvFormat = 1, Progress* progress = nullptr);

// After a run: when the new project's .nat exists, the current project's
// changes are offered for saving and the new project is opened as the File
// menu opens one (its cache dates checked, the recent-file list updated).
// False when there is no such project, the user cancelled or the open
// failed (its message shown).
bool OpenImportedProject(Session& session, const std::string& datPath, RecentFilesMenu& recent,
                         Progress* progress = nullptr);

}  // namespace vintar
