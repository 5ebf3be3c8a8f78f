// The export screen: the open project's natal chart and records written as
// charts in the exchange format (AAF), either to a file of the user's
// choice or into the sibling charting program's chart folder.
#pragma once

#include <QDialog>

#include <string>

#include "screens/common/workbench.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace vintar {

class ExportChart : public QDialog {
  Q_OBJECT
 public:
  ExportChart(Workbench& wb, QWidget* parent);

  // Where the sibling program's chart folder lies (the user's documents
  // folder by default).
  void SetDocumentsFolder(const std::string& folder);
  // The Export button: writes the file and closes the screen. Returns the
  // path written, empty when nothing was (message shown, the screen stays).
  std::string Export();

 private:
  void OptionChanged();
  void Browse();

  Workbench& wb_;
  std::string documents_;
  QRadioButton* optionAaf_;
  QRadioButton* optionSend_;
  QLineEdit* file_;
  QPushButton* browse_;
  QLabel* sendFolder_;
};

}  // namespace vintar
