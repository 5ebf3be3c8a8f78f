#include "screens/research/crit_point_picker.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/text.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"

namespace vintar {

namespace {

constexpr int kChartPointCount = 24;
constexpr int kCuspCount = 12;
constexpr int kPrenatalCount = 6;

}  // namespace

void EnsurePointFiles(Workbench& wb) {
  Session& s = wb.session;
  ResearchState& r = wb.research;
  std::string error;
  if (r.Header.PartsFile.empty()) r.Header.PartsFile = "vintar.arp";
  if (r.Header.AlmutenFile.empty()) r.Header.AlmutenFile = "vintar.alm";
  if (r.Parts.empty()) LoadParts(s, r, ResolveListFile(s, r.Header.PartsFile), error);
  error.clear();
  if (r.Almutens.empty()) LoadAlmutens(s, r, ResolveListFile(s, r.Header.AlmutenFile), error);
}

CritPointPicker::CritPointPicker(Workbench& wb, QWidget* parent)
    : QDialog(parent), wb_(wb), points_(wb.research.Selected) {
  setObjectName("CritPointPicker");
  setWindowTitle(tr("Select Points"));
  EnsurePointFiles(wb_);
  const Vocabulary& v = wb_.session.vocab;

  type_ = new QComboBox(this);
  type_->setObjectName("cmbPointType");
  for (int t = kChartPointType; t <= kPrenatalType && t < static_cast<int>(v.PointTypeName.size()); ++t)
    type_->addItem(Q(v.PointTypeName[t]));
  items_ = new QListWidget(this);
  items_->setObjectName("lstItems");
  items2_ = new QListWidget(this);
  items2_->setObjectName("lstItems2");
  position_ = new QLineEdit(QStringLiteral("0Ar00"), this);
  position_->setObjectName("txtPosition");
  transform_ = new QComboBox(this);
  transform_->setObjectName("cmbTransformations");
  for (const auto& name : v.TransformName) transform_->addItem(Q(name));
  list_ = new QListWidget(this);
  list_->setObjectName("lstSelected");
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  auto* add = new QPushButton(tr("&Add >>"), this);
  add->setObjectName("btnAdd");
  auto* remove = new QPushButton(tr("&Remove"), this);
  remove->setObjectName("btnRemove");

  auto label = [this](const QString& text, QWidget* buddy) {
    auto* l = new QLabel(text, this);
    l->setBuddy(buddy);
    return l;
  };
  auto* grid = new QGridLayout;
  grid->addWidget(label(tr("Point &Type:"), type_), 0, 0);
  grid->addWidget(type_, 0, 1, 1, 2);
  grid->addWidget(items_, 1, 0, 1, 2);
  grid->addWidget(items2_, 1, 2);
  grid->addWidget(label(tr("Fixed &Position:"), position_), 2, 0);
  grid->addWidget(position_, 2, 1, 1, 2);
  grid->addWidget(label(tr("Trans&formation:"), transform_), 3, 0);
  grid->addWidget(transform_, 3, 1, 1, 2);
  auto* middle = new QVBoxLayout;
  middle->addStretch();
  middle->addWidget(add);
  middle->addWidget(remove);
  middle->addStretch();
  auto* right = new QVBoxLayout;
  right->addWidget(new QLabel(tr("Selected Points:"), this));
  right->addWidget(list_);
  auto* top = new QHBoxLayout;
  top->addLayout(grid, 3);
  top->addLayout(middle);
  top->addLayout(right, 2);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addWidget(OkCancelButtons(this));

  connect(type_, &QComboBox::currentIndexChanged, this, &CritPointPicker::FillItems);
  connect(add, &QPushButton::clicked, this, &CritPointPicker::AddClicked);
  connect(remove, &QPushButton::clicked, this, &CritPointPicker::RemoveClicked);
  connect(items_, &QListWidget::itemDoubleClicked, this, &CritPointPicker::AddClicked);
  FillItems();
  RefreshList();
  resize(720, 420);
}

void CritPointPicker::FillItems() {
  const Session& s = wb_.session;
  const ResearchState& r = wb_.research;
  const int type = type_->currentIndex();
  items_->clear();
  items2_->clear();
  auto name = [&](int t, int item, int item2 = 0) {
    PointRef ref;
    ref.PointType = t;
    ref.Item1 = static_cast<uint8_t>(item);
    ref.Item2 = static_cast<uint8_t>(item2);
    return Q(PointName(s, r, ref));
  };
  int count = 0;
  switch (type) {
    case kChartPointType:
    case kMidpointType: count = kChartPointCount; break;
    case kHouseCuspType: count = kCuspCount; break;
    case kArabicPartType: count = static_cast<int>(std::min<size_t>(r.Parts.size(), 255)); break;
    case kChartAlmutenType: count = static_cast<int>(std::min<size_t>(r.Almutens.size(), 255)); break;
    case kPrenatalType: count = kPrenatalCount; break;
    default: break;
  }
  for (int i = 1; i <= count; ++i)
    items_->addItem(type == kMidpointType ? name(kChartPointType, i) : name(type, i));
  if (type == kMidpointType)
    for (int i = 1; i <= count; ++i) items2_->addItem(name(kChartPointType, i));
  items_->setCurrentRow(count > 0 ? 0 : -1);
  items2_->setCurrentRow(count > 1 ? 1 : -1);
  items_->setEnabled(type != kFixedPositionType);
  items2_->setEnabled(type == kMidpointType);
  position_->setEnabled(type == kFixedPositionType);
}

bool CritPointPicker::CurrentRef(PointRef& ref) {
  const int type = type_->currentIndex();
  ref = PointRef{};
  if (type == kFixedPositionType) {
    if (!PointByName(wb_.session, wb_.research, L(position_->text().trimmed()), ref) ||
        ref.PointType != kFixedPositionType) {
      wb_.session.ShowMessage("\"" + L(position_->text().trimmed()) +
                                  "\" is not a zodiacal position such as 15Ar30.",
                              kIconExclamation, "Fixed Position");
      return false;
    }
  } else {
    if (items_->currentRow() < 0) return false;
    ref.PointType = type;
    ref.Item1 = static_cast<uint8_t>(items_->currentRow() + 1);
    if (type == kMidpointType) {
      if (items2_->currentRow() < 0 || items2_->currentRow() == items_->currentRow()) return false;
      ref.Item2 = static_cast<uint8_t>(items2_->currentRow() + 1);
    }
  }
  ref.Transform = std::max(0, transform_->currentIndex());
  return true;
}

void CritPointPicker::AddClicked() {
  PointRef ref;
  if (!CurrentRef(ref)) return;
  if (AddPoint(wb_.session, points_, ref) >= 0) RefreshList();
}

void CritPointPicker::RemoveClicked() {
  std::vector<PointRef> kept;
  for (int i = 0; i < static_cast<int>(points_.size()); ++i)
    if (!list_->item(i)->isSelected()) kept.push_back(points_[i]);
  points_ = std::move(kept);
  RefreshList();
}

void CritPointPicker::RefreshList() {
  list_->clear();
  for (const PointRef& p : points_) list_->addItem(Q(PointName(wb_.session, wb_.research, p)));
}

void CritPointPicker::accept() {
  wb_.research.Selected = points_;
  wb_.research.Header.PointCount = static_cast<int16_t>(points_.size());
  QDialog::accept();
}

}  // namespace vintar
