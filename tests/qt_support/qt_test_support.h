// What the desktop's tests share: a started session on temporary config and
// data folders with a capturing message sink, a copy of a bundled sample
// project, and grabbing a widget to a PNG in the build folder.
#pragma once

#include <QJsonObject>
#include <QStringList>
#include <QTemporaryDir>
#include <QWidget>

#include <memory>
#include <string>

#include "core/messages.h"
#include "core/session.h"
#include "screens/common/workbench.h"

namespace vintar::testing {

struct DesktopFixture {
  DesktopFixture();
  QTemporaryDir dir;  // config/, data/ and project copies
  CapturingSink sink;
  Session session{sink};
  std::unique_ptr<Workbench> wb;
  // Copies samples/<stem>.dat, .nat and .txt into the temporary folder and
  // returns the .dat path.
  std::string CopySample(const std::string& stem = "einstein");
  std::string TempPath(const std::string& name) const;
};

// Saves the widget's picture as VINTAR_PICTURES_DIR/<name>.png and returns
// false when it is blank (one colour throughout).
bool GrabNotBlank(QWidget* widget, const QString& name);

// `vintar --config-dir <temp>/cli-config --json ARGS`, with the data and
// configuration folders of its environment in the fixture's temporary
// folder: the JSON object it printed.
QJsonObject CliJson(const DesktopFixture& fx, const QStringList& args);

// Closes and deletes every top-level window a test left open.
void CloseAllWindows();

}  // namespace vintar::testing
