#include "screens/project/file_menu.h"

#include <QApplication>
#include <QFileInfo>
#include <QPointer>

#include <memory>
#include <optional>

#include "calc/cache.h"
#include "calc/chart.h"
#include "core/menu_options.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "core/session.h"
#include "core/text.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/project/category_screen.h"
#include "screens/project/data_entry.h"
#include "screens/project/file_dialogs.h"
#include "screens/project/natal_entry.h"
#include "screens/project/preferences_screen.h"
#include "screens/project/project_dialogs.h"

namespace vintar {

namespace {

// Reading a project shows its progress only when it takes long enough to be seen.
constexpr qint64 kProgressBytes = 256 * 1024;

bool AnyChange(const Session& s) { return s.project.Status.DataChanged || s.project.Status.NatChanged; }

// Opens or merges `path` (by session.MergeActive), with a progress window
// for a large file.
bool ReadProject(Workbench& wb, QWidget* parent, const std::string& path, bool merge) {
  Session& s = wb.session;
  std::unique_ptr<ProgressWindow> progress;
  if (QFileInfo(QPath(path)).size() > kProgressBytes)
    progress = std::make_unique<ProgressWindow>(parent, Q(merge ? OpenDialogCaption(s) : "Open Project"));
  BusyPointer busy;
  if (merge) return MergeProject(s, path, progress.get(), CacheFileName);
  s.MergeActive = kFalse;
  bool failed = false;
  return OpenProject(s, path, failed, progress.get(), CacheFileName);
}

// After a project was opened: the recent files, the main window, the notepad offer.
void Opened(Workbench& wb, bool ok) {
  Session& s = wb.session;
  if (ok) UpdateRecentFiles(s, wb.recent);
  wb.Changed();
  if (ok) OfferNotepad(s, wb.notepad);
}

// After a save: the recent files follow a project that has a file.
void Saved(Workbench& wb) {
  Session& s = wb.session;
  if (!Trim(s.project.ProjectPath).empty()) UpdateRecentFiles(s, wb.recent);
  wb.Changed();
}

void ShowForTour(QWidget* w, const QString& name, const std::function<void(QWidget*, const QString&)>& shoot) {
  w->show();
  QApplication::processEvents();
  shoot(w, name);
  w->close();
  QApplication::processEvents();
}

}  // namespace

void InstallSaveDialog(Workbench& wb, QWidget* parent) {
  QPointer<QWidget> owner(parent);
  wb.session.AskSavePath = [&wb, owner](std::string& path) {
    SaveFile dialog(wb, owner.data(), SaveFile::Purpose::Project);
    if (dialog.exec() != QDialog::Accepted) return false;
    path = dialog.Path();
    return true;
  };
}

void FileNew(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  InstallSaveDialog(wb, parent);
  if (AnyChange(s)) {
    bool cancelled = false;
    ConfirmSaveChanges(s, cancelled);
    if (cancelled) return;
    // Answered: the project is given up whatever the answer was.
    s.project.Status.DataChanged = kFalse;
    s.project.Status.NatChanged = kFalse;
  }
  ProjTitle title(wb, parent, std::string(), [&s](const std::string& text) { return NewProject(s, text); });
  if (title.exec() != QDialog::Accepted) {
    NewProject(s, std::nullopt);
    s.DialogCancelled = kFalse;
    wb.Changed();
    return;
  }
  wb.Changed();
  DataEntry entry(wb, parent);
  if (entry.Opened()) entry.exec();
  UpdateTitle(s, s.project.ProjectPath);
  if (!Trim(s.project.ProjectPath).empty()) s.TitlePanel = "Current Project: " + s.project.Header.Title;
  wb.Changed();
}

void FileOpen(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  InstallSaveDialog(wb, parent);
  if (AnyChange(s)) {
    bool cancelled = false;
    ConfirmSaveChanges(s, cancelled);
    if (cancelled) return;
  }
  s.MergeActive = kFalse;
  OpenFile dialog(wb, parent);
  if (dialog.exec() != QDialog::Accepted) {
    s.DialogCancelled = kFalse;
    return;
  }
  Opened(wb, ReadProject(wb, parent, dialog.Path(), false));
}

void FileOpenRecent(Workbench& wb, QWidget* parent, int position) {
  Session& s = wb.session;
  InstallSaveDialog(wb, parent);
  bool ok = false;
  {
    BusyPointer busy;
    ok = OpenRecentFile(s, wb.recent, position, nullptr, CacheFileName);
  }
  Opened(wb, ok);
}

void FileSave(Workbench& wb, QWidget* parent) {
  InstallSaveDialog(wb, parent);
  {
    BusyPointer busy;
    SaveCommand(wb.session);
  }
  Saved(wb);
}

void FileSaveAs(Workbench& wb, QWidget* parent) {
  InstallSaveDialog(wb, parent);
  SaveAsCommand(wb.session);
  Saved(wb);
}

void FileMerge(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  s.MergeActive = kTrue;
  OpenFile dialog(wb, parent);
  const bool chosen = dialog.exec() == QDialog::Accepted;
  s.MergeActive = kFalse;
  if (!chosen) {
    s.DialogCancelled = kFalse;
    return;
  }
  ReadProject(wb, parent, dialog.Path(), true);
  wb.Changed();
}

void FileSplit(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  InstallSaveDialog(wb, parent);
  if (s.project.Header.RecordCount < 2) {
    // Refused with its message: too few records to split.
    SplitProject(s, 1, 1, std::string(), false);
    return;
  }
  Split range(wb, parent);
  if (range.exec() != QDialog::Accepted) {
    s.DialogCancelled = kFalse;
    return;
  }
  SaveFile target(wb, parent, SaveFile::Purpose::SplitTarget);
  if (target.exec() != QDialog::Accepted) {
    s.DialogCancelled = kFalse;
    return;
  }
  {
    BusyPointer busy;
    SplitProject(s, range.First(), range.Last(), target.Path());
  }
  Saved(wb);
}

void FileSort(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  if (ProjectTooLarge(s)) return;
  SortOptions options(wb, parent);
  if (options.exec() != QDialog::Accepted) {
    s.DialogCancelled = kFalse;
    return;
  }
  SortRequest request = options.Request();
  request.fromFileMenu = true;
  request.sunLongitude = [&s](const EventRecord& r) { return RecordSunLongitude(s, r); };
  s.MergeActive = kTrue;
  {
    BusyPointer busy;
    SortProject(s, request);
  }
  s.MergeActive = kFalse;
  wb.Changed();
}

void FileEditTitle(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  InstallSaveDialog(wb, parent);
  ProjTitle title(wb, parent, s.project.Header.Title, [&s](const std::string& text) {
    bool failed = false;
    return EditProjectTitle(s, text, failed);
  });
  if (title.exec() != QDialog::Accepted) s.DialogCancelled = kFalse;
  Saved(wb);
}

void FileNotepad(Workbench& wb, QWidget*) { OpenNotepad(wb.session, wb.notepad); }

void EditData(Workbench& wb, QWidget* parent) {
  if (ProjectTooLarge(wb.session)) return;
  DataEntry entry(wb, parent);
  if (entry.Opened()) entry.exec();
  wb.Changed();
}

void EditNatal(Workbench& wb, QWidget* parent) {
  NatalEntry entry(wb, parent);
  entry.exec();
  wb.Changed();
}

void EditCategories(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  if (ProjectTooLarge(s)) return;
  Category screen(wb, parent);
  if (screen.exec() != QDialog::Accepted) s.DialogCancelled = kFalse;
  wb.Changed();
}

void EditPreferences(Workbench& wb, QWidget* parent) {
  PreferencesScreen screen(wb, parent);
  screen.exec();
  wb.Changed();
}

void OptionsCentury(Workbench& wb, QWidget* parent) {
  CenturyDef screen(wb, parent, CenturyDef::Mode::Century);
  if (screen.exec() != QDialog::Accepted) wb.session.DialogCancelled = kFalse;
}

bool OptionsAyanamsa(Workbench& wb, QWidget* parent) {
  CenturyDef screen(wb, parent, CenturyDef::Mode::Ayanamsa);
  if (screen.exec() != QDialog::Accepted) {
    wb.session.DialogCancelled = kFalse;
    return false;
  }
  SetMenuOption(wb.session, MenuOption::Zodiac, 9);
  wb.Changed();
  return true;
}

bool OptionsUserHouse(Workbench& wb, QWidget* parent) {
  HousePoint screen(wb, parent);
  if (screen.exec() != QDialog::Accepted) {
    wb.session.DialogCancelled = kFalse;
    return false;
  }
  SetMenuOption(wb.session, MenuOption::Houses, kUserHouseSystem);
  wb.Changed();
  return true;
}

void ScreenshotTourProject(Workbench& wb, QWidget* parent,
                           const std::function<void(QWidget*, const QString&)>& shoot) {
  Session& s = wb.session;
  {
    DataEntry entry(wb, parent);
    if (entry.Opened()) {
      entry.SelectRecord(std::min<int32_t>(3, s.project.Header.RecordCount));
      ShowForTour(&entry, "data_entry", shoot);
    }
  }
  {
    NatalEntry natal(wb, parent);
    ShowForTour(&natal, "natal_entry", shoot);
  }
  {
    Category categories(wb, parent);
    ShowForTour(&categories, "categories", shoot);
  }
  {
    ProjTitle title(wb, parent, s.project.Header.Title, {});
    ShowForTour(&title, "project_title", shoot);
  }
  {
    SortOptions sort(wb, parent);
    ShowForTour(&sort, "sort_options", shoot);
  }
  {
    Split split(wb, parent);
    ShowForTour(&split, "split", shoot);
  }
  {
    OpenFile open(wb, parent);
    if (!Trim(s.project.ProjectPath).empty()) open.ShowTitleOf(QPath(s.project.ProjectPath));
    ShowForTour(&open, "open_file", shoot);
  }
  {
    SaveFile save(wb, parent);
    ShowForTour(&save, "save_file", shoot);
  }
  {
    PreferencesScreen prefs(wb, parent);
    ShowForTour(&prefs, "preferences", shoot);
  }
  {
    CenturyDef century(wb, parent, CenturyDef::Mode::Century);
    ShowForTour(&century, "century", shoot);
  }
  {
    HousePoint houses(wb, parent);
    ShowForTour(&houses, "house_point", shoot);
  }
  s.DialogCancelled = kFalse;
  s.project.Status.NatalEdited = kFalse;
}

}  // namespace vintar
