#include "screens/research/res_tabulate.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "research/dignity.h"
#include "research/results.h"
#include "screens/common/dialog_buttons.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/tool_window.h"
#include "screens/research/point_edit.h"
#include "screens/research/tab_results.h"

namespace vintar {

namespace {

QString IndexedName(const char* name, int index) {
  return QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index);
}

QString NumberText(double v) { return QString::number(v, 'g', 10); }

}  // namespace

ResTabulate::ResTabulate(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("ResTabulate");
  setWindowTitle(QStringLiteral("Research Tabulation"));
  Session& s = wb_.session;
  EnsureResearchLists(s, wb_.research);

  auto* layout = new QVBoxLayout(this);
  auto* top = new QHBoxLayout;
  layout->addLayout(top, 1);

  auto* coordsBox = new QGroupBox(tr("Data Type"), this);
  auto* coordsLayout = new QVBoxLayout(coordsBox);
  auto* coordsGroup = new QButtonGroup(this);
  for (int t = 0; t < kDataTypes; ++t) {
    coords_[t] = new QRadioButton(Q(DataTypeOf(t).Caption), coordsBox);
    coords_[t]->setObjectName(IndexedName("OptionCoords", t));
    coordsGroup->addButton(coords_[t], t);
    coordsLayout->addWidget(coords_[t]);
  }
  coordsLayout->addStretch();
  top->addWidget(coordsBox);

  auto* middle = new QVBoxLayout;
  auto* divisionBox = new QGroupBox(tr("Divisions"), this);
  auto* form = new QFormLayout(divisionBox);
  divisions_ = new QComboBox(divisionBox);
  divisions_->setObjectName("cmbDivisions");
  form->addRow(tr("&Division type:"), divisions_);
  harmonic_ = new QLineEdit(divisionBox);
  harmonic_->setObjectName("Harmonic");
  form->addRow(tr("&Harmonic:"), harmonic_);
  modulus_ = new QLabel(QStringLiteral("360"), divisionBox);
  modulus_->setObjectName("Modulus");
  form->addRow(tr("Modulus:"), modulus_);
  userDivisions_ = new QSpinBox(divisionBox);
  userDivisions_->setObjectName("UserDivisions");
  userDivisions_->setRange(1, 3600);
  form->addRow(tr("&Number of divisions:"), userDivisions_);
  anchorLabel_ = new QLabel(QStringLiteral("Anchor Point"), divisionBox);
  anchorLabel_->setObjectName("lblAnchor");
  anchor_ = new QLineEdit(divisionBox);
  anchor_->setObjectName("Anchor");
  anchorLabel_->setBuddy(anchor_);
  form->addRow(anchorLabel_, anchor_);
  middle->addWidget(divisionBox);

  auto* rulersBox = new QGroupBox(tr("Rulerships"), this);
  auto* rulersLayout = new QHBoxLayout(rulersBox);
  rulers_[0] = new QRadioButton(QStringLiteral("&New"), rulersBox);
  rulers_[1] = new QRadioButton(QStringLiteral("Old"), rulersBox);
  for (int i = 0; i < 2; ++i) {
    rulers_[i]->setObjectName(IndexedName("OptionRulers", i));
    rulersLayout->addWidget(rulers_[i]);
  }
  middle->addWidget(rulersBox);

  auto* inexactBox = new QGroupBox(tr("Charts without an Exact Time"), this);
  auto* inexactLayout = new QVBoxLayout(inexactBox);
  const char* const inexactCaptions[3] = {"&Exclude Only Ambiguous Points", "Use &Median Positions",
                                          "Exclude All Inexact Charts"};
  for (int i = 0; i < 3; ++i) {
    inexact_[i] = new QRadioButton(QString::fromLatin1(inexactCaptions[i]), inexactBox);
    inexact_[i]->setObjectName(IndexedName("OptionInexact", i));
    inexactLayout->addWidget(inexact_[i]);
  }
  middle->addWidget(inexactBox);
  middle->addStretch();
  top->addLayout(middle, 1);

  auto* pointsBox = new QGroupBox(tr("Points"), this);
  auto* pointsLayout = new QVBoxLayout(pointsBox);
  points_ = new QListWidget(pointsBox);
  points_->setObjectName("lstPoints");
  points_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  pointsLayout->addWidget(points_, 1);
  auto* pick = new QPushButton(tr("&Points..."), pointsBox);
  pick->setObjectName("btnPointSelect");
  pick->setAutoDefault(false);
  pointsLayout->addWidget(pick);
  top->addWidget(pointsBox, 1);

  layout->addWidget(OkCancelButtons(this));

  // The last run's settings, or the defaults of a first run.
  const TabulateParams& last = wb_.tabulate;
  filling_ = true;
  SetDataType(std::clamp(last.DataType, 0, kDataTypes - 1));
  SetDivision(last.Code);
  filling_ = false;
  DivisionChanged();
  harmonic_->setText(NumberText(last.Harmonic));
  HarmonicChanged();
  userDivisions_->setValue(std::clamp(last.UserDivisions, 1, 3600));
  const DivisionControls controls = ControlsFor(DataType(), Code());
  if (controls.Anchor && last.Code == Code()) {
    anchorValue_ = last.Anchor;
    anchor_->setText(DataType() == kNatalDetailsData ? QString::number(static_cast<int>(last.Anchor))
                                                      : Q(AngleText(last.Anchor)));
  }
  rulers_[last.Scheme >= 2 ? 1 : 0]->setChecked(true);
  const int option = std::clamp(last.InexactOption, 0, 2);
  if (inexact_[option]->isEnabled()) inexact_[option]->setChecked(true);
  FillPoints();

  connect(coordsGroup, &QButtonGroup::idClicked, this, [this] { DataTypeChanged(); });
  connect(divisions_, &QComboBox::currentIndexChanged, this, &ResTabulate::DivisionChanged);
  connect(harmonic_, &QLineEdit::textChanged, this, &ResTabulate::HarmonicChanged);
  connect(anchor_, &QLineEdit::editingFinished, this, &ResTabulate::AnchorLeft);
  connect(pick, &QPushButton::clicked, this, &ResTabulate::SelectPoints);
}

int ResTabulate::DataType() const {
  for (int t = 0; t < kDataTypes; ++t)
    if (coords_[t]->isChecked()) return t;
  return 0;
}

int ResTabulate::Code() const {
  const std::vector<int> codes = DivisionCodesOf(DataType());
  const int i = divisions_->currentIndex();
  return i >= 0 && i < static_cast<int>(codes.size()) ? codes[i] : DataTypeOf(DataType()).FirstCode;
}

void ResTabulate::SetDataType(int dataType) {
  coords_[std::clamp(dataType, 0, kDataTypes - 1)]->setChecked(true);
  DataTypeChanged();
}

bool ResTabulate::SetDivision(int code) {
  const std::vector<int> codes = DivisionCodesOf(DataType());
  const auto at = std::find(codes.begin(), codes.end(), code);
  if (at == codes.end()) return false;
  divisions_->setCurrentIndex(static_cast<int>(at - codes.begin()));
  return true;
}

void ResTabulate::DataTypeChanged() {
  const Session& s = wb_.session;
  const bool wasFilling = filling_;
  filling_ = true;
  divisions_->clear();
  for (int code : DivisionCodesOf(DataType()))
    divisions_->addItem(code < static_cast<int>(s.vocab.DivisionName.size()) ? Q(s.vocab.DivisionName[code])
                                                                             : QString::number(code));
  filling_ = wasFilling;
  points_->setEnabled(DataType() != kNatalDetailsData);  // natal details count the charts themselves
  divisions_->setCurrentIndex(0);
  DivisionChanged();
}

void ResTabulate::DivisionChanged() {
  if (filling_) return;
  const DivisionControls c = ControlsFor(DataType(), Code());
  harmonic_->setEnabled(c.Harmonic);
  modulus_->setEnabled(c.Harmonic);
  userDivisions_->setEnabled(c.UserDivisions);
  anchorLabel_->setVisible(c.Anchor);
  anchor_->setVisible(c.Anchor);
  if (c.Anchor) {
    anchorLabel_->setText(Q(c.AnchorCaption));
    anchor_->setText(Q(c.AnchorDefault));
    std::string shown;
    double value = 0;
    anchorValue_ = 0;
    if (AnchorFromText(wb_.session, DataType(), c.AnchorDefault, value, shown)) {
      anchorValue_ = value;
      anchor_->setText(Q(shown));
    }
  }
  for (auto* r : rulers_) r->setEnabled(c.Rulers);
  for (int i = 0; i < 3; ++i) inexact_[i]->setEnabled(c.InexactEnabled[i]);
  int option = 0;
  for (int i = 0; i < 3; ++i)
    if (inexact_[i]->isChecked()) option = i;
  if (c.ForcedInexact >= 0) option = c.ForcedInexact;
  if (!c.InexactEnabled[option]) option = 2;
  inexact_[option]->setChecked(true);
}

void ResTabulate::HarmonicChanged() {
  bool ok = false;
  const double h = harmonic_->text().trimmed().toDouble(&ok);
  modulus_->setText(ok && h > 0 ? QString::number(360.0 / h, 'g', 6) : QString());
}

void ResTabulate::AnchorLeft() {
  double value = 0;
  std::string shown;
  if (AnchorFromText(wb_.session, DataType(), L(anchor_->text().trimmed()), value, shown)) {
    anchorValue_ = value;
    anchor_->setText(Q(shown));
  } else {
    anchor_->setFocus();
    anchor_->selectAll();
  }
}

void ResTabulate::FillPoints() {
  Session& s = wb_.session;
  const std::vector<PointRef>& chosen = wb_.tabulate.Points;
  points_->clear();
  bool any = false;
  for (const PointRef& ref : wb_.research.Selected) {
    auto* item = new QListWidgetItem(Q(PointName(s, wb_.research, ref)), points_);
    const bool on = std::find(chosen.begin(), chosen.end(), ref) != chosen.end();
    item->setSelected(on);
    any = any || on;
  }
  if (!any)
    for (int r = 0; r < points_->count(); ++r) points_->item(r)->setSelected(true);
}

void ResTabulate::SelectPoints() {
  Session& s = wb_.session;
  PointEdit editor(wb_, this);
  editor.exec();
  s.DialogCancelled = kFalse;  // a cancelled editor leaves the list as it was
  FillPoints();
}

TabulateParams ResTabulate::Params() const {
  TabulateParams p;
  p.DataType = DataType();
  p.Code = Code();
  const DivisionControls c = ControlsFor(p.DataType, p.Code);
  bool ok = false;
  p.Harmonic = c.Harmonic ? harmonic_->text().trimmed().toDouble(&ok) : 1.0;
  if (c.Harmonic && !ok) p.Harmonic = 0;  // the check names it
  p.UserDivisions = userDivisions_->value();
  p.Anchor = c.Anchor ? anchorValue_ : 0.0;
  p.Orb = (p.Code == 50 || p.Code == 51 || p.Code == 402) ? p.Anchor : 0.0;
  p.Scheme = rulers_[1]->isChecked() ? kAncientDayScheme : kModernScheme;
  p.InexactOption = 0;
  for (int i = 0; i < 3; ++i)
    if (inexact_[i]->isChecked()) p.InexactOption = i;
  for (int r = 0; r < points_->count() && r < static_cast<int>(wb_.research.Selected.size()); ++r)
    if (points_->item(r)->isSelected()) p.Points.push_back(wb_.research.Selected[r]);
  if (p.DataType == kNatalDetailsData) p.Points.clear();
  return p;
}

bool ResTabulate::Check(TabulateParams& params) {
  Session& s = wb_.session;
  if (!CheckWholeDegreeHarmonic(s, params)) {
    harmonic_->setText(NumberText(params.Harmonic));
    return false;
  }
  return CheckTabulateParams(s, params);
}

TabulationWindow* ResTabulate::Run() {
  // A typed anchor counts even when the box was not left.
  if (ControlsFor(DataType(), Code()).Anchor) {
    double value = 0;
    std::string shown;
    if (!AnchorFromText(wb_.session, DataType(), L(anchor_->text().trimmed()), value, shown)) return nullptr;
    anchorValue_ = value;
    anchor_->setText(Q(shown));
  }
  TabulateParams params = Params();
  if (!Check(params)) return nullptr;
  wb_.tabulate = params;
  Session& s = wb_.session;
  TabulationRun run;
  {
    BusyPointer busy;
    ProgressWindow window(this, QStringLiteral("Tally Status"), QStringLiteral("&Stop"));
    run = TabulateRun(s, wb_.research, params, &window);
  }
  if (run.Failed) return nullptr;
  auto* results = new TabulationWindow(wb_, std::move(run), parentWidget());
  ShowToolWindow(results, &wb_.session);
  return results;
}

void ResTabulate::accept() {
  if (Run()) QDialog::accept();
}

}  // namespace vintar
