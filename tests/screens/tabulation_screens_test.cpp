// The tabulation screens on the research sample: a run driven through the
// point editor and the tabulation screen gives the command line's table,
// statistics and export; a filtered block writes the command line's
// records; the screens' checks; a picture of every screen.
#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QtTest>

#include <functional>

#include "core/project_ops.h"
#include "qt_support/qt_test_support.h"
#include "output/research_graphs.h"
#include "research/results.h"
#include "screens/research/extract_screen.h"
#include "screens/research/point_edit.h"
#include "screens/research/res_tabulate.h"
#include "screens/research/research_menu.h"
#include "screens/research/tab_results.h"

using namespace vintar;

namespace {

struct Opened : testing::DesktopFixture {
  Opened() {
    path = CopySample("gauquelin_a1");
    bool failed = false;
    OpenProject(session, path, failed, nullptr, CacheFileName);
    sink.Clear();
  }
  // `vintar --json research <command> <project> <args>` on the same copy.
  QJsonObject Cli(QStringList args) {
    args.insert(1, QString::fromStdString(path));
    return testing::CliJson(*this, QStringList{"research"} + args);
  }
  std::string path;
};

const QStringList kMarsBySector{"--point", "Mars", "--data-type", "6", "--division", "504"};

void Click(QWidget* screen, const char* name) {
  auto* b = screen->findChild<QAbstractButton*>(name);
  QVERIFY2(b, name);
  b->click();
}

QByteArray FileBytes(const std::string& path) {
  QFile f(QString::fromStdString(path));
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

TabulationWindow* ResultsWindow() {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* t = qobject_cast<TabulationWindow*>(w); t && t->isVisible()) return t;
  return nullptr;
}

// A table of one column and twelve empty cells, for the checks that need
// no counting.
TabulationRun EmptySignRun() {
  TabulationRun run;
  run.Params.Points = {PointRef{0, 3, 0, 0.0f, 0}};
  run.CellCount = run.UsedCells = 12;
  run.ColumnCount = 1;
  run.ColumnNames = {"", "Sun"};
  run.Tally.assign(14, std::vector<float>(3, 0.0f));
  return run;
}

}  // namespace

class TabulationScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void init() { fx_ = std::make_unique<Opened>(); }
  void cleanup() {
    testing::CloseAllWindows();
    fx_.reset();
  }

  // Mars in the 36 Gauquelin sectors, composed and run on the screens, then
  // the block of cells 34 to 36 filtered to a new project.
  void screensGiveWhatTheCommandLineGives() {
    Opened& fx = *fx_;
    Workbench& wb = *fx.wb;

    PointEdit points(wb, nullptr);
    points.SetPointType(kChartPointType);
    auto* items = points.findChild<QListWidget*>("lstPoints");
    items->findItems("Mars", Qt::MatchExactly).value(0)->setSelected(true);
    Click(&points, "btnAdd");
    QVERIFY(testing::GrabNotBlank(&points, "research-points"));
    Click(&points, "OKButton");
    QCOMPARE(wb.research.Selected.size(), size_t(1));
    QCOMPARE(int(wb.research.Selected[0].Item1), 6);

    ResTabulate tabulate(wb, nullptr);
    Click(&tabulate, "OptionCoords_6");
    QVERIFY(tabulate.SetDivision(504));
    QVERIFY(tabulate.findChild<QRadioButton*>("OptionInexact_2")->isChecked());
    QVERIFY(testing::GrabNotBlank(&tabulate, "research-tabulate"));
    Click(&tabulate, "OKButton");
    TabulationWindow* results = ResultsWindow();
    QVERIFY(results);
    QCOMPARE(wb.tabulate.Code, 504);
    results->SetStyle(0);

    // The table and the statistics against the command line's.
    const QJsonObject cli = fx.Cli(QStringList{"tabulate"} + kMarsBySector);
    const QJsonArray cells = cli["cells"].toArray();
    auto* table = results->findChild<QTableWidget*>("grdTable");
    QCOMPARE(table->rowCount(), cells.size() + 1);
    QCOMPARE(table->columnCount(), 2);
    for (int r = 0; r < cells.size(); ++r) {
      const QJsonObject c = cells[r].toObject();
      QCOMPARE(table->verticalHeaderItem(r)->text(), c["name"].toString());
      QCOMPARE(table->item(r, 0)->text().toDouble(), c["counts"].toArray()[0].toDouble());
      QCOMPARE(table->item(r, 1)->text().toDouble(), c["total"].toDouble());
    }
    const QJsonObject stats = cli["statistics"].toArray()[0].toObject();
    QCOMPARE(table->item(cells.size(), 0)->text().toDouble(), stats["total"].toDouble());
    results->SetDisplay(kTabulationDisplay);
    const QString shownStats = results->findChild<QLabel*>("lblStatistics")->text();
    for (const auto& line : stats["block"].toArray()) QVERIFY2(shownStats.contains(line.toString()), qPrintable(shownStats));

    // The saved text is the command line's export.
    const std::string saved = fx.TempPath("screen-export.dat"), exported = fx.TempPath("cli-export.dat");
    QVERIFY(results->SaveDataTo(saved));
    fx.Cli(QStringList{"export"} + kMarsBySector + QStringList{"--out", QString::fromStdString(exported)});
    QCOMPARE(FileBytes(saved), FileBytes(exported));

    const struct {
      int display;
      const char* name;
    } views[] = {{kTabulationDisplay, "research-table"}, {kBarGraph, "research-bar"}, {kPolarGraph, "research-polar"}};
    for (const auto& view : views) {
      results->SetDisplay(view.display);
      QVERIFY(testing::GrabNotBlank(results, view.name));
    }
    // The read-out over the polar graph's first sector names its cell.
    const QRectF area = results->findChild<QWidget*>("picGraph")->rect();
    const QPointF centre = ResearchPolarCentre(area);
    const QPointF firstSector(centre.x() + area.height() * 0.02, centre.y() - area.height() * 0.3);
    QVERIFY(results->PointerText(firstSector).startsWith(table->verticalHeaderItem(0)->text()));

    // Cells 34..36 of Mars into a new project.
    results->SetDisplay(kTabulationDisplay);
    table->setRangeSelected(QTableWidgetSelectionRange(33, 0, 35, 0), true);
    Extract* extract = results->FilterSelected();
    QVERIFY(extract);
    QCOMPARE(extract->findChild<QListWidget*>("List2")->count(), 3);
    QCOMPARE(extract->findChild<QLineEdit*>("TitleText")->text(), QString("GAUQUELIN_A1 - Filtered Records"));
    QVERIFY(testing::GrabNotBlank(extract, "research-extract"));
    const std::string mine = fx.TempPath("rising.dat"), theirs = fx.TempPath("cli-rising.dat");
    const FilterResult written = extract->RunTo(mine);
    QVERIFY(written.Done);
    const QJsonObject filtered =
        fx.Cli({"filter", "--point", "Mars", "--data-type", "6", "--division", "504", "--cells", "34..36",
                QString::fromStdString(theirs)});
    QCOMPARE(written.Written, filtered["written"].toInt());
    QVERIFY(written.Written > 0);
    QCOMPARE(FileBytes(mine), FileBytes(theirs));
    QCOMPARE(fx.sink.messages.back().title, std::string("Filtering Results"));
  }

  // Wrong settings stop at the screen with the screen's own message.
  void checksOnOk() {
    Workbench& wb = *fx_->wb;
    const PointRef mars{0, 6, 0, 0.0f, 0}, sun{0, 3, 0, 0.0f, 0};
    const struct {
      const char* name;
      std::vector<PointRef> points;
      int dataType, code;
      const char* harmonic;
      const char* anchor;
      const char* title;
    } rows[] = {
        {"no points", {}, 0, 0, nullptr, nullptr, "No Points Selected"},
        {"one point of a pair", {mars}, 2, 50, nullptr, nullptr, "Insufficient Points Selected"},
        {"zero orb", {mars, sun}, 2, 50, nullptr, "0", "Zero Aspect Orb"},
        {"harmonic of broken degrees", {mars}, 0, 8, "7", nullptr, "Invalid Harmonic"},
    };
    for (const auto& row : rows) {
      fx_->sink.Clear();
      wb.research.Selected = row.points;
      wb.tabulate = TabulateParams{};
      ResTabulate screen(wb, nullptr);
      screen.SetDataType(row.dataType);
      QVERIFY2(screen.SetDivision(row.code), row.name);
      if (row.harmonic) screen.findChild<QLineEdit*>("Harmonic")->setText(row.harmonic);
      if (row.anchor) screen.findChild<QLineEdit*>("Anchor")->setText(row.anchor);
      QVERIFY2(!screen.Run(), row.name);
      QVERIFY2(!fx_->sink.messages.empty(), row.name);
      QCOMPARE(fx_->sink.messages.back().title, std::string(row.title));
      if (row.harmonic) QCOMPARE(screen.findChild<QLineEdit*>("Harmonic")->text(), QString("1"));
    }

    // Filtering asks for the table and a block of its cells.
    for (int display : {kBarGraph, kTabulationDisplay}) {
      fx_->sink.Clear();
      TabulationWindow window(wb, EmptySignRun(), nullptr);
      window.SetRemember(false);
      window.SetDisplay(display);
      QVERIFY(!window.FilterSelected());
      QCOMPARE(fx_->sink.messages.back().title, std::string("Cannot Filter"));
    }
  }

  // The tour pictures every screen from an empty point list and leaves the
  // list and the settings as they were.
  void tourLeavesTheStateAlone() {
    Workbench& wb = *fx_->wb;
    wb.tabulate.Code = 5;
    QStringList shots;
    ScreenshotTourTabulation(wb, nullptr, [&](QWidget* w, const QString& name) {
      QVERIFY2(testing::GrabNotBlank(w, "tour-" + name), qPrintable(name));
      shots << name;
    });
    QCOMPARE(shots, QStringList({"research-points", "research-tabulate", "research-table", "research-bar",
                                 "research-polar", "research-print-preview", "research-extract"}));
    QVERIFY(wb.research.Selected.empty());
    QCOMPARE(wb.tabulate.Code, 5);
  }

  // A point list saved and opened again; the limit of 124 points.
  void pointListFileAndLimit() {
    Workbench& wb = *fx_->wb;
    PointEdit editor(wb, nullptr);
    editor.SetPointType(kMidpointType);
    Click(&editor, "optMPAdd_1");
    auto* mp = editor.findChild<QListWidget*>("lstMPPoints");
    for (int p = 0; p < 6; ++p) {  // 23 midpoints each: the sixth point hits the limit
      mp->clearSelection();
      mp->item(p)->setSelected(true);
      editor.AddHighlighted();
    }
    QCOMPARE(editor.Work().Selected.size(), size_t(kMaxSelectedPoints));
    QCOMPARE(fx_->sink.messages.back().title, std::string("Cannot Add"));

    const std::string file = fx_->TempPath("points.vpt");
    QVERIFY(editor.SaveTo(file));
    PointEdit reopened(wb, nullptr);
    QVERIFY(reopened.OpenFrom(file));
    QCOMPARE(reopened.Work().Selected, editor.Work().Selected);
    QCOMPARE(reopened.findChild<QListWidget*>("lstSelected")->count(), kMaxSelectedPoints);
  }

 private:
  std::unique_ptr<Opened> fx_;
};

QTEST_MAIN(TabulationScreensTest)
#include "tabulation_screens_test.moc"
