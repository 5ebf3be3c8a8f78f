// The dynamic search screens: its options (TranOpt: the points, aspects,
// orb and window of each dynamic type) and the search itself
// (TransitSearch): every hit that the moving points of one type make to a
// trial chart, beside the project's events, each hit matched to the event
// nearest it, with the share of hits that events confirm.
#pragma once

#include <QDialog>
#include <QWidget>

#include <array>

#include "rectify/search.h"
#include "screens/common/workbench.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QTreeWidget;

namespace vintar {

class TranOpt : public QDialog {
  Q_OBJECT
 public:
  // Edits the options and window of `state`; OK stores them there.
  TranOpt(Workbench& wb, QWidget* parent, SearchState& state);

  const TranOptForm& Form() const { return form_; }
  // Shows the record of another dynamic type; false when the orb typed
  // does not parse (the record stays).
  bool SelectType(int dynamicType);
  void ChooseAspects(int index);

 public slots:
  void accept() override;
  void RestoreDefaults();
  void SaveForAuto();

 private:
  void Store();  // the widgets into the form
  void Load();   // the form into the widgets

  Workbench& wb_;
  SearchState& state_;
  TranOptForm form_;
  QComboBox* dynType_;
  QComboBox* aspects_;
  std::array<QCheckBox*, kPoints + 1> planet_{};   // moving points
  std::array<QCheckBox*, kPoints + 1> planet2_{};  // radix points
  QLineEdit* startDate_;
  QLineEdit* endDate_;
  QLineEdit* orb_;
};

class TransitSearch : public QWidget {
  Q_OBJECT
 public:
  // `trialHours` is the local birth time to test; negative: the natal time
  // (or the middle of the time limits when it is unknown).
  TransitSearch(Workbench& wb, QWidget* parent, double trialHours = -1.0);

  QString ChartTime() const;
  void SetChartTime(const QString& text);
  // Hit numbers in the order of the list.
  int ShownHit(int row) const;
  QString ScoreText() const;

 public slots:
  // Casts the trial chart and runs the search; false when a text did not
  // parse or the search could not run.
  bool Search();
  void Redraw();
  void OpenChart();
  void OpenOptions();
  void Print();

 private:
  void FillHits();
  void FillEvents();
  void ShowWindow();
  void HitChosen();
  void EventChosen();

  Workbench& wb_;
  QLineEdit* chartTime_;
  QLabel* window_;
  QTreeWidget* transits_;
  QTreeWidget* events_;
  QLabel* keywords_;
  QLabel* age_;
  QLabel* caption_;
  QLabel* score_;
  bool pairing_ = false;  // one list is following the other
};

}  // namespace vintar
