// The point list editor: composes the research points of the session (chart
// points, fixed degrees, midpoints, house cusps, Arabic parts, chart
// almutens and prenatal positions, each with an optional transformation),
// chooses the parts and almuten files, and opens and saves point lists
// (.vpt). It edits a work copy; OK hands the copy to the workbench, Cancel
// drops it and raises the session's cancel flag.
#pragma once

#include <QDialog>

#include <string>

#include "screens/common/workbench.h"

class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QStackedWidget;

namespace vintar {

// Makes sure the research lists name a parts and an almuten file (the
// shipped vintar.arp and vintar.alm when none is named) and that both are
// loaded.
void EnsureResearchLists(Session& session, ResearchState& state);

class PointEdit : public QDialog {
  Q_OBJECT
 public:
  PointEdit(Workbench& wb, QWidget* parent);

  const ResearchState& Work() const { return work_; }
  // The type shown in cmbPointTypes (0 to 6).
  void SetPointType(int type);
  // Adds what is highlighted for the shown type; false when nothing was added.
  bool AddHighlighted();
  bool OpenFrom(const std::string& path);
  bool SaveTo(const std::string& path);
  // Takes another parts (Arabic parts shown) or almuten file (chart
  // almutens shown), after the warning when points are selected.
  bool UseListFile(const std::string& path);

 public slots:
  void accept() override;
  void reject() override;

 private:
  void FillItems();
  void FillSelected(int current = -1);
  void Remove();
  void Clear();
  void OpenList();
  void SaveList();
  void ChooseFile();

  Workbench& wb_;
  ResearchState work_;
  QComboBox* types_;
  QComboBox* transforms_;
  QStackedWidget* pages_;
  QListWidget* items_;
  QLineEdit* position_;
  QListWidget* mpPoints_;
  QRadioButton* mpSingle_;
  QRadioButton* mpAll_;
  QPushButton* file_;
  QListWidget* selected_;
};

}  // namespace vintar
