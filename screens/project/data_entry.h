// The record entry screen (DataEntry): the project's records in a list, the
// fields of the chosen record with their checks on leaving each field, the
// detail level that decides which fields apply, the record's category
// values, adding, deleting, enabling and sorting records. The records are
// copied aside on opening; OK checks and keeps the edits, Cancel offers to
// drop them.
#pragma once

#include <QDialog>

#include <map>
#include <string>
#include <vector>

#include "core/record_edit.h"
#include "screens/common/workbench.h"

class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace vintar {

class EntryKeys;

class DataEntry : public QDialog {
  Q_OBJECT
 public:
  DataEntry(Workbench& wb, QWidget* parent);
  ~DataEntry() override;

  // False when the project could not be opened for editing (too many
  // records: the message has been shown); the screen is then not shown.
  bool Opened() const { return opened_; }
  // The record shown in the fields, 0 for none.
  int32_t CurrentRecord() const { return current_; }
  void SelectRecord(int32_t number);
  // Runs the check of the field that has the focus, as leaving it would.
  void LeaveFocusedField();
  // Looks the place field up in the atlas and fills place, coordinates and
  // the zone in force at the record's date and time.
  void LookUpPlace();

 public slots:
  void accept() override;  // OKButton
  void reject() override;  // CancelButton, Esc, closing the window

 private:
  QLineEdit* AddEdit(const char* name, int width = 0);
  QComboBox* AddCategoryValue(int category);
  void BuildList();
  void RefreshLine(int32_t number);
  void LoadRecord(int32_t number);
  void ShowDetail(int level);
  void ShowMarker();
  void SetText(QLineEdit* edit, const std::string& text);
  bool Unchanged(QLineEdit* edit) const;
  void Refused(QWidget* field);
  void FillCategoryItems(int category);
  EventRecord& Record();

  void LeaveDescription();
  void LeaveDate();
  void LeaveRange();
  void LeaveZoneMnemonic();
  void LeaveZoneTime();
  void LeaveTime();
  void LeavePlace();
  void LeaveLatitude();
  void LeaveLongitude();
  void LeaveCategory(int category);
  void ChooseDetail(int level);
  void AddClicked();
  void DeleteClicked();
  void EnableClicked(bool enabled);
  void EnableAllClicked(bool enabled);
  void SortClicked();
  void SelectClicked();
  void UpdateButtons();

  Workbench& wb_;
  RecordEditCopy copy_;
  bool opened_ = false;
  bool loading_ = false;
  int32_t current_ = 0;

  QTreeWidget* list_ = nullptr;
  QWidget* fieldsPanel_ = nullptr;
  QFormLayout* detailForm_ = nullptr;
  QLineEdit* description_ = nullptr;
  QLineEdit* date_ = nullptr;
  QLineEdit* range_ = nullptr;
  QLabel* marker_ = nullptr;
  QRadioButton* detail_[4] = {};
  QLineEdit* zoneMnemonic_ = nullptr;
  QLineEdit* zoneTime_ = nullptr;
  QLineEdit* time_ = nullptr;
  QLineEdit* place_ = nullptr;
  QPushButton* lookup_ = nullptr;
  QLineEdit* latitude_ = nullptr;
  QLineEdit* longitude_ = nullptr;
  std::vector<QComboBox*> values_;  // category c at c - 1
  QWidget* zoneRow_ = nullptr;
  QWidget* placeRow_ = nullptr;
  QPushButton* add_ = nullptr;
  QPushButton* delete_ = nullptr;
  QPushButton* enable_ = nullptr;
  QPushButton* disable_ = nullptr;
  QPushButton* enableAll_ = nullptr;
  QPushButton* disableAll_ = nullptr;
  QPushButton* sort_ = nullptr;
  QPushButton* select_ = nullptr;  // btnSel
  EntryKeys* keys_ = nullptr;
  // The text each field showed when it was filled or last accepted, so that
  // leaving an untouched field checks nothing.
  std::map<QLineEdit*, QString> shown_;
};

}  // namespace vintar
