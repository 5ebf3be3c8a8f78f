// The small screens of the File menu: the project title (for a new project
// and for Edit Title), the sort options and the range of a split.
#pragma once

#include <QDialog>

#include <functional>
#include <string>

#include "core/project_ops.h"
#include "screens/common/workbench.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace vintar {

// The title of the project. OK hands the text to `apply` (the new project's
// start or the title change), which shows its own message and returns false
// to keep the screen open; Cancel sets DialogCancelled.
class ProjTitle : public QDialog {
  Q_OBJECT
 public:
  using Apply = std::function<bool(const std::string& title)>;
  ProjTitle(Workbench& wb, QWidget* parent, const std::string& title, Apply apply);

  QLineEdit* TitleText() const { return title_; }

 public slots:
  void accept() override;
  void reject() override;

 private:
  Workbench& wb_;
  Apply apply_;
  QLineEdit* title_;
};

// How to sort: by date and time, by description or name, or by the Sun's
// zodiac position, ascending or descending.
class SortOptions : public QDialog {
  Q_OBJECT
 public:
  SortOptions(Workbench& wb, QWidget* parent);
  // The key and order chosen (the caller adds the Sun's position and the
  // File menu's de-duplication).
  SortRequest Request() const;

 public slots:
  void reject() override;

 private:
  Workbench& wb_;
  QRadioButton* date_;
  QRadioButton* description_;
  QRadioButton* sun_;
  QRadioButton* ascending_;
  QRadioButton* descending_;
};

// The first and last record of a split, inside "Available Range: 1 to n".
class Split : public QDialog {
  Q_OBJECT
 public:
  Split(Workbench& wb, QWidget* parent);
  int32_t First() const;
  int32_t Last() const;
  void SetRange(int32_t first, int32_t last);

 public slots:
  void reject() override;

 private:
  Workbench& wb_;
  QSpinBox* first_;
  QSpinBox* last_;
};

}  // namespace vintar
