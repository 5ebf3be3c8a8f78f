#include "screens/groups/groups_menu.h"

namespace vintar {

void ShowGroupSearch(Workbench&, QWidget*) {}
void ShowGroupStrips(Workbench&, QWidget*) {}
void ShowGroupReport(Workbench&, QWidget*) {}
void ScreenshotTourGroups(Workbench&, QWidget*, const std::function<void(QWidget*, const QString&)>&) {}

}  // namespace vintar
