#include "screens/research/cat_sel.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "core/project_file.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/tool_window.h"
#include "screens/research/res_criteria.h"

namespace vintar {

namespace {

QPushButton* Button(QWidget* parent, const QString& text, const char* name) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

}  // namespace

CatSel::CatSel(Workbench& wb, QWidget* parent, Road road) : QDialog(parent), wb_(wb), road_(road) {
  setObjectName("CatSel");
  setWindowTitle(tr("Data Record Selection"));
  const Session& s = wb_.session;
  field_ = new QComboBox(this);
  field_->setObjectName("cmbField");
  for (const auto& name : SelFieldNames(s)) field_->addItem(Q(name));
  condition_ = new QComboBox(this);
  condition_->setObjectName("cmbCondition");
  for (const auto& name : s.vocab.ComparisonName) condition_->addItem(Q(name));
  value_ = new QComboBox(this);
  value_->setObjectName("cmbValue");
  value_->setEditable(true);
  value_->setInsertPolicy(QComboBox::NoInsert);
  value_->lineEdit()->setMaxLength(kSelValueChars);
  list_ = new QListWidget(this);
  list_->setObjectName("lstSelection");
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  QFont fixed("Monospace");
  fixed.setStyleHint(QFont::TypeWriter);
  list_->setFont(fixed);

  auto* add = Button(this, tr("&Add"), "btnAdd");
  auto* remove = Button(this, tr("&Delete"), "btnDelete");
  auto* clear = Button(this, tr("C&lear"), "bntClear");
  QPushButton* ops[3] = {Button(this, tr("AND"), "btnAndOr_0"), Button(this, tr("OR"), "btnAndOr_1"),
                         Button(this, tr("XOR"), "btnAndOr_2")};
  auto* notButton = Button(this, tr("NOT"), "btnNot");
  auto* bracket = Button(this, tr("( )"), "btnBracket");

  auto* grid = new QGridLayout;
  const QString captions[3] = {tr("&Field"), tr("C&ondition"), tr("&Value")};
  QWidget* buddies[3] = {field_, condition_, value_};
  for (int i = 0; i < 3; ++i) {
    auto* label = new QLabel(captions[i], this);
    label->setBuddy(buddies[i]);
    grid->addWidget(label, 0, i);
  }
  grid->addWidget(field_, 1, 0);
  grid->addWidget(condition_, 1, 1);
  grid->addWidget(value_, 1, 2);
  grid->addWidget(add, 1, 3);
  grid->setColumnStretch(2, 1);
  auto* buttons = new QHBoxLayout;
  for (auto* b : ops) buttons->addWidget(b);
  buttons->addWidget(notButton);
  buttons->addWidget(bracket);
  buttons->addStretch();
  buttons->addWidget(remove);
  buttons->addWidget(clear);
  auto* box = new QDialogButtonBox(this);
  auto* ok = box->addButton(tr("&OK"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("OKButton");
  ok->setDefault(true);
  box->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole)->setObjectName("CancelButton");
  connect(box, &QDialogButtonBox::accepted, this, &CatSel::accept);
  connect(box, &QDialogButtonBox::rejected, this, &CatSel::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(grid);
  layout->addWidget(new QLabel(tr("Selection Conditions:"), this));
  layout->addWidget(list_, 1);
  layout->addLayout(buttons);
  layout->addWidget(box);

  connect(field_, &QComboBox::currentIndexChanged, this, &CatSel::FieldChanged);
  connect(value_->lineEdit(), &QLineEdit::editingFinished, this, &CatSel::LeaveValue);
  connect(add, &QPushButton::clicked, this, &CatSel::AddClicked);
  connect(remove, &QPushButton::clicked, this, &CatSel::DeleteClicked);
  connect(clear, &QPushButton::clicked, this, &CatSel::ClearClicked);
  for (int op = 0; op < 3; ++op) connect(ops[op], &QPushButton::clicked, this, [this, op] { ConnectiveClicked(op); });
  connect(notButton, &QPushButton::clicked, this, &CatSel::NotClicked);
  connect(bracket, &QPushButton::clicked, this, &CatSel::BracketClicked);
  FieldChanged();
  Refresh();
  resize(680, 440);
}

void CatSel::FieldChanged() {
  // A list category offers the values the project already holds.
  const int field = field_->currentIndex();
  const QString typed = value_->currentText();
  value_->clear();
  const ProjectState& p = wb_.session.project;
  const int category = field - kSelRecordFields + 1;
  if (category >= 1) {
    std::string name;
    int type = 0;
    GetCategoryDefinition(p.Header, category, name, type);
    if (type == 0 && category < static_cast<int>(p.Categories.CategoryStart.size())) {
      const int start = p.Categories.CategoryStart[category];
      const int length = p.Categories.CategoryLength[category];
      for (int i = 0; i < length && start + i < static_cast<int>(p.Categories.CategoryValues.size()); ++i)
        value_->addItem(Q(p.Categories.CategoryValues[start + i]));
    }
  }
  value_->setEditText(typed);
}

void CatSel::LeaveValue() {
  const QString text = value_->currentText();
  if (text.trimmed().isEmpty()) return;
  value_->setEditText(Q(NormaliseSelValue(wb_.session, field_->currentIndex(), L(text))));
}

void CatSel::AddClicked() {
  LeaveValue();
  AddSelCriterion(wb_.selection, field_->currentIndex(), condition_->currentIndex(), L(value_->currentText()));
  Refresh();
  list_->clearSelection();
  list_->setCurrentRow(list_->count() - 1);
}

void CatSel::DeleteClicked() {
  DeleteSelCriteria(wb_.selection, SelectedConditions());
  list_->clearSelection();
  Refresh();
}

void CatSel::ClearClicked() {
  wb_.selection.Items.resize(1);
  Refresh();
}

void CatSel::ConnectiveClicked(int connective) {
  SetSelConnective(wb_.selection, SelectedConditions(), connective);
  Refresh();
}

void CatSel::NotClicked() {
  ToggleSelNegated(wb_.selection, SelectedConditions());
  Refresh();
}

void CatSel::BracketClicked() {
  const std::vector<int> rows = SelectedConditions();
  if (rows.empty()) return;
  if (ToggleSelBrackets(wb_.session, wb_.selection, rows.front(), rows.back())) Refresh();
}

void CatSel::SelectConditions(const std::vector<int>& rows) {
  list_->clearSelection();
  for (int r : rows)
    if (r >= 1 && r <= list_->count()) list_->item(r - 1)->setSelected(true);
}

std::vector<int> CatSel::SelectedConditions() const {
  std::vector<int> rows;
  for (int i = 0; i < list_->count(); ++i)
    if (list_->item(i)->isSelected()) rows.push_back(i + 1);
  return rows;
}

QStringList CatSel::Lines() const {
  QStringList lines;
  for (int i = 0; i < list_->count(); ++i) lines << list_->item(i)->text();
  return lines;
}

void CatSel::Refresh() {
  const std::vector<int> selected = SelectedConditions();
  list_->clear();
  for (int i = 1; i <= wb_.selection.Count(); ++i) list_->addItem(Q(SelCriterionText(wb_.session, wb_.selection, i)));
  SelectConditions(selected);
}

bool CatSel::Run() {
  run_ = SelectionRun{};
  if (wb_.selection.Count() < 1 || !wb_.session.project.Open) return false;
  ProgressWindow progress(this, tr("Selecting Records"), tr("&Stop"));
  progress.show();
  {
    BusyPointer busy;
    run_ = RunSelection(wb_.session, wb_.selection, &progress);
  }
  progress.hide();
  return run_.Ran && !progress.Cancelled();
}

void CatSel::accept() {
  if (wb_.selection.Count() < 1) {
    reject();
    return;
  }
  wb_.session.DialogCancelled = kFalse;
  if (road_ == Road::Editor) {
    ProgressWindow progress(this, tr("Selecting Records"), tr("&Stop"));
    progress.show();
    {
      BusyPointer busy;
      run_ = SelectRecords(wb_.session, wb_.selection, applied_, {}, &progress);
    }
    progress.hide();
    if (!run_.Ran) return;
    QDialog::accept();
    return;
  }
  if (!Run()) return;
  std::vector<std::string> lines;
  for (int i = 1; i <= wb_.selection.Count(); ++i) lines.push_back(SelCriterionText(wb_.session, wb_.selection, i));
  ShowToolWindow(new ResOut(wb_, parentWidget(), ResOut::Origin::Selection, run_.PassedFlags, run_.Enabled,
                            run_.Passed, std::move(lines)),
                 &wb_.session);
  QDialog::accept();
}

}  // namespace vintar
