// The peak settings (PeakOpt): the six numbers that automatic peak selection
// and the merging of common peaks read. OK checks them, keeps them in the
// session and writes them to the preference file.
#pragma once

#include <QDialog>

#include <array>

#include "rectify/peaks.h"
#include "screens/common/workbench.h"

class QLineEdit;

namespace vintar {

class PeakOpt : public QDialog {
  Q_OBJECT
 public:
  PeakOpt(Workbench& wb, QWidget* parent);

  PeakOptTexts Texts() const;

 public slots:
  void accept() override;

 private:
  Workbench& wb_;
  std::array<QLineEdit*, kPeakOptFields> text1_{};
};

}  // namespace vintar
