#include "screens/research/research_menu.h"

namespace vintar {

void ScreenshotTourResearch(Workbench& wb, QWidget* parent, const ShootFunction& shoot) {
  if (!wb.session.project.Open) return;
  ScreenshotTourTabulation(wb, parent, shoot);
  ScreenshotTourCriteria(wb, parent, shoot);
}

}  // namespace vintar
