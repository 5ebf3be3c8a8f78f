#include "exchange/import_screen.h"

#include <algorithm>
#include <cctype>

#include "calc/cache.h"
#include "core/file_io.h"
#include "core/preferences.h"
#include "core/text.h"
#include "exchange/aaf.h"
#include "exchange/csv_import.h"
#include "exchange/events_list.h"
#include "exchange/import.h"
#include "exchange/place_lookup.h"
#include "exchange/text_fields.h"

namespace vintar {

const std::vector<ImportKindInfo>& ImportKinds() {
  static const std::vector<ImportKindInfo> kinds = {
      {ImportKind::Aaf, "&AAF (astrological exchange format)", "*.aaf;*.txt"},
      {ImportKind::Csv, "&ASCII (csv files etc)", "*.*"},
      {ImportKind::EventsList, "&Simple Events List (text file)", "*.txt"},
  };
  return kinds;
}

ImportSettings LoadImportSettings(const Session& session) {
  ImportSettings s;
  const std::string data = session.paths.UserDataPath;
  s.FromDir = GetPreferenceText(session, "ImportFromDir", data);
  s.FromFile = GetPreferenceText(session, "ImportFromFile", "");
  s.ToDir = GetPreferenceText(session, "ImportToDir", data);
  s.ToFile = GetPreferenceText(session, "ImportToFile", "imported.dat");
  if (Trim(s.ToFile).empty()) s.ToFile = "imported.dat";
  return s;
}

bool SaveImportSettings(const Session& session, const ImportSettings& s) {
  return PutProfileText(session, "Vintar", "ImportFromDir", s.FromDir) &&
         PutProfileText(session, "Vintar", "ImportFromFile", s.FromFile) &&
         PutProfileText(session, "Vintar", "ImportToDir", s.ToDir) &&
         PutProfileText(session, "Vintar", "ImportToFile", s.ToFile);
}

bool CheckImportTransfer(Session& session, std::string& name, bool filesListed, bool sourceChosen) {
  name = Trim(name);
  if (name.empty()) {
    session.ShowMessage("Please enter a filename for the Vintar Project", kIconExclamation, "Invalid File Name");
    return false;
  }
  if (name.find('.') != std::string::npos) {
    if (name.size() < 5) {
      session.ShowMessage("Please enter a filename for the Vintar Project", kIconExclamation, "Invalid File Name");
      return false;
    }
    if (!EndsWithIgnoreCase(name, ".dat")) {
      session.ShowMessage(
          "Vintar file name must end with \".dat\" extension. Please rename the file with the correct extension.",
          kIconExclamation, "Invalid Extension");
      return false;
    }
  } else {
    name += ".dat";
  }
  if (!filesListed) {
    session.ShowMessage("Please open a folder to select a source file from", kIconExclamation,
                        "No Source Files displayed");
    return false;
  }
  if (!sourceChosen) {
    session.ShowMessage("Please select a Halcyra, Nova, Blue*Star or QuickChart file from which you wish to transfer "
                        "files into a Vintar project file.",
                        kIconExclamation, "Source File Not Selected");
    return false;
  }
  return true;
}

std::string ProposedImportName(const std::string& sourceFileName) {
  std::string stem = PathFileName(sourceFileName);
  const size_t dot = stem.rfind('.');
  if (dot != std::string::npos && dot > 0) stem.resize(dot);
  return exchange_text::AsciiLower(stem) + ".dat";
}

std::string RunImport(Session& session, ImportKind kind, const std::string& sourcePath, const std::string& datPath,
                      int csvFormat, Progress* progress) {
  const std::string source = PathFileName(sourcePath);
  std::string error;
  bool ok = false;
  bool cancelled = false;
  switch (kind) {
    case ImportKind::Aaf: {
      AafReadResult read;
      ok = ImportAaf(session, sourcePath, datPath, read, error, progress);
      cancelled = read.Cancelled;
      break;
    }
    case ImportKind::Csv: {
      const std::vector<CsvFormat> formats = LoadCsvFormats(session);
      if (csvFormat < 1 || csvFormat > static_cast<int>(formats.size())) {
        error = kNoAsciiFormats;
        break;
      }
      CsvImportResult read;
      ok = ImportCsv(session, sourcePath, datPath, formats[csvFormat - 1], read, error, progress);
      cancelled = read.Cancelled;
      break;
    }
    case ImportKind::EventsList: {
      const std::string title = source.empty() ? "Importing rectification events" : "Importing from " + source;
      std::string text;
      if (ReadFileBytes(sourcePath, text, kMaxSmallFileBytes) != 0) {
        session.ShowMessage("Error opening events file", kIconExclamation, "Import Simple Events List");
        return {};
      }
      EventPlaceFinder finder(session);
      EventsListResult r = ParseEventsList(session, text, finder.Lookup(), progress);
      if (r.Cancelled) return {};
      if (r.Error) {
        session.ShowMessage(r.ErrorText, kIconExclamation, "Import Simple Events List");
        return {};
      }
      if (!WriteImportedProject(session, datPath, source, r.Records, error)) {
        session.ShowMessage(error, kIconExclamation, title);
        return {};
      }
      session.ShowMessage("Imported " + std::to_string(r.Imported) + " events." + kLineEnd + kLineEnd + r.Message,
                          kIconInformation, "Import Simple Events List");
      return datPath;
    }
  }
  if (cancelled) return {};
  if (!ok) {
    session.ShowMessage(error, kIconExclamation, "Import Data");
    return {};
  }
  return datPath;
}

bool OpenImportedProject(Session& session, const std::string& datPath, RecentFilesMenu& recent, Progress* progress) {
  if (datPath.empty() || !FileExists(ReplaceExtension(datPath, ".nat"))) return false;
  const CurStatus& status = session.project.Status;
  if (status.DataChanged || status.NatChanged) {
    bool cancelled = false;
    ConfirmSaveChanges(session, cancelled);
    if (cancelled) return false;
  }
  session.MergeActive = 0;
  bool failed = false;
  if (!OpenProject(session, datPath, failed, progress, CacheFileName)) return false;
  UpdateRecentFiles(session, recent);
  return true;
}

}  // namespace vintar
