// The open and save dialogues of the File menu, on Qt's own (non-native)
// file dialogue so that they can carry the project's extras: the title of
// the selected project and its delete command when opening, the name rules
// and the overwrite question when saving.
#pragma once

#include <QFileDialog>

#include <string>

#include "screens/common/workbench.h"

class QLabel;
class QPushButton;

namespace vintar {

// Opens a project, or with session.MergeActive set picks one to merge
// ("Merge Project with Current Project", "&Merge"). Accepting returns the
// path; the caller opens it.
class OpenFile : public QFileDialog {
  Q_OBJECT
 public:
  OpenFile(Workbench& wb, QWidget* parent);

  std::string Path() const { return path_; }
  // The title line of a project file ("No Title Stored" without its .nat).
  void ShowTitleOf(const QString& file);
  QString TitleText() const;
  // The delete button: "Confirm Deletion", then every file of the project.
  // Returns the number of files deleted, -1 when nothing was.
  int DeleteProject(const QString& file);

 public slots:
  void accept() override;
  void reject() override;

 private:
  Workbench& wb_;
  QLabel* title_;
  QPushButton* delete_;
  std::string path_;
};

// Chooses the folder and name a project is saved under, or where the
// records of a split go. The name is checked on accepting: up to 80
// characters without extension (".dat" is added), and an existing file is
// overwritten only after "File Exists" is answered Yes (Cancel stays in the
// dialogue, No leaves it).
class SaveFile : public QFileDialog {
  Q_OBJECT
 public:
  enum class Purpose { Project, SplitTarget };
  SaveFile(Workbench& wb, QWidget* parent, Purpose purpose = Purpose::Project);

  std::string Path() const { return path_; }

 public slots:
  void accept() override;
  void reject() override;

 private:
  Workbench& wb_;
  Purpose purpose_;
  std::string path_;
};

}  // namespace vintar
