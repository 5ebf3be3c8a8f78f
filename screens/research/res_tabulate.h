// The tabulation screen: the data type, its division and the division's
// settings (harmonic, number of divisions, anchor point, aspect orb, range
// or century), the rulership scheme, the treatment of charts without an
// exact time, and the points to count. OK checks the settings, runs the
// tabulation over the open project with a progress window whose Stop ends
// it, keeps the settings for next time and opens the results window.
#pragma once

#include <QDialog>

#include <array>

#include "research/tabulate.h"
#include "screens/common/workbench.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QRadioButton;
class QSpinBox;

namespace vintar {

class TabulationWindow;

class ResTabulate : public QDialog {
  Q_OBJECT
 public:
  ResTabulate(Workbench& wb, QWidget* parent);

  void SetDataType(int dataType);
  // The division by its code; false when the data type has no such code.
  bool SetDivision(int code);
  // The settings as the controls hold them, without checks.
  TabulateParams Params() const;
  // The checks of OK; false after the message. Corrects the harmonic box
  // when the harmonic does not give whole degrees.
  bool Check(TabulateParams& params);
  // The run of OK: checks, tabulates and opens the results window, which
  // it returns (null when nothing ran).
  TabulationWindow* Run();

 public slots:
  void accept() override;

 private:
  void DataTypeChanged();
  void DivisionChanged();
  void HarmonicChanged();
  void AnchorLeft();
  void FillPoints();
  void SelectPoints();
  int DataType() const;
  int Code() const;

  Workbench& wb_;
  std::array<QRadioButton*, kDataTypes> coords_{};
  QComboBox* divisions_;
  QListWidget* points_;
  QLineEdit* harmonic_;
  QLabel* modulus_;
  QSpinBox* userDivisions_;
  QLabel* anchorLabel_;
  QLineEdit* anchor_;
  std::array<QRadioButton*, 2> rulers_{};
  std::array<QRadioButton*, 3> inexact_{};
  double anchorValue_ = 0;
  bool filling_ = false;
};

}  // namespace vintar
