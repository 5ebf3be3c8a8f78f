#include "screens/project/project_dialogs.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

#include "core/session.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"

namespace vintar {

namespace {

// OK and Cancel, named as every screen names them; Enter is OK, Esc Cancel.

QRadioButton* Option(const char* name, const QString& text, QWidget* parent) {
  auto* option = new QRadioButton(text, parent);
  option->setObjectName(name);
  return option;
}

}  // namespace

// ProjTitle -----------------------------------------------------------------

ProjTitle::ProjTitle(Workbench& wb, QWidget* parent, const std::string& title, Apply apply)
    : QDialog(parent), wb_(wb), apply_(std::move(apply)) {
  setObjectName("ProjTitle");
  setWindowTitle(tr("Project Title"));
  auto* layout = new QVBoxLayout(this);
  auto* prompt = new QLabel(tr("Enter a &name for this person or project:"), this);
  title_ = new QLineEdit(Q(title), this);
  title_->setObjectName("TitleText");
  title_->setMinimumWidth(380);
  title_->selectAll();
  prompt->setBuddy(title_);
  layout->addWidget(prompt);
  layout->addWidget(title_);
  layout->addStretch();
  layout->addWidget(OkCancelButtons(this));
}

void ProjTitle::accept() {
  if (apply_ && !apply_(L(title_->text()))) {
    title_->setFocus();
    return;
  }
  QDialog::accept();
}

void ProjTitle::reject() {
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

// SortOptions ---------------------------------------------------------------

SortOptions::SortOptions(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("SortOptions");
  setWindowTitle(tr("Sort Options"));
  auto* layout = new QVBoxLayout(this);
  auto* by = new QGroupBox(tr("Sort by"), this);
  auto* byLayout = new QVBoxLayout(by);
  date_ = Option("OptionDate", tr("&Date and time"), by);
  description_ = Option("OptionDescription", tr("D&escription or name"), by);
  sun_ = Option("OptionSun", tr("&Sun zodiac position"), by);
  date_->setChecked(true);
  for (QRadioButton* o : {date_, description_, sun_}) byLayout->addWidget(o);
  auto* order = new QGroupBox(tr("Order"), this);
  auto* orderLayout = new QVBoxLayout(order);
  ascending_ = Option("OptionAscending", tr("&Ascending"), order);
  descending_ = Option("OptionDescending", tr("Desce&nding"), order);
  ascending_->setChecked(true);
  orderLayout->addWidget(ascending_);
  orderLayout->addWidget(descending_);
  auto* row = new QHBoxLayout;
  row->addWidget(by);
  row->addWidget(order);
  layout->addLayout(row);
  layout->addWidget(OkCancelButtons(this));
}

SortRequest SortOptions::Request() const {
  SortRequest r;
  r.key = sun_->isChecked() ? SortKey::Sun : description_->isChecked() ? SortKey::Description : SortKey::Date;
  r.descending = descending_->isChecked();
  return r;
}

void SortOptions::reject() {
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

// Split ---------------------------------------------------------------------

Split::Split(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("Split");
  setWindowTitle(tr("Split Project"));
  const Session& s = wb_.session;
  const int count = std::max<int32_t>(1, s.project.Header.RecordCount);
  auto* layout = new QVBoxLayout(this);
  auto* range = new QLabel(Q(SplitRangeText(s)), this);
  range->setObjectName("lblRange");
  layout->addWidget(range);
  layout->addWidget(new QLabel(tr("The records chosen move to a new file and leave this project."), this));
  auto* form = new QFormLayout;
  first_ = new QSpinBox(this);
  first_->setObjectName("FirstRecord");
  last_ = new QSpinBox(this);
  last_->setObjectName("LastRecord");
  for (QSpinBox* spin : {first_, last_}) spin->setRange(1, count);
  first_->setValue(1);
  last_->setValue(count);
  form->addRow(tr("&First record:"), first_);
  form->addRow(tr("&Last record:"), last_);
  layout->addLayout(form);
  layout->addWidget(OkCancelButtons(this));
}

int32_t Split::First() const { return first_->value(); }
int32_t Split::Last() const { return last_->value(); }

void Split::SetRange(int32_t first, int32_t last) {
  first_->setValue(first);
  last_->setValue(last);
}

void Split::reject() {
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

}  // namespace vintar
