#include "screens/research/point_edit.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "core/parse.h"
#include "core/text.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"
#include "screens/research/tab_support.h"

namespace vintar {

namespace {

constexpr const char* kPointsFilter = "Points Files (*.vpt)|*.vpt";
constexpr int kItemsPage = 0, kPositionPage = 1, kMidpointPage = 2;

std::string OrDefault(const std::string& name, const std::string& fallback) {
  return Trim(name).empty() ? fallback : Trim(name);
}

}  // namespace

void EnsureResearchLists(Session& session, ResearchState& state) {
  state.Header.PartsFile = OrDefault(state.Header.PartsFile, OrDefault(session.paths.PartsFile, "vintar.arp"));
  state.Header.AlmutenFile =
      OrDefault(state.Header.AlmutenFile, OrDefault(session.paths.AlmutenFile, "vintar.alm"));
  std::string error;
  LoadParts(session, state, ResolveListFile(session, state.Header.PartsFile), error);
  error.clear();
  LoadAlmutens(session, state, ResolveListFile(session, state.Header.AlmutenFile), error);
}

PointEdit::PointEdit(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb), work_(wb.research) {
  setObjectName("PointEdit");
  setWindowTitle(QStringLiteral("Select Research Points"));
  Session& s = wb_.session;
  EnsureResearchLists(s, work_);

  auto* layout = new QVBoxLayout(this);
  auto* columns = new QHBoxLayout;
  layout->addLayout(columns, 1);

  // Left: what can be added.
  auto* available = new QGroupBox(tr("Available Points"), this);
  auto* left = new QVBoxLayout(available);
  types_ = new QComboBox(available);
  types_->setObjectName("cmbPointTypes");
  for (const std::string& name : s.vocab.PointTypeName) types_->addItem(Q(name));
  left->addWidget(types_);

  pages_ = new QStackedWidget(available);
  items_ = new QListWidget(pages_);
  items_->setObjectName("lstPoints");
  items_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  pages_->addWidget(items_);

  auto* positionPage = new QWidget(pages_);
  auto* positionLayout = new QVBoxLayout(positionPage);
  positionLayout->addWidget(new QLabel(tr("Zodiacal &position:"), positionPage));
  position_ = new QLineEdit(QStringLiteral("00Ar00"), positionPage);
  position_->setObjectName("txtPosition");
  qobject_cast<QLabel*>(positionLayout->itemAt(0)->widget())->setBuddy(position_);
  positionLayout->addWidget(position_);
  positionLayout->addStretch();
  pages_->addWidget(positionPage);

  auto* midpointPage = new QWidget(pages_);
  auto* midpointLayout = new QVBoxLayout(midpointPage);
  mpPoints_ = new QListWidget(midpointPage);
  mpPoints_->setObjectName("lstMPPoints");
  mpPoints_->setSelectionMode(QAbstractItemView::MultiSelection);
  for (int p = 1; p <= 24; ++p) {
    PointRef ref;
    ref.Item1 = static_cast<uint8_t>(p);
    mpPoints_->addItem(Q(PointName(s, work_, ref)));
  }
  midpointLayout->addWidget(mpPoints_, 1);
  mpSingle_ = new QRadioButton(QStringLiteral("Add &Single Midpoint for highlighted pair"), midpointPage);
  mpSingle_->setObjectName("optMPAdd_0");
  mpSingle_->setChecked(true);
  mpAll_ = new QRadioButton(QStringLiteral("Add &All Midpoints of highlighted point"), midpointPage);
  mpAll_->setObjectName("optMPAdd_1");
  midpointLayout->addWidget(mpSingle_);
  midpointLayout->addWidget(mpAll_);
  pages_->addWidget(midpointPage);
  left->addWidget(pages_, 1);

  left->addWidget(new QLabel(tr("&Transformation:"), available));
  transforms_ = new QComboBox(available);
  transforms_->setObjectName("cmbTransformations");
  for (const std::string& name : s.vocab.TransformName) transforms_->addItem(Q(name));
  qobject_cast<QLabel*>(left->itemAt(left->count() - 1)->widget())->setBuddy(transforms_);
  left->addWidget(transforms_);

  auto* leftButtons = new QHBoxLayout;
  file_ = new QPushButton(available);
  file_->setObjectName("btnFile");
  file_->setAutoDefault(false);
  auto* add = new QPushButton(tr("&Add >>"), available);
  add->setObjectName("btnAdd");
  add->setAutoDefault(false);
  leftButtons->addWidget(file_);
  leftButtons->addStretch();
  leftButtons->addWidget(add);
  left->addLayout(leftButtons);
  columns->addWidget(available, 1);

  // Right: the selection.
  auto* chosen = new QGroupBox(tr("Selected Points"), this);
  auto* right = new QVBoxLayout(chosen);
  selected_ = new QListWidget(chosen);
  selected_->setObjectName("lstSelected");
  selected_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  right->addWidget(selected_, 1);
  auto* rightButtons = new QGridLayout;
  auto button = [&](const char* name, const QString& caption, int row, int column) {
    auto* b = new QPushButton(caption, chosen);
    b->setObjectName(name);
    b->setAutoDefault(false);
    rightButtons->addWidget(b, row, column);
    return b;
  };
  auto* remove = button("btnRemove", tr("&Remove"), 0, 0);
  auto* clear = button("btnClear", tr("C&lear"), 0, 1);
  auto* open = button("btnOpen", tr("&Open..."), 1, 0);
  auto* save = button("btnSave", tr("Sa&ve..."), 1, 1);
  right->addLayout(rightButtons);
  columns->addWidget(chosen, 1);

  layout->addWidget(OkCancelButtons(this));

  connect(types_, &QComboBox::currentIndexChanged, this, &PointEdit::FillItems);
  connect(add, &QPushButton::clicked, this, &PointEdit::AddHighlighted);
  connect(items_, &QListWidget::itemDoubleClicked, this, &PointEdit::AddHighlighted);
  connect(remove, &QPushButton::clicked, this, &PointEdit::Remove);
  connect(clear, &QPushButton::clicked, this, &PointEdit::Clear);
  connect(open, &QPushButton::clicked, this, &PointEdit::OpenList);
  connect(save, &QPushButton::clicked, this, &PointEdit::SaveList);
  connect(file_, &QPushButton::clicked, this, &PointEdit::ChooseFile);
  FillItems();
  FillSelected();
  resize(640, 460);
}

void PointEdit::SetPointType(int type) { types_->setCurrentIndex(std::clamp(type, 0, types_->count() - 1)); }

void PointEdit::FillItems() {
  Session& s = wb_.session;
  const int type = std::max(0, types_->currentIndex());
  items_->clear();
  int count = 0;
  switch (type) {
    case kChartPointType: count = 24; break;
    case kHouseCuspType: count = 12; break;
    case kArabicPartType: count = static_cast<int>(std::min<size_t>(work_.Parts.size(), 255)); break;
    case kChartAlmutenType: count = static_cast<int>(std::min<size_t>(work_.Almutens.size(), 255)); break;
    case kPrenatalType: count = static_cast<int>(s.vocab.PrenatalName.size()); break;
    default: break;
  }
  for (int i = 1; i <= count; ++i) {
    PointRef ref;
    ref.PointType = type;
    ref.Item1 = static_cast<uint8_t>(i);
    items_->addItem(Q(PointName(s, work_, ref)));
  }
  pages_->setCurrentIndex(type == kFixedPositionType ? kPositionPage
                                                      : (type == kMidpointType ? kMidpointPage : kItemsPage));
  const ListFileButton b = ListFileButtonFor(type);
  file_->setVisible(!b.Caption.empty());
  file_->setText(Q(b.Caption));
}

void PointEdit::FillSelected(int current) {
  selected_->clear();
  for (const PointRef& ref : work_.Selected) selected_->addItem(Q(PointName(wb_.session, work_, ref)));
  if (current >= 0 && current < selected_->count()) {
    selected_->setCurrentRow(current);
    selected_->scrollToItem(selected_->item(current));
  }
}

bool PointEdit::AddHighlighted() {
  Session& s = wb_.session;
  const int type = std::max(0, types_->currentIndex());
  const int transform = std::max(0, transforms_->currentIndex());
  const size_t before = work_.Selected.size();
  int last = -1;
  PointRef ref;
  ref.PointType = type;
  ref.Transform = transform;
  if (type == kFixedPositionType) {
    QString text = position_->text().trimmed();
    if (text.isEmpty()) text = QStringLiteral("00Ar00");
    float angle = 0.0f;
    bool failed = false;
    ParseAngle(s, L(text), angle, failed);
    if (failed) {
      position_->setFocus();
      return false;
    }
    ref.Position = angle;
    last = AddPoint(s, work_.Selected, ref);
  } else if (type == kMidpointType) {
    std::vector<int> rows;
    for (int r = 0; r < mpPoints_->count(); ++r)
      if (mpPoints_->item(r)->isSelected()) rows.push_back(r + 1);
    if (mpAll_->isChecked()) {
      if (rows.size() != 1) {
        s.ShowMessage("Highlight the one point whose midpoints you wish to add.", kIconExclamation, "Cannot Add");
        return false;
      }
      AddAllMidpoints(s, work_.Selected, rows[0], transform);
      last = static_cast<int>(work_.Selected.size()) - 1;
    } else {
      if (rows.size() != 2) {
        s.ShowMessage("Highlight the two points of the midpoint you wish to add.", kIconExclamation, "Cannot Add");
        return false;
      }
      ref.Item1 = static_cast<uint8_t>(rows[0]);
      ref.Item2 = static_cast<uint8_t>(rows[1]);
      last = AddPoint(s, work_.Selected, ref);
    }
  } else {
    for (int r = 0; r < items_->count(); ++r) {
      if (!items_->item(r)->isSelected()) continue;
      ref.Item1 = static_cast<uint8_t>(r + 1);
      const int at = AddPoint(s, work_.Selected, ref);
      if (at < 0) break;  // the limit, told
      last = at;
    }
  }
  FillSelected(last);
  return work_.Selected.size() > before;
}

void PointEdit::Remove() {
  std::vector<PointRef> kept;
  for (int r = 0; r < selected_->count() && r < static_cast<int>(work_.Selected.size()); ++r)
    if (!selected_->item(r)->isSelected()) kept.push_back(work_.Selected[r]);
  work_.Selected = kept;
  FillSelected();
}

void PointEdit::Clear() {
  work_.Selected.clear();
  FillSelected();
}

bool PointEdit::OpenFrom(const std::string& path) {
  ResearchState read = work_;
  if (!OpenPointList(wb_.session, read, path)) return false;
  work_ = std::move(read);
  EnsureResearchLists(wb_.session, work_);
  FillItems();
  FillSelected();
  return true;
}

bool PointEdit::SaveTo(const std::string& path) {
  work_.Header.PointCount = static_cast<int16_t>(work_.Selected.size());
  return SavePointList(wb_.session, path, work_);
}

void PointEdit::OpenList() {
  const QString path = AskOpenPath(this, wb_.session, tr("Open Selected Points"), kPointsFilter);
  if (!path.isEmpty()) OpenFrom(PathOf(path));
}

void PointEdit::SaveList() {
  const QString path = AskSavePath(this, wb_.session, QStringLiteral("Save Selected Points"), kPointsFilter,
                                   QStringLiteral("Unnamed.vpt"), QStringLiteral(".vpt"));
  if (!path.isEmpty()) SaveTo(PathOf(path));
}

bool PointEdit::UseListFile(const std::string& path) {
  Session& s = wb_.session;
  const int type = types_->currentIndex();
  if (type != kArabicPartType && type != kChartAlmutenType) return false;
  if (!work_.Selected.empty() &&
      s.ShowMessage(ChangeFileWarning(static_cast<int>(work_.Selected.size())), kOkCancel + kIconExclamation,
                    "Change File") != kOk)
    return false;
  std::string error;
  bool read = false;
  if (type == kArabicPartType) {
    work_.Header.PartsFile = path;
    work_.PartsFileName.clear();  // read it again even under the same name
    read = LoadParts(s, work_, path, error);
  } else {
    work_.Header.AlmutenFile = path;
    work_.AlmutenFileName.clear();
    read = LoadAlmutens(s, work_, path, error);
  }
  if (!read && !error.empty()) s.ShowMessage(path + ": " + error, kIconExclamation, "Vintar");
  FillItems();
  FillSelected();
  return read;
}

void PointEdit::ChooseFile() {
  const ListFileButton b = ListFileButtonFor(types_->currentIndex());
  if (b.Title.empty()) return;
  const QString path = AskOpenPath(this, wb_.session, Q(b.Title), b.Filter);
  if (!path.isEmpty()) UseListFile(PathOf(path));
}

void PointEdit::accept() {
  work_.Header.PointCount = static_cast<int16_t>(work_.Selected.size());
  wb_.research = work_;
  QDialog::accept();
}

void PointEdit::reject() {
  work_.Selected.clear();
  wb_.session.DialogCancelled = kTrue;
  QDialog::reject();
}

}  // namespace vintar
