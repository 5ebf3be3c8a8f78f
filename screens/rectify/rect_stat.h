// The Auto Rectify screen (RectStat): runs the whole rectification without
// the user (graphs, peaks, candidate angles, three dynamic searches for each
// candidate time) and ranks the candidate times. The status lines show the
// run as it goes; btnStop stops it and, once the run has ended, closes the
// screen. The ranked rows open a chart or a dynamic search of their time.
#pragma once

#include <QWidget>

#include "rectify/auto_rectify.h"
#include "screens/common/workbench.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace vintar {

class ProgressWindow;

class RectStat : public QWidget {
  Q_OBJECT
 public:
  RectStat(Workbench& wb, QWidget* parent);

  // Runs once the window has been shown (the event loop runs the request).
  void Start(int mode);
  // Runs now: 0 from the events, 1 from the peaks of graphs 4 and 5, 2 from
  // the candidates of the angle search.
  void Run(int mode);

  const AutoRectifyResult& Result() const { return result_; }
  bool Running() const { return running_; }
  QString StatusText() const;
  // The mid time of the selected row, local hours; negative without one.
  double SelectedTime() const;

 public slots:
  void Stop();
  void OpenChart();
  void OpenTransits();
  void Print();

 private:
  void Fill();
  void ShowStatus(const std::string& text);

  Workbench& wb_;
  AutoRectifyResult result_;
  bool running_ = false;
  ProgressWindow* progress_ = nullptr;
  QLabel* status_;
  QTreeWidget* results_;
  QPushButton* stop_;
  QPushButton* chart_;
  QPushButton* transits_;
  QPushButton* print_;

  friend class StatusMirror;
};

}  // namespace vintar
