#include <QApplication>

#include <algorithm>

#include "research/results.h"
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
  ShowToolWindow(editor);
}

void ShowTabulate(Workbench& wb, QWidget* parent) { ShowToolWindow(new ResTabulate(wb, parent)); }

void ScreenshotTourTabulation(Workbench& wb, QWidget* parent, const ShootFunction& shoot) {
  Session& s = wb.session;
  if (!s.project.Open) return;
  auto settle = [](QWidget* w) {
    w->setWindowFlag(Qt::Window);
    w->show();
    QApplication::processEvents();
  };
  // The tour leaves the point list and the last settings as it found them.
  const ResearchState research = wb.research;
  const TabulateParams params = wb.tabulate;
  if (wb.research.Selected.empty()) {
    // Sun to Pluto by sign: a table that any project with charts fills.
    for (int point = 3; point <= 11; ++point) {
      PointRef ref;
      ref.Item1 = static_cast<uint8_t>(point);
      wb.research.Selected.push_back(ref);
    }
    wb.tabulate = TabulateParams{};
  }
  {
    PointEdit points(wb, parent);
    settle(&points);
    shoot(&points, "research-points");
  }
  TabulateParams run;
  {
    ResTabulate screen(wb, parent);
    settle(&screen);
    shoot(&screen, "research-tabulate");
    run = screen.Params();
  }
  if (!CheckTabulateParams(s, run)) {
    run = TabulateParams{};
    run.Points = wb.research.Selected;
  }
  TabulationRun result = TabulateRun(s, wb.research, run);
  if (!result.Failed && result.CellCount > 0) {
    TabulationWindow window(wb, std::move(result), parent);
    window.SetRemember(false);
    settle(&window);
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
    const FilterBlock block{true, 1, std::min(3, shown.CellCount), 1, 1};
    Extract extract(wb, shown, block, &window);
    settle(&extract);
    shoot(&extract, "research-extract");
  }
  wb.research = research;
  wb.tabulate = params;
}

}  // namespace vintar
