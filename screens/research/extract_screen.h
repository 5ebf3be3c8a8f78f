// The filter screen ("Filter Charts from Current Project"): shows the
// points and divisions of the block chosen in the results table and the
// new project's title, asks where the new project goes, and writes the
// charts behind the block there with a progress window whose Stop ends it.
// The open project is not touched.
#pragma once

#include <QDialog>

#include <string>

#include "research/extract.h"
#include "research/tabulate.h"
#include "screens/common/workbench.h"

class QLineEdit;
class QListWidget;

namespace vintar {

class Extract : public QDialog {
  Q_OBJECT
 public:
  Extract(Workbench& wb, const TabulationRun& run, const FilterBlock& block, QWidget* parent);

  // Writes the filtered charts to `path` (a .dat; its .nat beside it).
  FilterResult RunTo(const std::string& path);

 public slots:
  // Asks for the new project's file, then writes it.
  void accept() override;

 private:
  Workbench& wb_;
  TabulateParams params_;
  FilterBlock block_;
  QListWidget* points_;
  QListWidget* divisions_;
  QLineEdit* title_;
};

}  // namespace vintar
