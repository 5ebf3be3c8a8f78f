#include "screens/research/rand_param.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "calc/cache.h"
#include "core/project_ops.h"
#include "core/text.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/project/file_dialogs.h"

namespace vintar {

RandParam::RandParam(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("RandParam");
  setWindowTitle(Q(ControlCaption(wb_.session)));
  // The form opens on its defaults each time; its last inputs are not kept.
  const ControlOptions o;

  auto* basisBox = new QGroupBox(tr("Data Basis"), this);
  auto* basisLayout = new QVBoxLayout(basisBox);
  const char* basisCaptions[2] = {QT_TR_NOOP("Generate &Independent Data"), QT_TR_NOOP("Use &Current Project as Base")};
  for (int i = 0; i < 2; ++i) {
    basis_[i] = new QRadioButton(tr(basisCaptions[i]), basisBox);
    basis_[i]->setObjectName(QString("OptionDataBasis_%1").arg(i));
    basisLayout->addWidget(basis_[i]);
  }
  const bool base = BaseOptionAvailable(wb_.session);
  basis_[1]->setEnabled(base);
  basis_[o.FromProject && base ? 1 : 0]->setChecked(true);
  number_ = new QLineEdit(Q(o.Number.empty() ? "1000" : o.Number), this);
  number_->setObjectName("Number");
  auto* numberRow = new QFormLayout;
  numberRow->addRow(tr("&Total Records:"), number_);
  basisLayout->addLayout(numberRow);

  datesBox_ = new QGroupBox(tr("Date Intervals"), this);
  auto* datesLayout = new QGridLayout(datesBox_);
  randDate_ = new QRadioButton(tr("R&andom"), datesBox_);
  randDate_->setObjectName("OptionRandDate");
  regDate_ = new QRadioButton(tr("&Regular"), datesBox_);
  regDate_->setObjectName("OptionRegDate");
  (o.RandomDates == 2 ? regDate_ : randDate_)->setChecked(true);
  startDate_ = new QLineEdit(Q(o.StartDate.empty() ? "1 Jan 1900" : o.StartDate), datesBox_);
  startDate_->setObjectName("StartDate");
  endDate_ = new QLineEdit(Q(o.EndDate.empty() ? "31 Dec 1999" : o.EndDate), datesBox_);
  endDate_->setObjectName("EndDate");
  datesLayout->addWidget(randDate_, 0, 0);
  datesLayout->addWidget(regDate_, 0, 1);
  auto* startLabel = new QLabel(tr("&Start Date:"), datesBox_);
  startLabel->setBuddy(startDate_);
  auto* endLabel = new QLabel(tr("&End Date:"), datesBox_);
  endLabel->setBuddy(endDate_);
  datesLayout->addWidget(startLabel, 1, 0);
  datesLayout->addWidget(startDate_, 1, 1);
  datesLayout->addWidget(endLabel, 2, 0);
  datesLayout->addWidget(endDate_, 2, 1);

  replicateBox_ = new QGroupBox(tr("Replication"), this);
  auto* replicateLayout = new QVBoxLayout(replicateBox_);
  const char* replicateCaptions[4] = {QT_TR_NOOP("Replicate &Years"), QT_TR_NOOP("Replicate &Days && Months"),
                                      QT_TR_NOOP("Replicate Ti&mes of Day"), QT_TR_NOOP("Replicate &Lats && Longs")};
  for (int i = 0; i < 4; ++i) {
    replicate_[i] = new QCheckBox(tr(replicateCaptions[i]), replicateBox_);
    replicate_[i]->setObjectName(QString("CheckReplicate_%1").arg(i));
    replicate_[i]->setChecked(o.Replicate[i]);
    replicateLayout->addWidget(replicate_[i]);
  }
  shift_ = new QCheckBox(tr("Apply Uniform Time S&hift of:"), this);
  shift_->setObjectName("chkShift");
  shift_->setChecked(o.Shift);
  period_ = new QLineEdit(Q(o.Period.empty() ? "+1" : o.Period), this);
  period_->setObjectName("txtPeriod");
  periodUnit_ = new QComboBox(this);
  periodUnit_->setObjectName("cmbPeriod");
  for (const char* unit : kShiftUnitNames) periodUnit_->addItem(tr(unit));
  periodUnit_->setCurrentIndex(static_cast<int>(o.Unit));
  auto* shiftRow = new QHBoxLayout;
  shiftRow->addWidget(shift_);
  shiftRow->addWidget(period_);
  shiftRow->addWidget(periodUnit_);
  replicateLayout->addLayout(shiftRow);
  shuffle_ = new QCheckBox(tr("Shu&ffle the Dates, Times and Places of the Current Project"), this);
  shuffle_->setObjectName("chkShuffle");
  shuffle_->setChecked(o.Shuffle);
  replicateLayout->addWidget(shuffle_);

  placesBox_ = new QGroupBox(tr("Places"), this);
  auto* placesLayout = new QGridLayout(placesBox_);
  const std::string latitudes[2] = {o.Latitude1, o.Latitude2};
  const std::string longitudes[2] = {o.Longitude1, o.Longitude2};
  for (int i = 0; i < 2; ++i) {
    latitude_[i] = new QLineEdit(Q(latitudes[i]), placesBox_);
    latitude_[i]->setObjectName(QString("Latitude_%1").arg(i));
    longitude_[i] = new QLineEdit(Q(longitudes[i]), placesBox_);
    longitude_[i]->setObjectName(QString("Longitude_%1").arg(i));
  }
  placesLayout->addWidget(new QLabel(tr("Latitude Range"), placesBox_), 0, 0);
  placesLayout->addWidget(latitude_[0], 0, 1);
  placesLayout->addWidget(new QLabel(tr("to"), placesBox_), 0, 2);
  placesLayout->addWidget(latitude_[1], 0, 3);
  placesLayout->addWidget(new QLabel(tr("Longitude Range"), placesBox_), 1, 0);
  placesLayout->addWidget(longitude_[0], 1, 1);
  placesLayout->addWidget(new QLabel(tr("to"), placesBox_), 1, 2);
  placesLayout->addWidget(longitude_[1], 1, 3);
  auto* note = new QLabel(tr("South latitudes and east longitudes are negative."), placesBox_);
  placesLayout->addWidget(note, 2, 0, 1, 4);

  auto* left = new QVBoxLayout;
  left->addWidget(basisBox);
  left->addWidget(datesBox_);
  left->addStretch();
  auto* right = new QVBoxLayout;
  right->addWidget(replicateBox_);
  right->addWidget(placesBox_);
  right->addStretch();
  auto* columns = new QHBoxLayout;
  columns->addLayout(left);
  columns->addLayout(right);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(columns);
  layout->addWidget(OkCancelButtons(this));

  for (auto* b : basis_) connect(b, &QRadioButton::toggled, this, &RandParam::UpdateControls);
  for (auto* c : replicate_) connect(c, &QCheckBox::toggled, this, &RandParam::UpdateControls);
  connect(shift_, &QCheckBox::toggled, this, &RandParam::UpdateControls);
  connect(shuffle_, &QCheckBox::toggled, this, &RandParam::UpdateControls);
  connect(period_, &QLineEdit::editingFinished, this, &RandParam::LeavePeriod);
  UpdateControls();
}

ControlOptions RandParam::Options() const {
  ControlOptions o;
  o.FromProject = basis_[1]->isChecked();
  o.Number = L(number_->text().trimmed());
  o.RandomDates = randDate_->isChecked() ? 1 : 2;
  o.StartDate = L(startDate_->text().trimmed());
  o.EndDate = L(endDate_->text().trimmed());
  for (int i = 0; i < 4; ++i) o.Replicate[i] = replicate_[i]->isChecked();
  o.Shift = o.FromProject && shift_->isChecked();
  o.Shuffle = o.FromProject && shuffle_->isChecked();
  o.Period = L(period_->text().trimmed());
  o.Unit = static_cast<ShiftUnit>(std::max(0, periodUnit_->currentIndex()));
  o.Latitude1 = L(latitude_[0]->text().trimmed());
  o.Latitude2 = L(latitude_[1]->text().trimmed());
  o.Longitude1 = L(longitude_[0]->text().trimmed());
  o.Longitude2 = L(longitude_[1]->text().trimmed());
  return o;
}

void RandParam::UpdateControls() {
  const ControlOptions o = Options();
  const ControlScreenState state = ControlScreen(o);
  // A base project's record count is its own.
  if (o.FromProject) number_->setText(QString::number(wb_.session.project.Header.RecordCount));
  number_->setEnabled(state.NumberEditable);
  const bool shuffled = o.Shuffle;
  datesBox_->setEnabled(state.DatesEnabled && !shuffled);
  for (auto* c : replicate_) c->setEnabled(state.ReplicationEnabled && !shuffled);
  shift_->setEnabled(state.ShiftEnabled && !shuffled);
  period_->setEnabled(state.ShiftEnabled && o.Shift);
  periodUnit_->setEnabled(state.ShiftEnabled && o.Shift);
  shuffle_->setEnabled(o.FromProject);
  placesBox_->setEnabled(state.PlacesEnabled && !shuffled);
}

void RandParam::LeavePeriod() {
  // The shift is written with its sign: "+2", "-1.5".
  const std::string text = L(period_->text().trimmed());
  if (text.empty()) return;
  const double value = Val(text);
  period_->setText((value >= 0 ? "+" : "-") + QString::number(std::abs(value), 'g', 10));
}

bool RandParam::Check() {
  ControlPlan plan;
  return CheckControlOptions(wb_.session, Options(), plan);
}

bool RandParam::Generate(const std::string& datPath) {
  Session& s = wb_.session;
  const ControlOptions options = Options();
  {
    BusyPointer busy;
    if (!GenerateControlData(s, options, datPath)) return false;
  }
  // The new project takes the place of the old one.
  ProgressWindow progress(this, tr("Open Project"));
  progress.show();
  s.MergeActive = kFalse;
  bool failed = false;
  const bool opened = OpenProject(s, datPath, failed, &progress, CacheFileName);
  progress.hide();
  if (opened) UpdateRecentFiles(s, wb_.recent);
  wb_.Changed();
  return opened;
}

void RandParam::accept() {
  Session& s = wb_.session;
  if (!Check()) return;
  if (s.project.Open && (s.project.Status.DataChanged || s.project.Status.NatChanged)) {
    bool cancelled = false;
    ConfirmSaveChanges(s, cancelled);
    if (cancelled) return;
  }
  std::string path;
  const bool chosen = askPath ? askPath(path) : [&] {
    SaveFile dialog(wb_, this, SaveFile::Purpose::Project);
    if (dialog.exec() != QDialog::Accepted) return false;
    path = dialog.Path();
    return true;
  }();
  s.DialogCancelled = kFalse;
  if (!chosen || path.empty()) return;
  if (Generate(path)) QDialog::accept();
}

}  // namespace vintar
