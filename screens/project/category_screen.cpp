#include "screens/project/category_screen.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/session.h"
#include "core/text.h"
#include "screens/common/qt_text.h"

namespace vintar {

namespace {

QPushButton* Button(const char* name, const QString& text, QWidget* parent) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  return b;
}

}  // namespace

Category::Category(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("Category");
  Session& s = wb_.session;
  setWindowTitle(tr("Data Categories - %1").arg(Q(s.project.Header.Title)));
  editor_ = LoadCategoryEditor(s.project.Header);

  auto* outer = new QVBoxLayout(this);
  auto* row = new QHBoxLayout;
  outer->addLayout(row, 1);

  auto* left = new QVBoxLayout;
  auto* listLabel = new QLabel(tr("C&ategories:"), this);
  list_ = new QTreeWidget(this);
  list_->setObjectName("lstCategories");
  list_->setColumnCount(2);
  list_->setHeaderLabels({tr("Name"), tr("Type")});
  list_->setRootIsDecorated(false);
  list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  list_->header()->setStretchLastSection(false);
  list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  list_->setMinimumSize(340, 220);
  listLabel->setBuddy(list_);
  left->addWidget(listLabel);
  left->addWidget(list_, 1);
  row->addLayout(left, 1);

  // spnOrder: the two arrows that move the chosen category.
  auto* order = new QWidget(this);
  order->setObjectName("spnOrder");
  auto* orderLayout = new QVBoxLayout(order);
  orderLayout->setContentsMargins(0, 0, 0, 0);
  up_ = Button("spnOrderUp", tr("Move &Up"), order);
  down_ = Button("spnOrderDown", tr("Move Do&wn"), order);
  orderLayout->addStretch();
  orderLayout->addWidget(up_);
  orderLayout->addWidget(down_);
  orderLayout->addStretch();
  row->addWidget(order);

  auto* form = new QFormLayout;
  name_ = new QLineEdit(this);
  name_->setObjectName("txtName");
  type_ = new QComboBox(this);
  type_->setObjectName("cmbType");
  type_->addItems(
      {QStringLiteral("0 - List of Items"), QStringLiteral("1 - Numeric"), QStringLiteral("2 - Free Text")});
  form->addRow(tr("&Name:"), name_);
  form->addRow(tr("&Type:"), type_);
  outer->addLayout(form);

  auto* buttons = new QHBoxLayout;
  add_ = Button("btnAdd", tr("A&dd"), this);
  delete_ = Button("btnDelete", tr("De&lete"), this);
  buttons->addWidget(add_);
  buttons->addWidget(delete_);
  buttons->addStretch();
  auto* box = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  QPushButton* save = box->button(QDialogButtonBox::Save);
  save->setObjectName("btnSave");
  save->setText(tr("&Save"));
  save->setDefault(true);
  QPushButton* cancel = box->button(QDialogButtonBox::Cancel);
  cancel->setObjectName("CancelButton");
  cancel->setText(tr("&Cancel"));
  buttons->addWidget(box);
  outer->addLayout(buttons);

  connect(box, &QDialogButtonBox::accepted, this, &Category::accept);
  connect(box, &QDialogButtonBox::rejected, this, &Category::reject);
  connect(add_, &QPushButton::clicked, this, [this] {
    LeaveName();
    Refresh(AddCategory(editor_, type_->currentIndex() < 0 ? 0 : type_->currentIndex()));
    name_->setFocus();
    name_->selectAll();
  });
  connect(delete_, &QPushButton::clicked, this, [this] {
    const int at = Selected();
    if (DeleteCategory(editor_, at)) Refresh(std::min(at, int(editor_.entries.size()) - 1));
  });
  connect(up_, &QPushButton::clicked, this, [this] { Move(-1); });
  connect(down_, &QPushButton::clicked, this, [this] { Move(1); });
  connect(name_, &QLineEdit::editingFinished, this, &Category::LeaveName);
  connect(type_, &QComboBox::activated, this, &Category::ChooseType);
  connect(list_, &QTreeWidget::currentItemChanged, this, [this] {
    if (!loading_) ShowSelected();
  });

  Refresh(editor_.entries.empty() ? -1 : 0);
  resize(560, 400);
}

int Category::Selected() const {
  QTreeWidgetItem* item = list_->currentItem();
  return item ? list_->indexOfTopLevelItem(item) : -1;
}

void Category::Select(int position) {
  loading_ = true;
  list_->setCurrentItem(position >= 0 ? list_->topLevelItem(position) : nullptr);
  loading_ = false;
  ShowSelected();
}

void Category::Refresh(int select) {
  loading_ = true;
  list_->clear();
  for (const CategoryEntry& e : editor_.entries) {
    const QStringList parts = Q(CategoryListLine(e)).split('\t');
    list_->addTopLevelItem(new QTreeWidgetItem({parts.value(0), parts.value(1)}));
  }
  loading_ = false;
  Select(select);
}

void Category::ShowSelected() {
  const int at = Selected();
  const bool any = at >= 0 && at < int(editor_.entries.size());
  loading_ = true;
  name_->setText(any ? Q(editor_.entries[size_t(at)].name) : QString());
  type_->setCurrentIndex(any ? editor_.entries[size_t(at)].type : 0);
  loading_ = false;
  name_->setEnabled(any);
  delete_->setEnabled(any);
  up_->setEnabled(any && at > 0);
  down_->setEnabled(any && at + 1 < int(editor_.entries.size()));
}

void Category::LeaveName() {
  const int at = Selected();
  if (loading_ || at < 0 || at >= int(editor_.entries.size())) return;
  const std::string text = L(name_->text());
  if (Trim(text) == editor_.entries[size_t(at)].name) return;
  if (!CheckCategoryName(wb_.session, text) || !RenameCategory(editor_, at, text)) {
    name_->setText(Q(editor_.entries[size_t(at)].name));
    return;
  }
  Refresh(at);
}

void Category::ChooseType(int type) {
  const int at = Selected();
  if (loading_ || at < 0 || at >= int(editor_.entries.size()) || type < 0 || type > 2) return;
  editor_.entries[size_t(at)].type = type;
  Refresh(at);
}

void Category::Move(int delta) {
  LeaveName();
  const int at = Selected();
  if (MoveCategory(editor_, at, delta)) Refresh(at + delta);
}

void Category::accept() {
  LeaveName();
  Session& s = wb_.session;
  if (!SaveCategories(s, editor_)) return;
  UpdateTitle(s, s.project.ProjectPath);
  wb_.Changed();
  QDialog::accept();
}

void Category::reject() {
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

}  // namespace vintar
