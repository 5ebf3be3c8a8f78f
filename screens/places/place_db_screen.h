// The place database screen: the names of places.fil in order, the fields of
// the current place, and Add, Find, Delete and Select. Changes are offered
// for saving before the screen moves to another place, finds, deletes,
// selects or closes.
#pragma once

#include <QDialog>

#include <functional>

#include "places/place_db.h"
#include "screens/common/workbench.h"

class QLineEdit;
class QListWidget;
class QPushButton;

namespace vintar {

class PlaceDB : public QDialog {
  Q_OBJECT
 public:
  // `selecting`: opened from an entry screen, with a Select button that
  // returns the current place; otherwise the database is only kept.
  PlaceDB(Workbench& wb, QWidget* parent, bool selecting = true);

  // The place chosen by Select (failed until then).
  const PlaceSelection& Selection() const { return selection_; }
  const PlaceScreen& State() const { return state_; }
  QListWidget* List() const { return list_; }

  // Asks for the characters Find looks for; false when cancelled. An input
  // box by default; a test replaces it.
  std::function<bool(QString& text)> askFindText;

 public slots:
  void reject() override;

 private:
  void Refresh();
  void RowChanged(int row);
  void Add();
  void Find();
  void Delete();
  void Select();

  Workbench& wb_;
  PlaceScreen state_;
  PlaceSelection selection_;
  QListWidget* list_;
  QLineEdit* name_;
  QLineEdit* latitude_;
  QLineEdit* longitude_;
  bool refreshing_ = false;
  bool closeRefused_ = false;  // the last close stopped at a wrong field
};

}  // namespace vintar
