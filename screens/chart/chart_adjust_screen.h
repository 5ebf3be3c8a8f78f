// Hand adjustment of the trial radix (ChartAdjust): the birth time by the
// minute, the Midheaven by ten minutes of arc with the time that follows it,
// and the Ascendant that results. OK makes the time the project's natal
// time; Quit puts the radix back as it was.
#pragma once

#include <QDialog>
#include <QWidget>

#include "rectify/dynamic_chart.h"
#include "screens/common/workbench.h"

class QLabel;
class QLineEdit;
class QToolButton;

namespace vintar {

// A pair of arrow buttons (UpButton, DownButton) that step a value.
class SpinButtons : public QWidget {
  Q_OBJECT
 public:
  explicit SpinButtons(QWidget* parent);
 signals:
  void stepped(int direction);
};

class ChartAdjust : public QDialog {
  Q_OBJECT
 public:
  // `radix` is the chart standing in its slot.
  ChartAdjust(Workbench& wb, QWidget* parent, const ChartAdjustState& radix);

  const ChartAdjustState& State() const { return state_; }

 public slots:
  void accept() override;  // OKButton: the time becomes the natal time
  void reject() override;  // QuitButton: the radix as it was

 private:
  void ShowChart();
  void SpinTime(int direction);
  void SpinMC(int direction);
  bool TimeTyped();
  bool MCTyped();

  Workbench& wb_;
  ChartAdjustState original_;
  ChartAdjustState state_;
  QLineEdit* time_;
  QLineEdit* mc_;
  QLabel* asc_;
};

}  // namespace vintar
