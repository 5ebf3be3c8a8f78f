// Record selection by category (CatSel, "Data Record Selection"): a list
// of conditions on what the records hold -- description, date, day range,
// detail level, zone, time, place, latitude, longitude and the project's
// own categories -- joined by And, Or and Xor with Not and brackets. OK
// flags every enabled record with a progress window and shows the result
// on the results screen (or, from the record editor, asks), either of
// which can switch the failures off.
#pragma once

#include <QDialog>

#include <vector>

#include "screens/common/workbench.h"

class QComboBox;
class QListWidget;

namespace vintar {

class CatSel : public QDialog {
  Q_OBJECT
 public:
  // Opened from the Research menu, OK shows the results screen; from the
  // record editor, the "Selection Finished" question.
  enum class Road { Menu, Editor };
  CatSel(Workbench& wb, QWidget* parent, Road road = Road::Menu);
  // Editor road: whether the last OK switched records off.
  bool Applied() const { return applied_; }

  void SelectConditions(const std::vector<int>& rows);  // from 1
  std::vector<int> SelectedConditions() const;
  QStringList Lines() const;
  // The run over the open project; false without conditions or when stopped.
  bool Run();
  const SelectionRun& LastRun() const { return run_; }

 public slots:
  void AddClicked();  // btnAdd
  void DeleteClicked();
  void ClearClicked();
  void ConnectiveClicked(int connective);
  void NotClicked();
  void BracketClicked();
  void FieldChanged();
  void LeaveValue();
  void accept() override;  // with no conditions it is Cancel

 private:
  void Refresh();
  Workbench& wb_;
  Road road_;
  bool applied_ = false;
  SelectionRun run_;
  QComboBox* field_;
  QComboBox* condition_;
  QComboBox* value_;
  QListWidget* list_;
};

}  // namespace vintar
