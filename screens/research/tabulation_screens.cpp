#include "screens/research/research_menu.h"

namespace vintar {

void ShowPointList(Workbench&, QWidget*) {}
void ShowTabulate(Workbench&, QWidget*) {}
void ScreenshotTourTabulation(Workbench&, QWidget*, const ShootFunction&) {}

}  // namespace vintar
