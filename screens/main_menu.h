// The main window (MainMenu): the menus of every command, the title panel,
// and a summary of the open project (natal details, the records with their
// enabled state and categories, the state of the position caches).
#pragma once

#include <QApplication>
#include <QKeySequence>
#include <QMainWindow>

#include <functional>
#include <memory>

#include "core/session.h"
#include "screens/common/desktop_sink.h"
#include "screens/common/workbench.h"

namespace vintar {

class MainMenu : public QMainWindow {
  Q_OBJECT
 public:
  // `session` has been started; the window resets it to the no-project state.
  MainMenu(Workbench& workbench, QWidget* parent = nullptr);
  ~MainMenu() override;

  // Redraws the title, the title panel, the summary and the menus' states.
  void Refresh();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildPanels();
  void BuildMenus();
  void BuildOptionsMenu();
  void ShowAbout();
  // A menu command; `needsProject` ones are live only while a project is open.
  QAction* AddCommand(QMenu* menu, const QString& text, const QKeySequence& keys, bool needsProject,
                      const std::function<void()>& run, const QString& name);
  struct Parts;
  Workbench& wb_;
  std::unique_ptr<Parts> parts_;
};

// Starts the session from the command line's options and runs the window
// (or the screenshot tour). Returns the exit code.
int RunDesktop(QApplication& app);

}  // namespace vintar
