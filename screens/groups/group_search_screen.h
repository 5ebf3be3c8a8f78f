// The group search screen (GroupSearch): the harmonic range, orb, position
// and least hits of a search for patterns the group's charts share, the
// search points (single points and midpoints, kept in grouppnt.fil between
// sessions), the matches found ranked by charts and hits (MatchesList) and
// the charts of the selected match (SecondaryList) with a small dial of
// their zodiac places. From a match the chart strips, the printed report
// and the automatic report are opened.
#pragma once

#include <QWidget>

#include <vector>

#include "screens/common/workbench.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace vintar {

class DrawingView;

class GroupSearch : public QWidget {
  Q_OBJECT
 public:
  GroupSearch(Workbench& wb, QWidget* parent);

  // The parameters as the fields give them (not checked).
  GroupSearchParams Params() const;
  // The match shown in detail (the current MatchesList line), 0 for none.
  int SelectedMatch() const;
  // Match numbers in MatchesList order.
  const std::vector<int>& ShownMatches() const { return shown_; }
  // Selects the MatchesList line of match k and shows it in detail.
  void SelectMatch(int k);
  // Shows the search state as another search left it (the automatic report
  // runs its own searches): the fields from `params`, the points, the
  // matches and the status line.
  void ShowState(const GroupSearchParams& params);

 public slots:
  // The Search button: the checks, the search with a stop button, the list.
  bool Search();
  void AddSelected();
  void AddMidpoint();
  void RemoveSelected();
  void ClearPoints();
  void DefaultPoints();
  void Display();
  void Print();
  void Delineate();
  void AutoReport();
  void Quit();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void SearchTypeChanged();
  void FillDisplayList();
  void FillSearchList();
  void FillMatches();
  void MatchChosen();
  void DetailSelectionChanged();
  void FinishHarmonic(QLineEdit* field);
  void FinishAngle(QLineEdit* field);
  void FinishMatches();
  void SetRunning(bool running);
  void PaintMiniChart(class QPainter& painter, const class QRectF& area) const;

  Workbench& wb_;
  std::vector<int> shown_;       // match number of each MatchesList line
  std::vector<int> displayPts_;  // point of each DisplayList line
  bool running_ = false;
  QLineEdit* harmonicFrom_;
  QLineEdit* harmonicTo_;
  QLabel* harmonicToLabel_;
  QLineEdit* orb_;
  QLabel* orbLabel_;
  QLineEdit* position_;
  QLabel* positionLabel_;
  QLineEdit* matches_;
  QRadioButton* anyPosition_;
  QRadioButton* specifiedPosition_;
  QRadioButton* combination_;
  QRadioButton* samePoint_;
  QRadioButton* points_;
  QRadioButton* midpoints_;
  QListWidget* displayList_;
  QListWidget* searchList_;
  QLabel* planetCount_;
  QLabel* midpointCount_;
  QListWidget* matchesList_;
  QCheckBox* rank_;
  QListWidget* secondaryList_;
  DrawingView* miniChart_;
  QLabel* statusPanel_;
  QLabel* status_;
  QPushButton* searchButton_;
  QPushButton* cancelButton_;
  QPushButton* midpointButton_;
  QList<QPushButton*> busyButtons_;
};

}  // namespace vintar
