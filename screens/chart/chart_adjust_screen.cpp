#include "screens/chart/chart_adjust_screen.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/parse.h"
#include "screens/common/qt_text.h"

namespace vintar {

SpinButtons::SpinButtons(QWidget* parent) : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  for (int direction : {1, -1}) {
    auto* button = new QToolButton(this);
    button->setObjectName(direction > 0 ? "UpButton" : "DownButton");
    button->setArrowType(direction > 0 ? Qt::UpArrow : Qt::DownArrow);
    button->setAutoRepeat(true);
    button->setFixedSize(22, 13);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, direction] { emit stepped(direction); });
    layout->addWidget(button);
  }
}

namespace {

// Up and Down in a field step it as its spin buttons do.
class StepKeys : public QObject {
 public:
  StepKeys(QObject* parent, SpinButtons* spin) : QObject(parent), spin_(spin) {}
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::KeyPress) {
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (key == Qt::Key_Up || key == Qt::Key_Down) {
        emit spin_->stepped(key == Qt::Key_Up ? 1 : -1);
        return true;
      }
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  SpinButtons* spin_;
};

}  // namespace

ChartAdjust::ChartAdjust(Workbench& wb, QWidget* parent, const ChartAdjustState& radix)
    : QDialog(parent), wb_(wb), original_(radix), state_(radix) {
  setObjectName("ChartAdjust");
  setWindowTitle(tr("Adjust Chart"));
  auto* outer = new QVBoxLayout(this);
  auto* form = new QFormLayout;

  auto* timeRow = new QHBoxLayout;
  time_ = new QLineEdit(this);
  time_->setObjectName("ChartTim");
  auto* timeSpin = new SpinButtons(this);
  timeSpin->setObjectName("TimeSpin");
  timeRow->addWidget(time_);
  timeRow->addWidget(timeSpin);
  auto* timeLabel = new QLabel(tr("Birth &time:"), this);
  timeLabel->setBuddy(time_);
  form->addRow(timeLabel, timeRow);

  auto* mcRow = new QHBoxLayout;
  mc_ = new QLineEdit(this);
  mc_->setObjectName("ChartMC");
  auto* mcSpin = new SpinButtons(this);
  mcSpin->setObjectName("MCSpin");
  mcRow->addWidget(mc_);
  mcRow->addWidget(mcSpin);
  auto* mcLabel = new QLabel(tr("&Midheaven:"), this);
  mcLabel->setBuddy(mc_);
  form->addRow(mcLabel, mcRow);

  asc_ = new QLabel(this);
  asc_->setObjectName("ChartAsc");
  form->addRow(tr("Ascendant:"), asc_);
  outer->addLayout(form);

  auto* box = new QDialogButtonBox(this);
  QPushButton* ok = box->addButton(tr("&OK"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("OKButton");
  ok->setDefault(true);
  QPushButton* quit = box->addButton(tr("&Quit"), QDialogButtonBox::RejectRole);
  quit->setObjectName("QuitButton");
  connect(box, &QDialogButtonBox::accepted, this, &ChartAdjust::accept);
  connect(box, &QDialogButtonBox::rejected, this, &ChartAdjust::reject);
  outer->addWidget(box);

  connect(timeSpin, &SpinButtons::stepped, this, &ChartAdjust::SpinTime);
  connect(mcSpin, &SpinButtons::stepped, this, &ChartAdjust::SpinMC);
  connect(time_, &QLineEdit::editingFinished, this, &ChartAdjust::TimeTyped);
  connect(mc_, &QLineEdit::editingFinished, this, &ChartAdjust::MCTyped);
  time_->installEventFilter(new StepKeys(this, timeSpin));
  mc_->installEventFilter(new StepKeys(this, mcSpin));

  CastRadix(wb_.session, state_);
  ShowChart();
  setMinimumWidth(320);
}

void ChartAdjust::ShowChart() {
  const Session& s = wb_.session;
  const auto& lon = s.charts.Longitude[kGeocentric][state_.Slot];
  time_->setText(Q(FormatTime(state_.Hour, state_.Minute, state_.Second, s.prefs.AMPM != 0)));
  mc_->setText(Q(ZodiacPosition(s, lon[kMidheaven], false)).trimmed());
  asc_->setText(Q(ZodiacPosition(s, lon[kAscendant], false)).trimmed());
  time_->setModified(false);
  mc_->setModified(false);
}

void ChartAdjust::SpinTime(int direction) {
  if (time_->isModified() && !TimeTyped()) return;
  AdjustTime(wb_.session, state_, direction);
  ShowChart();
}

void ChartAdjust::SpinMC(int direction) {
  if (mc_->isModified() && !MCTyped()) return;
  AdjustMC(wb_.session, state_, direction);
  ShowChart();
}

bool ChartAdjust::TimeTyped() {
  if (!time_->isModified()) return true;
  time_->setModified(false);
  int16_t h = 0, m = 0, sec = 0;
  bool failed = false;
  ParseTime(wb_.session, L(time_->text()), h, m, sec, true, failed);
  if (failed) {
    // Still to be corrected: OK and the spinners parse it again.
    time_->setModified(true);
    time_->setFocus();
    return false;
  }
  state_.Hour = h;
  state_.Minute = m;
  state_.Second = sec;
  CastRadix(wb_.session, state_);
  ShowChart();
  return true;
}

bool ChartAdjust::MCTyped() {
  if (!mc_->isModified()) return true;
  mc_->setModified(false);
  float mc = 0.0f;
  bool failed = false;
  ParseAngle(wb_.session, L(mc_->text()), mc, failed);
  if (failed) {
    mc_->setModified(true);
    mc_->setFocus();
    return false;
  }
  SetRadixMC(wb_.session, state_, mc);
  ShowChart();
  return true;
}

void ChartAdjust::accept() {
  if (!TimeTyped() || !MCTyped()) return;
  if (!StoreRadixTime(wb_.session, state_)) return;
  CastRadix(wb_.session, state_);
  wb_.Changed();
  QDialog::accept();
}

void ChartAdjust::reject() {
  state_ = original_;
  CastRadix(wb_.session, state_);
  QDialog::reject();
}

}  // namespace vintar
