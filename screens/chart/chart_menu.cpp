#include "screens/chart/chart_menu.h"

#include <QComboBox>
#include <QListWidget>

#include "core/project_file.h"
#include "screens/chart/chart_adjust_screen.h"
#include "screens/chart/chart_opt.h"
#include "screens/chart/chart_view.h"
#include "screens/common/tool_window.h"
#include "screens/chart/keyword_edit.h"

namespace vintar {

namespace {
void ShowChartView(ChartView* view) {
  view->setWindowFlag(Qt::Window);
  view->setAttribute(Qt::WA_DeleteOnClose);
  view->show();
  view->raise();
  view->activateWindow();
}
}  // namespace

void ShowDynamicChart(Workbench& wb, QWidget* parent, double localHours) {
  Session& s = wb.session;
  if (!s.project.Open || ProjectTooLarge(s)) return;
  ChartAdjustState radix;
  if (!RadixAdjustState(s, localHours, radix)) return;
  ShowChartView(new ChartView(wb, parent, radix));
}

void ShowRecordChart(Workbench& wb, QWidget* parent, int record) {
  Session& s = wb.session;
  if (!s.project.Open || ProjectTooLarge(s)) return;
  ChartAdjustState radix;
  RadixLabel label;
  if (!RecordAdjustState(s, record, radix, &label)) return;
  ShowChartView(new ChartView(wb, parent, radix, label));
}

void ScreenshotTourChart(Workbench& wb, QWidget* parent,
                         const std::function<void(QWidget*, const QString&)>& shoot) {
  Session& s = wb.session;
  if (!s.project.Open) return;
  ChartAdjustState radix;
  if (!RadixAdjustState(s, -1, radix)) return;
  // The radix and the options are put back afterwards: the tour changes nothing.
  const ChartAdjustState before = radix;


  {
    ChartView view(wb, parent, radix);
    // Secondary progressions at the fifth event, where the list shows a choice.
    if (auto* method = view.findChild<QComboBox*>("DynMethod")) method->setCurrentIndex(kSecondary);
    if (auto* events = view.findChild<QListWidget*>("EventList"); events && events->count() > 4)
      events->setCurrentRow(4);
    SettleTourWindow(&view);
    shoot(&view, "chart-view");
    view.close();

    ChartOpt options(wb, &view, view.State().Options, view.State().DynamicType);
    SettleTourWindow(&options);
    shoot(&options, "chart-options");
    options.close();

    ChartAdjust adjust(wb, &view, radix);
    SettleTourWindow(&adjust);
    shoot(&adjust, "chart-adjust");
    adjust.hide();  // not a Quit: that would recast; the radix is put back below

    KeyWordEdit keywords(wb, &view);
    SettleTourWindow(&keywords);
    shoot(&keywords, "chart-keywords");
    keywords.hide();
  }
  CastRadix(s, before);
}

}  // namespace vintar
