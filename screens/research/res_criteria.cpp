#include "screens/research/res_criteria.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
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

#include "core/parse.h"
#include "core/project_ops.h"
#include "core/text.h"
#include "output/research_reports.h"
#include "research/dignity.h"
#include "research/results.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/common/tool_window.h"
#include "screens/project/file_menu.h"
#include "screens/research/crit_point_picker.h"

namespace vintar {

namespace {

constexpr const char* kCriteriaFilter = "Criteria Files (*.vcr)";

QPushButton* Button(QWidget* parent, const QString& text, const char* name, const QString& tip = QString()) {
  auto* b = new QPushButton(text, parent);
  b->setObjectName(name);
  b->setAutoDefault(false);
  if (!tip.isEmpty()) b->setToolTip(tip);
  return b;
}

// Where the file dialogues start: the open project's folder, else the user's data folder.
QString StartFolder(const Session& s) {
  if (!Trim(s.project.ProjectPath).empty()) return QFileInfo(QPath(s.project.ProjectPath)).absolutePath();
  return QPath(s.paths.UserDataPath);
}

}  // namespace

std::vector<std::string> PassedRecordRows(const Session& session, const std::vector<int16_t>& flags) {
  const ProjectState& p = session.project;
  const int count = std::clamp<int>(p.Header.RecordCount, 0, static_cast<int>(p.Events.size()) - 1);
  std::vector<std::string> rows;
  for (int i = 1; i <= count && i < static_cast<int>(flags.size()); ++i) {
    if (!flags[i]) continue;
    const EventRecord& e = p.Events[i];
    rows.push_back(std::to_string(i) + "\t" + e.Description + "\t" + FormatDate(session, e.Day, e.Month, e.Year));
  }
  return rows;
}

// ---------------------------------------------------------------- ResCriteria

ResCriteria::ResCriteria(Workbench& wb, QWidget* parent) : QDialog(parent), wb_(wb) {
  setObjectName("ResCriteria");
  setWindowTitle(tr("Criteria Search"));
  EnsurePointFiles(wb_);

  // The test: data type, division, cells, and the settings of the division.
  coords_ = new QComboBox(this);
  coords_->setObjectName("cmbCoords");
  for (int t = 0; t < kDataTypes; ++t) {
    // Harmonic components are measured over a whole group, never one chart.
    if (t == kHarmonicData) continue;
    // The caption without its accelerator; "&&" is a real ampersand.
    QString caption = QString(DataTypeOf(t).Caption).replace("&&", "\x01").remove('&').replace('\x01', '&');
    coords_->addItem(caption, t);
  }
  divisions_ = new QComboBox(this);
  divisions_->setObjectName("cmbDivisions");
  divNames_ = new QListWidget(this);
  divNames_->setObjectName("DivNames");
  divNames_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  divNames_->setMinimumHeight(150);
  harmonic_ = new QSpinBox(this);
  harmonic_->setObjectName("Harmonic");
  harmonic_->setRange(1, 360);
  modulus_ = new QLabel(this);
  modulus_->setObjectName("Modulus");
  userDivisions_ = new QSpinBox(this);
  userDivisions_->setObjectName("UserDivisions");
  userDivisions_->setRange(1, kCriterionCells);
  userDivisions_->setValue(12);
  anchorLabel_ = new QLabel(tr("Anchor Point"), this);
  anchorEdit_ = new QLineEdit(this);
  anchorEdit_->setObjectName("Anchor");
  anchorLabel_->setBuddy(anchorEdit_);

  auto* rulersBox = new QGroupBox(tr("Rulers"), this);
  auto* rulersLayout = new QVBoxLayout(rulersBox);
  const char* rulerCaptions[2] = {QT_TR_NOOP("&New"), QT_TR_NOOP("Old")};
  for (int i = 0; i < 2; ++i) {
    rulers_[i] = new QRadioButton(tr(rulerCaptions[i]), rulersBox);
    rulers_[i]->setObjectName(QString("OptionRulers_%1").arg(i));
    rulersLayout->addWidget(rulers_[i]);
  }
  rulersLayout->addStretch();
  rulers_[0]->setChecked(true);
  auto* inexactBox = new QGroupBox(tr("Inexact Charts"), this);
  auto* inexactLayout = new QVBoxLayout(inexactBox);
  const char* inexactCaptions[3] = {QT_TR_NOOP("&Exclude Only Ambiguous Points"),
                                    QT_TR_NOOP("Use &Median Positions"),
                                    QT_TR_NOOP("Exclude All Inexact Charts")};
  for (int i = 0; i < 3; ++i) {
    inexact_[i] = new QRadioButton(tr(inexactCaptions[i]), inexactBox);
    inexact_[i]->setObjectName(QString("OptionInexact_%1").arg(i));
    inexactLayout->addWidget(inexact_[i]);
  }
  inexact_[0]->setChecked(true);

  auto* testForm = new QFormLayout;
  testForm->addRow(tr("&Data Type:"), coords_);
  testForm->addRow(tr("Di&vision:"), divisions_);
  auto* harmonicRow = new QHBoxLayout;
  harmonicRow->addWidget(harmonic_);
  harmonicRow->addWidget(new QLabel(tr("Modulus:"), this));
  harmonicRow->addWidget(modulus_, 1);
  auto* harmonicLabel = new QLabel(tr("&Harmonic:"), this);
  harmonicLabel->setBuddy(harmonic_);
  testForm->addRow(harmonicLabel, harmonicRow);
  testForm->addRow(tr("&User Divisions:"), userDivisions_);
  testForm->addRow(anchorLabel_, anchorEdit_);
  auto* testColumn = new QVBoxLayout;
  testColumn->addLayout(testForm);
  testColumn->addWidget(new QLabel(tr("Divisions (Ctrl/Shift+Mouse):"), this));
  testColumn->addWidget(divNames_, 1);
  auto* optionsRow = new QHBoxLayout;
  optionsRow->addWidget(rulersBox);
  optionsRow->addWidget(inexactBox, 1);
  testColumn->addLayout(optionsRow);

  // The points the tests may be about.
  points_ = new QListWidget(this);
  points_->setObjectName("lstPoints");
  points_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  auto* pointSelect = Button(this, tr("Select &Points..."), "btnPointSelect");
  auto* pointColumn = new QVBoxLayout;
  pointColumn->addWidget(new QLabel(tr("Points:"), this));
  pointColumn->addWidget(points_, 1);
  pointColumn->addWidget(pointSelect);

  // The list and its buttons.
  criteria_ = new QListWidget(this);
  criteria_->setObjectName("lstCriteria");
  criteria_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  QFont fixed("Monospace");
  fixed.setStyleHint(QFont::TypeWriter);
  criteria_->setFont(fixed);
  auto* add = Button(this, tr("&Add Criterion"), "btnNew");
  QPushButton* ops[3] = {Button(this, tr("AND"), "btnAndOr_0", tr("Apply AND Condition")),
                         Button(this, tr("OR"), "btnAndOr_1", tr("Apply OR Condition")),
                         Button(this, tr("XOR"), "btnAndOr_2", tr("Apply EXCLUSIVE OR Condition"))};
  auto* notButton = Button(this, tr("NOT"), "btnNot", tr("Negate the selected criterion"));
  auto* bracket = Button(this, tr("( )"), "btnBracket", tr("Apply or remove brackets around the selected criteria"));
  auto* remove = Button(this, tr("&Delete"), "btnDelete");
  auto* clear = Button(this, tr("C&lear"), "btnClear");
  auto* open = Button(this, tr("&Open..."), "btnOpen");
  auto* save = Button(this, tr("Sa&ve..."), "btnSave");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(add);
  for (auto* b : ops) buttons->addWidget(b);
  buttons->addWidget(notButton);
  buttons->addWidget(bracket);
  buttons->addWidget(remove);
  buttons->addWidget(clear);
  buttons->addStretch();
  buttons->addWidget(open);
  buttons->addWidget(save);

  auto* box = new QDialogButtonBox(this);
  auto* ok = box->addButton(tr("&Search"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("OKButton");
  ok->setDefault(true);
  auto* cancel = box->addButton(tr("&Close"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("CancelButton");
  connect(box, &QDialogButtonBox::accepted, this, &ResCriteria::accept);
  connect(box, &QDialogButtonBox::rejected, this, &ResCriteria::reject);

  auto* top = new QHBoxLayout;
  top->addLayout(testColumn, 3);
  top->addLayout(pointColumn, 2);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top, 3);
  layout->addWidget(new QLabel(tr("Selection Criteria:"), this));
  layout->addWidget(criteria_, 1);
  layout->addLayout(buttons);
  layout->addWidget(box);

  connect(coords_, &QComboBox::currentIndexChanged, this, &ResCriteria::DataTypeChanged);
  connect(divisions_, &QComboBox::currentIndexChanged, this, &ResCriteria::DivisionChanged);
  connect(harmonic_, &QSpinBox::editingFinished, this, &ResCriteria::LeaveHarmonic);
  connect(harmonic_, &QSpinBox::valueChanged, this, [this] {
    modulus_->setText(QString::number(360.0 / harmonic_->value(), 'g', 6));
    RebuildCells();
  });
  connect(userDivisions_, &QSpinBox::valueChanged, this, &ResCriteria::RebuildCells);
  connect(anchorEdit_, &QLineEdit::editingFinished, this, &ResCriteria::LeaveAnchor);
  connect(rulers_[0], &QRadioButton::toggled, this, &ResCriteria::RebuildCells);
  connect(add, &QPushButton::clicked, this, &ResCriteria::AddClicked);
  for (int op = 0; op < 3; ++op) connect(ops[op], &QPushButton::clicked, this, [this, op] { OperatorClicked(op); });
  connect(notButton, &QPushButton::clicked, this, &ResCriteria::NotClicked);
  connect(bracket, &QPushButton::clicked, this, &ResCriteria::BracketClicked);
  connect(remove, &QPushButton::clicked, this, &ResCriteria::DeleteClicked);
  connect(clear, &QPushButton::clicked, this, &ResCriteria::ClearClicked);
  connect(pointSelect, &QPushButton::clicked, this, &ResCriteria::PointSelectClicked);
  connect(open, &QPushButton::clicked, this, [this] {
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Selection Criteria"), StartFolder(wb_.session),
                                                      tr(kCriteriaFilter));
    if (!path.isEmpty()) OpenList(path);
  });
  connect(save, &QPushButton::clicked, this, [this] {
    QString path = QFileDialog::getSaveFileName(this, tr("Save Current Criteria"),
                                                StartFolder(wb_.session) + "/Unnamed.vcr", tr(kCriteriaFilter));
    if (path.isEmpty()) return;
    if (QFileInfo(path).suffix().isEmpty()) path += ".vcr";
    SaveList(path);
  });

  modulus_->setText("360");
  DataTypeChanged();
  RefreshPoints();
  RefreshCriteria();
  resize(860, 680);
}

int ResCriteria::DataType() const { return coords_->currentData().toInt(); }
int ResCriteria::Code() const { return divisions_->currentData().toInt(); }

TabulateParams ResCriteria::Params() const {
  TabulateParams p;
  p.DataType = DataType();
  p.Code = Code();
  p.Harmonic = harmonic_->isEnabled() ? harmonic_->value() : 1;
  p.UserDivisions = userDivisions_->value();
  p.Anchor = anchorEdit_->isEnabled() ? anchor_ : 0.0;
  p.Orb = p.Anchor;
  p.Scheme = rulers_[0]->isChecked() ? kModernScheme : kAncientDayScheme;
  return p;
}

void ResCriteria::DataTypeChanged() {
  const QSignalBlocker block(divisions_);
  divisions_->clear();
  for (int code : DivisionCodesOf(DataType())) {
    const auto& names = wb_.session.vocab.DivisionName;
    divisions_->addItem(code < static_cast<int>(names.size()) ? Q(names[code]) : QString::number(code), code);
  }
  divisions_->setCurrentIndex(0);
  DivisionChanged();
}

void ResCriteria::DivisionChanged() {
  const DivisionControls c = ControlsFor(DataType(), Code());
  harmonic_->setEnabled(c.Harmonic);
  if (!c.Harmonic) harmonic_->setValue(1);
  userDivisions_->setEnabled(c.UserDivisions);
  for (auto* r : rulers_) r->setEnabled(c.Rulers);
  anchorLabel_->setVisible(c.Anchor);
  anchorEdit_->setVisible(c.Anchor);
  anchorEdit_->setEnabled(c.Anchor);
  anchorLabel_->setText(Q(c.AnchorCaption.empty() ? "Anchor Point" : c.AnchorCaption));
  anchorEdit_->setText(Q(c.AnchorDefault));
  anchor_ = c.Anchor ? Val(c.AnchorDefault) : 0.0;
  for (int i = 0; i < 3; ++i) inexact_[i]->setEnabled(c.InexactEnabled[i]);
  if (c.ForcedInexact >= 0) inexact_[c.ForcedInexact]->setChecked(true);
  for (int i = 0; i < 3; ++i)
    if (inexact_[i]->isChecked() && !c.InexactEnabled[i]) inexact_[2]->setChecked(true);
  RebuildCells();
}

void ResCriteria::LeaveAnchor() {
  // Only a typed anchor goes through the angle parser; the default stands as given.
  if (!anchorEdit_->isEnabled() || !anchorEdit_->isModified()) return;
  double value = 0;
  std::string shown;
  if (!AnchorFromText(wb_.session, DataType(), L(anchorEdit_->text()), value, shown)) {
    anchorEdit_->setFocus();
    anchorEdit_->selectAll();
    return;
  }
  anchorEdit_->setText(Q(shown));
  anchorEdit_->setModified(false);
  if (value == anchor_) return;
  anchor_ = value;
  RebuildCells();
}

void ResCriteria::LeaveHarmonic() {
  TabulateParams p = Params();
  if (!CheckWholeDegreeHarmonic(wb_.session, p)) harmonic_->setValue(1);
}

void ResCriteria::RebuildCells() {
  const TabulateParams p = Params();
  TabulationRun run;
  run.Params = p;
  const CellCounts counts = CellCountsOf(p);
  run.CellCount = counts.CellCount;
  run.UsedCells = counts.UsedCells;
  QStringList names;
  for (int cell = 1; cell <= std::min(counts.CellCount, kCriterionCells); ++cell)
    names << Q(CellName(wb_.session, run, cell, false));
  QStringList shown;
  for (int i = 0; i < divNames_->count(); ++i) shown << divNames_->item(i)->text();
  // The same cells keep their highlight.
  if (names == shown) return;
  divNames_->clear();
  divNames_->addItems(names);
}

int ResCriteria::CellCount() const { return divNames_->count(); }

void ResCriteria::ChooseDivision(int dataType, int code) {
  coords_->setCurrentIndex(std::max(0, coords_->findData(dataType)));
  divisions_->setCurrentIndex(std::max(0, divisions_->findData(code)));
}

void ResCriteria::SelectCells(const std::vector<int>& cells) {
  divNames_->clearSelection();
  for (int c : cells)
    if (c >= 1 && c <= divNames_->count()) divNames_->item(c - 1)->setSelected(true);
}

void ResCriteria::SelectPoints(const std::vector<int>& points) {
  points_->clearSelection();
  for (int p : points)
    if (p >= 0 && p < points_->count()) points_->item(p)->setSelected(true);
}

void ResCriteria::SelectCriteria(const std::vector<int>& criteria) {
  criteria_->clearSelection();
  for (int c : criteria)
    if (c >= 1 && c <= criteria_->count()) criteria_->item(c - 1)->setSelected(true);
}

std::vector<int> ResCriteria::SelectedCriteria() const {
  std::vector<int> out;
  for (int i = 0; i < criteria_->count(); ++i)
    if (criteria_->item(i)->isSelected()) out.push_back(i + 1);
  return out;
}

QStringList ResCriteria::Lines() const {
  QStringList lines;
  for (int i = 0; i < criteria_->count(); ++i) lines << criteria_->item(i)->text();
  return lines;
}

void ResCriteria::RefreshPoints() {
  points_->clear();
  for (const PointRef& p : wb_.research.Selected) points_->addItem(Q(PointName(wb_.session, wb_.research, p)));
}

void ResCriteria::RefreshCriteria() {
  const std::vector<int> selected = SelectedCriteria();
  criteria_->clear();
  for (const auto& line : CriteriaLines(wb_.session, wb_.research, wb_.criteria)) criteria_->addItem(Q(line));
  SelectCriteria(selected);
}

void ResCriteria::SyncListPoints() {
  wb_.criteria.Header = wb_.research.Header;
  wb_.criteria.Points = wb_.research.Selected;
  wb_.criteria.Header.PointCount = static_cast<int16_t>(wb_.criteria.Points.size());
}

void ResCriteria::AddClicked() {
  LeaveAnchor();
  NewCriterion in;
  in.DataType = DataType();
  in.Code = Code();
  for (int i = 0; i < points_->count(); ++i)
    if (points_->item(i)->isSelected()) in.Selected.push_back(wb_.research.Selected[i]);
  in.PointsAvailable = !wb_.research.Selected.empty();
  for (int i = 0; i < divNames_->count(); ++i)
    if (divNames_->item(i)->isSelected()) in.Cells.push_back(i + 1);
  in.CellCount = divNames_->count();
  in.UserDivisions = userDivisions_->value();
  in.Orb = anchorEdit_->isEnabled() ? anchor_ : 0.0;
  in.Harmonic = harmonic_->isEnabled() ? harmonic_->value() : 0;
  in.ModernRulers = rulers_[0]->isChecked();
  for (int i = 0; i < 3; ++i)
    if (inexact_[i]->isChecked()) in.InexactOption = i;
  if (!AddCriterion(wb_.session, wb_.criteria, in)) return;
  SyncListPoints();
  RefreshCriteria();
  criteria_->clearSelection();
  criteria_->setCurrentRow(criteria_->count() - 1);
}

void ResCriteria::OperatorClicked(int op) {
  SetCriterionOperator(wb_.criteria, SelectedCriteria(), op);
  RefreshCriteria();
}

void ResCriteria::NotClicked() {
  const std::vector<int> selected = SelectedCriteria();
  if (selected.empty()) return;
  ToggleCriterionNegate(wb_.criteria, selected.front(), selected.back());
  RefreshCriteria();
}

void ResCriteria::BracketClicked() {
  std::vector<bool> marked(static_cast<size_t>(wb_.criteria.Count()) + 1, false);
  for (int i : SelectedCriteria())
    if (i <= wb_.criteria.Count()) marked[i] = true;
  CriteriaList& list = wb_.criteria;
  if (ToggleBracketsOnSelection(wb_.session, marked, [&list](int k) -> int16_t& { return list.Criteria[k].NestLevel; }))
    RefreshCriteria();
}

void ResCriteria::DeleteClicked() {
  DeleteCriteria(wb_.criteria, SelectedCriteria());
  criteria_->clearSelection();
  RefreshCriteria();
}

void ResCriteria::ClearClicked() {
  wb_.criteria.Criteria.resize(1);
  RefreshCriteria();
}

void ResCriteria::PointSelectClicked() {
  // The point list is edited on a copy: a cancel leaves it as it was.
  CritPointPicker picker(wb_, this);
  if (picker.exec() == QDialog::Accepted) {
    SyncListPoints();
    RefreshPoints();
    RefreshCriteria();
  }
  wb_.session.DialogCancelled = kFalse;
}

bool ResCriteria::OpenList(const QString& path) {
  if (!OpenCriteriaFile(wb_.session, wb_.research, PathOf(path), wb_.criteria)) return false;
  RefreshPoints();
  RefreshCriteria();
  return true;
}

bool ResCriteria::SaveList(const QString& path) {
  SyncListPoints();
  return SaveCriteriaFile(wb_.session, PathOf(path), wb_.criteria);
}

bool ResCriteria::Search() {
  run_ = CriteriaRun{};
  if (!CheckCriteriaList(wb_.session, wb_.criteria)) return false;
  if (!wb_.session.project.Open) return false;
  SyncListPoints();
  ProgressWindow progress(this, tr("Search Status"), tr("&Stop"));
  progress.show();
  {
    BusyPointer busy;
    run_ = RunSearch(wb_.session, wb_.research, wb_.criteria, &progress);
  }
  progress.hide();
  return !run_.Failed && !run_.Cancelled;
}

void ResCriteria::accept() {
  if (!Search()) return;
  auto* out = new ResOut(wb_, parentWidget(), ResOut::Origin::Criteria, run_.PassedFlags, run_.Enabled, run_.Passed,
                         CriteriaLines(wb_.session, wb_.research, wb_.criteria));
  ShowToolWindow(out, &wb_.session);
}

// ---------------------------------------------------------------- ResOut

ResOut::ResOut(Workbench& wb, QWidget* parent, Origin origin, const std::vector<int16_t>& passedFlags, int enabled,
               int passed, std::vector<std::string> lines)
    : QDialog(parent),
      wb_(wb),
      projectPath_(wb.session.project.ProjectPath),
      recordCount_(wb.session.project.Header.RecordCount),
      origin_(origin),
      flags_(passedFlags),
      lines_(std::move(lines)) {
  setObjectName("ResOut");
  setWindowTitle(ReportTitle());
  const std::vector<std::string> texts = SearchResultLines(enabled, passed);
  auto value = [](const std::string& line) {
    const size_t colon = line.rfind(": ");
    return colon == std::string::npos ? Q(line) : Q(line.substr(colon + 2));
  };
  auto label = [](const std::string& line) {
    const size_t colon = line.rfind(": ");
    return colon == std::string::npos ? Q(line) : Q(line.substr(0, colon + 1));
  };
  enabled_ = new QLabel(value(texts[0]), this);
  enabled_->setObjectName("lblEnabled");
  passed_ = new QLabel(value(texts[1]), this);
  passed_->setObjectName("lblPassed");
  percent_ = new QLabel(value(texts[2]), this);
  percent_->setObjectName("lblPercent");
  auto* counts = new QGroupBox(tr("Results"), this);
  auto* form = new QFormLayout(counts);
  form->addRow(label(texts[0]), enabled_);
  form->addRow(label(texts[1]), passed_);
  form->addRow(label(texts[2]), percent_);

  disable_ = Button(this, tr("Enable Only Passed Records in Current Project"), "btnDisable");
  new_ = Button(this, tr("Create New Project with Records which Passed Criteria"), "btnNew");
  view_ = Button(this, tr("&View Passed Records..."), "btnView");
  auto* print = Button(this, tr("&Print..."), "btnPrint");
  auto* printBox = new QGroupBox(tr("Print"), this);
  auto* printLayout = new QVBoxLayout(printBox);
  printAll_ = new QRadioButton(tr("List all records (marking those which passed)"), printBox);
  printAll_->setObjectName("optPrint_0");
  auto* printPassed = new QRadioButton(tr("List only those records which passed"), printBox);
  printPassed->setObjectName("optPrint_1");
  printAll_->setChecked(true);
  printLayout->addWidget(printAll_);
  printLayout->addWidget(printPassed);
  printLayout->addWidget(print);

  auto* box = new QDialogButtonBox(this);
  auto* close = box->addButton(tr("&Close"), QDialogButtonBox::RejectRole);
  close->setObjectName("CancelButton");
  connect(box, &QDialogButtonBox::rejected, this, &ResOut::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(counts);
  layout->addWidget(disable_);
  layout->addWidget(new_);
  layout->addWidget(view_);
  layout->addWidget(printBox);
  layout->addWidget(box);
  connect(disable_, &QPushButton::clicked, this, &ResOut::DisableClicked);
  connect(new_, &QPushButton::clicked, this, &ResOut::NewClicked);
  connect(view_, &QPushButton::clicked, this, &ResOut::ViewClicked);
  connect(print, &QPushButton::clicked, this, &ResOut::PrintClicked);
  UpdateButtons();
}

QString ResOut::EnabledText() const { return enabled_->text(); }
QString ResOut::PassedText() const { return passed_->text(); }
QString ResOut::PercentText() const { return percent_->text(); }
bool ResOut::AllRecords() const { return printAll_->isChecked(); }

QString ResOut::ReportTitle() const {
  return origin_ == Origin::Criteria ? tr("Criteria Search Results") : tr("Data Search Results");
}

bool ResOut::SameProject() const {
  const ProjectState& p = wb_.session.project;
  return p.Open && p.ProjectPath == projectPath_ && p.Header.RecordCount == recordCount_;
}

void ResOut::UpdateButtons() {
  // Once the passes became a project of their own the flags are gone.
  const bool any = !flags_.empty() && SameProject();
  disable_->setEnabled(any);
  new_->setEnabled(any);
  view_->setEnabled(any);
}

bool ResOut::DisableClicked() {
  UpdateButtons();
  if (!SameProject()) return false;
  if (!DisableFailedRecords(wb_.session, flags_)) return false;
  wb_.Changed();
  return true;
}

bool ResOut::NewClicked() {
  UpdateButtons();
  if (!SameProject()) return false;
  // The main window answers the Save As question; alone, this screen does.
  if (!wb_.session.AskSavePath) InstallSaveDialog(wb_, this);
  const bool written = CreatePassedProject(wb_.session, flags_);
  if (written) UpdateRecentFiles(wb_.session, wb_.recent);
  wb_.Changed();
  UpdateButtons();
  return written;
}

void ResOut::ViewClicked() {
  if (!SameProject()) return;
  auto* view = new QDialog(this);
  view->setObjectName("PassedRecords");
  view->setWindowTitle(ReportTitle());
  auto* list = new QListWidget(view);
  list->setObjectName("lstPassed");
  for (const auto& row : PassedRecordRows(wb_.session, flags_)) list->addItem(Q(row).replace('\t', "   "));
  auto* box = new QDialogButtonBox(QDialogButtonBox::Close, view);
  connect(box, &QDialogButtonBox::rejected, view, &QDialog::reject);
  auto* layout = new QVBoxLayout(view);
  layout->addWidget(list);
  layout->addWidget(box);
  view->resize(520, 420);
  ShowToolWindow(view, &wb_.session);
}

void ResOut::PrintClicked() {
  if (!SameProject()) return;
  const std::vector<std::string> lines = lines_;
  const std::vector<int16_t> flags = flags_;
  const bool all = AllRecords();
  Session& s = wb_.session;
  RunPrintGraph(wb_, this, ReportTitle(), [&s, lines, flags, all](ReportDocument& doc, const ReportOptions& o) {
    SearchResultsReport(doc, s, lines, flags, all, o);
  });
}

}  // namespace vintar
