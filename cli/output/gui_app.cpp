#include "cli/output/gui_app.h"

#include <QGuiApplication>
#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace vintar::cli {

namespace {

// Qt's notes about the platform's runtime folder say nothing to a user of
// the command; everything else still reaches stderr.
void QuietHandler(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) return;
  if (message.startsWith(QStringLiteral("QStandardPaths: "))) return;
  std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

}  // namespace

void EnsureGuiApplication() {
  if (QGuiApplication::instance()) return;
  if (!std::getenv("QT_QPA_PLATFORM")) ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
  qInstallMessageHandler(QuietHandler);
  static int argc = 1;
  static char name[] = "vintar";
  static char* argv[] = {name, nullptr};
  static std::unique_ptr<QGuiApplication> app = std::make_unique<QGuiApplication>(argc, argv);
}

}  // namespace vintar::cli
