// vintar-desktop: the desktop program. With --screenshot DIR PROJECT.dat it
// opens the project, visits each main screen, saves each as a PNG in DIR
// and exits (works under QT_QPA_PLATFORM=offscreen).
#include <QApplication>

#include "screens/main_menu.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setApplicationName("Vintar");
  QApplication::setOrganizationName("Vintar");
  return vintar::RunDesktop(app);
}
