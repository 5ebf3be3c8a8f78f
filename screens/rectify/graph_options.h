// The option screens of the event graphs: the settings and points of each
// graph (RectOpt) and the harmonics of graphs 2 and 3 (SelHarms).
#pragma once

#include <QDialog>

#include <array>

#include "rectify/graphs.h"
#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QSpinBox;
class QTabBar;

namespace vintar {

// One page of settings, shown for the graph chosen in the `Graph` tab bar:
// coordinate, dynamic type (with the progression method of the session),
// the points folded. OK hands all three graphs to the engine, which marks
// them for rebuilding and writes the ".pla".
class RectOpt : public QDialog {
  Q_OBJECT
 public:
  RectOpt(Workbench& wb, QWidget* parent, const QString& title = QStringLiteral("Graph Options"));

  int ShownGraph() const;  // 1 to 3
  void ShowGraph(int graph);
  const GraphOptions& Options() const { return options_; }

 public slots:
  void accept() override;

 private:
  void Store();  // the page into options_
  void Load();   // options_ into the page
  void ShowMethod();
  int Coordinate() const;

  Workbench& wb_;
  GraphOptions options_;
  int shown_ = 1;
  QTabBar* graph_;
  QComboBox* coords_;
  QComboBox* dynType_;
  QLabel* method_;
  std::array<QCheckBox*, kPoints + 1> planet_{};
};

// The harmonics of graphs 2 and 3 (1 to 360); Reset puts the master's in both.
class SelHarms : public QDialog {
  Q_OBJECT
 public:
  SelHarms(Workbench& wb, QWidget* parent);

 public slots:
  void accept() override;
  void Reset();

 private:
  Workbench& wb_;
  QSpinBox* graph2_;
  QSpinBox* graph3_;
};

}  // namespace vintar
