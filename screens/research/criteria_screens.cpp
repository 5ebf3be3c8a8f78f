#include "screens/research/research_menu.h"

namespace vintar {

void ShowCriteriaSearch(Workbench&, QWidget*) {}
void ShowRecordSelection(Workbench&, QWidget*) {}
void ShowControlData(Workbench&, QWidget*) {}
void ScreenshotTourCriteria(Workbench&, QWidget*, const ShootFunction&) {}

}  // namespace vintar
