// The automatic report screen (GrpAuto, "Kinfold Analysis Report"): the
// kind of group with its description, the word processor that opens the
// document, and the run that searches the group's patterns, writes the RTF
// report and hands it to the word processor. Opened from the menu or the
// search screen for the whole group, or for one match the user selected.
#pragma once

#include <QWidget>

#include <array>

#include "groups/group_report.h"
#include "screens/common/workbench.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace vintar {

class GrpAuto : public QWidget {
  Q_OBJECT
 public:
  // `selectedMatch` 0 for the full report, otherwise match k of the search.
  GrpAuto(Workbench& wb, QWidget* parent, int selectedMatch = 0);

  int GroupType() const;
  const GroupReportOutcome& Outcome() const { return outcome_; }
  bool Running() const { return running_; }

 public slots:
  // btnReport: the word processor choice saved, the report written and
  // opened. Returns whether it was written.
  bool Report();
  void Stop();
  void Browse();

 protected:
  void closeEvent(class QCloseEvent* event) override;

 private:
  void TypeChanged();

  Workbench& wb_;
  int selectedMatch_;
  bool running_ = false;
  bool stop_ = false;
  GroupReportOutcome outcome_;
  std::array<std::string, kGroupTypes> descriptions_;
  std::array<QRadioButton*, kGroupTypes> types_{};
  QLabel* description_;
  QRadioButton* wordPad_;
  QRadioButton* otherWP_;
  QLineEdit* path_;
  QLabel* mainLine_;
  QLabel* stepLine_;
  QPushButton* report_;
  QPushButton* stopButton_;
  QPushButton* quit_;
  QPushButton* browse_;
};

}  // namespace vintar
