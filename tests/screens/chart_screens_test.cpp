// The dynamic chart's screens driven through their widgets: the adjust
// spinners at their wrap points, the play steps, a bad date, the step
// interval, and the chart window itself.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QToolButton>
#include <QtTest>

#include <cmath>

#include "core/parse.h"
#include "core/project_ops.h"
#include "qt_support/qt_test_support.h"
#include "screens/chart/chart_adjust_screen.h"
#include "screens/chart/chart_opt.h"
#include "screens/chart/chart_view.h"
#include "screens/chart/keyword_edit.h"

using namespace vintar;

namespace {

struct ChartFixture {
  ChartFixture() {
    bool failed = false;
    ok = OpenProject(fx.session, fx.CopySample("einstein"), failed) && !failed;
    fx.session.prefs.AMPM = 0;
  }
  ChartAdjustState Radix(double hours) {
    ChartAdjustState radix;
    ok = ok && RadixAdjustState(fx.session, hours, radix);
    return radix;
  }
  testing::DesktopFixture fx;
  bool ok = false;
};

void Click(QWidget* parent, const char* name) {
  auto* button = parent->findChild<QAbstractButton*>(name);
  QVERIFY2(button, name);
  button->click();
}

}  // namespace

class ChartScreensTest : public QObject {
  Q_OBJECT
 private slots:
  void timeSpinWrapsMidnightOnTheSameDate() {
    ChartFixture f;
    const ChartAdjustState radix = f.Radix(0.0);
    QVERIFY(f.ok);
    ChartAdjust adjust(*f.fx.wb, nullptr, radix);
    auto* time = adjust.findChild<QLineEdit*>("ChartTim");
    QCOMPARE(time->text(), QString("0:00"));
    const double before = f.fx.session.charts.Slots[1].ChartJD;
    Click(adjust.findChild<QWidget*>("TimeSpin"), "DownButton");
    QCOMPARE(time->text(), QString("23:59"));
    QCOMPARE(adjust.State().Day, radix.Day);
    QVERIFY(std::fabs(f.fx.session.charts.Slots[1].ChartJD - before - 1439.0 / 1440.0) < 1e-6);

    // OK makes it the natal time.
    Click(&adjust, "OKButton");
    QCOMPARE(adjust.result(), int(QDialog::Accepted));
    QCOMPARE(QString::fromStdString(f.fx.session.project.Header.Time), QString("23:59"));
    QVERIFY(f.fx.session.project.Status.NatChanged);
  }

  void mcSpinWrapsAtAries() {
    ChartFixture f;
    const ChartAdjustState radix = f.Radix(-1);
    QVERIFY(f.ok);
    CastRadix(f.fx.session, radix);
    const double natalMC = f.fx.session.charts.Longitude[kGeocentric][1][kMidheaven];
    ChartAdjust adjust(*f.fx.wb, nullptr, radix);
    auto* mc = adjust.findChild<QLineEdit*>("ChartMC");
    mc->clear();
    QTest::keyClicks(mc, "359 55");
    emit mc->editingFinished();
    QCOMPARE(mc->text(), QString::fromLatin1("29\xB0" "55' Pi"));
    Click(adjust.findChild<QWidget*>("MCSpin"), "UpButton");
    QCOMPARE(mc->text(), QString::fromLatin1("0\xB0" "05' Ar"));
    Click(adjust.findChild<QWidget*>("MCSpin"), "DownButton");
    QCOMPARE(mc->text(), QString::fromLatin1("29\xB0" "55' Pi"));

    // Quit puts the radix back.
    Click(&adjust, "QuitButton");
    QCOMPARE(f.fx.session.charts.Longitude[kGeocentric][1][kMidheaven], natalMC);
    QCOMPARE(f.fx.session.project.Status.NatChanged, kFalse);
  }

  void playStepsAndTypedDates() {
    ChartFixture f;
    const ChartAdjustState radix = f.Radix(-1);
    QVERIFY(f.ok);
    ChartView view(*f.fx.wb, nullptr, radix);
    const int step = view.State().Options.StepDays;
    QVERIFY(step >= 1);
    struct Press {
      const char* button;
      int days;
    } presses[] = {{"StepForwardButton", 1}, {"FastForwardButton", 10}, {"StepBackButton", -1},
                   {"FastBackButton", -10}};
    for (const Press& p : presses) {
      const double before = view.State().JD;
      Click(&view, p.button);
      QVERIFY2(std::fabs(view.State().JD - before - p.days * step) < 1e-9, p.button);
    }

    // Dragging the handle rightwards moves the date on a step per few pixels.
    auto* handle = view.findChild<QWidget*>("lblDrag");
    view.resize(1060, 720);
    const double beforeDrag = view.State().JD;
    QTest::mousePress(handle, Qt::LeftButton, {}, QPoint(20, 5));
    QTest::mouseMove(handle, QPoint(44, 5));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(44, 5));
    QCOMPARE(view.State().JD - beforeDrag, 3.0 * step);

    // A date that does not parse stays in the field with the parser's message.
    auto* date = view.findChild<QLineEdit*>("StartDate");
    const double before = view.State().JD;
    const size_t told = f.fx.sink.messages.size();
    date->setText("45 Zog 1900");
    emit date->editingFinished();
    QCOMPARE(date->text(), QString("45 Zog 1900"));
    QCOMPARE(view.State().JD, before);
    QCOMPARE(f.fx.sink.messages.size(), told + 1);
    emit date->editingFinished();  // leaving the field again tells nothing new
    QCOMPARE(f.fx.sink.messages.size(), told + 1);
    date->setText("1 Jun 1905");
    emit date->editingFinished();
    double jd = 0;
    QVERIFY(ParseChartDate(f.fx.session, "1 Jun 1905", jd));
    QCOMPARE(view.State().JD, jd);

    // Choosing an event moves the chart to it; the check box is its flag.
    auto* events = view.findChild<QListWidget*>("EventList");
    QCOMPARE(events->count(), int(f.fx.session.project.Header.RecordCount));
    events->setCurrentRow(2);
    QCOMPARE(view.State().JD, f.fx.session.project.Events[3].JulianDay);
    auto* enabled = view.findChild<QCheckBox*>("chkEnabled");
    QVERIFY(enabled->isChecked());
    enabled->click();
    QCOMPARE(f.fx.session.project.Events[3].Enabled, kFalse);

    view.findChild<QComboBox*>("DynMethod")->setCurrentIndex(kSecondary);
    view.resize(1060, 720);
    QVERIFY(testing::GrabNotBlank(&view, "chart_view"));
  }

  void intervalBelowOneIsOne() {
    ChartFixture f;
    QVERIFY(f.ok);
    const char* typed[] = {"0", "-3", "abc"};
    for (const char* text : typed) {
      ChartOpt options(*f.fx.wb, nullptr, LoadChartOptions(f.fx.session), kTransits);
      options.findChild<QLineEdit*>("txtInterval")->setText(text);
      Click(&options, "OKButton");
      QCOMPARE(options.result(), int(QDialog::Accepted));
      QCOMPARE(options.Options().StepDays, int16_t(1));
      QCOMPARE(options.findChild<QLineEdit*>("txtInterval")->text(), QString("1"));
      QCOMPARE(LoadChartOptions(f.fx.session).StepDays, int16_t(1));
    }
    // A bad orb keeps the screen open.
    ChartOpt options(*f.fx.wb, nullptr, LoadChartOptions(f.fx.session), kTransits);
    options.findChild<QLineEdit*>("txtOrb")->setText("x");
    Click(&options, "OKButton");
    QCOMPARE(options.result(), int(QDialog::Rejected));
    QCOMPARE(QString::fromStdString(f.fx.sink.messages.back().title), QString("Error in Angle"));
  }

  void keywordsAreSaved() {
    ChartFixture f;
    QVERIFY(f.ok);
    KeyWordEdit edit(*f.fx.wb, nullptr);
    edit.findChild<QComboBox*>("Item")->setCurrentIndex(kFirstHouseItem + 6);
    edit.findChild<QLineEdit*>("Text1")->setText("partners");
    edit.findChild<QComboBox*>("Item")->setCurrentIndex(2);
    edit.findChild<QLineEdit*>("Text1")->setText("vitality");
    Click(&edit, "OKButton");
    const KeywordTable table = LoadKeywords(f.fx.session);
    QCOMPARE(QString::fromStdString(table.Text[kFirstHouseItem + 6]), QString("partners"));
    QCOMPARE(QString::fromStdString(table.Text[2]), QString("vitality"));
  }
};

QTEST_MAIN(ChartScreensTest)
#include "chart_screens_test.moc"
