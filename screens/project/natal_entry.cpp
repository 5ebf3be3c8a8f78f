#include "screens/project/natal_entry.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/parse.h"
#include "core/project_ops.h"
#include "core/session.h"
#include "core/text.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"
#include "screens/places/atlas_pick.h"
#include "screens/project/entry_keys.h"

namespace vintar {

NatalEntry::NatalEntry(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("NatalEntry");
  Session& s = wb_.session;
  setWindowTitle(tr("Natal Details - %1").arg(Q(s.project.Header.Title)));
  auto* outer = new QVBoxLayout(this);

  auto* person = new QGroupBox(tr("Birth"), this);
  auto* form = new QFormLayout(person);
  name_ = AddEdit("ChartName");
  name_->setMinimumWidth(320);
  form->addRow(tr("&Name:"), name_);
  date_ = AddEdit("ChartDate");
  form->addRow(tr("&Date:"), date_);
  time_ = AddEdit("ChartTime");
  time_->setToolTip(tr("The birth time, or Unknown"));
  form->addRow(tr("&Time:"), time_);
  auto* zoneRow = new QHBoxLayout;
  zoneMnemonic_ = AddEdit("TZMnemonic");
  zoneMnemonic_->setMaxLength(5);
  zoneMnemonic_->setMaximumWidth(80);
  zoneTime_ = AddEdit("TZTime");
  zoneTime_->setMaximumWidth(120);
  zoneRow->addWidget(zoneMnemonic_);
  zoneRow->addWidget(zoneTime_);
  zoneRow->addStretch();
  auto* zoneLabel = new QLabel(tr("&Zone:"), person);
  zoneLabel->setBuddy(zoneMnemonic_);
  form->addRow(zoneLabel, zoneRow);
  auto* placeRow = new QHBoxLayout;
  place_ = AddEdit("PlaceName");
  auto* lookup = new QPushButton(tr("Look &Up..."), person);
  lookup->setObjectName("LookupButton");
  lookup->setAutoDefault(false);
  placeRow->addWidget(place_, 1);
  placeRow->addWidget(lookup);
  auto* placeLabel = new QLabel(tr("&Place:"), person);
  placeLabel->setBuddy(place_);
  form->addRow(placeLabel, placeRow);
  latitude_ = AddEdit("Latitude");
  form->addRow(tr("Latit&ude:"), latitude_);
  longitude_ = AddEdit("Longitude");
  form->addRow(tr("Lon&gitude:"), longitude_);
  outer->addWidget(person);

  auto* window = new QGroupBox(tr("Rectification window (local time)"), this);
  auto* windowForm = new QFormLayout(window);
  earliest_ = AddEdit("TimeLimit1");
  latest_ = AddEdit("TimeLimit2");
  windowForm->addRow(tr("&Earliest:"), earliest_);
  windowForm->addRow(tr("&Latest:"), latest_);
  outer->addWidget(window);
  outer->addStretch();

  auto* box = OkCancelButtons(this);
  outer->addWidget(box);

  connect(zoneMnemonic_, &QLineEdit::editingFinished, this, &NatalEntry::LeaveZoneMnemonic);
  connect(lookup, &QPushButton::clicked, this, &NatalEntry::LookUpPlace);
  connect(place_, &QLineEdit::editingFinished, this, [this] {
    if (place_->isModified() && wb_.session.prefs.AutoAtlasLookup && !Trim(L(place_->text())).empty()) {
      place_->setModified(false);
      LookUpPlace();
    }
  });

  keys_ = new EntryKeys(s, this);
  keys_->SetFields({name_, date_, time_, zoneMnemonic_, zoneTime_, place_, latitude_, longitude_, earliest_, latest_});

  loaded_ = NatalFieldsFromHeader(s.project.Header);
  editedAtOpen_ = s.project.Status.NatalEdited;
  SetFields(loaded_);
  for (QLineEdit* edit : findChildren<QLineEdit*>())
    connect(edit, &QLineEdit::textEdited, this, &NatalEntry::MarkEdited);
}

QLineEdit* NatalEntry::AddEdit(const char* name) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  return edit;
}

NatalFields NatalEntry::Fields() const {
  NatalFields f;
  f.Name = L(name_->text());
  f.Date = L(date_->text());
  f.Time = L(time_->text());
  f.ZoneMnemonic = L(zoneMnemonic_->text());
  f.ZoneTime = L(zoneTime_->text());
  f.Place = L(place_->text());
  f.Latitude = L(latitude_->text());
  f.Longitude = L(longitude_->text());
  f.Earliest = L(earliest_->text());
  f.Latest = L(latest_->text());
  return f;
}

void NatalEntry::SetFields(const NatalFields& f) {
  const std::pair<QLineEdit*, const std::string*> pairs[] = {
      {name_, &f.Name},         {date_, &f.Date},         {time_, &f.Time},           {zoneMnemonic_, &f.ZoneMnemonic},
      {zoneTime_, &f.ZoneTime}, {place_, &f.Place},       {latitude_, &f.Latitude},   {longitude_, &f.Longitude},
      {earliest_, &f.Earliest}, {latest_, &f.Latest}};
  for (const auto& [edit, text] : pairs) {
    edit->setText(Q(*text));
    edit->setCursorPosition(0);
  }
}

void NatalEntry::MarkEdited() {
  const NatalFields now = Fields();
  const bool differs = now.Name != loaded_.Name || now.Date != loaded_.Date || now.Time != loaded_.Time ||
                       now.ZoneMnemonic != loaded_.ZoneMnemonic || now.ZoneTime != loaded_.ZoneTime ||
                       now.Place != loaded_.Place || now.Latitude != loaded_.Latitude ||
                       now.Longitude != loaded_.Longitude || now.Earliest != loaded_.Earliest ||
                       now.Latest != loaded_.Latest;
  wb_.session.project.Status.NatalEdited = differs ? kTrue : editedAtOpen_;
}

void NatalEntry::LeaveZoneMnemonic() {
  // A mnemonic of the zone table brings its offset, as on the record screen.
  EventRecord scratch;
  std::string mnemonic = L(zoneMnemonic_->text()), zoneTime = L(zoneTime_->text());
  LeaveZoneMnemonicField(wb_.session, scratch, mnemonic, zoneTime);
  zoneMnemonic_->setText(Q(mnemonic));
  zoneTime_->setText(Q(zoneTime));
}

void NatalEntry::LookUpPlace() {
  Session& s = wb_.session;
  const std::string typed = Trim(L(place_->text()));
  if (!CheckNotBlank(s, typed)) {
    place_->setFocus();
    return;
  }
  // The zone in force at the birth; noon of the day when the time is unknown.
  int16_t day = 1, month = 1, year = 2000, hour = 12, minute = 0, second = 0;
  bool failed = false;
  ParseDate(s, L(date_->text()), day, month, year, false, failed);
  if (failed) {
    day = 1, month = 1, year = 2000;
    failed = false;
  }
  if (!EqualsIgnoreCase(Trim(L(time_->text())), "Unknown")) {
    ParseTime(s, L(time_->text()), hour, minute, second, false, failed);
    if (failed) hour = 12, minute = 0;
  }
  AtlasEntryFields found;
  if (!PickAtlasPlace(wb_, this, typed, year, month, day, hour, minute, found)) return;
  place_->setText(Q(Trim(found.PlaceName)));
  latitude_->setText(Q(found.Latitude));
  longitude_->setText(Q(found.Longitude));
  zoneMnemonic_->setText(Q(found.ZoneMnemonic));
  zoneTime_->setText(Q(found.ZoneTime));
  MarkEdited();
}

void NatalEntry::accept() {
  Session& s = wb_.session;
  if (!ApplyNatalEntry(s, Fields())) return;
  UpdateTitle(s, s.project.ProjectPath);
  wb_.Changed();
  QDialog::accept();
}

void NatalEntry::reject() {
  wb_.session.project.Status.NatalEdited = editedAtOpen_;
  QDialog::reject();
}

}  // namespace vintar
