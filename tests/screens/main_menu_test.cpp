// The main window: the no-project state, the project summary and menus
// once a project is open, the record table's enable column, recent files,
// and the close that asks about unsaved changes.
#include <QAction>
#include <QCloseEvent>
#include <QLabel>
#include <QTableView>
#include <QtTest>

#include "core/project_ops.h"
#include "calc/cache.h"
#include "qt_support/qt_test_support.h"
#include "screens/main_menu.h"

using namespace vintar;

class MainMenuTest : public QObject {
  Q_OBJECT
 private slots:
  void startsWithNoProject() {
    testing::DesktopFixture fx;
    MainMenu window(*fx.wb);
    QCOMPARE(window.windowTitle(), QString("Vintar"));
    QCOMPARE(window.findChild<QLabel*>("TitlePanel")->text(), QString("Current Project: None"));
    for (const char* name : {"mnuSave", "mnuEditData", "RectAuto", "RectChart", "mnuExport"})
      QVERIFY2(!window.findChild<QAction*>(name)->isEnabled(), name);
    for (const char* name : {"mnuNew", "mnuOpen", "mnuImport", "mnuAtlas"})
      QVERIFY2(window.findChild<QAction*>(name)->isEnabled(), name);
    QVERIFY(!window.findChild<QAction*>("mnuRecent1")->isVisible());
    window.resize(900, 600);
    QVERIFY(testing::GrabNotBlank(&window, "main_window_empty"));

    // Closed, the window keeps its place for the next start.
    window.setGeometry(40, 50, 700, 500);
    window.close();
    MainMenu next(*fx.wb);
    next.show();
    QCOMPARE(next.geometry(), QRect(40, 50, 700, 500));
  }

  void showsTheOpenProjectAndAsksBeforeClosing() {
    testing::DesktopFixture fx;
    MainMenu window(*fx.wb);
    Session& s = fx.session;
    const std::string dat = fx.CopySample();
    s.project.ProjectPath = dat;
    bool failed = false;
    QVERIFY(OpenProject(s, dat, failed, nullptr, CacheFileName));
    window.Refresh();
    QVERIFY(window.findChild<QLabel*>("TitlePanel")->text().startsWith("Current Project: "));
    QVERIFY(window.findChild<QAction*>("RectAuto")->isEnabled());
    QVERIFY(window.findChild<QAction*>("mnuRecent1")->isVisible());
    QVERIFY(window.findChild<QAction*>("mnuRecent1")->isChecked());
    auto* table = window.findChild<QTableView*>("RecordTable");
    QCOMPARE(table->model()->rowCount(), s.project.Header.RecordCount);

    // Unticking "On" disables the record and marks the project modified.
    QModelIndex on = table->model()->index(0, 1);
    QVERIFY(table->model()->setData(on, Qt::Unchecked, Qt::CheckStateRole));
    QCOMPARE(s.project.Events[size_t(table->model()->index(0, 0).data().toInt())].Enabled, kFalse);
    QVERIFY(window.windowTitle().endsWith("[Modified]"));
    window.resize(1000, 680);
    QVERIFY(testing::GrabNotBlank(&window, "main_window_project"));

    // Cancel keeps the window open; No closes it without saving.
    struct Case {
      int answer;
      bool closes;
    } cases[] = {{kCancel, false}, {kNo, true}};
    for (const Case& c : cases) {
      fx.sink.Clear();
      fx.sink.answer = c.answer;
      QCloseEvent event;
      QApplication::sendEvent(&window, &event);
      QCOMPARE(event.isAccepted(), c.closes);
      QCOMPARE(fx.sink.messages.size(), size_t(1));
      QCOMPARE(QString::fromStdString(fx.sink.messages[0].title), QString("Save Changes?"));
    }
  }
};

QTEST_MAIN(MainMenuTest)
#include "main_menu_test.moc"
