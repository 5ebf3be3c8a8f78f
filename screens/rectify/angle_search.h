// The angle search screen (AngleSearch): the flagged peaks of the graphs,
// merged over two of them, turned into candidate Midheaven and Ascendant
// pairs whose local birth time lies within the time limits. The candidates
// can be sorted, pruned, opened as a chart or a dynamic search, or handed
// to Auto Rectify.
#pragma once

#include <QWidget>

#include <vector>

#include "rectify/peaks.h"
#include "screens/common/workbench.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;

namespace vintar {

class AngleSearch : public QWidget {
  Q_OBJECT
 public:
  AngleSearch(Workbench& wb, QWidget* parent);

  // The two graphs whose peaks are merged (the pair chosen in cmbPair).
  std::pair<int, int> Pair() const;
  // Candidate numbers of the selected rows, ascending.
  std::vector<int> SelectedCandidates() const;
  // The mid time of a candidate, local hours.
  double CandidateTime(int candidate) const;
  // Redraws the header, the peaks and the candidate list from the state.
  void Refresh();

 public slots:
  void Scan();
  void DeleteSelected();
  void ClearList();
  void AutoSelect();
  void PeakOptions();
  void OpenChart();
  void OpenTransits();
  void OpenAutoRectify();
  void Print();

 private:
  void FillPeaks();
  void FillCandidates();
  void Sort();
  void SelectionChanged();

  Workbench& wb_;
  std::array<PeakList, kShownGraphs + 1> lists_;
  bool topPeaks_ = false;
  QLabel* heading_;
  QLabel* header_;
  QLineEdit* from_;
  QLineEdit* to_;
  QComboBox* pair_;
  QTreeWidget* peaks_;
  QTreeWidget* angles_;
  QRadioButton* optionAsc_;
  QRadioButton* optionMC_;
  QRadioButton* optionTime_;
  QPushButton* del_;
  QPushButton* chart_;
  QPushButton* transit_;
};

}  // namespace vintar
