// The print screens: the record list's kinds and default subtitles, the
// research captions without the record list, the preview's pages, saving a
// PDF and the message of a printer that fails.
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include "core/project_ops.h"
#include "qt_support/qt_test_support.h"
#include "screens/common/drawing_view.h"
#include "screens/common/report_preview.h"

using namespace vintar;

namespace {

void OpenEinstein(testing::DesktopFixture& fx) {
  bool failed = false;
  QVERIFY(OpenProject(fx.session, fx.CopySample("einstein"), failed));
}

ReportBuilder Viability(Session& session) {
  return [&session](ReportDocument& doc, const ReportOptions& options) { ViabilityReport(doc, session, options); };
}

}  // namespace

class ReportPreviewTest : public QObject {
  Q_OBJECT
 private slots:
  void recordListKinds_data() {
    QTest::addColumn<QString>("option");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("subTitle");
    QTest::newRow("all") << "OptionAll" << 0 << "All Events";
    QTest::newRow("enabled") << "OptionEnabled" << 1 << "All Enabled Events";
    QTest::newRow("disabled") << "OptionDisabled" << 2 << "All Disabled Events";
  }
  void recordListKinds() {
    QFETCH(QString, option);
    QFETCH(int, kind);
    QFETCH(QString, subTitle);
    testing::DesktopFixture fx;
    OpenEinstein(fx);
    PrintEvents screen(*fx.wb, nullptr);
    QCOMPARE(screen.windowTitle(), QString("Print List of Records"));
    screen.findChild<QRadioButton*>(option)->click();
    QCOMPARE(screen.Kind(), kind);
    QCOMPARE(QString::fromStdString(screen.Options().SubTitle), subTitle);
    screen.findChild<QLineEdit*>("SubTitle")->setText("Mine");
    QCOMPARE(screen.Options().SubTitle, std::string("Mine"));
    QVERIFY(screen.Pages()->PageCount() >= 1);
  }

  void researchCaptionsLeaveOutTheRecords() {
    testing::DesktopFixture fx;
    OpenEinstein(fx);
    PrintGraph angles(*fx.wb, nullptr, "Print Angles Report", Viability(fx.session));
    const int alone = angles.Pages()->PageCount();
    angles.findChild<QCheckBox*>("CheckEvents")->setChecked(true);
    QVERIFY(angles.Options().AlsoEnabledRecords);
    QCOMPARE(angles.Pages()->PageCount(), alone + 1);

    PrintGraph table(*fx.wb, nullptr, "Print Table", Viability(fx.session));
    auto* check = table.findChild<QCheckBox*>("CheckEvents");
    QVERIFY(check->isHidden());
    check->setChecked(true);
    QVERIFY(!table.Options().AlsoEnabledRecords);
  }

  void pageNavigation() {
    ReportPagesView view;
    view.SetPages(std::vector<QImage>(3, QImage(20, 30, QImage::Format_RGB32)));
    auto* next = view.findChild<QPushButton*>("NextPageButton");
    auto* prev = view.findChild<QPushButton*>("PrevPageButton");
    QCOMPARE(view.CurrentPage(), 1);
    QVERIFY(!prev->isEnabled());
    next->click();
    next->click();
    QCOMPARE(view.CurrentPage(), 3);
    QVERIFY(!next->isEnabled());
    QCOMPARE(view.findChild<QLabel*>("PageLabel")->text(), QString("Page 3 of 3"));
    view.SetPages({});
    QCOMPARE(view.CurrentPage(), 0);
  }

  void pdfAndPrintingErrors() {
    testing::DesktopFixture fx;
    OpenEinstein(fx);
    PrintGraph screen(*fx.wb, nullptr, "Print Angles Report", Viability(fx.session));
    const QString pdf = QString::fromStdString(fx.TempPath("viability.pdf"));
    QVERIFY(screen.SavePdf(pdf));
    QVERIFY(QFile(pdf).size() > 0);
    QVERIFY(fx.sink.messages.empty());

    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(QString::fromStdString(fx.TempPath("no/such/folder/out.pdf")));
    QVERIFY(!screen.PrintTo(printer));
    QCOMPARE(fx.sink.messages.size(), size_t(1));
    QCOMPARE(fx.sink.messages[0].title, std::string("Printing Error"));
    QVERIFY(fx.sink.messages[0].text.rfind("Error occured during printing:\n\n", 0) == 0);
  }

  void drawingViewSaves() {
    testing::DesktopFixture fx;
    DrawingView view(nullptr, &fx.session);
    QVERIFY(!view.SavePictureTo(QString::fromStdString(fx.TempPath("none.png"))));  // nothing to paint
    view.SetPaint([](QPainter& painter, const QRectF& area) { painter.fillRect(area, Qt::red); });
    view.SetPreferredSize(QSizeF(40, 30));
    QVERIFY(view.SavePictureTo(QString::fromStdString(fx.TempPath("red.svg"))));
    QVERIFY(QFile::exists(QString::fromStdString(fx.TempPath("red.svg"))));
    QVERIFY(fx.sink.messages.empty());
    QVERIFY(!view.SavePictureTo(QString::fromStdString(fx.TempPath("red.bmp"))));
    QCOMPARE(fx.sink.messages.size(), size_t(1));
    QCOMPARE(fx.sink.messages[0].title, std::string("Save Picture"));
  }

  void tourShowsThePreview() {
    testing::DesktopFixture fx;
    OpenEinstein(fx);
    QStringList names;
    ScreenshotTourReports(*fx.wb, nullptr, [&](QWidget* w, const QString& name) {
      names << name;
      QVERIFY(testing::GrabNotBlank(w, name));
    });
    QCOMPARE(names, QStringList{"print_list_of_records"});
  }
};

QTEST_MAIN(ReportPreviewTest)
#include "report_preview_test.moc"
