// The atlas look-up on its own: a place typed as "City, Country" or "City,
// State", a local date and time, and what the atlas knows of it (the
// coordinates, the zone and the offset in force then), with the table of
// the zone's changes.
#pragma once

#include <QDialog>

#include <string>

#include "places/atlas_entry.h"
#include "screens/common/workbench.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTreeWidget;

namespace vintar {

class ACSData : public QDialog {
  Q_OBJECT
 public:
  ACSData(Workbench& wb, QWidget* parent);

  // The Look Up button: reads the date and time, finds the place (with the
  // candidate list when needed) and shows it. False when a field is wrong,
  // the place is not found or the choice was cancelled (message shown).
  bool LookUp();
  bool Found() const { return found_; }
  const AtlasPlace& Place() const { return place_; }
  const AtlasEntryFields& Fields() const { return fields_; }

 private:
  void ShowResult();
  void ShowZones();

  Workbench& wb_;
  QLineEdit* placeText_;
  QLineEdit* date_;
  QLineEdit* time_;
  QLabel* placeName_;
  QLabel* latitude_;
  QLabel* longitude_;
  QLabel* zoneName_;
  QLabel* zone_;
  QLabel* notes_;
  QPushButton* zones_;
  bool found_ = false;
  AtlasPlace place_;
  AtlasEntryFields fields_;
  int year_ = 0;
};

// The changes of one zone of the time zone database over a span of years:
// the local clock when it changed, what it was set to, the new offset, its
// abbreviation and kind.
class ACSZones : public QDialog {
  Q_OBJECT
 public:
  ACSZones(Workbench& wb, QWidget* parent, const std::string& zoneName, int fromYear, int toYear);

  // Refills the table for the years shown; false when the database refused
  // (message shown).
  bool Fill();
  QTreeWidget* List() const { return list_; }

 private:
  Workbench& wb_;
  std::string zoneName_;
  QSpinBox* from_;
  QSpinBox* to_;
  QTreeWidget* list_;
};

}  // namespace vintar
