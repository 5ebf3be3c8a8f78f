// The control data generator (RandParam, "Control Data Generator"): a new
// project of synthetic records -- wholly random or evenly spaced dates and
// random places in a latitude and longitude box, the open project's records
// with some of their year, day, time and place kept and the rest drawn
// afresh, the open project moved by a uniform time shift, or its dates,
// times and places shuffled among its records. OK checks the inputs, asks
// where the new project goes, writes it and opens it in place of the old.
#pragma once

#include <QDialog>

#include <functional>
#include <string>

#include "research/control.h"
#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QRadioButton;

namespace vintar {

class RandParam : public QDialog {
  Q_OBJECT
 public:
  RandParam(Workbench& wb, QWidget* parent);

  // The inputs as the engine takes them.
  ControlOptions Options() const;
  // The checks of OK, with their messages.
  bool Check();
  // Writes the control project as `datPath` and opens it. False after a
  // message; the open project is then unchanged.
  bool Generate(const std::string& datPath);
  // Where the new project goes; the Save As dialogue unless a test sets it.
  std::function<bool(std::string& path)> askPath;

 public slots:
  void accept() override;
  void UpdateControls();
  void LeavePeriod();

 private:
  Workbench& wb_;
  QRadioButton* basis_[2];
  QLineEdit* number_;
  QRadioButton* randDate_;
  QRadioButton* regDate_;
  QLineEdit* startDate_;
  QLineEdit* endDate_;
  QGroupBox* datesBox_;
  QGroupBox* replicateBox_;
  QCheckBox* replicate_[4];
  QCheckBox* shift_;
  QCheckBox* shuffle_;
  QLineEdit* period_;
  QComboBox* periodUnit_;
  QGroupBox* placesBox_;
  QLineEdit* latitude_[2];
  QLineEdit* longitude_[2];
};

}  // namespace vintar
