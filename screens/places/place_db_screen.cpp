#include "screens/places/place_db_screen.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "core/text.h"
#include "screens/common/qt_text.h"

namespace vintar {

PlaceDB::PlaceDB(Workbench& wb, QWidget* parent, bool selecting) : QDialog(parent), wb_(wb) {
  setObjectName("PlaceDB");
  setWindowTitle(tr("Place Database"));
  askFindText = [this](QString& text) {
    bool ok = false;
    text = QInputDialog::getText(this, Q(kFindPlaceTitle), Q(kFindPlacePrompt), QLineEdit::Normal, QString(), &ok);
    return ok;
  };

  auto* layout = new QHBoxLayout(this);
  list_ = new QListWidget(this);
  list_->setObjectName("lstPlaces");
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setMinimumSize(220, 320);
  layout->addWidget(list_, 1);

  auto* right = new QVBoxLayout;
  auto* form = new QFormLayout;
  name_ = new QLineEdit(this);
  name_->setObjectName("PlaceName");
  name_->setMaxLength(kPlaceNameBytes);
  latitude_ = new QLineEdit(this);
  latitude_->setObjectName("Latitude");
  latitude_->setMaxLength(kPlaceLatitudeBytes);
  longitude_ = new QLineEdit(this);
  longitude_->setObjectName("Longitude");
  longitude_->setMaxLength(kPlaceLongitudeBytes);
  form->addRow(tr("Place &name:"), name_);
  form->addRow(tr("&Latitude:"), latitude_);
  form->addRow(tr("L&ongitude:"), longitude_);
  right->addLayout(form);

  auto* buttons = new QDialogButtonBox(Qt::Vertical, this);
  QPushButton* add = buttons->addButton(tr("&Add"), QDialogButtonBox::ActionRole);
  add->setObjectName("btnAdd");
  QPushButton* find = buttons->addButton(tr("&Find..."), QDialogButtonBox::ActionRole);
  find->setObjectName("btnFind");
  QPushButton* del = buttons->addButton(tr("&Delete..."), QDialogButtonBox::ActionRole);
  del->setObjectName("btnDelete");
  if (selecting) {
    QPushButton* select = buttons->addButton(tr("&Select"), QDialogButtonBox::AcceptRole);
    select->setObjectName("OKButton");
    select->setDefault(true);
  }
  QPushButton* close = buttons->addButton(selecting ? tr("&Cancel") : tr("&Close"), QDialogButtonBox::RejectRole);
  close->setObjectName("CancelButton");
  for (QAbstractButton* b : buttons->buttons())
    if (auto* push = qobject_cast<QPushButton*>(b)) push->setAutoDefault(false);
  right->addWidget(buttons);
  right->addStretch();
  layout->addLayout(right);

  connect(add, &QPushButton::clicked, this, &PlaceDB::Add);
  connect(find, &QPushButton::clicked, this, &PlaceDB::Find);
  connect(del, &QPushButton::clicked, this, &PlaceDB::Delete);
  connect(buttons, &QDialogButtonBox::accepted, this, &PlaceDB::Select);
  connect(buttons, &QDialogButtonBox::rejected, this, &PlaceDB::reject);
  connect(list_, &QListWidget::currentRowChanged, this, &PlaceDB::RowChanged);
  if (selecting) connect(list_, &QListWidget::itemDoubleClicked, this, &PlaceDB::Select);
  const auto edited = [this](PlaceField field) {
    return [this, field](const QString& text) {
      if (refreshing_) return;
      EditPlaceField(state_, field, L(text));
      closeRefused_ = false;
    };
  };
  connect(name_, &QLineEdit::textChanged, this, edited(PlaceField::Name));
  connect(latitude_, &QLineEdit::textChanged, this, edited(PlaceField::Latitude));
  connect(longitude_, &QLineEdit::textChanged, this, edited(PlaceField::Longitude));
  setTabOrder(list_, name_);
  setTabOrder(name_, latitude_);
  setTabOrder(latitude_, longitude_);

  LoadPlaces(wb_.session, state_);
  Refresh();
}

// Shows the engine's state: the list (kept when unchanged), the current
// place and the fields.
void PlaceDB::Refresh() {
  refreshing_ = true;
  QStringList names;
  for (const std::string& n : state_.PlaceList) names << Q(n);
  QStringList shown;
  for (int i = 0; i < list_->count(); ++i) shown << list_->item(i)->text();
  if (names != shown) {
    list_->clear();
    list_->addItems(names);
  }
  const int position = PlacePosition(state_, state_.CurrentPlace);
  if (state_.PlaceNew) {
    list_->setCurrentRow(-1);
  } else if (list_->currentRow() != position) {
    list_->setCurrentRow(position);
  }
  if (name_->text() != Q(state_.Name)) name_->setText(Q(state_.Name));
  if (latitude_->text() != Q(state_.Latitude)) latitude_->setText(Q(state_.Latitude));
  if (longitude_->text() != Q(state_.Longitude)) longitude_->setText(Q(state_.Longitude));
  refreshing_ = false;
}

void PlaceDB::RowChanged(int row) {
  if (refreshing_ || row < 0 || size_t(row) >= state_.PlaceIndex.size()) return;
  const int16_t target = state_.PlaceIndex[size_t(row)];
  if (target == state_.CurrentPlace && !state_.PlaceNew && !state_.PlaceEdited) return;
  // Saving a new place reloads the list, so the target goes by record number.
  if (SavePlaceEdits(wb_.session, state_)) MoveToPlace(wb_.session, state_, PlacePosition(state_, target));
  Refresh();
}

void PlaceDB::Add() {
  if (!SavePlaceEdits(wb_.session, state_)) return Refresh();
  AddPlace(state_);
  Refresh();
  name_->setFocus();
}

void PlaceDB::Find() {
  if (!SavePlaceEdits(wb_.session, state_)) return Refresh();
  Refresh();
  QString text;
  if (!askFindText || !askFindText(text)) return;
  FindPlace(wb_.session, state_, L(text));
  Refresh();
}

void PlaceDB::Delete() {
  std::vector<int> marked;
  for (QListWidgetItem* item : list_->selectedItems()) marked.push_back(list_->row(item));
  std::sort(marked.begin(), marked.end());
  if (marked.empty()) return;
  DeletePlaces(wb_.session, state_, marked);
  Refresh();
}

void PlaceDB::Select() {
  selection_ = SelectPlace(wb_.session, state_);
  Refresh();
  if (!selection_.failed) accept();
}

void PlaceDB::reject() {
  // An Add with nothing typed is simply dropped; other changes are offered
  // for saving. When a field is wrong the screen stays, and a second close
  // without further typing drops the changes.
  const bool blankNew = state_.PlaceNew && Trim(state_.Name).empty() && Trim(state_.Latitude).empty() &&
                        Trim(state_.Longitude).empty();
  if (!blankNew && !closeRefused_ && !SavePlaceEdits(wb_.session, state_)) {
    closeRefused_ = true;
    Refresh();
    return;
  }
  QDialog::reject();
}

}  // namespace vintar
