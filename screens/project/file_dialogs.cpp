#include "screens/project/file_dialogs.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include "core/project_ops.h"
#include "core/session.h"
#include "core/text.h"
#include "screens/common/qt_text.h"

namespace vintar {

namespace {

// Where the dialogues start: the open project's folder, else the user's data folder.
QString StartFolder(const Session& s) {
  const std::string& folder = !Trim(s.project.ProjectFolder).empty() ? s.project.ProjectFolder : s.paths.UserDataPath;
  return QPath(folder);
}

void CommonSetup(QFileDialog& dialog, const Session& s) {
  dialog.setOption(QFileDialog::DontUseNativeDialog, true);
  dialog.setNameFilters({QStringLiteral("Projects (*.dat)"), QStringLiteral("All files (*)")});
  dialog.setDirectory(StartFolder(s));
  dialog.setViewMode(QFileDialog::Detail);
  dialog.resize(760, 460);
}

bool IsProjectFile(const QString& file) {
  QFileInfo info(file);
  return info.isFile() && info.suffix().compare(QStringLiteral("dat"), Qt::CaseInsensitive) == 0;
}

}  // namespace

// OpenFile ------------------------------------------------------------------

OpenFile::OpenFile(Workbench& wb, QWidget* parent) : QFileDialog(parent), wb_(wb) {
  setObjectName("OpenFile");
  const Session& s = wb_.session;
  CommonSetup(*this, s);
  setAcceptMode(QFileDialog::AcceptOpen);
  setFileMode(QFileDialog::ExistingFile);
  setWindowTitle(Q(OpenDialogCaption(s)));
  setLabelText(QFileDialog::Accept, Q(OpenDialogButton(s)));

  auto* caption = new QLabel(tr("Project title:"), this);
  title_ = new QLabel(this);
  title_->setObjectName("lblTitle");
  title_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  caption->setBuddy(title_);
  delete_ = new QPushButton(tr("&Delete"), this);
  delete_->setObjectName("DeleteButton");
  delete_->setAutoDefault(false);
  delete_->setEnabled(false);
  if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
    const int row = grid->rowCount();
    grid->addWidget(caption, row, 0);
    grid->addWidget(title_, row, 1);
    grid->addWidget(delete_, row, 2);
  }
  connect(this, &QFileDialog::currentChanged, this, &OpenFile::ShowTitleOf);
  connect(delete_, &QPushButton::clicked, this, [this] {
    const QStringList files = selectedFiles();
    if (!files.isEmpty()) DeleteProject(files.first());
  });
}

void OpenFile::ShowTitleOf(const QString& file) {
  const bool project = IsProjectFile(file);
  delete_->setEnabled(project);
  title_->setText(project ? Q(ProjectTitlePreview(PathOf(file))) : QString());
}

QString OpenFile::TitleText() const { return title_->text(); }

int OpenFile::DeleteProject(const QString& file) {
  if (!IsProjectFile(file)) return -1;
  const int deleted = DeleteProjectFiles(wb_.session, PathOf(QFileInfo(file).absoluteFilePath()));
  if (deleted >= 0) {
    title_->clear();
    delete_->setEnabled(false);
    setDirectory(directory());  // show the folder without the deleted files
  }
  return deleted;
}

void OpenFile::accept() {
  const QStringList files = selectedFiles();
  if (files.isEmpty()) return;
  QFileInfo info(files.first());
  if (info.isDir()) {
    QFileDialog::accept();  // goes into the folder
    return;
  }
  const std::string path = PathOf(info.absoluteFilePath());
  if (!ProjectFileExists(wb_.session, path)) return;
  path_ = path;
  QDialog::accept();
}

void OpenFile::reject() {
  wb_.session.DialogCancelled = kTrue;
  QFileDialog::reject();
}

// SaveFile ------------------------------------------------------------------

SaveFile::SaveFile(Workbench& wb, QWidget* parent, Purpose purpose)
    : QFileDialog(parent), wb_(wb), purpose_(purpose) {
  setObjectName("SaveFile");
  const Session& s = wb_.session;
  CommonSetup(*this, s);
  setAcceptMode(QFileDialog::AcceptSave);
  setFileMode(QFileDialog::AnyFile);
  // The name check below asks its own question.
  setOption(QFileDialog::DontConfirmOverwrite, true);
  setWindowTitle(purpose_ == Purpose::Project ? tr("Save Project As") : tr("Save Split Records As"));
  setLabelText(QFileDialog::Accept, tr("&Save"));
  setLabelText(QFileDialog::FileName, tr("Project &name:"));
  if (purpose_ == Purpose::Project && !Trim(s.project.ProjectStem).empty()) selectFile(Q(s.project.ProjectStem));
}

void SaveFile::accept() {
  const QStringList files = selectedFiles();
  if (files.isEmpty()) return;
  QFileInfo info(files.first());
  if (info.isDir()) {
    QFileDialog::accept();  // goes into the folder
    return;
  }
  std::string name = PathOf(info.fileName());
  if (EndsWithIgnoreCase(name, ".dat")) name.resize(name.size() - 4);
  std::string path;
  Session& s = wb_.session;
  switch (CheckSaveFileName(s, PathOf(info.absolutePath()), name, path)) {
    case SaveNameCheck::Accepted:
      path_ = path;
      if (purpose_ == Purpose::Project) AcceptSaveFileName(s, path);
      QDialog::accept();
      break;
    case SaveNameCheck::Declined:
      reject();
      break;
    case SaveNameCheck::Invalid:
    case SaveNameCheck::StayOpen:
      break;
  }
}

void SaveFile::reject() {
  wb_.session.DialogCancelled = kTrue;
  QFileDialog::reject();
}

}  // namespace vintar
