#include "cli/output/gui_app.h"

#include <QGuiApplication>

#include <cstdlib>
#include <memory>

namespace vintar::cli {

void EnsureGuiApplication() {
  if (QGuiApplication::instance()) return;
  if (!std::getenv("QT_QPA_PLATFORM")) ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  static int argc = 1;
  static char name[] = "vintar";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QGuiApplication> app = std::make_unique<QGuiApplication>(argc, argv);
}

}  // namespace vintar::cli
