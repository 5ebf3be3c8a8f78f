// The criteria search screens. ResCriteria builds the session's criteria
// list: each test is a data type, a division, the highlighted division
// cells and one point (two for angular separations, none for natal
// details), added as a line of lstCriteria; the lines are joined by And,
// Or and Xor, negated one at a time and bracketed in runs, and the list is
// opened from and saved to .vcr files. Search runs the list over the open
// project with a progress window whose Stop ends it.
//
// ResOut shows what a run passed, out of the enabled records, and offers
// to disable the failures, to save the passes as a new project, to list
// them and to print the "Search Results Report". A record selection by
// category (CatSel) shows its result on the same screen.
#pragma once

#include <QDialog>

#include <string>
#include <vector>

#include "screens/common/workbench.h"

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace vintar {

class ResCriteria : public QDialog {
  Q_OBJECT
 public:
  ResCriteria(Workbench& wb, QWidget* parent);

  // The controls as a user sets them (for the tour and tests).
  void ChooseDivision(int dataType, int code);
  void SelectCells(const std::vector<int>& cells);        // from 1
  void SelectPoints(const std::vector<int>& points);      // indexes into the point list, from 0
  void SelectCriteria(const std::vector<int>& criteria);  // list lines, from 1
  std::vector<int> SelectedCriteria() const;
  int CellCount() const;
  QStringList Lines() const;

  // The run of the list over the open project; the run stays for ResOut.
  // False after a message, or when stopped.
  bool Search();
  const CriteriaRun& LastRun() const { return run_; }

 public slots:
  void AddClicked();             // btnNew
  void OperatorClicked(int op);  // btnAndOr(0..2)
  void NotClicked();             // btnNot
  void BracketClicked();         // btnBracket
  void DeleteClicked();          // btnDelete
  void ClearClicked();           // btnClear
  void PointSelectClicked();     // btnPointSelect
  bool OpenList(const QString& path);
  bool SaveList(const QString& path);
  void accept() override;  // Search, then the results screen
  void RefreshPoints();
  void RefreshCriteria();

 private:
  int DataType() const;
  int Code() const;
  TabulateParams Params() const;
  void DataTypeChanged();
  void DivisionChanged();
  void RebuildCells();
  void LeaveAnchor();
  void LeaveHarmonic();
  void SyncListPoints();

  Workbench& wb_;
  CriteriaRun run_;
  double anchor_ = 0;
  QComboBox* coords_;
  QComboBox* divisions_;
  QListWidget* divNames_;
  QListWidget* points_;
  QListWidget* criteria_;
  QSpinBox* harmonic_;
  QLabel* modulus_;
  QSpinBox* userDivisions_;
  QLabel* anchorLabel_;
  QLineEdit* anchorEdit_;
  QRadioButton* rulers_[2];
  QRadioButton* inexact_[3];
};

class ResOut : public QDialog {
  Q_OBJECT
 public:
  enum class Origin { Criteria, Selection };
  // `lines` are the criteria or conditions as the list showed them.
  ResOut(Workbench& wb, QWidget* parent, Origin origin, const std::vector<int16_t>& passedFlags, int enabled,
         int passed, std::vector<std::string> lines);

  QString EnabledText() const;
  QString PassedText() const;
  QString PercentText() const;
  const std::vector<int16_t>& Flags() const { return flags_; }
  // The report title: "Criteria Search Results" or "Data Search Results".
  QString ReportTitle() const;
  bool AllRecords() const;  // optPrint(0)

 public slots:
  bool DisableClicked();  // btnDisable
  bool NewClicked();      // btnNew: the Save As dialogue
  void ViewClicked();     // btnView
  void PrintClicked();    // btnPrint

 private:
  void UpdateButtons();
  // The flags belong to the project that was searched, as it then stood.
  bool SameProject() const;
  Workbench& wb_;
  std::string projectPath_;
  int32_t recordCount_ = 0;
  Origin origin_;
  std::vector<int16_t> flags_;
  std::vector<std::string> lines_;
  QLabel* enabled_;
  QLabel* passed_;
  QLabel* percent_;
  QRadioButton* printAll_;
  QPushButton* disable_;
  QPushButton* new_;
  QPushButton* view_;
};

// The passed records as list rows: number, description, date.
std::vector<std::string> PassedRecordRows(const Session& session, const std::vector<int16_t>& flags);

}  // namespace vintar
