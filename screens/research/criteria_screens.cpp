// The Research menu's criteria search, record selection and control data
// commands, and their pictures for the screenshot tour.
#include <QApplication>

#include "screens/common/tool_window.h"
#include "screens/research/cat_sel.h"
#include "screens/research/rand_param.h"
#include "screens/research/res_criteria.h"
#include "screens/research/research_menu.h"

namespace vintar {

void ShowCriteriaSearch(Workbench& wb, QWidget* parent) {
  if (!wb.session.project.Open) return;
  ShowToolWindow(new ResCriteria(wb, parent), &wb.session);
}

void ShowRecordSelection(Workbench& wb, QWidget* parent) {
  if (!wb.session.project.Open) return;
  ShowToolWindow(new CatSel(wb, parent), &wb.session);
}

bool SelectRecordsFromEditor(Workbench& wb, QWidget* parent) {
  if (!wb.session.project.Open) return false;
  CatSel screen(wb, parent, CatSel::Road::Editor);
  if (screen.exec() != QDialog::Accepted) {
    wb.session.DialogCancelled = kFalse;
    return false;
  }
  if (screen.Applied()) wb.Changed();
  return screen.Applied();
}

void ShowControlData(Workbench& wb, QWidget* parent) {
  ShowToolWindow(new RandParam(wb, parent), &wb.session);
}

void ScreenshotTourCriteria(Workbench& wb, QWidget* parent, const ShootFunction& shoot) {
  Session& s = wb.session;
  if (!s.project.Open) return;
  // The tour builds its list on a copy and leaves the user's state as found.
  const CriteriaList criteria = wb.criteria;
  const ResearchState research = wb.research;
  const SelectionList selection = wb.selection;
  wb.criteria = CriteriaList{};
  wb.selection = SelectionList{};
  std::vector<PointRef> points;
  for (const char* name : {"Sun", "Moon", "Mars"}) {
    PointRef ref;
    if (PointByName(s, wb.research, name, ref)) points.push_back(ref);
  }
  wb.research.Selected = points;
  {
    ResCriteria screen(wb, parent);
    SettleTourWindow(&screen);
    screen.ChooseDivision(kLongitudeData, 2);  // elements
    screen.SelectPoints({0});
    screen.SelectCells({1});
    screen.AddClicked();
    screen.ChooseDivision(kLongitudeData, 0);
    screen.SelectPoints({1});
    screen.SelectCells({4, 8, 12});
    screen.AddClicked();
    screen.SelectPoints({2});
    screen.SelectCells({1, 8});
    screen.AddClicked();
    screen.SelectCriteria({3});
    screen.OperatorClicked(kOrOperator);
    screen.SelectCriteria({2, 3});
    screen.BracketClicked();
    screen.ChooseDivision(kSeparationData, 50);
    screen.SelectPoints({0, 1});
    screen.SelectCells({1, 2});
    QApplication::processEvents();
    shoot(&screen, "research-criteria");
    if (screen.Search()) {
      const CriteriaRun& run = screen.LastRun();
      ResOut out(wb, parent, ResOut::Origin::Criteria, run.PassedFlags, run.Enabled, run.Passed,
                 CriteriaLines(s, wb.research, wb.criteria));
      SettleTourWindow(&out);
      shoot(&out, "research-results-out");
    }
  }
  {
    AddSelCriterion(wb.selection, 1, 3, NormaliseSelValue(s, 1, "1 Jan 1900"));
    AddSelCriterion(wb.selection, 7, 7, "a");
    SetSelConnective(wb.selection, {2}, kOrOperator);
    CatSel screen(wb, parent);
    SettleTourWindow(&screen);
    shoot(&screen, "research-select");
  }
  {
    RandParam screen(wb, parent);
    SettleTourWindow(&screen);
    shoot(&screen, "research-control");
  }
  wb.criteria = criteria;
  wb.research = research;
  wb.selection = selection;
}

}  // namespace vintar
