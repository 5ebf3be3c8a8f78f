// The research graphs and reports: the heads of the three reports, a long
// table breaking over pages under its "(Continued...)" heading, the graph
// drawn on the page, the pointer's cell found back from the layout, saving
// by extension, and runs with nothing to draw.
#include <QDir>
#include <QFile>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/project_ops.h"
#include "output/report_lines.h"
#include "output/drawing.h"
#include "output/research_reports.h"
#include "qt_support/qt_test_support.h"

using namespace vintar;

namespace {

// A tabulation of two points over `cells` cells of a division, counts
// spread unevenly, with the totals row and column filled.
TabulationRun MadeRun(int code, int cells) {
  TabulationRun run;
  run.Params.DataType = kLongitudeData;
  run.Params.Code = code;
  run.CellCount = run.UsedCells = cells;
  run.ColumnCount = 2;
  run.ColumnNames = {"", "Sun", "Moon"};
  run.ChartsUsed = 40;
  run.Tally.assign(cells + 2, std::vector<float>(4, 0.0f));
  for (int cell = 1; cell <= cells; ++cell)
    for (int c = 1; c <= 2; ++c) {
      const float n = float(1 + (cell * 7 + c * 3) % 11);
      run.At(cell, c) = n;
      run.At(cell, 3) += n;
      run.At(cells + 1, c) += n;
      run.At(cells + 1, 3) += n;
    }
  return run;
}

using testing::Has;
using testing::Texts;

bool HasPart(const std::vector<std::string>& texts, const std::string& part) {
  return std::any_of(texts.begin(), texts.end(), [&](const std::string& t) { return t.find(part) != t.npos; });
}

// Pixels other than white in the rows from `fromY` down.
int InkBelow(const QImage& page, int fromY) {
  int ink = 0;
  for (int y = std::max(0, fromY); y < page.height(); ++y)
    for (int x = 0; x < page.width(); ++x) ink += page.pixel(x, y) != qRgb(255, 255, 255);
  return ink;
}

}  // namespace

class ResearchGraphsTest : public QObject {
  Q_OBJECT
 private slots:
  void reportHeads_data() {
    QTest::addColumn<int>("display");
    QTest::addColumn<QString>("subtitle");
    QTest::addColumn<QString>("head");
    QTest::newRow("bar") << int(kBarGraph) << "Sub" << kResearchBarGraphTitle;
    QTest::newRow("polar") << int(kPolarGraph) << "" << kResearchPolarGraphTitle;
    QTest::newRow("table") << int(kTabulationDisplay) << "Sub" << kResearchTabulationTitle;
  }
  void reportHeads() {
    QFETCH(int, display);
    QFETCH(QString, subtitle);
    QFETCH(QString, head);
    testing::DesktopFixture fx;
    bool failed = false;
    QVERIFY(OpenProject(fx.session, fx.CopySample("einstein"), failed));
    const TabulationRun run = MadeRun(0, 12);
    auto doc = ReportDocument::A4Images(fx.session);
    ReportOptions options;
    options.SubTitle = subtitle.toStdString();
    ResearchResultsReport(*doc, fx.session, run, display, 3, 0, options);
    doc->End();
    const auto texts = Texts(*doc);
    QVERIFY(Has(texts, std::string("Vintar ") + kProgramVersion + " - " + head.toStdString()));
    QVERIFY(Has(texts, "  Project Title:"));
    QVERIFY(Has(texts, fx.session.project.Header.Title));
    QCOMPARE(Has(texts, "  SubTitle:"), !subtitle.isEmpty());
    QVERIFY(Has(texts, "  Points:"));
    QVERIFY(Has(texts, "Sun, Moon"));
    QVERIFY(Has(texts, "  Division Type:"));
    if (display == kTabulationDisplay) {
      QVERIFY(Has(texts, "TOTAL "));
      QVERIFY(HasPart(texts, "Avg Count = 6.42"));  // 77 counts of the Sun over 12 cells
    } else {
      // The graph fills the page under the head's last line.
      const double lh = doc->LineHeight();
      const int below = int((doc->Lines().back().y + 2) * lh);
      QVERIFY2(InkBelow(doc->Images().front(), below) > 2000, "no graph under the head");
    }
    QDir().mkpath(VINTAR_PICTURES_DIR);
    doc->Images().front().save(QString(VINTAR_PICTURES_DIR) + "/research_" + QTest::currentDataTag() + ".png");
  }

  void longTableBreaks_data() {
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("cells");
    QTest::addColumn<bool>("breaks");
    QTest::newRow("signs") << 0 << 12 << false;
    QTest::newRow("decanates") << 5 << 36 << false;  // an A4 page holds them
    QTest::newRow("degrees") << 8 << 120 << true;
  }
  void longTableBreaks() {
    QFETCH(int, code);
    QFETCH(int, cells);
    QFETCH(bool, breaks);
    testing::DesktopFixture fx;
    auto doc = ReportDocument::A4Images(fx.session);
    ReportOptions options;
    options.SubTitle = "A long table";
    ResearchTabulationReport(*doc, fx.session, MadeRun(code, cells), 2, options);
    doc->End();
    const std::string continued = std::string(kTabulationSection) + " - % of Total (Continued...)";
    QCOMPARE(doc->SheetCount() > 1, breaks);
    QCOMPARE(Has(Texts(*doc, 2), continued), breaks);
    // Every cell is printed once, and the total row last.
    const auto texts = Texts(*doc);
    QCOMPARE(std::count(texts.begin(), texts.end(), std::string("TOTAL")), 1L);
    QVERIFY(Has(Texts(*doc, doc->SheetCount()), "TOTAL"));
  }

  // The pointer finds the cell that was drawn where it points.
  void cellUnderPointer_data() {
    QTest::addColumn<int>("display");
    QTest::addColumn<int>("cells");
    QTest::newRow("bar 12") << int(kBarGraph) << 12;
    QTest::newRow("bar 36") << int(kBarGraph) << 36;
    QTest::newRow("polar 12") << int(kPolarGraph) << 12;
    QTest::newRow("polar 36") << int(kPolarGraph) << 36;
  }
  void cellUnderPointer() {
    QFETCH(int, display);
    QFETCH(int, cells);
    const TabulationRun run = MadeRun(5, cells);
    const QRectF area(10, 20, 700, 450);
    for (int cell = 1; cell <= cells; ++cell) {
      QPointF at;
      if (display == kBarGraph) {
        const QRectF plot = ResearchBarPlotRect(area);
        at = QPointF(plot.left() + (cell - 0.5) * plot.width() / cells, plot.center().y());
      } else {
        const double a = ((cell - 0.5) * 360.0 / cells - 90.0) * std::numbers::pi / 180.0;
        const double r = ResearchPolarRadius(area) / 2;
        at = ResearchPolarCentre(area) + QPointF(std::cos(a) * r, std::sin(a) * r);
      }
      QCOMPARE(ResearchGraphCellAt(run, display, area, at), cell);
    }
    QCOMPARE(ResearchGraphCellAt(run, display, area, area.bottomRight() + QPointF(50, 50)), 0);
  }

  void saveByExtension_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("magic");
    QTest::newRow("png") << "g.png" << QByteArray("\x89PNG");
    QTest::newRow("svg") << "g.SVG" << QByteArray("<?xml");
    QTest::newRow("pdf") << "g.pdf" << QByteArray("%PDF");
    QTest::newRow("gif") << "g.gif" << QByteArray();
  }
  void saveByExtension() {
    QFETCH(QString, name);
    QFETCH(QByteArray, magic);
    testing::DesktopFixture fx;
    const std::string path = fx.TempPath(name.toStdString());
    ResearchGraphRequest graph;
    graph.Display = kPolarGraph;
    std::string error;
    QCOMPARE(SaveResearchGraph(path, QSizeF(600, 400), fx.session, MadeRun(0, 12), graph, &error), !magic.isEmpty());
    QFile file(QString::fromStdString(path));
    if (magic.isEmpty()) {
      QVERIFY(!file.exists());
      QVERIFY(!error.empty());
      return;
    }
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.read(magic.size()) == magic);
  }

  // Nothing to draw: an empty column, a column out of range, no cells.
  void nothingToDraw() {
    testing::DesktopFixture fx;
    TabulationRun empty = MadeRun(0, 12);
    for (auto& row : empty.Tally) std::fill(row.begin(), row.end(), 0.0f);
    double level = -1;
    QVERIFY(!ExpectedLevel(empty, 1, 3, level));
    QCOMPARE(level, 0.0);
    QVERIFY(ExpectedLevel(MadeRun(0, 12), 1, 3, level));
    QCOMPARE(level, 1.0);  // the average as a proportion of itself
    TabulationRun none;
    for (const auto& [run, column] : {std::pair{empty, 1}, std::pair{MadeRun(0, 12), 9}, std::pair{none, 1}})
      for (int display : {int(kBarGraph), int(kPolarGraph)}) {
        ResearchGraphRequest graph;
        graph.Column = column;
        graph.Display = display;
        const QImage image = RenderDrawing(QSizeF(300, 200), [&](QPainter& p, const QRectF& area) {
          PaintResearchGraph(p, area, fx.session, run, graph);
        });
        QVERIFY(!image.isNull());
      }
  }
};

QTEST_MAIN(ResearchGraphsTest)
#include "research_graphs_test.moc"
