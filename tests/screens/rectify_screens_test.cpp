// The rectification screens on the sample project: the road from the event
// graphs through the peaks and the angle search to Auto Rectify gives what
// the command line gives for the same project; the screens' checks and
// messages; a picture of every screen.
#include <QApplication>
#include <QCheckBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>
#include <QtTest>

#include <set>

#include "calc/cache.h"
#include "core/project_ops.h"
#include "qt_support/qt_test_support.h"
#include "rectify/auto_rectify.h"
#include "screens/rectify/angle_search.h"
#include "screens/rectify/graph_options.h"
#include "screens/rectify/peak_options.h"
#include "screens/rectify/rect_stat.h"
#include "screens/rectify/rectify_menu.h"
#include "screens/rectify/rectify_screen.h"
#include "screens/rectify/transit_search.h"
#include "screens/rectify/val_rep.h"

using namespace vintar;

namespace {

// The fixture with the sample project opened as the File menu opens it.
struct Opened : testing::DesktopFixture {
  Opened() {
    path = CopySample();
    bool failed = false;
    OpenProject(session, path, failed, nullptr, CacheFileName);
    sink.Clear();
  }
  // `vintar --json <args> <project>` on the same copy, with its own empty
  // configuration and data folders.
  // The command line on the same copy of the project.
  QJsonObject Cli(const QStringList& args) { return testing::CliJson(*this, args + QStringList{QString::fromStdString(path)}); }
  std::string path;
};

// The windows of a class that a command opened.
template <class T>
QList<T*> Windows(const char* name) {
  QList<T*> found;
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* t = qobject_cast<T*>(w); t && w->objectName() == name && w->isVisible()) found << t;
  return found;
}

// Closes and deletes the windows the commands opened, while the workbench
// they hold still stands.
void Click(QWidget* screen, const char* button) {
  auto* b = screen->findChild<QPushButton*>(button);
  QVERIFY2(b, button);
  b->click();
}

}  // namespace

class RectifyScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void init() { fx_ = std::make_unique<Opened>(); }
  void cleanup() {
    testing::CloseAllWindows();
    fx_.reset();
  }

  // Graphs, peaks, angles and Auto Rectify on the screens against the cli.
  void screensGiveWhatTheCommandLineGives() {
    Opened& fx = *fx_;
    Workbench& wb = *fx.wb;

    // The sample's events stand too close in places: the report comes first.
    ShowRectify(wb, nullptr);
    auto reports = Windows<ValRep>("ValRep");
    QCOMPARE(reports.size(), 1);
    QCOMPARE(reports[0]->findChild<QPushButton*>("CancelButton")->text(), QString("C&ontinue..."));
    QVERIFY(reports[0]->ReportText().contains("Date interval too small"));
    Click(reports[0], "CancelButton");
    auto graphs = Windows<Rectify>("Rectify");
    QCOMPARE(graphs.size(), 1);
    QVERIFY(graphs[0]->Rebuild());

    const QJsonArray cliGraphs = fx.Cli({"rectify", "graphs"})["graphs"].toArray();
    QCOMPARE(cliGraphs.size(), kShownGraphs);
    for (int g = 1; g <= kShownGraphs; ++g) {
      const GraphRecord& r = wb.rect.graphs.Graph[g];
      const QJsonObject c = cliGraphs[g - 1].toObject();
      QCOMPARE(r.TotalWeight, float(c["totalWeight"].toDouble()));
      QCOMPARE(r.Quality, float(c["quality"].toDouble()));
    }

    // Peaks picked on the angle screen, then the scan.
    graphs[0]->findChild<QPushButton*>("SelectButton")->click();
    auto angles = Windows<AngleSearch>("AngleSearch");
    QCOMPARE(angles.size(), 1);
    Click(angles[0], "AutoSelButton");
    Click(angles[0], "ScanButton");
    const QJsonArray cliAngles = fx.Cli({"rectify", "angles"})["candidates"].toArray();
    const AngleResult& res = wb.rect.peaks.Results;
    QVERIFY(res.Count > 0);
    QCOMPARE(res.Count, int(cliAngles.size()));
    QCOMPARE(angles[0]->findChild<QTreeWidget*>("AngleList")->topLevelItemCount(), res.Count);
    std::set<float> candidateTimes;
    for (int c = 1; c <= res.Count; ++c) {
      const QJsonObject j = cliAngles[c - 1].toObject();
      QCOMPARE(res.ResultTime[c][kLow], float(j["timeLow"].toDouble()));
      QCOMPARE(res.ResultMC[c][kHigh], float(j["mcHigh"].toDouble()));
      QCOMPARE(res.ResultAsc[c][kLow], float(j["ascLow"].toDouble()));
      candidateTimes.insert(float(angles[0]->CandidateTime(c)));
    }

    // From the angle screen Auto Rectify scores those candidates.
    Click(angles[0], "btnAutoRect");
    QApplication::processEvents();
    auto fromAngles = Windows<RectStat>("RectStat");
    QCOMPARE(fromAngles.size(), 1);
    QVERIFY(!fromAngles[0]->Running());
    QCOMPARE(int(fromAngles[0]->Result().Rows.size()), res.Count);
    for (const AutoRectifyRow& row : fromAngles[0]->Result().Rows) QVERIFY(candidateTimes.count(float(row.Time)));
    fromAngles[0]->close();

    // From the menu it starts from the events, as the cli does.
    ShowAutoRectify(wb, nullptr);
    QApplication::processEvents();
    auto fromMenu = Windows<RectStat>("RectStat");
    QCOMPARE(fromMenu.size(), 1);
    RectStat* stat = fromMenu[0];
    const QJsonObject cliAuto = fx.Cli({"rectify", "auto"});
    const QJsonArray cliRows = cliAuto["rows"].toArray();
    const auto& rows = stat->Result().Rows;
    QVERIFY(!rows.empty());
    QCOMPARE(int(rows.size()), int(cliRows.size()));
    auto* table = stat->findChild<QTreeWidget*>("lstResults");
    QCOMPARE(table->topLevelItemCount(), int(rows.size()));
    for (int i = 0; i < int(rows.size()); ++i) {
      const QJsonObject j = cliRows[i].toObject();
      QCOMPARE(rows[i].Time, j["time"].toDouble());
      QCOMPARE(rows[i].Overall, float(j["overall"].toDouble()));
      QCOMPARE(rows[i].Transits, float(j["transits"].toDouble()));
      QCOMPARE(rows[i].Progressions, float(j["secondaryProgressions"].toDouble()));
      QCOMPARE(rows[i].SolarArcs, float(j["solarArcs"].toDouble()));
      QCOMPARE(table->topLevelItem(i)->text(0), j["timeText"].toString());
      QCOMPARE(table->topLevelItem(i)->text(1), QString::number(j["plusMinusMinutes"].toInt()));
      QCOMPARE(table->topLevelItem(i)->text(7), QString::fromStdString(ScorePercent(rows[i].Overall)));
    }
    QCOMPARE(stat->StatusText(), cliAuto["status"].toString());
    QCOMPARE(stat->findChild<QPushButton*>("btnStop")->text(), QString("&Quit"));
    // The run leaves the graphs on screen as they were.
    QCOMPARE(wb.rect.graphs.Graph[3].MasterHarmonic, int16_t(12));
    QCOMPARE(wb.rect.graphs.GraphCount, int16_t(kShownGraphs));
  }

  // The commands refuse a project that is too large or has no natal details.
  void commandsCheckTheProjectFirst_data() {
    QTest::addColumn<int>("command");
    QTest::addColumn<bool>("tooLarge");
    QTest::addColumn<QString>("message");
    const char* large = "The current project is too large to perform this action.";
    const char* natal = "The natal details of the current project are incomplete.";
    for (int command = 0; command < 4; ++command) {
      QTest::addRow("large %d", command) << command << true << large;
      QTest::addRow("natal %d", command) << command << false << natal;
    }
  }
  void commandsCheckTheProjectFirst() {
    QFETCH(int, command);
    QFETCH(bool, tooLarge);
    QFETCH(QString, message);
    Opened& fx = *fx_;
    ProjectState& p = fx.session.project;
    const int32_t count = p.Header.RecordCount;
    if (tooLarge)
      p.Header.RecordCount = 32001;
    else
      p.Header.Place.clear();
    void (*const commands[])(Workbench&, QWidget*) = {ShowRectify, ShowAngleSearch, ShowTransitSearch,
                                                      ShowAutoRectify};
    commands[command](*fx.wb, nullptr);
    QApplication::processEvents();
    p.Header.RecordCount = count;
    QCOMPARE(int(fx.sink.messages.size()), 1);
    QVERIFY(QString::fromStdString(fx.sink.messages[0].text).startsWith(message));
    for (QWidget* w : QApplication::topLevelWidgets()) QVERIFY2(!w->isVisible(), qPrintable(w->objectName()));
  }

  // Fields that the option screens refuse: the message, and the screen stays.
  void optionScreensKeepBadFields_data() {
    QTest::addColumn<QString>("screen");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("title");
    QTest::newRow("peak width") << "PeakOpt" << "Text1_0" << "0" << "Peak Options";
    QTest::newRow("peaks kept") << "PeakOpt" << "Text1_3" << "two" << "Peak Options";
    QTest::newRow("long period") << "TranOpt" << "EndDate" << "1 Jan 2100" << "Verify Period";
  }
  void optionScreensKeepBadFields() {
    QFETCH(QString, screen);
    QFETCH(QString, field);
    QFETCH(QString, text);
    QFETCH(QString, title);
    Opened& fx = *fx_;
    fx.sink.answer = kNo;
    const Preferences before = fx.session.prefs;
    std::unique_ptr<QDialog> dialog;
    if (screen == "PeakOpt")
      dialog = std::make_unique<PeakOpt>(*fx.wb, nullptr);
    else
      dialog = std::make_unique<TranOpt>(*fx.wb, nullptr, fx.wb->rect.search);
    dialog->findChild<QLineEdit*>(field)->setText(text);
    Click(dialog.get(), "OKButton");
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QVERIFY(!fx.sink.messages.empty());
    QCOMPARE(QString::fromStdString(fx.sink.messages.back().title), title);
    QCOMPARE(fx.session.prefs.MaxPeaks, before.MaxPeaks);
    QCOMPARE(fx.session.prefs.MinPeakWidth, before.MinPeakWidth);
    QVERIFY(fx.wb->rect.search.EndDate.empty());
  }

  // The graph options and harmonics go into the graphs and mark them stale.
  void graphOptionsApply() {
    Opened& fx = *fx_;
    Workbench& wb = *fx.wb;
    LoadGraphSettings(fx.session, wb.rect.graphs);
    fx.session.cache.NeedsGraphRecalc = kFalse;
    RectOpt options(wb, nullptr);
    options.ShowGraph(2);
    Click(&options, "AllOff");
    options.findChild<QCheckBox*>("Planet_9")->setChecked(true);
    Click(&options, "OKButton");
    const auto& set = wb.rect.graphs.Selection[kHeliocentric][2];
    for (int p = 1; p <= kPoints; ++p) QCOMPARE(set[p] != 0, p == 9);
    QVERIFY(fx.session.cache.NeedsGraphRecalc);
    QVERIFY(QFile::exists(QString::fromStdString(GraphSettingsFileName(fx.path))));

    SelHarms harmonics(wb, nullptr);
    harmonics.findChild<QSpinBox*>("Graph 2")->setValue(7);
    harmonics.findChild<QSpinBox*>("Graph 3")->setValue(9);
    Click(&harmonics, "Reset");
    QCOMPARE(harmonics.findChild<QSpinBox*>("Graph 2")->value(), int(wb.rect.graphs.MasterHarmonic1));
    harmonics.findChild<QSpinBox*>("Graph 3")->setValue(8);
    Click(&harmonics, "OKButton");
    QCOMPARE(wb.rect.graphs.Harmonic3, int16_t(8));
  }

  // A scan outside every candidate's time, and a time limit that is no time.
  void angleSearchTellsWhatItFound_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("title");
    QTest::newRow("no angles") << "3:00 am" << "3:05 am" << "Angle Search";
    QTest::newRow("bad time") << "noon" << "3:00 pm" << "Error in Time";
  }
  void angleSearchTellsWhatItFound() {
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(QString, title);
    Opened& fx = *fx_;
    LoadGraphSettings(fx.session, fx.wb->rect.graphs);
    fx.session.cache.NeedsGraphRecalc = kTrue;
    AngleSearch angles(*fx.wb, nullptr);
    Click(&angles, "AutoSelButton");
    fx.sink.Clear();
    angles.findChild<QLineEdit*>("From")->setText(from);
    angles.findChild<QLineEdit*>("To")->setText(to);
    Click(&angles, "ScanButton");
    QCOMPARE(int(fx.sink.messages.size()), 1);
    QCOMPARE(QString::fromStdString(fx.sink.messages[0].title), title);
    QCOMPARE(fx.wb->rect.peaks.Results.Count, 0);
    QCOMPARE(angles.findChild<QTreeWidget*>("AngleList")->topLevelItemCount(), 0);
  }

  // The dynamic search of one trial time: hits listed, scored, paired.
  void transitSearchListsAndScoresHits() {
    Opened& fx = *fx_;
    TransitSearch search(*fx.wb, nullptr, 14.0);
    QVERIFY(search.Search());
    const SearchState& state = fx.wb->rect.search;
    QVERIFY(state.HitCount() > 0);
    auto* hits = search.findChild<QTreeWidget*>("Transits");
    QCOMPARE(hits->topLevelItemCount(), state.HitCount());
    QCOMPARE(search.ScoreText(), QString::fromStdString(ScorePercent(SearchTotals(state).Ratio)));
    // A matched hit selects its event.
    for (int row = 0; row < hits->topLevelItemCount(); ++row) {
      const DynamicHit& hit = state.Hits[search.ShownHit(row)];
      if (hit.NearestEvent == 0) continue;
      hits->setCurrentItem(hits->topLevelItem(row));
      auto selected = search.findChild<QTreeWidget*>("Events")->selectedItems();
      QCOMPARE(selected.size(), 1);
      QCOMPARE(selected[0]->text(0), QString::number(hit.NearestEvent));
      QVERIFY(search.findChild<QLabel*>("lblAge")->text().endsWith("Years"));
      break;
    }
  }

  // Every screen of the tour is shown with data and draws something.
  void tourPicturesEveryScreen() {
    Opened& fx = *fx_;
    QStringList names;
    ScreenshotTourRectify(*fx.wb, nullptr, [&](QWidget* w, const QString& name) {
      QVERIFY2(testing::GrabNotBlank(w, "rectify-" + name), qPrintable(name));
      names << name;
    });
    QCOMPARE(names, QStringList({"viability-report", "event-graphs", "graph-options", "harmonics", "peak-options",
                                 "angle-search", "transit-search", "search-options", "auto-rectify"}));
  }

 private:
  std::unique_ptr<Opened> fx_;
};

QTEST_MAIN(RectifyScreensTest)
#include "rectify_screens_test.moc"
