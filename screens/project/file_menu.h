// The commands of the File and Edit menus as the main window calls them:
// new, open, recent files, save, save as, merge, split, sort, the project
// title, the notepad, the record and natal entry screens, the categories and
// the preferences. Each runs its screens modally over `parent`, keeps every
// check and message of the engine's project operations, and calls
// wb.Changed() when the open project changed.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>

#include "screens/common/workbench.h"

namespace vintar {

// Makes the SaveFile screen the session's answer when a project is saved
// without a path (session.AskSavePath).
void InstallSaveDialog(Workbench& wb, QWidget* parent);

void FileNew(Workbench& wb, QWidget* parent);
void FileOpen(Workbench& wb, QWidget* parent);
// `position` 1..4 of the recent-file list.
void FileOpenRecent(Workbench& wb, QWidget* parent, int position);
void FileSave(Workbench& wb, QWidget* parent);
void FileSaveAs(Workbench& wb, QWidget* parent);
void FileMerge(Workbench& wb, QWidget* parent);
void FileSplit(Workbench& wb, QWidget* parent);
void FileSort(Workbench& wb, QWidget* parent);
void FileEditTitle(Workbench& wb, QWidget* parent);
void FileNotepad(Workbench& wb, QWidget* parent);

// The record entry screen (refused for projects that are too large).
void EditData(Workbench& wb, QWidget* parent);
// The natal details of the project.
void EditNatal(Workbench& wb, QWidget* parent);
void EditCategories(Workbench& wb, QWidget* parent);
void EditPreferences(Workbench& wb, QWidget* parent);

// The Options menu's screens. The century of two-digit years; the user
// ayanamsa, after which the zodiac becomes entry 9 (false: cancelled, the
// zodiac stays); the point and cusp of the user house system, after which
// the houses become entry 14 (false: cancelled).
void OptionsCentury(Workbench& wb, QWidget* parent);
bool OptionsAyanamsa(Workbench& wb, QWidget* parent);
bool OptionsUserHouse(Workbench& wb, QWidget* parent);

// Opens each screen of this menu filled with the open project's data, hands
// it to `shoot` under a short name and closes it. Never blocks.
void ScreenshotTourProject(Workbench& wb, QWidget* parent,
                           const std::function<void(QWidget*, const QString&)>& shoot);

}  // namespace vintar
