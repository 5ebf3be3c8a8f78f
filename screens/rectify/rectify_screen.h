// The event graphs screen (Rectify): the three harmonic event graphs of the
// open project, each captioned with its settings and statistics, a read-out of the bar under the
// mouse, and the peaks that the user flags by clicking or dragging over the
// bars. Its buttons open the event list, the harmonics, the graph options,
// the viability report and the angle search. The graphs are rebuilt when the
// window is activated after anything marked them stale; closing the window
// writes the project's graph settings.
#pragma once

#include <QWidget>

#include <array>

#include "rectify/graphs.h"
#include "screens/common/workbench.h"

class QLabel;
class QPushButton;

namespace vintar {

class DrawingView;

class Rectify : public QWidget {
  Q_OBJECT
 public:
  Rectify(Workbench& wb, QWidget* parent);

  // Builds the graphs now (progress window); false when cancelled.
  bool Rebuild();
  // Repaints the graphs and their texts from the state.
  void Redraw();
  DrawingView* GraphView(int graph) const { return views_[graph]; }
  QString Readout() const;

  // The bar (0 to 119) of a graph under a point of its view, -1 outside.
  int BarAt(int graph, QPointF point) const;
  // Flags or clears one bar of a graph's peaks (a click on the bar).
  void SetPeakBar(int graph, int bar, bool flagged);

 public slots:
  void OpenHarmonics();
  void OpenPlanets();
  void OpenViability();
  void OpenAngleSearch();
  void ClearPeaks();
  void Print();

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void Clicked(int graph, QPointF point);
  void Hovered(int graph, QPointF point);

  Workbench& wb_;
  std::array<DrawingView*, kShownGraphs + 1> views_{};
  QLabel* heading_;
  QLabel* readout_;
  QPushButton* recalc_;
  bool declined_ = false;  // the last rebuild was cancelled: wait for the user
  bool building_ = false;
  bool dragValue_ = true;  // what a drag paints into the bars it crosses
};

}  // namespace vintar
