// A small editor of the research point list for the criteria screen: pick a
// point type, an item (two for a midpoint, a zodiacal degree for a fixed
// position) and a transformation, and add it to the list; remove the
// highlighted entries. It works on a copy of the session's point list,
// which OK puts back and Cancel drops.
#pragma once

#include <QDialog>

#include <vector>

#include "screens/common/workbench.h"

class QComboBox;
class QLineEdit;
class QListWidget;

namespace vintar {

class CritPointPicker : public QDialog {
  Q_OBJECT
 public:
  CritPointPicker(Workbench& wb, QWidget* parent);

  const std::vector<PointRef>& Points() const { return points_; }
  // The point the controls describe; false (after a message for a fixed
  // degree that does not parse) when they describe none.
  bool CurrentRef(PointRef& ref);

 public slots:
  void AddClicked();
  void RemoveClicked();
  void accept() override;

 private:
  void FillItems();
  void RefreshList();

  Workbench& wb_;
  std::vector<PointRef> points_;
  QComboBox* type_;
  QListWidget* items_;
  QListWidget* items2_;
  QLineEdit* position_;
  QComboBox* transform_;
  QListWidget* list_;
};

// The shipped parts and almuten lists, loaded once when the session's point
// list names none, so that parts and almutens can be offered at once.
void EnsurePointFiles(Workbench& wb);

}  // namespace vintar
