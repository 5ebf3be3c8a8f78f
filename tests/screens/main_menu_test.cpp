// The main window: start-up state, the title panel, the menus.
#include <QLabel>
#include <QtTest>

#include "screens/main_menu.h"
#include "qt_support/qt_test_support.h"

using namespace vintar;

class MainMenuTest : public QObject {
  Q_OBJECT
 private slots:
  void startsWithNoProject() {
    testing::DesktopFixture fx;
    MainMenu window(*fx.wb);
    QCOMPARE(window.windowTitle(), QString("Vintar"));
    auto* panel = window.findChild<QLabel*>("TitlePanel");
    QVERIFY(panel);
    QCOMPARE(panel->text(), QString("Current Project: None"));
    window.resize(900, 600);
    QVERIFY(testing::GrabNotBlank(&window, "main_window_empty"));
  }
};

QTEST_MAIN(MainMenuTest)
#include "main_menu_test.moc"
