// The keywords of the dynamic chart (KeyWordEdit): for each item (the chart
// points, the Descendant and IC, the twelve houses) the words shown beside a
// hit. A preview reads a moving point's hit to the item as the chart shows
// it. OK writes "keywrd.fil".
#pragma once

#include <QDialog>

#include "rectify/dynamic_chart.h"
#include "screens/common/workbench.h"

class QComboBox;
class QLabel;
class QLineEdit;

namespace vintar {

class KeyWordEdit : public QDialog {
  Q_OBJECT
 public:
  KeyWordEdit(Workbench& wb, QWidget* parent);

  const KeywordTable& Table() const { return table_; }

 public slots:
  void accept() override;  // OKButton

 private:
  void ItemChosen(int index);
  void ShowPreview();

  Workbench& wb_;
  KeywordTable table_;
  int shown_ = 0;
  QComboBox* transit_;
  QComboBox* item_;
  QLineEdit* text_;
  QLabel* preview_;
};

}  // namespace vintar
