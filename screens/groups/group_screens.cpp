#include <QApplication>
#include <QListWidget>

#include "screens/common/tool_window.h"
#include "screens/groups/group_search_screen.h"
#include "screens/groups/groups_menu.h"
#include "screens/groups/grp_auto.h"
#include "screens/groups/strips_window.h"

namespace vintar {

namespace {

template <class T>
T* OpenWindow(const char* name) {
  for (QWidget* w : QApplication::topLevelWidgets())
    if (auto* t = qobject_cast<T*>(w); t && w->objectName() == name && w->isVisible()) return t;
  return nullptr;
}

}  // namespace

void ShowGroupSearch(Workbench& wb, QWidget* parent) {
  if (!wb.session.project.Open) return;
  if (GroupSearch* open = OpenWindow<GroupSearch>("GroupSearch")) {
    open->raise();
    open->activateWindow();
    return;
  }
  ShowToolWindow(new GroupSearch(wb, parent), &wb.session);
}

void ShowGroupStrips(Workbench& wb, QWidget* parent) {
  Session& s = wb.session;
  if (!s.project.Open) return;
  if (wb.strips.LastUsed() == 0) {
    // Nothing shown yet: the first charts of the project.
    std::vector<int> records = GroupSearchCharts(s);
    if (records.empty()) {
      s.ShowMessage("There are no records switched on in this project.", kIconStop, "Chart Strips");
      return;
    }
    if (records.size() > static_cast<size_t>(kStripCount)) records.resize(kStripCount);
    SetStripRecords(wb.strips, records);
  }
  OpenStripsWindow(wb, parent);
}

void ShowGroupReport(Workbench& wb, QWidget* parent) {
  if (!wb.session.project.Open || !CheckReportRecordCount(wb.session)) return;
  ShowToolWindow(new GrpAuto(wb, parent, 0), &wb.session);
}

void ScreenshotTourGroups(Workbench& wb, QWidget* parent, const std::function<void(QWidget*, const QString&)>& shoot) {
  Session& s = wb.session;
  if (!s.project.Open || GroupSearchCharts(s).empty()) return;
  // The tour leaves the family state as it found it.
  const GroupSearchState group = wb.group;
  const GroupSearchParams params = wb.groupParams;
  const StripTable strips = wb.strips;
  {
    GroupSearch search(wb, parent);
    SettleTourWindow(&search);
    shoot(&search, "group-search");
    search.Search();
    if (!search.ShownMatches().empty()) search.SelectMatch(search.ShownMatches().front());
    SettleTourWindow(&search);
    shoot(&search, "group-matches");

    if (search.SelectedMatch() > 0)
      StripsFromMatch(wb.strips, wb.group, search.SelectedMatch());
    else
      SetStripRecords(wb.strips, GroupSearchCharts(s));
    Groups window(wb, parent);
    SettleTourWindow(&window);
    shoot(&window, "group-strips");
  }
  {
    GrpAuto report(wb, parent, 0);
    SettleTourWindow(&report);
    shoot(&report, "group-report");
  }
  wb.group = group;
  wb.groupParams = params;
  wb.strips = strips;
}

}  // namespace vintar
