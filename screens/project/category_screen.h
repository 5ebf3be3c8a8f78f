// The category screen (Category): the project's data categories with their
// types, in the order the records keep their values. Categories are added,
// renamed, given a type, moved and deleted on a working copy; Save checks
// the deletions and rebuilds every record's values in the new order.
#pragma once

#include <QDialog>

#include "core/record_edit.h"
#include "screens/common/workbench.h"

class QComboBox;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace vintar {

class Category : public QDialog {
  Q_OBJECT
 public:
  Category(Workbench& wb, QWidget* parent);

  const CategoryEditor& Editor() const { return editor_; }
  // The entry shown in the fields (0-based), -1 for none.
  int Selected() const;
  void Select(int position);

 public slots:
  void accept() override;  // btnSave
  void reject() override;  // CancelButton

 private:
  void Refresh(int select);
  void ShowSelected();
  void LeaveName();
  void ChooseType(int type);
  void Move(int delta);

  Workbench& wb_;
  CategoryEditor editor_;
  QTreeWidget* list_;
  QLineEdit* name_;
  QComboBox* type_;
  QPushButton* add_;
  QPushButton* delete_;
  QPushButton* up_;
  QPushButton* down_;
  bool loading_ = false;
};

}  // namespace vintar
