#include "qt_support/qt_test_support.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QPixmap>
#include <QProcess>

namespace vintar::testing {

DesktopFixture::DesktopFixture() {
  session.clock = Clock{2026, 11, 23, 12, 0, 0};
  StartupOptions options;
  options.ConfigDir = TempPath("config");
  options.UserDataPath = TempPath("data");
  QDir().mkpath(QString::fromStdString(options.ConfigDir));
  QDir().mkpath(QString::fromStdString(options.UserDataPath));
  StartSession(session, options);
  wb = std::make_unique<Workbench>(session);
  wb->notepad.launch = [](const std::vector<std::string>&) { return true; };
}

std::string DesktopFixture::TempPath(const std::string& name) const {
  return dir.path().toStdString() + "/" + name;
}

std::string DesktopFixture::CopySample(const std::string& stem) {
  for (const char* ext : {".dat", ".nat", ".txt"}) {
    QString from = QString(VINTAR_SAMPLES_DIR) + "/" + QString::fromStdString(stem) + ext;
    QString to = QString::fromStdString(TempPath(stem + ext));
    QFile::remove(to);
    QFile::copy(from, to);
    QFile(to).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  }
  return TempPath(stem + ".dat");
}

bool GrabNotBlank(QWidget* widget, const QString& name) {
  QDir().mkpath(VINTAR_PICTURES_DIR);
  QImage image = widget->grab().toImage();
  image.save(QString(VINTAR_PICTURES_DIR) + "/" + name + ".png");
  if (image.isNull()) return false;
  const QRgb first = image.pixel(0, 0);
  for (int y = 0; y < image.height(); y += 2)
    for (int x = 0; x < image.width(); x += 2)
      if (image.pixel(x, y) != first) return true;
  return false;
}

QJsonObject CliJson(const DesktopFixture& fx, const QStringList& args) {
  QProcess cli;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  env.insert("XDG_DATA_HOME", QString::fromStdString(fx.TempPath("cli-data")));
  env.insert("XDG_CONFIG_HOME", QString::fromStdString(fx.TempPath("cli-config")));
  cli.setProcessEnvironment(env);
  cli.start(VINTAR_CLI_PATH,
            QStringList{"--config-dir", QString::fromStdString(fx.TempPath("cli-config")), "--json"} + args);
  cli.waitForFinished(-1);
  return QJsonDocument::fromJson(cli.readAllStandardOutput()).object();
}

void CloseAllWindows() {
  for (QWidget* w : QApplication::topLevelWidgets()) w->close();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  qDeleteAll(QApplication::topLevelWidgets());
}

}  // namespace vintar::testing
