// The family screens on the royal family sample: a search run from the
// search screen lists what the command line lists, a match's charts go to
// the strips, the automatic report is written and handed to the word
// processor, the search screen's checks and field rules, the search points
// kept between sessions, a strip's chart opened by double-clicking it, and a
// picture of every screen.
#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include <algorithm>
#include <set>
#include <tuple>

#include "core/project_ops.h"
#include "qt_support/qt_test_support.h"
#include "screens/groups/group_search_screen.h"
#include "screens/groups/groups_menu.h"
#include "screens/groups/grp_auto.h"
#include "output/group_strips.h"
#include "rectify/dynamic_chart.h"
#include "screens/chart/chart_view.h"
#include "screens/common/drawing_view.h"
#include "screens/groups/strips_window.h"

using namespace vintar;

namespace {

struct Royal : testing::DesktopFixture {
  Royal() {
    path = CopySample("royal_family");
    bool failed = false;
    OpenProject(session, path, failed, nullptr, CacheFileName);
    sink.Clear();
  }
  QJsonObject Cli(QStringList args) {
    args.insert(2, QString::fromStdString(path));  // after "group search"
    return testing::CliJson(*this, args);
  }
  std::string path;
};

template <class T>
T* Window(const char* name) {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* t = qobject_cast<T*>(w); t && w->objectName() == name && w->isVisible()) return t;
  return nullptr;
}

void Set(QWidget* screen, const char* field, const QString& text) {
  auto* edit = screen->findChild<QLineEdit*>(field);
  QVERIFY2(edit, field);
  edit->setText(text);
  emit edit->editingFinished();
}

void Click(QWidget* screen, const char* button) {
  auto* b = screen->findChild<QAbstractButton*>(button);
  QVERIFY2(b, button);
  b->click();
}

QString Text(QWidget* screen, const char* field) { return screen->findChild<QLineEdit*>(field)->text(); }

}  // namespace

class GroupScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void init() { fx_ = std::make_unique<Royal>(); }
  void cleanup() {
    testing::CloseAllWindows();
    fx_.reset();
  }

  // The README's walk-through on the screens: search, a match's charts,
  // its strips in the match's harmonic.
  void searchListsWhatTheCommandLineLists() {
    Royal& fx = *fx_;
    ShowGroupSearch(*fx.wb, nullptr);
    GroupSearch* search = Window<GroupSearch>("GroupSearch");
    QVERIFY(search);
    Set(search, "Harmonic_0", "1");
    Set(search, "Harmonic_1", "16");
    Set(search, "Matches", "3");
    Click(search, "OptionSearchType_0");
    Click(search, "OptionMatchType_0");
    Click(search, "DefaultButton");
    Click(search, "SearchButton");

    const QJsonObject cli = fx.Cli({"group", "search", "--harmonics", "1..16", "--points", "default", "--orb", "8"});
    const QJsonArray matches = cli["matches"].toArray();
    QVERIFY(matches.size() > 0);
    auto* list = search->findChild<QListWidget*>("MatchesList");
    QCOMPARE(list->count(), int(matches.size()));
    for (int row = 0; row < list->count(); ++row) {
      const QJsonObject m = matches[row].toObject();
      QCOMPARE(search->ShownMatches()[row], m["match"].toInt());
      QCOMPARE(list->item(row)->text(), m["line"].toString());
    }
    QCOMPARE(search->findChild<QLabel*>("lblStatus")->text(), cli["status"].toString());

    // The first match in detail: one line per hit, then its strips.
    const QJsonObject first = matches[0].toObject();
    list->setCurrentRow(0);
    auto* detail = search->findChild<QListWidget*>("SecondaryList");
    QCOMPARE(detail->count(), first["hits"].toInt());
    detail->clearSelection();
    for (int row = 0; row < 3; ++row) detail->item(row)->setSelected(true);
    Click(search, "DisplayButton");
    Groups* strips = Window<Groups>("Groups");
    QVERIFY(strips);
    const QJsonArray records = first["records"].toArray();
    std::vector<int> expected;
    for (int row = 0; row < 3; ++row)
      if (std::find(expected.begin(), expected.end(), records[row].toInt()) == expected.end())
        expected.push_back(records[row].toInt());
    const StripTable& table = fx.wb->strips;
    QCOMPARE(table.LastUsed(), int(expected.size()));
    std::set<int> shown(table.StripRecord.begin() + 1, table.StripRecord.begin() + 1 + table.LastUsed());
    QCOMPARE(shown, std::set<int>(expected.begin(), expected.end()));
    QCOMPARE(table.PlotModulus, first["harmonic"].toInt());
    for (int s = 1; s <= table.LastUsed(); ++s) QCOMPARE(table.StripLoaded[s], table.StripRecord[s]);
    QApplication::processEvents();
    QVERIFY(testing::GrabNotBlank(strips, "group-strips-match"));
    QVERIFY(fx.sink.messages.empty());
  }

  // The Search and Display buttons' checks: the message, no search.
  void checksGiveTheirMessages_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("title");
    QTest::newRow("range") << "Harmonic_1" << "0" << "Invalid Harmonic Range";
    QTest::newRow("orb") << "Orb" << "95" << "Invalid Orb";
    QTest::newRow("position") << "Position" << "40" << "Invalid Position";
    QTest::newRow("no points") << "" << "" << "No Points Selected";
    QTest::newRow("too many charts") << "display" << "" << "Too Many Charts";
  }
  void checksGiveTheirMessages() {
    QFETCH(QString, field);
    QFETCH(QString, value);
    QFETCH(QString, title);
    Royal& fx = *fx_;
    GroupSearch search(*fx.wb, nullptr);
    Set(&search, "Harmonic_0", "12");
    if (field == "Position") Click(&search, "OptionSearchType_1");
    if (field == "display") {
      QVERIFY(search.Search());
      search.findChild<QListWidget*>("MatchesList")->setCurrentRow(0);
      search.findChild<QListWidget*>("SecondaryList")->selectAll();
      fx.sink.Clear();
      Click(&search, "DisplayButton");
      QVERIFY(!Window<Groups>("Groups"));
    } else {
      if (field.isEmpty()) Click(&search, "ClearButton");
      else Set(&search, qPrintable(field), value);
      QVERIFY(!search.Search());
      QCOMPARE(fx.wb->group.MatchCount, 0);
    }
    QCOMPARE(int(fx.sink.messages.size()), 1);
    QCOMPARE(QString::fromStdString(fx.sink.messages[0].title), title);
  }

  // Fields rewritten on leaving them.
  void fieldsAreClampedAndRewritten_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::newRow("harmonic low") << "Harmonic_0" << "0" << "1";
    QTest::newRow("harmonic high") << "Harmonic_1" << "999" << "360";
    QTest::newRow("matches") << "Matches" << "1" << "2";
    QTest::newRow("orb") << "Orb" << "7.5" << QString::fromUtf8("7°30'");
    QTest::newRow("bad orb kept") << "Orb" << "eight" << QString::fromUtf8("8°00'");
  }
  void fieldsAreClampedAndRewritten() {
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    GroupSearch search(*fx_->wb, nullptr);
    Set(&search, qPrintable(field), typed);
    QCOMPARE(Text(&search, qPrintable(field)), shown);
  }

  // The search points of a closed screen come back with the next one.
  void searchPointsKeptInTheirFile() {
    Royal& fx = *fx_;
    auto* search = new GroupSearch(*fx.wb, nullptr);
    Click(search, "ClearButton");
    auto* display = search->findChild<QListWidget*>("DisplayList");
    display->item(0)->setSelected(true);
    display->item(2)->setSelected(true);
    Click(search, "AddButton");
    Click(search, "btnAddMidpoint");
    const std::vector<SearchPair> chosen = fx.wb->group.SearchPoints;
    QCOMPARE(int(chosen.size()), 3);
    search->close();
    delete search;
    fx.wb->group = GroupSearchState{};
    GroupSearch again(*fx.wb, nullptr);
    QCOMPARE(fx.wb->group.SearchPoints, chosen);
    QCOMPARE(again.findChild<QListWidget*>("SearchList")->count(), 3);
  }

  // The report is written and opened with the word processor chosen.
  void reportWrittenAndOpened_data() {
    QTest::addColumn<bool>("other");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("launched");
    QTest::newRow("default") << false << "" << "xdg-open";
    QTest::newRow("other, blank path") << true << "  " << "xdg-open";
    QTest::newRow("other") << true << "/opt/wp/bin/writer" << "/opt/wp/bin/writer";
  }
  void reportWrittenAndOpened() {
    QFETCH(bool, other);
    QFETCH(QString, program);
    QFETCH(QString, launched);
    Royal& fx = *fx_;
    std::vector<std::string> argv;
    fx.wb->notepad.launch = [&argv](const std::vector<std::string>& a) {
      argv = a;
      return true;
    };
    ShowGroupSearch(*fx.wb, nullptr);
    ShowGroupReport(*fx.wb, nullptr);
    GrpAuto* report = Window<GrpAuto>("GrpAuto");
    QVERIFY(report);
    QVERIFY(!report->findChild<QLabel*>("lblDescription")->text().isEmpty());
    Click(report, other ? "optWP_1" : "optWP_0");
    report->findChild<QLineEdit*>("txtPath")->setText(program);
    QVERIFY(report->Report());
    const std::string rtf = report->Outcome().Path;
    QVERIFY(QFile::exists(QString::fromStdString(rtf)));
    QVERIFY(!argv.empty());
    QCOMPARE(QString::fromStdString(argv.front()), launched);
    QCOMPARE(QString::fromStdString(argv.back()), QString::fromStdString(rtf));
    QCOMPARE(fx.session.prefs.UseOtherWP != 0, launched != "xdg-open");
    QCOMPARE(report->findChild<QLabel*>("lblStatus_0")->text(), QString("Finished"));
    // The open search screen shows the report's last search.
    GroupSearch* search = Window<GroupSearch>("GroupSearch");
    QCOMPARE(search->findChild<QListWidget*>("MatchesList")->count(), fx.wb->group.MatchCount);
    QCOMPARE(Text(search, "Harmonic_0"), QString::number(fx.wb->group.LastParams.FromHarmonic));
  }

  // A double-click on a strip opens the chart of that strip's record; off
  // the strips nothing opens; a record without a place is told, not drawn.
  void doubleClickOpensTheStripsChart_data() {
    QTest::addColumn<int>("strip");
    QTest::addColumn<bool>("placeless");
    QTest::addColumn<bool>("opens");
    QTest::newRow("second strip") << 2 << false << true;
    QTest::newRow("below the strips") << 4 << false << false;
    QTest::newRow("placeless record") << 2 << true << false;
  }
  void doubleClickOpensTheStripsChart() {
    QFETCH(int, strip);
    QFETCH(bool, placeless);
    QFETCH(bool, opens);
    Royal& fx = *fx_;
    SetStripRecords(fx.wb->strips, {3, 5, 7});
    const int record = 5;
    if (placeless) fx.session.project.Events[record].DetailLevel = 2;
    OpenStripsWindow(*fx.wb, nullptr);
    Groups* strips = Window<Groups>("Groups");
    QVERIFY(strips);
    QApplication::processEvents();
    DrawingView* view = strips->View();
    const QRectF area(view->rect());
    // Row 4 does not exist: aim just under the third strip, at the scale.
    const QPointF at = strip <= 3 ? StripRowRect(area, fx.wb->strips, strip).center()
                                  : StripRowRect(area, fx.wb->strips, 3).bottomLeft() + QPointF(area.width() / 2, 4);
    QCOMPARE(StripRowAt(area, fx.wb->strips, at), strip <= 3 ? strip : 0);
    fx.sink.Clear();
    QTest::mouseDClick(view, Qt::LeftButton, {}, at.toPoint());
    QApplication::processEvents();

    ChartView* chart = Window<ChartView>("ChartView");
    QCOMPARE(chart != nullptr, opens);
    QCOMPARE(int(fx.sink.messages.size()), placeless ? 1 : 0);
    if (!opens) return;
    ChartAdjustState expected;
    QVERIFY(RecordAdjustState(fx.session, record, expected));
    const ChartAdjustState& radix = chart->Radix();
    QCOMPARE(std::make_tuple(radix.Day, radix.Month, radix.Year, radix.Hour, radix.Minute),
             std::make_tuple(expected.Day, expected.Month, expected.Year, expected.Hour, expected.Minute));
    QCOMPARE(radix.Longitude, expected.Longitude);
    const QString name = QString::fromStdString(fx.session.project.Events[record].Description).trimmed();
    QVERIFY2(chart->windowTitle().contains(name), qPrintable(chart->windowTitle()));
    QCOMPARE(QString::fromStdString(fx.session.charts.Slots[kChartRadixSlot].ChartName), name);
    QVERIFY(testing::GrabNotBlank(chart, "group-strip-chart"));
  }

  void tourPicturesEveryScreen() {
    Royal& fx = *fx_;
    QStringList names;
    ScreenshotTourGroups(*fx.wb, nullptr, [&](QWidget* w, const QString& name) {
      QVERIFY2(testing::GrabNotBlank(w, name), qPrintable(name));
      names << name;
    });
    QCOMPARE(names, QStringList({"group-search", "group-matches", "group-strips", "group-report"}));
    QCOMPARE(fx.wb->group.MatchCount, 0);
    QVERIFY(fx.sink.messages.empty());
  }

 private:
  std::unique_ptr<Royal> fx_;
};

QTEST_MAIN(GroupScreensTest)
#include "group_screens_test.moc"
