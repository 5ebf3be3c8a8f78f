// The criteria search, record selection and control data screens on a
// sample project: a list built by pressing the buttons is the list the
// command line writes for the same tests, and its search passes the same
// records; the results screen acts on the project; the checks of the three
// screens give their messages; a picture of every screen.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include "calc/cache.h"
#include "core/project_ops.h"
#include "qt_support/qt_test_support.h"
#include "screens/research/cat_sel.h"
#include "screens/research/crit_point_picker.h"
#include "screens/research/rand_param.h"
#include "screens/research/res_criteria.h"
#include "screens/research/research_menu.h"

using namespace vintar;

namespace {

struct Opened : testing::DesktopFixture {
  Opened() {
    path = CopySample("gauquelin_a1");
    bool failed = false;
    OpenProject(session, path, failed, nullptr, CacheFileName);
    for (const char* name : {"Sun", "Moon", "Mars"}) {
      PointRef ref;
      PointByName(session, wb->research, name, ref);
      wb->research.Selected.push_back(ref);
    }
    sink.Clear();
  }
  // The command line on the same copy of the project.
  QJsonObject Cli(const QStringList& args) { return testing::CliJson(*this, args + QStringList{QString::fromStdString(path)}); }
  QString LastTitle() const { return sink.messages.empty() ? QString() : QString::fromStdString(sink.messages.back().title); }
  std::string path;
};

void Click(QWidget* screen, const char* button) {
  auto* b = screen->findChild<QPushButton*>(button);
  QVERIFY2(b, button);
  b->click();
}

// Sun in a fire sign, And Not (Moon in the 10th house Or Mars in Aries),
// Xor Sun conjunct Moon: built with the buttons.
void BuildSampleList(ResCriteria& screen) {
  struct Test {
    int dataType, code;
    std::vector<int> points, cells;
  };
  const Test tests[] = {{0, 0, {0}, {1, 5, 9}}, {1, 100, {1}, {10}}, {0, 0, {2}, {1}}, {2, 50, {0, 1}, {1}}};
  for (const Test& t : tests) {
    screen.ChooseDivision(t.dataType, t.code);
    // A forced option stays set after the data type changes back, as the user left it.
    if (auto* exclude = screen.findChild<QRadioButton*>("OptionInexact_0"); exclude->isEnabled()) exclude->click();
    screen.SelectPoints(t.points);
    screen.SelectCells(t.cells);
    Click(&screen, "btnNew");
  }
  screen.SelectCriteria({2, 3});
  Click(&screen, "btnBracket");
  screen.SelectCriteria({3});
  Click(&screen, "btnAndOr_1");
  screen.SelectCriteria({2});
  Click(&screen, "btnNot");
  screen.SelectCriteria({4});
  Click(&screen, "btnAndOr_2");
}

}  // namespace

class CriteriaScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void init() { fx_ = std::make_unique<Opened>(); }
  void cleanup() {
    testing::CloseAllWindows();
    fx_.reset();
  }

  // The buttons build the list the command line saves, and both searches
  // pass the same records.
  void buttonsBuildWhatTheCommandLineBuilds() {
    Opened& fx = *fx_;
    Workbench& wb = *fx.wb;
    ResCriteria screen(wb, nullptr);
    BuildSampleList(screen);
    QVERIFY(fx.sink.messages.empty());
    QCOMPARE(wb.criteria.Count(), 4);

    const QString vcr = QString::fromStdString(fx.TempPath("cli.vcr"));
    const QJsonObject cli = fx.Cli({"research", "criteria", "--save-criteria", vcr, "--test", "Sun:0:0:1,5,9",
                                    "--open", "--not", "--test", "Moon:1:100:10", "--or", "--test", "Mars:0:0:1",
                                    "--close", "--xor", "--pair", "Sun,Moon:2:50:1"});
    QVERIFY(!cli.isEmpty());
    CriteriaList saved;
    ResearchState state = wb.research;
    QVERIFY(OpenCriteriaFile(fx.session, state, vcr.toStdString(), saved));
    QCOMPARE(saved.Count(), wb.criteria.Count());
    for (int i = 1; i <= saved.Count(); ++i)
      QVERIFY2(saved.Criteria[i] == wb.criteria.Criteria[i], qPrintable(QString::number(i)));
    QStringList cliLines;
    for (const auto& l : cli["criteria"].toArray()) cliLines << l.toString();
    QCOMPARE(screen.Lines(), cliLines);

    // A list saved from the screen reads back as it stands.
    const QString own = QString::fromStdString(fx.TempPath("own.vcr"));
    QVERIFY(screen.SaveList(own));
    Click(&screen, "btnClear");
    QVERIFY(screen.OpenList(own));
    QCOMPARE(screen.Lines(), cliLines);

    QVERIFY(screen.Search());
    const CriteriaRun& run = screen.LastRun();
    QList<int> passed, cliPassed;
    for (int i = 1; i < int(run.PassedFlags.size()); ++i)
      if (run.PassedFlags[i]) passed << i;
    for (const auto& r : cli["records"].toArray()) cliPassed << r.toInt();
    QCOMPARE(passed, cliPassed);
    QCOMPARE(run.Enabled, cli["enabled"].toInt());
    QVERIFY(run.Passed > 0 && run.Passed < run.Enabled);
  }

  // The results screen: counts, disabling the failures, the passes saved
  // as a new project.
  void resultsActOnTheProject() {
    Opened& fx = *fx_;
    Workbench& wb = *fx.wb;
    ResCriteria screen(wb, nullptr);
    BuildSampleList(screen);
    QVERIFY(screen.Search());
    const CriteriaRun run = screen.LastRun();
    ResOut out(wb, nullptr, ResOut::Origin::Criteria, run.PassedFlags, run.Enabled, run.Passed, {});
    QCOMPARE(out.EnabledText(), QString::number(run.Enabled));
    QCOMPARE(out.PercentText(), QString::fromStdString(PercentPassedText(run.Passed, run.Enabled)));
    int changes = 0;
    wb.projectChanged = [&changes] { ++changes; };
    QVERIFY(out.DisableClicked());
    QCOMPARE(fx.LastTitle(), QString("Records Disabled"));
    for (int i = 1; i < int(run.PassedFlags.size()); ++i)
      QCOMPARE(fx.session.project.Events[i].Enabled != 0, run.PassedFlags[i] != 0);

    const std::string target = fx.TempPath("passed.dat");
    fx.session.AskSavePath = [&](std::string& p) {
      p = target;
      return true;
    };
    QVERIFY(out.NewClicked());
    QVERIFY(QFile::exists(QString::fromStdString(target)));
    QCOMPARE(int(fx.session.project.Header.RecordCount), run.Passed);
    QVERIFY(fx.session.project.Header.Title.ends_with(" - After Search Criteria"));
    QVERIFY(!out.findChild<QPushButton*>("btnNew")->isEnabled());
    QCOMPARE(changes, 2);
  }

  // Refusals of the criteria screen, each with its box and the list unchanged.
  void criteriaChecks_data() {
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QList<int>>("points");
    QTest::addColumn<QList<int>>("cells");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("title");
    QTest::newRow("no point") << 0 << QList<int>{} << QList<int>{1} << "btnNew" << "Cannot Add";
    QTest::newRow("no cell") << 0 << QList<int>{0} << QList<int>{} << "btnNew" << "Cannot Add";
    QTest::newRow("two for one") << 0 << QList<int>{0, 1} << QList<int>{1} << "btnNew" << "Too Many Points";
    QTest::newRow("one for a pair") << 2 << QList<int>{0} << QList<int>{1} << "btnNew" << "Too Many Points";
    QTest::newRow("empty search") << 0 << QList<int>{} << QList<int>{} << "OKButton" << "Cannot Search";
  }
  void criteriaChecks() {
    QFETCH(int, dataType);
    QFETCH(QList<int>, points);
    QFETCH(QList<int>, cells);
    QFETCH(QString, button);
    QFETCH(QString, title);
    Opened& fx = *fx_;
    ResCriteria screen(*fx.wb, nullptr);
    screen.ChooseDivision(dataType, dataType == 2 ? 50 : 0);
    screen.SelectPoints({points.begin(), points.end()});
    screen.SelectCells({cells.begin(), cells.end()});
    Click(&screen, qPrintable(button));
    QCOMPARE(fx.LastTitle(), title);
    QCOMPARE(fx.wb->criteria.Count(), 0);
  }

  // Brackets over the whole list are refused, on both list screens.
  void bracketsOverEverythingRefused() {
    Opened& fx = *fx_;
    ResCriteria criteria(*fx.wb, nullptr);
    BuildSampleList(criteria);
    criteria.SelectCriteria({1, 2, 3, 4});
    Click(&criteria, "btnBracket");
    QCOMPARE(fx.LastTitle(), QString("Cannot apply"));
    fx.sink.Clear();
    CatSel select(*fx.wb, nullptr);
    for (int i = 0; i < 2; ++i) Click(&select, "btnAdd");
    select.SelectConditions({1, 2});
    Click(&select, "btnBracket");
    QCOMPARE(fx.LastTitle(), QString("Cannot apply"));
  }

  // Record selection: OK with nothing listed is Cancel; a run flags the
  // records that match and shows them on the results screen.
  void selectionRuns() {
    Opened& fx = *fx_;
    Workbench& wb = *fx.wb;
    CatSel empty(wb, nullptr);
    Click(&empty, "OKButton");
    QCOMPARE(empty.result(), int(QDialog::Rejected));

    CatSel select(wb, nullptr);
    select.findChild<QComboBox*>("cmbField")->setCurrentIndex(1);
    select.findChild<QComboBox*>("cmbCondition")->setCurrentIndex(3);
    select.findChild<QComboBox*>("cmbValue")->setEditText("1 Jan 1920");
    Click(&select, "btnAdd");
    QVERIFY(select.Run());
    const SelectionRun& run = select.LastRun();
    int expected = 0;
    for (int i = 1; i <= fx.session.project.Header.RecordCount; ++i) {
      const EventRecord& e = fx.session.project.Events[i];
      const bool match = e.Enabled && e.Year * 10000 + e.Month * 100 + e.Day >= 19200101;
      QCOMPARE(run.PassedFlags[i] != 0, match);
      expected += match;
    }
    QCOMPARE(run.Passed, expected);
    QVERIFY(expected > 0 && expected < run.Enabled);

    // From the record editor the same list ends in "Selection Finished":
    // Cancel changes nothing, OK switches the failures off.
    for (int answer : {kCancel, kOk}) {
      fx.sink.answer = answer;
      CatSel editor(wb, nullptr, CatSel::Road::Editor);
      Click(&editor, "OKButton");
      QCOMPARE(fx.LastTitle(), QString("Selection Finished"));
      QCOMPARE(editor.Applied(), answer == kOk);
      int enabled = 0;
      for (int i = 1; i <= fx.session.project.Header.RecordCount; ++i) enabled += fx.session.project.Events[i].Enabled != 0;
      QCOMPARE(enabled, answer == kOk ? expected : run.Enabled);
    }
  }

  // Bad inputs of the control data generator: the message, the screen stays.
  void controlChecks_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("count") << "Number" << "none" << "Invalid Number";
    QTest::newRow("latitudes") << "Latitude_0" << "60N00" << "Invalid Latitude Range";
    QTest::newRow("longitudes") << "Longitude_0" << "180W00" << "Invalid Longitude Range";
    QTest::newRow("all replicated") << "CheckReplicate" << "" << "Invalid Replication";
  }
  void controlChecks() {
    QFETCH(QString, field);
    QFETCH(QString, text);
    QFETCH(QString, title);
    Opened& fx = *fx_;
    RandParam screen(*fx.wb, nullptr);
    bool asked = false;
    screen.askPath = [&](std::string&) { return asked = true; };
    if (field == "CheckReplicate") {
      screen.findChild<QRadioButton*>("OptionDataBasis_1")->setChecked(true);
      for (int i = 0; i < 4; ++i) screen.findChild<QCheckBox*>(QString("CheckReplicate_%1").arg(i))->setChecked(true);
    } else {
      screen.findChild<QLineEdit*>(field)->setText(text);
    }
    Click(&screen, "OKButton");
    QCOMPARE(fx.LastTitle(), title);
    QVERIFY(!asked);
    QCOMPARE(screen.result(), int(QDialog::Rejected));
  }

  // Independent data: the new project is written and opened in place of the old.
  void controlDataOpensTheNewProject() {
    Opened& fx = *fx_;
    RandParam screen(*fx.wb, nullptr);
    screen.findChild<QLineEdit*>("Number")->setText("25");
    const std::string target = fx.TempPath("control.dat");
    screen.askPath = [&](std::string& p) {
      p = target;
      return true;
    };
    Click(&screen, "OKButton");
    QCOMPARE(screen.result(), int(QDialog::Accepted));
    QCOMPARE(QString::fromStdString(fx.session.project.ProjectPath), QString::fromStdString(target));
    QCOMPARE(int(fx.session.project.Header.RecordCount), 25);
    QVERIFY(fx.session.project.Header.Title.starts_with("25 Random Events: "));
  }

  // The point picker adds a midpoint and a fixed degree; only OK keeps them.
  void pointPickerEditsACopy() {
    Opened& fx = *fx_;
    const std::vector<PointRef> before = fx.wb->research.Selected;
    for (bool keep : {false, true}) {
      CritPointPicker picker(*fx.wb, nullptr);
      picker.findChild<QComboBox*>("cmbPointType")->setCurrentIndex(kMidpointType);
      Click(&picker, "btnAdd");
      picker.findChild<QComboBox*>("cmbPointType")->setCurrentIndex(kFixedPositionType);
      picker.findChild<QLineEdit*>("txtPosition")->setText("15Le30");
      Click(&picker, "btnAdd");
      QCOMPARE(picker.Points().size(), before.size() + 2);
      QVERIFY(testing::GrabNotBlank(&picker, "research-criteria-points"));
      Click(&picker, keep ? "OKButton" : "CancelButton");
      QCOMPARE(fx.wb->research.Selected.size(), keep ? before.size() + 2 : before.size());
    }
    const PointRef& fixed = fx.wb->research.Selected.back();
    QCOMPARE(fixed.PointType, int32_t(kFixedPositionType));
    QCOMPARE(fixed.Position, 135.5f);
    QCOMPARE(QString::fromStdString(PointName(fx.session, fx.wb->research, fx.wb->research.Selected[3])),
             QString("The Moon/The Earth"));
  }

  // Every screen of the tour draws something, and the tour leaves the lists as found.
  void tourPicturesEveryScreen() {
    Opened& fx = *fx_;
    const auto selected = fx.wb->research.Selected;
    QStringList names;
    ScreenshotTourCriteria(*fx.wb, nullptr, [&](QWidget* w, const QString& name) {
      QVERIFY2(testing::GrabNotBlank(w, name), qPrintable(name));
      names << name;
    });
    QCOMPARE(names, QStringList({"research-criteria", "research-results-out", "research-select", "research-control"}));
    QCOMPARE(fx.wb->criteria.Count(), 0);
    QCOMPARE(fx.wb->selection.Count(), 0);
    QVERIFY(fx.wb->research.Selected == selected);
  }

 private:
  std::unique_ptr<Opened> fx_;
};

QTEST_MAIN(CriteriaScreensTest)
#include "criteria_screens_test.moc"
