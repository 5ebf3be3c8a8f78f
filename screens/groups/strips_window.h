// The chart strips window (Groups, "Group/Family Comparisons"): up to ten
// charts drawn one above the other as the harmonic circle cut open, so that
// a pattern they share stands as a column of glyphs. The user picks the
// charts, the harmonic (the modulus is 360/H), the points shown, a midpoint
// partner, a point drawn in colour and a zoom across; prints the strips or
// saves them as a picture. Double-clicking a strip opens the chart wheel of
// its record.
#pragma once

#include <QWidget>

#include <vector>

#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QScrollArea;
class QSpinBox;

namespace vintar {

class DrawingView;

class Groups : public QWidget {
  Q_OBJECT
 public:
  Groups(Workbench& wb, QWidget* parent);

  // Fills the controls from the strips' table and draws them again.
  void Reload();
  // Takes the lists and the harmonic into the table, reads what is missing
  // and redraws; false when the positions could not be read.
  bool Refresh();
  DrawingView* View() const { return view_; }
  // The dynamic chart of the record in the strip under `point` (the strips'
  // coordinates); nothing off the strips or on an empty one.
  void OpenStripChart(QPointF point);

 public slots:
  void Print();
  void SavePicture();

 protected:
  void resizeEvent(class QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ChartsChanged();
  void ApplyZoom();

  Workbench& wb_;
  std::vector<int> charts_;  // record of each lstCharts line
  bool filling_ = false;
  QListWidget* chartList_;
  QListWidget* displayList_;
  QComboBox* highList_;
  QCheckBox* checkMidPoints_;
  QComboBox* midPointList_;
  QSpinBox* plotModulus_;
  QLabel* modulus_;
  QComboBox* zoom_;
  QScrollArea* scroll_;
  DrawingView* view_;
};

// Opens the strips window on the table as it stands (or brings the open one
// forward, filled again).
void OpenStripsWindow(Workbench& wb, QWidget* parent);

}  // namespace vintar
