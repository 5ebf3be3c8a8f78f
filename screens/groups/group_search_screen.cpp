#include "screens/groups/group_search_screen.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRadioButton>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "core/parse.h"
#include "output/drawing.h"
#include "output/group_reports.h"
#include "screens/common/drawing_view.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/common/tool_window.h"
#include "screens/groups/grp_auto.h"
#include "screens/groups/strips_window.h"

namespace vintar {

namespace {

const QString kPlusMinus = QString(QChar(0x00B1));

QRadioButton* Option(QWidget* parent, const char* name, const QString& caption) {
  auto* option = new QRadioButton(caption, parent);
  option->setObjectName(name);
  return option;
}

// The value an angle field holds: kept while its text still reads as that
// value, so that the defaults are not disturbed by a round trip through
// degrees and minutes.
constexpr const char* kHeldAngle = "heldAngle";

float HeldAngle(const QLineEdit* field) { return field->property(kHeldAngle).toFloat(); }

void SetAngle(QLineEdit* field, float value) {
  field->setProperty(kHeldAngle, value);
  field->setText(Q(GroupDegMin(value)));
}

}  // namespace

GroupSearch::GroupSearch(Workbench& wb, QWidget* parent) : QWidget(parent), wb_(wb) {
  setObjectName("GroupSearch");
  Session& s = wb.session;
  GroupSearchState& state = wb.group;
  const GroupSearchParams& p = wb.groupParams;
  setWindowTitle(Q(GroupSearchTitle(s)));

  auto* layout = new QVBoxLayout(this);

  // The search's parameters.
  auto* fields = new QGridLayout;
  auto lineEdit = [this](const char* name, const QString& text) {
    auto* field = new QLineEdit(text, this);
    field->setObjectName(name);
    field->setMaximumWidth(90);
    return field;
  };
  harmonicFrom_ = lineEdit("Harmonic_0", QString::number(p.FromHarmonic));
  harmonicTo_ = lineEdit("Harmonic_1", QString::number(p.ToHarmonic));
  orb_ = lineEdit("Orb", QString());
  position_ = lineEdit("Position", QString());
  matches_ = lineEdit("Matches", QString::number(ClampMatchesField(p.MinMatches)));
  SetAngle(orb_, p.Orb);
  SetAngle(position_, p.Position);
  auto label = [this](const QString& text, QWidget* buddy) {
    auto* l = new QLabel(text, this);
    l->setBuddy(buddy);
    return l;
  };
  harmonicToLabel_ = label(tr("&to"), harmonicTo_);
  orbLabel_ = label(QString(), orb_);
  positionLabel_ = label(tr("Pos&ition"), position_);
  fields->addWidget(label(tr("&Harmonics from"), harmonicFrom_), 0, 0);
  fields->addWidget(harmonicFrom_, 0, 1);
  fields->addWidget(harmonicToLabel_, 0, 2);
  fields->addWidget(harmonicTo_, 0, 3);
  fields->addWidget(orbLabel_, 1, 0);
  fields->addWidget(orb_, 1, 1);
  fields->addWidget(positionLabel_, 1, 2);
  fields->addWidget(position_, 1, 3);
  fields->addWidget(label(tr("Least &hits"), matches_), 2, 0);
  fields->addWidget(matches_, 2, 1);
  connect(harmonicFrom_, &QLineEdit::editingFinished, this, [this] { FinishHarmonic(harmonicFrom_); });
  connect(harmonicTo_, &QLineEdit::editingFinished, this, [this] { FinishHarmonic(harmonicTo_); });
  connect(orb_, &QLineEdit::editingFinished, this, [this] { FinishAngle(orb_); });
  connect(position_, &QLineEdit::editingFinished, this, [this] { FinishAngle(position_); });
  connect(matches_, &QLineEdit::editingFinished, this, &GroupSearch::FinishMatches);

  auto* searchType = new QGroupBox(tr("Search at"), this);
  searchType->setObjectName("OptionSearchType");
  auto* searchTypeRow = new QVBoxLayout(searchType);
  anyPosition_ = Option(searchType, "OptionSearchType_0", tr("An&y Position"));
  specifiedPosition_ = Option(searchType, "OptionSearchType_1", tr("Speci&fied Position"));
  searchTypeRow->addWidget(anyPosition_);
  searchTypeRow->addWidget(specifiedPosition_);
  (p.SpecifiedPosition ? specifiedPosition_ : anyPosition_)->setChecked(true);
  connect(specifiedPosition_, &QRadioButton::toggled, this, &GroupSearch::SearchTypeChanged);

  auto* matchType = new QGroupBox(tr("Match"), this);
  matchType->setObjectName("OptionMatchType");
  auto* matchTypeRow = new QVBoxLayout(matchType);
  combination_ = Option(matchType, "OptionMatchType_0", tr("To C&ombinations"));
  samePoint_ = Option(matchType, "OptionMatchType_1", tr("To S&ame Point"));
  matchTypeRow->addWidget(combination_);
  matchTypeRow->addWidget(samePoint_);
  (p.Combination ? combination_ : samePoint_)->setChecked(true);

  auto* top = new QHBoxLayout;
  top->addLayout(fields);
  top->addWidget(searchType);
  top->addWidget(matchType);
  top->addStretch();
  layout->addLayout(top);

  // The search points: what can be chosen on the left, what is chosen on
  // the right.
  auto* pointsBox = new QGroupBox(tr("Search points"), this);
  auto* pointsGrid = new QGridLayout(pointsBox);
  auto* kind = new QHBoxLayout;
  points_ = Option(pointsBox, "optMPs_0", tr("P&oints"));
  midpoints_ = Option(pointsBox, "optMPs_1", tr("&Midpoints"));
  points_->setChecked(true);
  kind->addWidget(points_);
  kind->addWidget(midpoints_);
  kind->addStretch();
  connect(midpoints_, &QRadioButton::toggled, this, &GroupSearch::FillDisplayList);
  pointsGrid->addLayout(kind, 0, 0);
  auto* prompt = new QLabel(Q(kClickToSelect), pointsBox);
  prompt->setObjectName("lblPrompt");
  pointsGrid->addWidget(prompt, 1, 0);
  displayList_ = new QListWidget(pointsBox);
  displayList_->setObjectName("DisplayList");
  displayList_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  pointsGrid->addWidget(displayList_, 2, 0);
  connect(displayList_, &QListWidget::itemDoubleClicked, this, &GroupSearch::AddSelected);

  auto* pointButtons = new QVBoxLayout;
  auto button = [this](const char* name, const QString& caption, void (GroupSearch::*slot)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    if (slot) connect(b, &QPushButton::clicked, this, slot);
    return b;
  };
  auto* add = button("AddButton", tr("&Add >>"), &GroupSearch::AddSelected);
  midpointButton_ = button("btnAddMidpoint", tr("Add Mid&point >>"), &GroupSearch::AddMidpoint);
  auto* remove = button("RemoveButton", tr("<< &Remove"), &GroupSearch::RemoveSelected);
  auto* clear = button("ClearButton", tr("C&lear"), &GroupSearch::ClearPoints);
  auto* defaults = button("DefaultButton", tr("D&efault"), &GroupSearch::DefaultPoints);
  for (QPushButton* b : {add, midpointButton_, remove, clear, defaults}) pointButtons->addWidget(b);
  pointButtons->addStretch();
  pointsGrid->addLayout(pointButtons, 2, 1);
  connect(displayList_, &QListWidget::itemSelectionChanged, this,
          [this] { midpointButton_->setEnabled(displayList_->selectedItems().size() == 2); });

  searchList_ = new QListWidget(pointsBox);
  searchList_->setObjectName("SearchList");
  searchList_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  connect(searchList_, &QListWidget::itemDoubleClicked, this, &GroupSearch::RemoveSelected);
  pointsGrid->addWidget(new QLabel(tr("Selected:"), pointsBox), 1, 2);
  pointsGrid->addWidget(searchList_, 2, 2);
  auto* counts = new QHBoxLayout;
  planetCount_ = new QLabel(pointsBox);
  planetCount_->setObjectName("lblPlanets");
  midpointCount_ = new QLabel(pointsBox);
  midpointCount_->setObjectName("lblMidpoints");
  counts->addWidget(planetCount_);
  counts->addWidget(midpointCount_);
  pointsGrid->addLayout(counts, 3, 2);
  pointsBox->setMaximumHeight(260);
  layout->addWidget(pointsBox);

  // The matches and the charts of the one selected, with its dial.
  auto* results = new QSplitter(Qt::Vertical, this);
  auto* matchesPane = new QWidget(results);
  auto* matchesColumn = new QVBoxLayout(matchesPane);
  matchesColumn->setContentsMargins(0, 0, 0, 0);
  auto* matchesHead = new QHBoxLayout;
  matchesHead->addWidget(new QLabel(tr("Matches found:"), matchesPane));
  matchesHead->addStretch();
  rank_ = new QCheckBox(tr("Ran&k by charts and hits"), matchesPane);
  rank_->setObjectName("chkRank");
  rank_->setChecked(true);
  connect(rank_, &QCheckBox::toggled, this, [this] {
    const int k = SelectedMatch();
    FillMatches();
    if (k > 0) SelectMatch(k);
  });
  matchesHead->addWidget(rank_);
  matchesColumn->addLayout(matchesHead);
  matchesList_ = new QListWidget(matchesPane);
  matchesList_->setObjectName("MatchesList");
  matchesColumn->addWidget(matchesList_);
  connect(matchesList_, &QListWidget::currentRowChanged, this, &GroupSearch::MatchChosen);

  auto* detailPane = new QWidget(results);
  auto* detailRow = new QHBoxLayout(detailPane);
  detailRow->setContentsMargins(0, 0, 0, 0);
  secondaryList_ = new QListWidget(detailPane);
  secondaryList_->setObjectName("SecondaryList");
  secondaryList_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  connect(secondaryList_, &QListWidget::itemSelectionChanged, this, &GroupSearch::DetailSelectionChanged);
  detailRow->addWidget(secondaryList_, 1);
  miniChart_ = new DrawingView(detailPane, &s);
  miniChart_->setObjectName("MiniChart");
  miniChart_->SetPreferredSize(QSizeF(170, 170));
  miniChart_->setFixedSize(170, 170);
  miniChart_->SetSaveName("match.png");
  miniChart_->SetPaint([this](QPainter& painter, const QRectF& area) { PaintMiniChart(painter, area); });
  detailRow->addWidget(miniChart_);
  results->addWidget(matchesPane);
  results->addWidget(detailPane);
  layout->addWidget(results, 1);

  statusPanel_ = new QLabel(this);
  statusPanel_->setObjectName("StatusPanel");
  status_ = new QLabel(Q(state.Status), this);
  status_->setObjectName("lblStatus");
  auto* panels = new QHBoxLayout;
  panels->addWidget(statusPanel_);
  panels->addStretch();
  panels->addWidget(status_);
  layout->addLayout(panels);

  auto* actions = new QHBoxLayout;
  searchButton_ = button("SearchButton", tr("&Search"), nullptr);
  connect(searchButton_, &QPushButton::clicked, this, [this] { Search(); });
  auto* display = button("DisplayButton", tr("&Display..."), &GroupSearch::Display);
  auto* print = button("PrintButton", tr("&Print..."), &GroupSearch::Print);
  auto* delineate = button("btnDelineate", tr("Re&port on Match..."), &GroupSearch::Delineate);
  auto* autoReport = button("btnAuto", tr("A&uto Report..."), &GroupSearch::AutoReport);
  cancelButton_ = button("CancelButton", tr("&Quit"), &GroupSearch::Quit);
  for (QPushButton* b : {searchButton_, display, print, delineate, autoReport}) actions->addWidget(b);
  actions->addStretch();
  actions->addWidget(cancelButton_);
  layout->addLayout(actions);
  searchButton_->setDefault(true);
  busyButtons_ = {searchButton_, display, print, delineate, autoReport, add, midpointButton_, remove, clear, defaults};

  // The search points of the last session, or the default ones.
  if (state.SearchPoints.empty()) {
    ReadGroupPointFile(s, state, GroupPointFilePath(s));
    if (state.SearchPoints.empty())
      for (int point : DefaultSearchPoints(s)) AddSearchPair(s, state, point, point);
  }
  statusPanel_->setText(Q(GroupStatusPanel(s, static_cast<int>(GroupSearchCharts(s).size()))));
  SearchTypeChanged();
  FillDisplayList();
  FillSearchList();
  FillMatches();
  resize(760, 780);
}

void GroupSearch::ShowState(const GroupSearchParams& p) {
  harmonicFrom_->setText(QString::number(p.FromHarmonic));
  harmonicTo_->setText(QString::number(p.ToHarmonic));
  SetAngle(orb_, p.Orb);
  SetAngle(position_, p.Position);
  matches_->setText(QString::number(ClampMatchesField(p.MinMatches)));
  (p.SpecifiedPosition ? specifiedPosition_ : anyPosition_)->setChecked(true);
  (p.Combination ? combination_ : samePoint_)->setChecked(true);
  SearchTypeChanged();
  FillSearchList();
  FillMatches();
  status_->setText(Q(wb_.group.Status));
}

GroupSearchParams GroupSearch::Params() const {
  GroupSearchParams p;
  p.FromHarmonic = ClampHarmonicField(harmonicFrom_->text().trimmed().toInt());
  p.ToHarmonic = ClampHarmonicField(harmonicTo_->text().trimmed().toInt());
  p.Orb = HeldAngle(orb_);
  p.Position = HeldAngle(position_);
  p.MinMatches = ClampMatchesField(matches_->text().trimmed().toInt());
  p.SpecifiedPosition = specifiedPosition_->isChecked();
  if (p.SpecifiedPosition) p.ToHarmonic = p.FromHarmonic;
  p.Combination = combination_->isChecked();
  return p;
}

void GroupSearch::FinishHarmonic(QLineEdit* field) {
  field->setText(QString::number(ClampHarmonicField(field->text().trimmed().toInt())));
  if (field == harmonicFrom_ && specifiedPosition_->isChecked()) harmonicTo_->setText(harmonicFrom_->text());
}

void GroupSearch::FinishAngle(QLineEdit* field) {
  const std::string text = L(field->text().trimmed());
  if (text == GroupDegMin(HeldAngle(field))) return;
  float value = 0.0f;
  bool failed = false;
  ParseAngle(wb_.session, text, value, failed);
  if (failed) {
    SetAngle(field, HeldAngle(field));
    field->setFocus();
    return;
  }
  SetAngle(field, value);
}

void GroupSearch::FinishMatches() { matches_->setText(QString::number(ClampMatchesField(matches_->text().trimmed().toInt()))); }

void GroupSearch::SearchTypeChanged() {
  const bool specified = specifiedPosition_->isChecked();
  position_->setVisible(specified);
  positionLabel_->setVisible(specified);
  harmonicTo_->setVisible(!specified);
  harmonicToLabel_->setVisible(!specified);
  if (specified) harmonicTo_->setText(harmonicFrom_->text());
  orbLabel_->setText((specified ? tr("Scan Orb ") : tr("Orb (1st) ")) + kPlusMinus);
}

void GroupSearch::FillDisplayList() {
  const bool mids = midpoints_->isChecked();
  displayList_->clear();
  displayPts_ = SelectablePoints(wb_.session);
  for (const std::string& line : GroupDisplayList(wb_.session, mids)) displayList_->addItem(Q(line));
  midpointButton_->setEnabled(false);
}

void GroupSearch::FillSearchList() {
  const GroupSearchState& state = wb_.group;
  searchList_->clear();
  for (const std::string& line : state.SearchList) searchList_->addItem(Q(line));
  planetCount_->setText(Q(SearchPlanetCount(state)));
  midpointCount_->setText(Q(SearchMidpointCount(state)));
}

void GroupSearch::FillMatches() {
  const GroupSearchState& state = wb_.group;
  const QSignalBlocker block(matchesList_);
  matchesList_->clear();
  shown_.clear();
  if (rank_->isChecked()) {
    shown_ = RankedGroupMatches(state);
  } else {
    for (int k = 1; k <= state.MatchCount; ++k) shown_.push_back(k);
  }
  for (int k : shown_)
    if (k - 1 < static_cast<int>(state.MatchesList.size())) matchesList_->addItem(Q(state.MatchesList[k - 1]));
  secondaryList_->clear();
  miniChart_->update();
}

int GroupSearch::SelectedMatch() const {
  const int row = matchesList_->currentRow();
  return row >= 0 && row < static_cast<int>(shown_.size()) ? shown_[row] : 0;
}

void GroupSearch::SelectMatch(int k) {
  const auto at = std::find(shown_.begin(), shown_.end(), k);
  if (at == shown_.end()) return;
  matchesList_->setCurrentRow(static_cast<int>(at - shown_.begin()));
}

void GroupSearch::MatchChosen() {
  GroupSearchState& state = wb_.group;
  secondaryList_->clear();
  const int k = SelectedMatch();
  if (k > 0) {
    BusyPointer busy;
    ShowGroupMatchDetail(wb_.session, state, Params(), k);
    const QSignalBlocker block(secondaryList_);
    for (const std::string& line : state.SecondaryList) secondaryList_->addItem(Q(line));
    secondaryList_->selectAll();
  }
  miniChart_->update();
}

void GroupSearch::DetailSelectionChanged() { miniChart_->update(); }

void GroupSearch::SetRunning(bool running) {
  running_ = running;
  cancelButton_->setText(running ? tr("S&top") : tr("&Quit"));
  for (QPushButton* b : busyButtons_) b->setEnabled(!running);
  displayList_->setEnabled(!running);
  searchList_->setEnabled(!running);
  matchesList_->setEnabled(!running);
  if (!running) midpointButton_->setEnabled(displayList_->selectedItems().size() == 2);
}

bool GroupSearch::Search() {
  Session& s = wb_.session;
  GroupSearchState& state = wb_.group;
  FinishHarmonic(harmonicFrom_);
  FinishHarmonic(harmonicTo_);
  FinishAngle(orb_);
  FinishAngle(position_);
  FinishMatches();
  const GroupSearchParams p = Params();
  std::string focus;
  if (!CheckGroupSearch(s, p, static_cast<int>(state.SearchPoints.size()), focus)) {
    QWidget* field = focus == "Orb"        ? static_cast<QWidget*>(orb_)
                     : focus == "Position" ? static_cast<QWidget*>(position_)
                     : focus == "Harmonic" ? static_cast<QWidget*>(harmonicFrom_)
                                           : static_cast<QWidget*>(displayList_);
    field->setFocus();
    return false;
  }
  wb_.groupParams = p;
  SetRunning(true);
  matchesList_->clear();
  secondaryList_->clear();
  {
    BusyPointer busy;
    ProgressWindow progress(this, tr("Group Search"), tr("&Stop"));
    SearchGroupPatterns(s, state, p, &progress);
  }
  SetRunning(false);
  status_->setText(Q(state.Status));
  statusPanel_->setText(Q(GroupStatusPanel(s, static_cast<int>(state.SearchCharts.size()))));
  FillMatches();
  if (!shown_.empty()) matchesList_->setCurrentRow(0);
  return true;
}

void GroupSearch::AddSelected() {
  Session& s = wb_.session;
  GroupSearchState& state = wb_.group;
  const bool mids = midpoints_->isChecked();
  for (const QModelIndex& index : displayList_->selectionModel()->selectedRows()) {
    const int row = index.row();
    if (row < 0 || row >= static_cast<int>(displayPts_.size())) continue;
    const int point = displayPts_[row];
    if (mids)
      AddAllMidpointsOf(s, state, point);
    else
      AddSearchPair(s, state, point, point);
  }
  FillSearchList();
}

void GroupSearch::AddMidpoint() {
  QModelIndexList rows = displayList_->selectionModel()->selectedRows();
  if (rows.size() != 2) return;
  std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
  const int a = rows[0].row(), b = rows[1].row();
  if (b >= static_cast<int>(displayPts_.size())) return;
  AddSearchPair(wb_.session, wb_.group, displayPts_[a], displayPts_[b]);
  FillSearchList();
}

void GroupSearch::RemoveSelected() {
  GroupSearchState& state = wb_.group;
  std::vector<SearchPair> kept;
  for (int i = 0; i < static_cast<int>(state.SearchPoints.size()); ++i) {
    const QListWidgetItem* item = searchList_->item(i);
    if (!item || !item->isSelected()) kept.push_back(state.SearchPoints[i]);
  }
  if (kept.size() == state.SearchPoints.size()) return;
  ClearSearchPoints(state);
  for (const SearchPair& pair : kept) AddSearchPair(wb_.session, state, pair.First, pair.Second);
  FillSearchList();
}

void GroupSearch::ClearPoints() {
  ClearSearchPoints(wb_.group);
  FillSearchList();
}

void GroupSearch::DefaultPoints() {
  ClearSearchPoints(wb_.group);
  for (int point : DefaultSearchPoints(wb_.session)) AddSearchPair(wb_.session, wb_.group, point, point);
  FillSearchList();
}

void GroupSearch::Display() {
  Session& s = wb_.session;
  const GroupSearchState& state = wb_.group;
  const int k = SelectedMatch();
  if (k > 0 && state.CurrentMatches) {
    std::vector<int> lines;
    for (const QModelIndex& index : secondaryList_->selectionModel()->selectedRows()) lines.push_back(index.row());
    std::sort(lines.begin(), lines.end());
    if (!CheckStripChartCount(s, static_cast<int>(DetailLineCharts(state, lines).size()))) return;
    if (!StripsFromDetailLines(wb_.strips, state, k, lines) && !StripsFromMatch(wb_.strips, state, k)) return;
  } else {
    // No match: the first charts of the project.
    std::vector<int> records = GroupSearchCharts(s);
    if (records.size() > static_cast<size_t>(kStripCount)) records.resize(kStripCount);
    SetStripRecords(wb_.strips, records);
  }
  OpenStripsWindow(wb_, parentWidget());
}

void GroupSearch::Print() {
  Session& s = wb_.session;
  const GroupSearchState& state = wb_.group;
  const GroupSearchParams p = state.MatchesList.empty() ? Params() : state.LastParams;
  const int k = SelectedMatch();
  RunPrintGraph(wb_, this, tr("Print Family Search Report"),
                [&s, &state, p, k](ReportDocument& doc, const ReportOptions& options) {
                  GroupSearchReport(doc, s, state, p, k, options);
                });
}

void GroupSearch::Delineate() {
  const int k = SelectedMatch();
  if (k == 0 || !wb_.group.CurrentMatches) return;
  ShowToolWindow(new GrpAuto(wb_, parentWidget(), k), &wb_.session);
}

void GroupSearch::AutoReport() {
  if (!CheckReportRecordCount(wb_.session)) return;
  ShowToolWindow(new GrpAuto(wb_, parentWidget(), 0), &wb_.session);
}

void GroupSearch::Quit() {
  if (running_) {
    wb_.group.Stop = true;
    return;
  }
  close();
}

void GroupSearch::closeEvent(QCloseEvent* event) {
  // The search points are kept for the next session.
  WriteGroupPointFile(wb_.group, GroupPointFilePath(wb_.session));
  QWidget::closeEvent(event);
}

void GroupSearch::PaintMiniChart(QPainter& painter, const QRectF& area) const {
  const Session& s = wb_.session;
  const GroupSearchState& state = wb_.group;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(area, Qt::white);
  const QPointF centre = area.center();
  const double radius = std::min(area.width(), area.height()) * 0.40;
  // Aries rises at the left and the signs run anticlockwise.
  auto at = [&](double longitude, double r) {
    const double a = longitude * M_PI / 180.0;
    return QPointF(centre.x() - r * std::cos(a), centre.y() + r * std::sin(a));
  };
  painter.setPen(QPen(QColor(60, 60, 60), 1.0));
  painter.drawEllipse(centre, radius, radius);
  painter.drawEllipse(centre, radius * 0.72, radius * 0.72);
  for (int degree = 0; degree < 360; degree += 5) {
    const double inner = degree % 30 == 0 ? 0.72 : (degree % 10 == 0 ? 0.93 : 0.96);
    painter.drawLine(at(degree, radius * inner), at(degree, radius));
  }
  QFont font(kGlyphFontName);
  font.setPixelSize(std::max(6, static_cast<int>(radius * 0.17)));
  painter.setFont(font);
  for (int sign = 1; sign <= 12 && sign < static_cast<int>(s.vocab.UnicodeSignGlyph.size()); ++sign) {
    const QPointF p = at((sign - 1) * 30.0 + 15.0, radius * 0.86);
    const QRectF box(p.x() - radius * 0.15, p.y() - radius * 0.15, radius * 0.3, radius * 0.3);
    painter.drawText(box, Qt::AlignCenter, QString::fromStdString(s.vocab.UnicodeSignGlyph[sign]));
  }
  painter.setPen(QPen(QColor(200, 40, 40), 2.0));
  for (int line = 0; line < secondaryList_->count(); ++line) {
    if (!secondaryList_->item(line)->isSelected() || line >= static_cast<int>(state.DetailSlots.size())) continue;
    const int e = state.DetailSlots[line];
    if (e < 1 || e >= static_cast<int>(state.BasePos.size()) || state.BasePos[e] < 0.0f) continue;
    painter.drawLine(at(state.BasePos[e], radius * 0.96), at(state.BasePos[e], radius * 1.04));
  }
  painter.restore();
}

}  // namespace vintar
