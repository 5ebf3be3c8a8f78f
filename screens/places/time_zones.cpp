#include "screens/places/time_zones.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "screens/common/qt_text.h"

namespace vintar {

TimeZones::TimeZones(Workbench& wb, QWidget* parent, bool selecting) : QDialog(parent), wb_(wb) {
  setObjectName("TimeZones");
  setWindowTitle(tr("Time Zones"));
  auto* layout = new QVBoxLayout(this);

  auto* order = new QGroupBox(tr("Sort by"), this);
  auto* orderRow = new QHBoxLayout(order);
  optionMnem_ = new QRadioButton(tr("&Mnemonic"), order);
  optionMnem_->setObjectName("OptionMnem");
  optionTime_ = new QRadioButton(tr("&Time"), order);
  optionTime_->setObjectName("OptionTime");
  optionFull_ = new QRadioButton(tr("&Full Name"), order);
  optionFull_->setObjectName("OptionFull");
  optionMnem_->setChecked(true);
  orderRow->addWidget(optionMnem_);
  orderRow->addWidget(optionTime_);
  orderRow->addWidget(optionFull_);
  orderRow->addStretch();
  layout->addWidget(order);

  list_ = new QTreeWidget(this);
  list_->setObjectName("lstZones");
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAlternatingRowColors(true);
  list_->setColumnCount(3);
  list_->setMinimumSize(460, 360);
  layout->addWidget(list_);

  auto* buttons = new QDialogButtonBox(this);
  if (selecting) {
    select_ = buttons->addButton(tr("&Select"), QDialogButtonBox::AcceptRole);
    select_->setObjectName("OKButton");
    select_->setDefault(true);
  }
  QPushButton* cancel =
      buttons->addButton(selecting ? tr("&Cancel") : tr("&Close"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("CancelButton");
  layout->addWidget(buttons);

  connect(buttons, &QDialogButtonBox::accepted, this, &TimeZones::Choose);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  if (selecting) connect(list_, &QTreeWidget::itemDoubleClicked, this, &TimeZones::Choose);
  connect(optionMnem_, &QRadioButton::toggled, this, [this](bool on) { if (on) SetSort(ZoneSort::Mnemonic); });
  connect(optionTime_, &QRadioButton::toggled, this, [this](bool on) { if (on) SetSort(ZoneSort::Time); });
  connect(optionFull_, &QRadioButton::toggled, this, [this](bool on) { if (on) SetSort(ZoneSort::Name); });
  Fill();
  list_->setFocus();
}

void TimeZones::SetSort(ZoneSort sort) {
  sort_ = sort;
  QRadioButton* option = sort == ZoneSort::Time ? optionTime_ : sort == ZoneSort::Name ? optionFull_ : optionMnem_;
  if (!option->isChecked()) {
    option->setChecked(true);  // comes back here through toggled
    return;
  }
  Fill();
}

void TimeZones::Fill() {
  // Keep the chosen zone chosen across a change of order.
  std::string current;
  if (QTreeWidgetItem* item = list_->currentItem()) current = rows_[size_t(list_->indexOfTopLevelItem(item))].Mnemonic;
  const QString mnemonic = tr("Mnemonic"), name = tr("Name"), offset = tr("Offset");
  switch (sort_) {
    case ZoneSort::Mnemonic: list_->setHeaderLabels({mnemonic, name, offset}); break;
    case ZoneSort::Time: list_->setHeaderLabels({offset, mnemonic, name}); break;
    case ZoneSort::Name: list_->setHeaderLabels({name, mnemonic, offset}); break;
  }
  list_->clear();
  rows_ = ZoneList(wb_.session, sort_);
  QTreeWidgetItem* keep = nullptr;
  for (const ZoneListRow& row : rows_) {
    auto* item = new QTreeWidgetItem(list_, Q(row.Line).split(QLatin1Char('\t')));
    if (!current.empty() && row.Mnemonic == current) keep = item;
  }
  for (int c = 0; c < 3; ++c) list_->resizeColumnToContents(c);
  if (!keep) keep = list_->topLevelItem(0);
  list_->setCurrentItem(keep);
  if (select_) select_->setEnabled(keep != nullptr);
}

void TimeZones::Choose() {
  QTreeWidgetItem* item = list_->currentItem();
  if (!item) return;
  const ZoneListRow& row = rows_[size_t(list_->indexOfTopLevelItem(item))];
  mnemonic_ = row.Mnemonic;
  offset_ = row.Offset;
  accept();
}

}  // namespace vintar
