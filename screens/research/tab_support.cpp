#include "screens/research/tab_support.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QStringList>

#include "core/text.h"
#include "screens/common/qt_text.h"

namespace vintar {

QString QtFilter(const std::string& filter) {
  const QStringList parts = Q(filter).split(QLatin1Char('|'));
  QStringList names;
  for (int i = 0; i < parts.size(); i += 2) names << parts[i];
  return names.join(QStringLiteral(";;"));
}

QString StartFolder(const Session& session) {
  if (session.project.Open && !session.project.ProjectPath.empty())
    return QFileInfo(QPath(session.project.ProjectPath)).absolutePath();
  return QPath(session.paths.UserDataPath);
}

QString AskOpenPath(QWidget* parent, const Session& session, const QString& title, const std::string& filter) {
  return QFileDialog::getOpenFileName(parent, title, StartFolder(session), QtFilter(filter));
}

QString AskSavePath(QWidget* parent, const Session& session, const QString& title, const std::string& filter,
                    const QString& defaultName, const QString& extension) {
  QString path = QFileDialog::getSaveFileName(parent, title, StartFolder(session) + QLatin1Char('/') + defaultName,
                                              QtFilter(filter));
  if (!path.isEmpty() && QFileInfo(path).suffix().isEmpty()) path += extension;
  return path;
}

}  // namespace vintar
