#include "screens/places/acs_data.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/parse.h"
#include "screens/common/qt_text.h"
#include "screens/places/atlas_pick.h"

namespace vintar {
namespace {

QString Utf8(const std::string& text) { return QString::fromUtf8(text.data(), qsizetype(text.size())); }

QLabel* ResultLabel(QWidget* parent, const char* name) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  label->setMinimumWidth(280);
  return label;
}

QString ClockText(const Session& s, const ZoneClock& c) {
  return Q(FormatDate(s, c.Day, c.Month, c.Year) + "  " + FormatTime(c.Hour, c.Minute, c.Second, false));
}

}  // namespace

ACSData::ACSData(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("ACSData");
  setWindowTitle(tr("Atlas Look-up"));
  const Session& s = wb_.session;
  auto* layout = new QVBoxLayout(this);

  auto* query = new QFormLayout;
  placeText_ = new QLineEdit(this);
  placeText_->setObjectName("txtPlace");
  placeText_->setPlaceholderText(tr("City, Country or City, State"));
  date_ = new QLineEdit(Q(FormatDate(s, s.clock.Day, s.clock.Month, s.clock.Year)), this);
  date_->setObjectName("txtDate");
  time_ = new QLineEdit(Q(FormatTime(12, 0, 0, false)), this);
  time_->setObjectName("txtTime");
  auto* lookup = new QPushButton(tr("&Look Up"), this);
  lookup->setObjectName("btnLookup");
  lookup->setDefault(true);
  auto* placeRow = new QHBoxLayout;
  placeRow->addWidget(placeText_, 1);
  placeRow->addWidget(lookup);
  auto* placeLabel = new QLabel(tr("&Place:"), this);
  placeLabel->setBuddy(placeText_);
  query->addRow(placeLabel, placeRow);
  query->addRow(tr("&Date:"), date_);
  query->addRow(tr("&Time:"), time_);
  layout->addLayout(query);

  auto* result = new QGroupBox(tr("Found"), this);
  auto* form = new QFormLayout(result);
  placeName_ = ResultLabel(result, "lblPlace");
  latitude_ = ResultLabel(result, "lblLatitude");
  longitude_ = ResultLabel(result, "lblLongitude");
  zoneName_ = ResultLabel(result, "lblZoneName");
  zone_ = ResultLabel(result, "lblZone");
  notes_ = ResultLabel(result, "lblNotes");
  notes_->setWordWrap(true);
  form->addRow(tr("Place:"), placeName_);
  form->addRow(tr("Latitude:"), latitude_);
  form->addRow(tr("Longitude:"), longitude_);
  form->addRow(tr("Time zone:"), zoneName_);
  form->addRow(tr("Zone in force:"), zone_);
  form->addRow(QString(), notes_);
  layout->addWidget(result);

  auto* buttons = new QDialogButtonBox(this);
  zones_ = buttons->addButton(tr("Zone &Changes..."), QDialogButtonBox::ActionRole);
  zones_->setObjectName("btnZones");
  zones_->setAutoDefault(false);
  zones_->setEnabled(false);
  QPushButton* close = buttons->addButton(tr("&Close"), QDialogButtonBox::RejectRole);
  close->setObjectName("CancelButton");
  close->setAutoDefault(false);
  layout->addWidget(buttons);

  connect(lookup, &QPushButton::clicked, this, [this] { LookUp(); });
  connect(zones_, &QPushButton::clicked, this, &ACSData::ShowZones);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  placeText_->setFocus();
}

bool ACSData::LookUp() {
  Session& s = wb_.session;
  int16_t day = 0, month = 0, year = 0, hour = 0, minute = 0, second = 0;
  bool failed = false;
  ParseDate(s, L(date_->text()), day, month, year, true, failed);
  if (failed) {
    date_->setFocus();
    return false;
  }
  ParseTime(s, L(time_->text()), hour, minute, second, true, failed);
  if (failed) {
    time_->setFocus();
    return false;
  }
  AtlasPlace place;
  if (!ChooseAtlasPlace(wb_, this, L(placeText_->text()), place)) {
    placeText_->setFocus();
    return false;
  }
  AtlasEntryFields fields = FillEntryFields(s, wb_.atlas, place, year, month, day, hour, minute);
  if (fields.Failed) return false;
  found_ = true;
  place_ = place;
  fields_ = fields;
  year_ = year;
  ShowResult();
  return true;
}

void ACSData::ShowResult() {
  placeName_->setText(AtlasPlaceCaption(place_) + (place_.personal ? tr(" (my place)") : QString()));
  latitude_->setText(Q(fields_.Latitude));
  longitude_->setText(Q(fields_.Longitude));
  zoneName_->setText(Utf8(place_.zone));
  zone_->setText(Utf8(fields_.ZoneMnemonic) + QStringLiteral("  ") + Q(fields_.ZoneTime));
  QStringList notes;
  if (fields_.IsLmt) notes << tr("Local mean time of the place.");
  if (fields_.InGap) notes << tr("The clocks went forward over this time; the offset before the change is given.");
  if (fields_.InOverlap) notes << tr("The clocks went back over this time; the first pass is given.");
  notes_->setText(notes.join(QLatin1Char(' ')));
  zones_->setEnabled(true);
}

void ACSData::ShowZones() {
  if (!found_) return;
  ACSZones zones(wb_, this, place_.zone, year_ - 50, year_ + 50);
  zones.exec();
}

ACSZones::ACSZones(Workbench& wb, QWidget* parent, const std::string& zoneName, int fromYear, int toYear)
    : QDialog(parent), wb_(wb), zoneName_(zoneName) {
  setObjectName("ACSZones");
  setWindowTitle(tr("Time Zone Changes"));
  auto* layout = new QVBoxLayout(this);
  auto* zone = new QLabel(Utf8(zoneName), this);
  zone->setObjectName("lblZone");
  QFont bold = zone->font();
  bold.setBold(true);
  zone->setFont(bold);
  layout->addWidget(zone);

  auto* range = new QHBoxLayout;
  from_ = new QSpinBox(this);
  from_->setObjectName("spnFrom");
  to_ = new QSpinBox(this);
  to_->setObjectName("spnTo");
  for (QSpinBox* box : {from_, to_}) {
    box->setRange(-4712, 9999);
    box->setGroupSeparatorShown(false);
  }
  from_->setValue(fromYear);
  to_->setValue(toYear);
  auto* fromLabel = new QLabel(tr("&From year:"), this);
  fromLabel->setBuddy(from_);
  auto* toLabel = new QLabel(tr("&To year:"), this);
  toLabel->setBuddy(to_);
  auto* show = new QPushButton(tr("&Show"), this);
  show->setObjectName("btnShow");
  show->setDefault(true);
  range->addWidget(fromLabel);
  range->addWidget(from_);
  range->addWidget(toLabel);
  range->addWidget(to_);
  range->addWidget(show);
  range->addStretch();
  layout->addLayout(range);

  list_ = new QTreeWidget(this);
  list_->setObjectName("lstChanges");
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAlternatingRowColors(true);
  list_->setHeaderLabels({tr("Clock before"), tr("Set to"), tr("Offset"), tr("Abbreviation"), tr("Kind")});
  list_->setMinimumSize(620, 320);
  layout->addWidget(list_);

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* close = buttons->addButton(tr("&Close"), QDialogButtonBox::RejectRole);
  close->setObjectName("CancelButton");
  close->setAutoDefault(false);
  layout->addWidget(buttons);
  connect(show, &QPushButton::clicked, this, [this] { Fill(); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  Fill();
}

bool ACSZones::Fill() {
  Session& s = wb_.session;
  std::string message;
  const std::vector<ZoneChange> changes = wb_.atlas.zones.ZoneChanges(zoneName_, from_->value(), to_->value(), message);
  list_->clear();
  if (!message.empty()) {
    s.ShowMessage(message, kIconExclamation, "Vintar");
    return false;
  }
  for (const ZoneChange& c : changes) {
    const QString kind = c.IsLmt ? tr("LMT") : c.IsDst ? tr("Daylight") : tr("Standard");
    new QTreeWidgetItem(list_, {ClockText(s, c.ClockBefore), ClockText(s, c.ClockAfter), Q(FormatZone(c.Hours)),
                                Utf8(c.Abbreviation), kind});
  }
  for (int col = 0; col < list_->columnCount(); ++col) list_->resizeColumnToContents(col);
  return true;
}

}  // namespace vintar
