// The zone table screen: every mnemonic of the session's zone table with its
// full name and offset, in one of three orders, and the choice of one zone
// for the zone fields of an entry screen.
#pragma once

#include <QDialog>

#include <string>

#include "places/zone_list.h"
#include "screens/common/workbench.h"

class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace vintar {

class TimeZones : public QDialog {
  Q_OBJECT
 public:
  // `selecting`: opened from an entry screen, with a Select button that
  // returns the chosen zone; otherwise the table is only shown.
  TimeZones(Workbench& wb, QWidget* parent, bool selecting = true);

  void SetSort(ZoneSort sort);
  ZoneSort Sort() const { return sort_; }
  // The chosen zone after Select (empty before).
  const std::string& Mnemonic() const { return mnemonic_; }
  const std::string& Offset() const { return offset_; }
  QTreeWidget* List() const { return list_; }

 private:
  void Fill();
  void Choose();

  Workbench& wb_;
  ZoneSort sort_ = ZoneSort::Mnemonic;
  QTreeWidget* list_;
  QRadioButton* optionMnem_;
  QRadioButton* optionTime_;
  QRadioButton* optionFull_;
  QPushButton* select_ = nullptr;
  std::vector<ZoneListRow> rows_;
  std::string mnemonic_, offset_;
};

}  // namespace vintar
