// The results window of a tabulation ("Results Tabulation"): the counts of
// the run as a bar graph, a polar graph or a table, in five styles (raw
// counts, proportions and percentages of the total or of the average), for
// the column (point) chosen, with its statistics block and the one-cell
// chi-square; the read-out of the cell under the pointer; copying and
// saving the tab-separated text and the picture; printing; and the filter
// of a block of the table's cells into a new project.
#pragma once

#include <QString>
#include <QWidget>

#include <string>

#include "research/tabulate.h"
#include "screens/common/workbench.h"

class QComboBox;
class QLabel;
class QPushButton;
class QStackedWidget;
class QTableWidget;

namespace vintar {

class DrawingView;
class Extract;

class TabulationWindow : public QWidget {
  Q_OBJECT
 public:
  TabulationWindow(Workbench& wb, TabulationRun run, QWidget* parent);
  ~TabulationWindow() override;

  const TabulationRun& Run() const { return run_; }
  // kBarGraph, kPolarGraph or kTabulationDisplay.
  void SetDisplay(int display);
  int Display() const;
  void SetStyle(int style);
  int Style() const;
  // The column shown by the graphs (1 to ColumnCount + 1).
  void SetColumn(int column);
  int Column() const;
  // The remembered display and style are written on closing unless the
  // window is a picture of the tour.
  void SetRemember(bool remember) { remember_ = remember; }

  // The tab-separated text of the run in the shown style.
  std::string DataText() const;
  bool SaveDataTo(const std::string& path);
  // The picture of what is shown: the graph, or the table as it stands.
  QImage Picture() const;
  // .bmp, .png, .svg or .pdf by the extension; false after a message.
  bool SaveGraphicTo(const QString& path);
  // The read-out of the cell under a point of the graph (widget coordinates).
  QString PointerText(QPointF point) const;
  // "Filter Selected Records into New Project": the block of the table's
  // selected cells; opens the filter screen (window-modal) and returns it,
  // null after "Cannot Filter".
  Extract* FilterSelected();

 public slots:
  void CopyData();
  void SaveData();
  void CopyGraphic();
  void SaveGraphic();
  void Print();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void FillTable();
  void Refresh();
  void Hovered(QPointF point, QRectF area);

  Workbench& wb_;
  TabulationRun run_;
  QComboBox* display_;
  QComboBox* style_;
  QComboBox* column_;
  QStackedWidget* stack_;
  DrawingView* graph_;
  QTableWidget* table_;
  QLabel* stats_;
  QLabel* pointer_;
  QPushButton* extract_;
  bool remember_ = true;
};

}  // namespace vintar
