#include "screens/main_menu.h"

#include <QCloseEvent>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>

#include "screens/common/qt_text.h"

namespace vintar {

struct MainMenu::Parts {
  QLabel* titlePanel = nullptr;
};

MainMenu::MainMenu(Workbench& workbench, QWidget* parent)
    : QMainWindow(parent), wb_(workbench), parts_(std::make_unique<Parts>()) {
  setObjectName("MainMenu");
  parts_->titlePanel = new QLabel(this);
  parts_->titlePanel->setObjectName("TitlePanel");
  setCentralWidget(parts_->titlePanel);
  ResetMainWindow(wb_.session);
  Refresh();
}

MainMenu::~MainMenu() = default;

void MainMenu::Refresh() {
  setWindowTitle(Q(wb_.session.WindowTitle));
  parts_->titlePanel->setText(Q(wb_.session.TitlePanel));
}

void MainMenu::closeEvent(QCloseEvent* event) { event->accept(); }

int RunDesktop(QApplication& app) {
  DesktopSink sink;
  Session session(sink);
  session.clock = Clock::Now();
  StartupOptions options;
  StartSession(session, options);
  Workbench wb(session);
  MainMenu window(wb);
  sink.SetParent(&window);
  window.show();
  return app.exec();
}

}  // namespace vintar
