#include <QApplication>

#include <algorithm>

#include "output/research_reports.h"
#include "research/results.h"
#include "screens/common/report_preview.h"
#include "screens/common/tool_window.h"
#include "screens/research/extract_screen.h"
#include "screens/research/point_edit.h"
#include "screens/research/res_tabulate.h"
#include "screens/research/research_menu.h"
#include "screens/research/tab_results.h"

namespace vintar {

void ShowPointList(Workbench& wb, QWidget* parent) {
  auto* editor = new PointEdit(wb, parent);
  // Opened from the menu, nobody else reads the cancel flag.
  Session& s = wb.session;
  QObject::connect(editor, &QDialog::rejected, [&s] { s.DialogCancelled = kFalse; });
  ShowToolWindow(editor, &wb.session);
}

void ShowTabulate(Workbench& wb, QWidget* parent) {
  ShowToolWindow(new ResTabulate(wb, parent), &wb.session);
}

void ScreenshotTourTabulation(Workbench& wb, QWidget* parent, const ShootFunction& shoot) {
  Session& s = wb.session;
  if (!s.project.Open) return;
  // The tour leaves the point list and the last settings as it found them.
  const ResearchState research = wb.research;
  const TabulateParams params = wb.tabulate;
  bool byDefault = false;
  if (wb.research.Selected.empty()) {
    // Mars in the 36 sectors of its diurnal arc, the classic test of a
    // planet's place after rising; charts without time and place fall back
    // to Sun to Pluto by sign below.
    PointRef mars;
    mars.Item1 = 6;
    wb.research.Selected.push_back(mars);
    wb.tabulate = TabulateParams{};
    wb.tabulate.DataType = 6;
    wb.tabulate.Code = 504;
    byDefault = true;
  }
  {
    PointEdit points(wb, parent);
    SettleTourWindow(&points);
    shoot(&points, "research-points");
  }
  TabulateParams run;
  {
    ResTabulate screen(wb, parent);
    SettleTourWindow(&screen);
    shoot(&screen, "research-tabulate");
    run = screen.Params();
  }
  if (!CheckTabulateParams(s, run)) {
    run = TabulateParams{};
    run.Points = wb.research.Selected;
  }
  TabulationRun result = TabulateRun(s, wb.research, run);
  if (byDefault && (result.Failed || result.ChartsUsed == 0)) {
    run = TabulateParams{};
    run.Points.clear();
    for (int point = 3; point <= 11; ++point) {
      PointRef ref;
      ref.Item1 = static_cast<uint8_t>(point);
      run.Points.push_back(ref);
    }
    result = TabulateRun(s, wb.research, run);
  }
  if (!result.Failed && result.CellCount > 0) {
    TabulationWindow window(wb, std::move(result), parent);
    window.SetRemember(false);
    SettleTourWindow(&window);
    const struct {
      int display;
      const char* name;
    } views[] = {{kTabulationDisplay, "research-table"}, {kBarGraph, "research-bar"}, {kPolarGraph, "research-polar"}};
    for (const auto& view : views) {
      window.SetDisplay(view.display);
      QApplication::processEvents();
      shoot(&window, QString::fromLatin1(view.name));
    }
    const TabulationRun& shown = window.Run();
    {
      // The polar graph as it will print.
      PrintGraph preview(wb, &window, QStringLiteral("Print Polar Graph"),
                         [&s, &shown](ReportDocument& doc, const ReportOptions& options) {
                           ResearchResultsReport(doc, s, shown, kPolarGraph, 1, 0, options);
                         });
      SettleTourWindow(&preview);
      shoot(&preview, "research-print-preview");
    }
    const FilterBlock block{true, 1, std::min(3, shown.CellCount), 1, 1};
    Extract extract(wb, shown, block, &window);
    SettleTourWindow(&extract);
    shoot(&extract, "research-extract");
  }
  wb.research = research;
  wb.tabulate = params;
}

}  // namespace vintar
