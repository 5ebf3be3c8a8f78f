// The dynamic chart's options (ChartOpt): for each dynamic type the moving
// points shown, the aspected points of the radix, the aspect set and the
// orb; and the step of the play controls in days. OK writes "chtopts.fil".
#pragma once

#include <QDialog>

#include <array>

#include "rectify/dynamic_chart.h"
#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace vintar {

class ChartOpt : public QDialog {
  Q_OBJECT
 public:
  ChartOpt(Workbench& wb, QWidget* parent, const ChartOptions& options, int dynamicType);

  // The options as accepted (valid after OK).
  const ChartOptions& Options() const { return options_; }

 public slots:
  void accept() override;  // OKButton

 private:
  void TypeChosen(int index);
  void AspectsChosen(int index);
  void ShowRecord();
  void KeepChecks();

  Workbench& wb_;
  ChartOptions options_;
  ChartOptForm form_;
  QComboBox* type_;
  QComboBox* aspects_;
  QLineEdit* orb_;
  QLineEdit* interval_;
  std::array<QCheckBox*, kPoints + 1> moving_{};
  std::array<QCheckBox*, kPoints + 1> aspected_{};
};

}  // namespace vintar
