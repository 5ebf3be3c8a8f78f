#include "screens/chart/chart_opt.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"

namespace vintar {
namespace {

constexpr int kCheckRows = 8;

QGroupBox* CheckGroup(QWidget* parent, const Session& s, const QString& title, const char* name,
                      std::array<QCheckBox*, kPoints + 1>& boxes) {
  auto* group = new QGroupBox(title, parent);
  group->setObjectName(name);
  auto* grid = new QGridLayout(group);
  grid->setVerticalSpacing(2);
  for (int p = 1; p <= kPoints; ++p) {
    const QString label = p < static_cast<int>(s.vocab.PointName.size()) ? Q(s.vocab.PointName[p]) : QString::number(p);
    boxes[p] = new QCheckBox(label, group);
    boxes[p]->setObjectName(QString("%1_%2").arg(name).arg(p));
    grid->addWidget(boxes[p], (p - 1) % kCheckRows, (p - 1) / kCheckRows);
  }
  return group;
}

}  // namespace

ChartOpt::ChartOpt(Workbench& wb, QWidget* parent, const ChartOptions& options, int dynamicType)
    : QDialog(parent), wb_(wb), options_(options), form_(OpenChartOpt(options, dynamicType)) {
  setObjectName("ChartOpt");
  setWindowTitle(tr("Dynamic Chart Options"));
  const Session& s = wb_.session;
  auto* outer = new QVBoxLayout(this);

  auto* top = new QFormLayout;
  type_ = new QComboBox(this);
  type_->setObjectName("cmbDynType");
  for (int t = 0; t < kDynOptionTypes; ++t)
    type_->addItem(t < static_cast<int>(s.vocab.DynamicMethodName.size()) ? Q(s.vocab.DynamicMethodName[t])
                                                                           : QString::number(t));
  top->addRow(tr("&Dynamic type:"), type_);
  aspects_ = new QComboBox(this);
  aspects_->setObjectName("cmbAspects");
  for (const AspectSetChoice& choice : AspectSetChoices()) aspects_->addItem(choice.Name, choice.Harmonic);
  top->addRow(tr("&Aspects:"), aspects_);
  orb_ = new QLineEdit(this);
  orb_->setObjectName("txtOrb");
  orb_->setMaximumWidth(120);
  top->addRow(tr("&Orb for Hits:"), orb_);
  interval_ = new QLineEdit(this);
  interval_->setObjectName("txtInterval");
  interval_->setMaximumWidth(120);
  interval_->setText(Q(form_.Interval));
  interval_->setToolTip(tr("Days moved by one step of the play controls"));
  top->addRow(tr("Step &interval (days):"), interval_);
  outer->addLayout(top);

  auto* groups = new QHBoxLayout;
  groups->addWidget(CheckGroup(this, s, tr("Moving Points"), "Planet", moving_));
  groups->addWidget(CheckGroup(this, s, tr("Aspected Points"), "Planet2", aspected_));
  outer->addLayout(groups);

  auto* box = OkCancelButtons(this);
  outer->addWidget(box);

  type_->setCurrentIndex(form_.DynType);
  ShowRecord();
  connect(type_, &QComboBox::currentIndexChanged, this, &ChartOpt::TypeChosen);
  connect(aspects_, &QComboBox::activated, this, &ChartOpt::AspectsChosen);
}

void ChartOpt::KeepChecks() {
  DynOptions& r = form_.Records[form_.DynType];
  for (int p = 1; p <= kPoints; ++p) {
    r.DynamicPoints[p] = moving_[p]->isChecked() ? kTrue : kFalse;
    r.RadixPoints[p] = aspected_[p]->isChecked() ? kTrue : kFalse;
  }
  form_.Orb = L(orb_->text());
}

void ChartOpt::ShowRecord() {
  const DynOptions& r = form_.Records[form_.DynType];
  for (int p = 1; p <= kPoints; ++p) {
    moving_[p]->setChecked(r.DynamicPoints[p] != 0);
    aspected_[p]->setChecked(r.RadixPoints[p] != 0);
  }
  orb_->setText(Q(form_.Orb));
  aspects_->setCurrentIndex(aspects_->findData(AspectHarmonicOf(r)));
}

void ChartOpt::TypeChosen(int index) {
  KeepChecks();
  if (!ChartOptSelectType(wb_.session, form_, index)) {
    // The orb typed does not parse: the record shown stays.
    QSignalBlocker block(type_);
    type_->setCurrentIndex(form_.DynType);
    orb_->setFocus();
    return;
  }
  ShowRecord();
}

void ChartOpt::AspectsChosen(int index) {
  const int harmonic = aspects_->itemData(index).toInt();
  if (harmonic > 0) ApplyAspectHarmonic(form_.Records[form_.DynType], harmonic);
}

void ChartOpt::accept() {
  KeepChecks();
  form_.Interval = L(interval_->text());
  if (!ChartOptAccept(wb_.session, form_, options_)) {
    orb_->setFocus();
    return;
  }
  interval_->setText(Q(form_.Interval));
  QDialog::accept();
}

}  // namespace vintar
