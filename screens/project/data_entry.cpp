#include "screens/project/data_entry.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "calc/chart.h"
#include "core/calendar.h"
#include "core/parse.h"
#include "core/project_file.h"
#include "core/project_ops.h"
#include "core/session.h"
#include "core/text.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"
#include "screens/places/atlas_pick.h"
#include "screens/project/entry_keys.h"
#include "screens/project/project_dialogs.h"

namespace vintar {

namespace {

QPushButton* Button(const char* name, const QString& text, QWidget* parent) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

// The list line's tab-separated parts as the list's columns.
QStringList Columns(const std::string& line) {
  QStringList parts = Q(line).split('\t');
  while (parts.size() < 3) parts.append(QString());
  if (parts.size() > 3) parts = parts.mid(0, 2) << parts.mid(2).join(' ');
  return parts;
}

}  // namespace

DataEntry::DataEntry(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("DataEntry");
  Session& s = wb_.session;
  setWindowTitle(tr("Edit Data - %1").arg(Q(s.project.Header.Title)));
  opened_ = BeginRecordEdit(s, copy_);

  auto* outer = new QVBoxLayout(this);
  auto* columns = new QHBoxLayout;
  outer->addLayout(columns, 1);

  // The records.
  auto* left = new QVBoxLayout;
  auto* listLabel = new QLabel(tr("&Records:"), this);
  list_ = new QTreeWidget(this);
  list_->setObjectName("DataList");
  list_->setColumnCount(3);
  list_->setHeaderLabels({tr("Event"), tr("Date"), tr("Range")});
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->header()->setStretchLastSection(false);
  list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  list_->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
  list_->setMinimumWidth(460);
  listLabel->setBuddy(list_);
  left->addWidget(listLabel);
  left->addWidget(list_, 1);
  auto* recordButtons = new QGridLayout;
  add_ = Button("AddButton", tr("&Add"), this);
  delete_ = Button("DeleteButton", tr("De&lete"), this);
  sort_ = Button("SortButton", tr("S&ort..."), this);
  enable_ = Button("EnableButton", tr("E&nable"), this);
  disable_ = Button("DisableButton", tr("Disa&ble"), this);
  enableAll_ = Button("EnAllButton", tr("Enable All"), this);
  disableAll_ = Button("DisAllButton", tr("Disable All"), this);
  select_ = Button("btnSel", tr("&Select..."), this);
  select_->setToolTip(tr("Switch off the records that fail a list of conditions on their fields and categories"));
  recordButtons->addWidget(add_, 0, 0);
  recordButtons->addWidget(delete_, 0, 1);
  recordButtons->addWidget(sort_, 0, 2);
  recordButtons->addWidget(enable_, 1, 0);
  recordButtons->addWidget(disable_, 1, 1);
  recordButtons->addWidget(enableAll_, 2, 0);
  recordButtons->addWidget(disableAll_, 2, 1);
  recordButtons->addWidget(select_, 2, 2);
  left->addLayout(recordButtons);
  columns->addLayout(left, 3);

  // The fields of the record.
  fieldsPanel_ = new QWidget(this);
  auto* right = new QVBoxLayout(fieldsPanel_);
  right->setContentsMargins(0, 0, 0, 0);
  auto* form = new QFormLayout;
  description_ = AddEdit("EventText");
  description_->setMinimumWidth(280);
  form->addRow(tr("&Description:"), description_);
  auto* dateRow = new QHBoxLayout;
  date_ = AddEdit("EDate", 130);
  range_ = AddEdit("ERange", 50);
  marker_ = new QLabel(fieldsPanel_);
  marker_->setObjectName("lblMarker");
  auto* plusMinus = new QLabel(QStringLiteral("\u00B1"), fieldsPanel_);
  plusMinus->setBuddy(range_);
  dateRow->addWidget(date_);
  dateRow->addWidget(plusMinus);
  dateRow->addWidget(range_);
  dateRow->addWidget(new QLabel(tr("days"), fieldsPanel_));
  dateRow->addWidget(marker_);
  dateRow->addStretch();
  form->addRow(tr("Da&te:"), dateRow);
  right->addLayout(form);

  auto* detailBox = new QGroupBox(tr("Detail level"), fieldsPanel_);
  auto* detailLayout = new QGridLayout(detailBox);
  const char* detailNames[4] = {"OptionNoTime", "OptionZoneOnly", "OptionExactTime", "OptionTimePlace"};
  const QString detailTexts[4] = {tr("&No time"), tr("&Zone only"), tr("E&xact time"), tr("Time and &place")};
  for (int level = 0; level < 4; ++level) {
    detail_[level] = new QRadioButton(detailTexts[level], detailBox);
    detail_[level]->setObjectName(detailNames[level]);
    detailLayout->addWidget(detail_[level], level / 2, level % 2);
    connect(detail_[level], &QRadioButton::toggled, this, [this, level](bool on) {
      if (on) ChooseDetail(level);
    });
  }
  right->addWidget(detailBox);

  detailForm_ = new QFormLayout;
  zoneRow_ = new QWidget(fieldsPanel_);
  auto* zoneLayout = new QHBoxLayout(zoneRow_);
  zoneLayout->setContentsMargins(0, 0, 0, 0);
  zoneMnemonic_ = AddEdit("ETZMnemonic", 70);
  zoneMnemonic_->setMaxLength(5);
  zoneTime_ = AddEdit("ETZTime", 100);
  zoneLayout->addWidget(zoneMnemonic_);
  zoneLayout->addWidget(zoneTime_);
  zoneLayout->addStretch();
  detailForm_->addRow(tr("Time &zone:"), zoneRow_);
  time_ = AddEdit("ETime", 110);
  detailForm_->addRow(tr("T&ime:"), time_);
  placeRow_ = new QWidget(fieldsPanel_);
  auto* placeLayout = new QHBoxLayout(placeRow_);
  placeLayout->setContentsMargins(0, 0, 0, 0);
  place_ = AddEdit("PlaceName");
  lookup_ = Button("LookupButton", tr("Look &Up..."), placeRow_);
  placeLayout->addWidget(place_, 1);
  placeLayout->addWidget(lookup_);
  detailForm_->addRow(tr("&Place:"), placeRow_);
  latitude_ = AddEdit("Latitude", 110);
  detailForm_->addRow(tr("Latit&ude:"), latitude_);
  longitude_ = AddEdit("Longitude", 110);
  detailForm_->addRow(tr("Lon&gitude:"), longitude_);
  right->addLayout(detailForm_);

  // One value per category.
  const ProjectHeader& h = s.project.Header;
  if (h.CategoryCount > 0) {
    auto* categoryBox = new QGroupBox(tr("Categories"), fieldsPanel_);
    auto* boxLayout = new QVBoxLayout(categoryBox);
    auto* scroll = new QScrollArea(categoryBox);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* inner = new QWidget(scroll);
    auto* categoryForm = new QFormLayout(inner);
    for (int c = 1; c <= h.CategoryCount; ++c) {
      std::string name;
      int type = 0;
      GetCategoryDefinition(h, c, name, type);
      categoryForm->addRow(Q(Trim(name)) + ':', AddCategoryValue(c));
    }
    scroll->setWidget(inner);
    boxLayout->addWidget(scroll);
    right->addWidget(categoryBox, 1);
  } else {
    right->addStretch(1);
  }
  columns->addWidget(fieldsPanel_, 2);

  auto* box = OkCancelButtons(this);
  outer->addWidget(box);

  connect(description_, &QLineEdit::editingFinished, this, &DataEntry::LeaveDescription);
  connect(date_, &QLineEdit::editingFinished, this, &DataEntry::LeaveDate);
  connect(range_, &QLineEdit::editingFinished, this, &DataEntry::LeaveRange);
  connect(zoneMnemonic_, &QLineEdit::editingFinished, this, &DataEntry::LeaveZoneMnemonic);
  connect(zoneTime_, &QLineEdit::editingFinished, this, &DataEntry::LeaveZoneTime);
  connect(time_, &QLineEdit::editingFinished, this, &DataEntry::LeaveTime);
  connect(place_, &QLineEdit::editingFinished, this, &DataEntry::LeavePlace);
  connect(latitude_, &QLineEdit::editingFinished, this, &DataEntry::LeaveLatitude);
  connect(longitude_, &QLineEdit::editingFinished, this, &DataEntry::LeaveLongitude);
  connect(lookup_, &QPushButton::clicked, this, &DataEntry::LookUpPlace);
  connect(add_, &QPushButton::clicked, this, &DataEntry::AddClicked);
  connect(delete_, &QPushButton::clicked, this, &DataEntry::DeleteClicked);
  connect(enable_, &QPushButton::clicked, this, [this] { EnableClicked(true); });
  connect(disable_, &QPushButton::clicked, this, [this] { EnableClicked(false); });
  connect(enableAll_, &QPushButton::clicked, this, [this] { EnableAllClicked(true); });
  connect(disableAll_, &QPushButton::clicked, this, [this] { EnableAllClicked(false); });
  connect(sort_, &QPushButton::clicked, this, &DataEntry::SortClicked);
  connect(select_, &QPushButton::clicked, this, &DataEntry::SelectClicked);
  connect(list_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (!loading_ && item) LoadRecord(list_->indexOfTopLevelItem(item) + 1);
  });

  keys_ = new EntryKeys(s, this);
  std::vector<QWidget*> order = {description_, date_, range_, zoneMnemonic_, zoneTime_,
                                 time_,        place_, latitude_, longitude_};
  for (QComboBox* combo : values_) order.push_back(combo);
  keys_->SetFields(order);
  setTabOrder(list_, description_);

  BuildList();
  if (opened_ && s.project.Header.RecordCount >= 1)
    SelectRecord(1);
  else
    LoadRecord(0);
  resize(1020, 640);
}

DataEntry::~DataEntry() {
  // A screen that closes without OK or Cancel (the window destroyed by its
  // owner) leaves the edits in place and gives up the copy.
  if (copy_.held) wb_.session.project.Status.EventsBackedUp = kFalse;
}

QLineEdit* DataEntry::AddEdit(const char* name, int width) {
  auto* edit = new QLineEdit(fieldsPanel_);
  edit->setObjectName(name);
  if (width > 0) edit->setMaximumWidth(width);
  return edit;
}

QComboBox* DataEntry::AddCategoryValue(int category) {
  auto* combo = new QComboBox(fieldsPanel_);
  combo->setObjectName(QStringLiteral("cmbValue%1").arg(category));
  combo->setEditable(true);
  combo->setInsertPolicy(QComboBox::NoInsert);
  combo->setMinimumWidth(200);
  values_.push_back(combo);
  FillCategoryItems(category);
  connect(combo->lineEdit(), &QLineEdit::editingFinished, this, [this, category] { LeaveCategory(category); });
  connect(combo, &QComboBox::activated, this, [this, category] { LeaveCategory(category); });
  return combo;
}

void DataEntry::FillCategoryItems(int category) {
  QComboBox* combo = values_[size_t(category - 1)];
  const QString text = combo->currentText();
  const ProjectState& p = wb_.session.project;
  std::string name;
  int type = 0;
  GetCategoryDefinition(p.Header, category, name, type);
  const bool wasLoading = loading_;
  loading_ = true;
  combo->clear();
  const CategoryIndex& index = p.Categories;
  if (type == 0 && size_t(category) < index.CategoryStart.size() && size_t(category) < index.CategoryLength.size()) {
    const int32_t start = index.CategoryStart[size_t(category)];
    for (int32_t k = 0; k < index.CategoryLength[size_t(category)]; ++k) {
      const size_t at = size_t(start + k);
      if (at >= 1 && at < index.CategoryValues.size() && !Trim(index.CategoryValues[at]).empty())
        combo->addItem(Q(Trim(index.CategoryValues[at])));
    }
  }
  combo->setEditText(text);
  loading_ = wasLoading;
}

EventRecord& DataEntry::Record() { return wb_.session.project.Events[size_t(current_)]; }

// The list -------------------------------------------------------------------

void DataEntry::BuildList() {
  const bool wasLoading = loading_;
  loading_ = true;
  list_->clear();
  const Session& s = wb_.session;
  const int32_t count =
      std::min<int32_t>(s.project.Header.RecordCount, int32_t(s.project.Events.size()) - 1);
  QList<QTreeWidgetItem*> items;
  for (int32_t i = 1; i <= count; ++i)
    items.append(new QTreeWidgetItem(Columns(RecordListLine(s, s.project.Events[size_t(i)], i))));
  list_->addTopLevelItems(items);
  loading_ = wasLoading;
}

void DataEntry::RefreshLine(int32_t number) {
  QTreeWidgetItem* item = list_->topLevelItem(number - 1);
  if (!item) return;
  const Session& s = wb_.session;
  const QStringList parts = Columns(RecordListLine(s, s.project.Events[size_t(number)], number));
  for (int c = 0; c < 3; ++c) item->setText(c, parts[c]);
}

void DataEntry::SelectRecord(int32_t number) {
  if (number < 1 || number > list_->topLevelItemCount()) {
    LoadRecord(0);
    return;
  }
  loading_ = true;
  list_->setCurrentItem(list_->topLevelItem(number - 1));
  loading_ = false;
  LoadRecord(number);
}

// The fields -----------------------------------------------------------------

void DataEntry::SetText(QLineEdit* edit, const std::string& text) {
  edit->setText(Q(text));
  edit->setCursorPosition(0);
  shown_[edit] = edit->text();
}

bool DataEntry::Unchanged(QLineEdit* edit) const {
  auto it = shown_.find(edit);
  return it != shown_.end() && it->second == edit->text();
}

void DataEntry::LoadRecord(int32_t number) {
  Session& s = wb_.session;
  const bool valid = opened_ && number >= 1 && number <= s.project.Header.RecordCount;
  current_ = valid ? number : 0;
  loading_ = true;
  fieldsPanel_->setEnabled(valid);
  EventRecord empty;
  const EventRecord& r = valid ? Record() : empty;
  SetText(description_, r.Description);
  SetText(date_, r.Day == 0 ? std::string() : FormatDate(s, r.Day, r.Month, r.Year));
  SetText(range_, std::to_string(r.DayRange));
  SetText(zoneMnemonic_, r.ZoneAbbr);
  SetText(zoneTime_, FormatZone(r.ZoneHours));
  SetText(time_, FormatTime(r.Hour, r.Minute, r.Second, s.prefs.AMPM != 0));
  SetText(place_, r.Placename);
  SetText(latitude_, FormatLatitude(r.Latitude));
  SetText(longitude_, FormatLongitude(r.Longitude));
  const int level = std::clamp<int>(r.DetailLevel, kDetailNoTime, kDetailTimePlace);
  detail_[level]->setChecked(true);
  ShowDetail(level);
  const std::vector<std::string> elements = SplitOnText(r.Categories, "|", int(values_.size()) + 1);
  for (size_t c = 0; c < values_.size(); ++c)
    values_[c]->setEditText(c < elements.size() ? Q(Trim(elements[c])) : QString());
  ShowMarker();
  loading_ = false;
  UpdateButtons();
}

void DataEntry::ShowDetail(int level) {
  const DetailFields shown = FieldsForDetail(level);
  detailForm_->setRowVisible(zoneRow_, shown.zone);
  detailForm_->setRowVisible(time_, shown.time);
  detailForm_->setRowVisible(placeRow_, shown.place);
  detailForm_->setRowVisible(latitude_, shown.place);
  detailForm_->setRowVisible(longitude_, shown.place);
}

void DataEntry::ShowMarker() {
  const bool marker = current_ && Record().DayRange > kMarkerRange;
  marker_->setText(marker ? tr("Year marker") : QString());
}

void DataEntry::UpdateButtons() {
  const bool any = current_ > 0;
  delete_->setEnabled(opened_ && any);
  enable_->setEnabled(opened_ && any);
  disable_->setEnabled(opened_ && any);
  const bool records = opened_ && wb_.session.project.Header.RecordCount > 0;
  enableAll_->setEnabled(records);
  select_->setEnabled(records && wb_.selectRecords != nullptr);
  disableAll_->setEnabled(records);
  sort_->setEnabled(records);
  add_->setEnabled(opened_);
}

void DataEntry::Refused(QWidget* field) {
  // Back to the field once the message has gone, so that it can be put right.
  QTimer::singleShot(0, field, [field] {
    field->setFocus();
    if (auto* edit = qobject_cast<QLineEdit*>(field)) edit->selectAll();
  });
}

void DataEntry::LeaveFocusedField() {
  QWidget* focus = QApplication::focusWidget();
  if (auto* edit = qobject_cast<QLineEdit*>(focus); edit && edit->window() == this) emit edit->editingFinished();
}

void DataEntry::LeaveDescription() {
  if (loading_ || !current_ || Unchanged(description_)) return;
  EventRecord& r = Record();
  r.Description = L(description_->text());
  r.Validated = kFalse;
  shown_[description_] = description_->text();
  RefreshLine(current_);
}

void DataEntry::LeaveDate() {
  if (loading_ || !current_ || Unchanged(date_)) return;
  std::string date = L(date_->text()), range = L(range_->text());
  if (!LeaveDateField(wb_.session, Record(), date, range)) {
    Refused(date_);
    return;
  }
  SetText(date_, date);
  SetText(range_, std::to_string(Record().DayRange));
  ShowMarker();
  RefreshLine(current_);
}

void DataEntry::LeaveRange() {
  if (loading_ || !current_ || Unchanged(range_)) return;
  if (!LeaveRangeField(wb_.session, Record(), L(range_->text()))) {
    Refused(range_);
    return;
  }
  SetText(range_, std::to_string(Record().DayRange));
  ShowMarker();
  RefreshLine(current_);
}

void DataEntry::ChooseDetail(int level) {
  if (loading_ || !current_) return;
  SetDetailLevel(Record(), level);
  ShowDetail(level);
  RefreshLine(current_);
}

void DataEntry::LeaveZoneMnemonic() {
  if (loading_ || !current_ || Unchanged(zoneMnemonic_)) return;
  std::string mnemonic = L(zoneMnemonic_->text()), zoneTime = L(zoneTime_->text());
  LeaveZoneMnemonicField(wb_.session, Record(), mnemonic, zoneTime);
  SetText(zoneMnemonic_, mnemonic);
  SetText(zoneTime_, zoneTime);
}

void DataEntry::LeaveZoneTime() {
  if (loading_ || !current_ || Unchanged(zoneTime_)) return;
  std::string text = L(zoneTime_->text());
  if (!LeaveZoneTimeField(wb_.session, Record(), text)) {
    Refused(zoneTime_);
    return;
  }
  SetText(zoneTime_, text);
}

void DataEntry::LeaveTime() {
  if (loading_ || !current_ || Unchanged(time_)) return;
  std::string text = L(time_->text());
  if (!LeaveTimeField(wb_.session, Record(), text)) {
    Refused(time_);
    return;
  }
  SetText(time_, text);
}

void DataEntry::LeavePlace() {
  if (loading_ || !current_ || Unchanged(place_)) return;
  EventRecord& r = Record();
  r.Placename = Trim(L(place_->text()));
  r.Validated = kFalse;
  SetText(place_, r.Placename);
  if (copy_.AutoAtlasLookup && !r.Placename.empty()) LookUpPlace();
}

void DataEntry::LeaveLatitude() {
  if (loading_ || !current_ || Unchanged(latitude_)) return;
  std::string text = L(latitude_->text());
  if (!LeaveLatitudeField(wb_.session, Record(), text)) {
    Refused(latitude_);
    return;
  }
  SetText(latitude_, text);
}

void DataEntry::LeaveLongitude() {
  if (loading_ || !current_ || Unchanged(longitude_)) return;
  std::string text = L(longitude_->text()), zoneTime = L(zoneTime_->text());
  if (!LeaveLongitudeField(wb_.session, Record(), text, L(zoneMnemonic_->text()), zoneTime)) {
    Refused(longitude_);
    return;
  }
  SetText(longitude_, text);
  SetText(zoneTime_, zoneTime);
}

void DataEntry::LeaveCategory(int category) {
  if (loading_ || !current_ || category < 1 || size_t(category) > values_.size()) return;
  QComboBox* combo = values_[size_t(category - 1)];
  const std::vector<std::string> elements =
      SplitOnText(Record().Categories, "|", int(values_.size()) + 1);
  const std::string stored = size_t(category) <= elements.size() ? Trim(elements[size_t(category - 1)]) : "";
  std::string text = L(combo->currentText());
  if (Trim(text) == stored) return;
  Session& s = wb_.session;
  const size_t valuesBefore = s.project.Categories.CategoryValues.size();
  const bool accepted = SetRecordCategory(s, s.project, current_, category, text);
  if (s.project.Categories.CategoryValues.size() != valuesBefore) FillCategoryItems(category);
  loading_ = true;
  combo->setEditText(Q(text));
  loading_ = false;
  if (!accepted) Refused(combo);
}

void DataEntry::LookUpPlace() {
  if (!current_) return;
  EventRecord& r = Record();
  const std::string typed = Trim(L(place_->text()));
  if (!CheckNotBlank(wb_.session, typed)) {
    Refused(place_);
    return;
  }
  AtlasEntryFields found;
  if (!PickAtlasPlace(wb_, this, typed, r.Year, r.Month, r.Day, r.Hour, r.Minute, found)) return;
  Session& s = wb_.session;
  r.Placename = Trim(found.PlaceName);
  r.Validated = kFalse;
  SetText(place_, r.Placename);
  // The zone in force there and then: its mnemonic, then its offset, which
  // stands even where the mnemonic names a different offset in the table.
  std::string mnemonic = found.ZoneMnemonic, zoneTime = found.ZoneTime;
  LeaveZoneMnemonicField(s, r, mnemonic, zoneTime);
  zoneTime = found.ZoneTime;
  LeaveZoneTimeField(s, r, zoneTime);
  std::string latitude = found.Latitude, longitude = found.Longitude;
  LeaveLatitudeField(s, r, latitude);
  LeaveLongitudeField(s, r, longitude, mnemonic, zoneTime);
  SetText(zoneMnemonic_, mnemonic);
  SetText(zoneTime_, zoneTime);
  SetText(latitude_, latitude);
  SetText(longitude_, longitude);
  RefreshLine(current_);
}

// The buttons ------------------------------------------------------------------

void DataEntry::AddClicked() {
  LeaveFocusedField();
  Session& s = wb_.session;
  const int32_t number = AddRecord(s.project);
  if (number == 0) {
    s.ShowMessage("Out of memory", kIconExclamation, "Vintar");
    return;
  }
  BuildList();
  SelectRecord(number);
  description_->setFocus();
}

void DataEntry::DeleteClicked() {
  if (!current_) return;
  Session& s = wb_.session;
  const int32_t number = current_;
  if (!DeleteRecord(s, s.project, number)) return;
  BuildList();
  SelectRecord(std::min(number, s.project.Header.RecordCount));
}

void DataEntry::EnableClicked(bool enabled) {
  if (!current_) return;
  SetRecordEnabled(wb_.session.project, current_, enabled);
  RefreshLine(current_);
}

void DataEntry::EnableAllClicked(bool enabled) {
  SetAllRecordsEnabled(wb_.session.project, enabled);
  for (int32_t i = 1; i <= list_->topLevelItemCount(); ++i) RefreshLine(i);
}

void DataEntry::SelectClicked() {
  LeaveFocusedField();
  if (!wb_.selectRecords || !wb_.selectRecords(wb_, this)) return;
  for (int32_t i = 1; i <= list_->topLevelItemCount(); ++i) RefreshLine(i);
  UpdateButtons();
}

void DataEntry::SortClicked() {
  LeaveFocusedField();
  Session& s = wb_.session;
  SortOptions options(wb_, this);
  if (options.exec() != QDialog::Accepted) {
    s.DialogCancelled = kFalse;
    return;
  }
  SortRequest request = options.Request();
  request.sunLongitude = [&s](const EventRecord& r) { return RecordSunLongitude(s, r); };
  // Records edited here carry the moment of their old fields until OK.
  ProjectState& p = s.project;
  for (int32_t i = 1; i <= p.Header.RecordCount && size_t(i) < p.Events.size(); ++i)
    if (!p.Events[size_t(i)].Validated) p.Events[size_t(i)].JulianDay = RecordJulianDay(p.Events[size_t(i)]);
  SortProject(s, request);
  BuildList();
  SelectRecord(1);
}

// OK and Cancel ----------------------------------------------------------------

void DataEntry::accept() {
  Session& s = wb_.session;
  if (!opened_) {
    QDialog::reject();
    return;
  }
  LeaveFocusedField();
  int32_t bad = 0;
  if (!FinishRecordEdit(s, copy_, bad)) {
    if (bad > 0) SelectRecord(bad);
    Refused(date_);
    return;
  }
  UpdateTitle(s, s.project.ProjectPath);
  wb_.Changed();
  QDialog::accept();
}

void DataEntry::reject() {
  Session& s = wb_.session;
  if (opened_ && copy_.held) {
    CancelRecordEdit(s, copy_);
    UpdateTitle(s, s.project.ProjectPath);
    wb_.Changed();
  }
  QDialog::reject();
}

}  // namespace vintar
