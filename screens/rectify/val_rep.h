// The viability report screen (ValRep): whether the project's events are
// numerous, exact and far enough apart to rectify from. Opened on its own
// it has Cancel and Quit; opened in front of the graphs its Cancel button
// becomes "Continue...", which goes on to them.
#pragma once

#include <QDialog>

#include "screens/common/workbench.h"

class QPlainTextEdit;
class QPushButton;

namespace vintar {

class ValRep : public QDialog {
  Q_OBJECT
 public:
  ValRep(Workbench& wb, QWidget* parent, bool beforeGraphs = false);

  // Rebuilds the report from the project (after the events were edited).
  void Refresh();
  bool Problems() const { return problems_; }
  QString ReportText() const;

 public slots:
  void Print();
  void EditEvents();

 signals:
  // "Continue..." in front of the graphs.
  void continued();

 private:
  Workbench& wb_;
  bool problems_ = false;
  QPlainTextEdit* rep_;
};

}  // namespace vintar
