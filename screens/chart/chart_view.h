// The dynamic chart (ChartView): the trial radix with the moving chart
// around it, the date line with the age, the play controls that step the
// date, the aspects between the wheels with their keywords, and the
// project's events (selecting one moves the chart to its date).
#pragma once

#include <QTimer>
#include <QWidget>

#include <optional>
#include <vector>

#include "output/chart_wheel.h"
#include "rectify/dynamic_chart.h"
#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QToolButton;
class QPushButton;

namespace vintar {

class DrawingView;

// The wheel's data from the two chart slots: radix houses and points inside,
// the moving points of the options outside, the aspects between them.
WheelData ChartWheelData(const Session& session, const DynamicChartState& state,
                         const std::vector<ChartAspect>& aspects);

class ChartView : public QWidget {
  Q_OBJECT
 public:
  // `radix` has been read from the project (RadixAdjustState); the view
  // casts it and opens at the first enabled event (today without events).
  // With a `label` the radix is another chart than the project's birth
  // chart (a record's, RecordAdjustState): the window and the wheel take its
  // name, and its time is not adjusted (that would store it as the birth time).
  ChartView(Workbench& wb, QWidget* parent, const ChartAdjustState& radix,
            std::optional<RadixLabel> label = std::nullopt);

  const DynamicChartState& State() const { return state_; }
  const ChartAdjustState& Radix() const { return radix_; }
  const std::vector<ChartAspect>& Aspects() const { return aspects_; }
  bool Playing() const { return timer_.isActive(); }

 public slots:
  // Moves the chart to `jd` and the event list to the event nearest it.
  void SetDate(double jd);
  // One step of StepDays (ten with `fast`) forward (direction > 0) or back.
  void Step(int direction, bool fast = false);
  void Play(int direction);
  void Stop();
  // The dialogs, modal.
  void OpenAdjust();
  void OpenOptions();
  void OpenKeywords();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void CastOwnRadix();
  void Recompute();
  void ShowAspects();
  void ShowKeywords();
  void FillEvents();
  void SelectNearestEvent();
  void EventChosen(int row);
  void EnabledClicked(bool enabled);
  void DateTyped();

  Workbench& wb_;
  ChartAdjustState radix_;
  std::optional<RadixLabel> label_;
  DynamicChartState state_;
  std::vector<ChartAspect> aspects_;
  WheelData wheelData_;  // kept: the chart slots are shared with other open charts
  KeywordTable keywords_;
  QTimer timer_;
  int playDirection_ = 1;
  bool syncing_ = false;   // the list is being moved by the chart, not the user
  QString rejectedDate_;   // a typed date that did not parse, told once
  double dragX_ = 0.0;
  bool dragging_ = false;

  DrawingView* wheel_;
  QLabel* drag_;
  QLineEdit* date_;
  QLabel* age_;
  QComboBox* method_;
  QComboBox* harmonic_;
  QListWidget* aspectList_;
  QLabel* keyBox_;
  QListWidget* events_;
  QCheckBox* enabled_;
};

}  // namespace vintar
