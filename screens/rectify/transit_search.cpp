#include "screens/rectify/transit_search.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cmath>

#include "calc/chart.h"
#include "core/calendar.h"
#include "core/parse.h"
#include "output/rectify_reports.h"
#include "rectify/auto_rectify.h"
#include "rectify/dynamic_chart.h"
#include "screens/chart/chart_menu.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/rectify/rectify_support.h"

namespace vintar {

namespace {

QString TypeName(const Session& s, int type) {
  const auto& names = s.vocab.DynamicMethodName;
  return type >= 0 && type < static_cast<int>(names.size()) ? Q(names[type]) : QString::number(type);
}

QString DateOf(const Session& s, double jd) {
  float day = 0;
  int month = 1, year = 2000;
  RevJul(jd, day, month, year);
  return Q(FormatDate(s, static_cast<int>(day), month, year));
}

// The vocabulary's name of the aspect a * 30 degrees.
QString AspectOf(const Session& s, int a) {
  const auto& names = s.vocab.AspectName;
  const auto& angles = s.vocab.AspectAngle;
  for (size_t i = 1; i < names.size() && i < angles.size(); ++i)
    if (std::fabs(angles[i] - a * 30.0) < 1e-9) return Q(names[i]);
  return QString::number(a * 30);
}

QString StatusOf(int status) {
  switch (status) {
    case kHitWithinRange: return QStringLiteral("Within Range");
    case kHitWithinOrb: return QStringLiteral("Within Orb");
    default: return QString();
  }
}

}  // namespace

// ---------------------------------------------------------------- TranOpt

TranOpt::TranOpt(Workbench& wb, QWidget* parent, SearchState& state)
    : QDialog(parent), wb_(wb), state_(state), form_(OpenTranOpt(wb.session, state)) {
  setObjectName("TranOpt");
  setWindowTitle(QStringLiteral("Search Options"));
  const Session& s = wb.session;
  auto* layout = new QVBoxLayout(this);
  auto* top = new QFormLayout;
  dynType_ = new QComboBox(this);
  dynType_->setObjectName("cmbDynType");
  for (int t = kTransits; t <= kSolarArc; ++t) dynType_->addItem(TypeName(s, t));
  aspects_ = new QComboBox(this);
  aspects_->setObjectName("cmbAspects");
  for (const AspectSetChoice& choice : AspectSetChoices())
    aspects_->addItem(QString::fromLatin1(choice.Name), choice.Harmonic);
  top->addRow(tr("&Dynamic type:"), dynType_);
  top->addRow(tr("&Aspects:"), aspects_);
  layout->addLayout(top);

  auto pointBox = [&](const QString& title, const char* name, std::array<QCheckBox*, kPoints + 1>& boxes) {
    auto* box = new QGroupBox(title, this);
    auto* grid = new QGridLayout(box);
    for (int p = 1; p <= kPoints; ++p) {
      boxes[p] = new QCheckBox(PointLabel(s, p), box);
      boxes[p]->setObjectName(ArrayName(name, p));
      grid->addWidget(boxes[p], (p - 1) % 8, (p - 1) / 8);
    }
    return box;
  };
  auto* points = new QHBoxLayout;
  points->addWidget(pointBox(tr("Dynamic Points"), "Planet", planet_));
  points->addWidget(pointBox(tr("Natal Points"), "Planet2", planet2_));
  layout->addLayout(points);

  auto* dates = new QGridLayout;
  startDate_ = new QLineEdit(this);
  startDate_->setObjectName("StartDate");
  endDate_ = new QLineEdit(this);
  endDate_->setObjectName("EndDate");
  auto* startDefault = new QPushButton(tr("De&fault"), this);
  startDefault->setObjectName("StartDefault");
  auto* endDefault = new QPushButton(tr("Defa&ult"), this);
  endDefault->setObjectName("EndDefault");
  orb_ = new QLineEdit(this);
  orb_->setObjectName("txtOrb");
  auto label = [this](const QString& text, QWidget* buddy) {
    auto* l = new QLabel(text, this);
    l->setBuddy(buddy);
    return l;
  };
  dates->addWidget(label(tr("&Start date:"), startDate_), 0, 0);
  dates->addWidget(startDate_, 0, 1);
  dates->addWidget(startDefault, 0, 2);
  dates->addWidget(label(tr("&End date:"), endDate_), 1, 0);
  dates->addWidget(endDate_, 1, 1);
  dates->addWidget(endDefault, 1, 2);
  dates->addWidget(label(tr("&Orb for Hits:"), orb_), 2, 0);
  dates->addWidget(orb_, 2, 1);
  layout->addLayout(dates);

  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  box->button(QDialogButtonBox::Ok)->setObjectName("OKButton");
  box->button(QDialogButtonBox::Cancel)->setObjectName("CancelButton");
  auto* restore = box->addButton(tr("&Restore Defaults"), QDialogButtonBox::ResetRole);
  restore->setObjectName("btnRestore");
  auto* forAuto = box->addButton(tr("Save for Au&to Rectify"), QDialogButtonBox::ActionRole);
  forAuto->setObjectName("btnAuto");
  for (QPushButton* b : {restore, forAuto}) b->setAutoDefault(false);
  layout->addWidget(box);

  connect(box, &QDialogButtonBox::accepted, this, &TranOpt::accept);
  connect(box, &QDialogButtonBox::rejected, this, &TranOpt::reject);
  connect(restore, &QPushButton::clicked, this, &TranOpt::RestoreDefaults);
  connect(forAuto, &QPushButton::clicked, this, &TranOpt::SaveForAuto);
  connect(startDefault, &QPushButton::clicked, this,
          [this] { startDate_->setText(Q(DefaultSearchStart(wb_.session))); });
  connect(endDefault, &QPushButton::clicked, this, [this] { endDate_->setText(Q(DefaultSearchEnd(wb_.session))); });
  connect(dynType_, &QComboBox::activated, this, [this](int index) { SelectType(index); });
  connect(aspects_, &QComboBox::activated, this, &TranOpt::ChooseAspects);
  Load();
}

void TranOpt::Store() {
  DynOptions& record = form_.Records[form_.DynType];
  for (int p = 1; p <= kPoints; ++p) {
    record.DynamicPoints[p] = planet_[p]->isChecked() ? kTrue : kFalse;
    record.RadixPoints[p] = planet2_[p]->isChecked() ? kTrue : kFalse;
  }
  form_.StartDate = L(startDate_->text().trimmed());
  form_.EndDate = L(endDate_->text().trimmed());
  form_.Orb = L(orb_->text().trimmed());
}

void TranOpt::Load() {
  const DynOptions& record = form_.Records[form_.DynType];
  dynType_->setCurrentIndex(form_.DynType);
  for (int p = 1; p <= kPoints; ++p) {
    planet_[p]->setChecked(record.DynamicPoints[p] != 0);
    planet2_[p]->setChecked(record.RadixPoints[p] != 0);
  }
  aspects_->setCurrentIndex(aspects_->findData(AspectHarmonicOf(record)));
  startDate_->setText(Q(form_.StartDate));
  endDate_->setText(Q(form_.EndDate));
  orb_->setText(Q(form_.Orb));
}

bool TranOpt::SelectType(int dynamicType) {
  Store();
  const bool shown = TranOptSelectType(wb_.session, form_, dynamicType);
  Load();
  if (!shown) orb_->setFocus();
  return shown;
}

void TranOpt::ChooseAspects(int index) {
  if (index < 0) return;
  Store();
  ApplyAspectHarmonic(form_.Records[form_.DynType], aspects_->itemData(index).toInt());
  Load();
}

void TranOpt::RestoreDefaults() {
  Store();
  TranOptRestoreDefaults(wb_.session, form_);
  Load();
}

void TranOpt::SaveForAuto() {
  Store();
  TranOptSaveForAuto(wb_.session, form_);
  Load();
}

void TranOpt::accept() {
  Store();
  if (!TranOptAccept(wb_.session, form_, state_)) return;
  QDialog::accept();
}

// ---------------------------------------------------------------- TransitSearch

TransitSearch::TransitSearch(Workbench& wb, QWidget* parent, double trialHours) : QWidget(parent), wb_(wb) {
  setObjectName("TransitSearch");
  Session& s = wb.session;
  setWindowTitle(QStringLiteral("Dynamic Search: ") + Q(s.project.Header.Title));

  // The screen opens on the options of the search screen and the default
  // window; its options screen changes both.
  SearchState& state = wb.rect.search;
  LoadSearchScreenOptions(s, state.Options);
  state.StartDate = DefaultSearchStart(s);
  state.EndDate = DefaultSearchEnd(s);

  auto* layout = new QVBoxLayout(this);
  auto* top = new QHBoxLayout;
  chartTime_ = new QLineEdit(trialHours >= 0.0 ? HoursText(s, trialHours) : Q(DefaultTrialTime(s)), this);
  chartTime_->setObjectName("ChartTime");
  auto* timeLabel = new QLabel(tr("Chart &time:"), this);
  timeLabel->setBuddy(chartTime_);
  window_ = new QLabel(this);
  window_->setObjectName("lblWindow");
  top->addWidget(timeLabel);
  top->addWidget(chartTime_);
  top->addSpacing(12);
  top->addWidget(window_, 1);
  layout->addLayout(top);

  auto* lists = new QHBoxLayout;
  transits_ = new QTreeWidget(this);
  transits_->setObjectName("Transits");
  transits_->setHeaderLabels({tr("From"), tr("To"), tr("Moving"), tr("Aspect"), tr("Natal"), tr("Event")});
  transits_->setRootIsDecorated(false);
  transits_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  events_ = new QTreeWidget(this);
  events_->setObjectName("Events");
  events_->setHeaderLabels({tr("#"), tr("Date"), tr("Event")});
  events_->setRootIsDecorated(false);
  events_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  lists->addWidget(transits_, 3);
  lists->addWidget(events_, 2);
  layout->addLayout(lists, 1);
  connect(transits_, &QTreeWidget::itemSelectionChanged, this, &TransitSearch::HitChosen);
  connect(events_, &QTreeWidget::itemSelectionChanged, this, &TransitSearch::EventChosen);
  events_->setSelectionMode(QAbstractItemView::SingleSelection);
  transits_->setSelectionMode(QAbstractItemView::ExtendedSelection);

  auto* keyBox = new QGroupBox(tr("Hit"), this);
  keyBox->setObjectName("KeyBox");
  auto* keyLayout = new QFormLayout(keyBox);
  keywords_ = new QLabel(keyBox);
  keywords_->setObjectName("lblKeywords");
  keywords_->setWordWrap(true);
  age_ = new QLabel(keyBox);
  age_->setObjectName("lblAge");
  caption_ = new QLabel(keyBox);
  caption_->setObjectName("lblCaption");
  score_ = new QLabel(keyBox);
  score_->setObjectName("lblScore");
  keyLayout->addRow(QStringLiteral("Age"), age_);
  keyLayout->addRow(tr("Event"), caption_);
  keyLayout->addRow(tr("Keywords"), keywords_);
  keyLayout->addRow(tr("Score"), score_);
  layout->addWidget(keyBox);

  auto* row = new QHBoxLayout;
  auto button = [&](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    row->addWidget(b);
    return b;
  };
  auto* search = button("SearchButton", tr("&Search"));
  auto* redraw = button("ReDrawButton", tr("&Redraw"));
  auto* chart = button("ChartButton", tr("&Chart..."));
  auto* options = button("OptionButton", tr("&Options..."));
  auto* print = button("PrintButton", tr("&Print..."));
  row->addStretch();
  auto* close = button("QuitButton", tr("Cl&ose"));
  layout->addLayout(row);
  connect(search, &QPushButton::clicked, this, &TransitSearch::Search);
  connect(redraw, &QPushButton::clicked, this, &TransitSearch::Redraw);
  connect(chart, &QPushButton::clicked, this, &TransitSearch::OpenChart);
  connect(options, &QPushButton::clicked, this, &TransitSearch::OpenOptions);
  connect(print, &QPushButton::clicked, this, &TransitSearch::Print);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  connect(chartTime_, &QLineEdit::returnPressed, this, &TransitSearch::Search);

  // A list of an earlier search belongs to another chart: start empty.
  state.Hits.resize(1);
  state.HitOrder.resize(1);
  resize(900, 600);
  Redraw();
}

QString TransitSearch::ChartTime() const { return chartTime_->text(); }
void TransitSearch::SetChartTime(const QString& text) { chartTime_->setText(text); }
QString TransitSearch::ScoreText() const { return score_->text(); }

int TransitSearch::ShownHit(int row) const {
  QTreeWidgetItem* item = transits_->topLevelItem(row);
  return item ? item->data(0, Qt::UserRole).toInt() : 0;
}

void TransitSearch::ShowWindow() {
  const Session& s = wb_.session;
  const SearchState& state = wb_.rect.search;
  window_->setText(TypeName(s, state.DynamicType) + QStringLiteral(" from ") + Q(state.StartDate) +
                   QStringLiteral(" to ") + Q(state.EndDate));
}

bool TransitSearch::Search() {
  Session& s = wb_.session;
  SearchState& state = wb_.rect.search;
  const ProjectHeader& h = s.project.Header;
  const std::string time = L(chartTime_->text().trimmed());
  if (!CalcChart(s, 1, h.Date, time, h.ZoneTime, h.Longitude, h.Latitude, h.Name, h.Place)) {
    chartTime_->setFocus();
    return false;
  }
  bool ran;
  {
    BusyPointer busy;
    ProgressWindow progress(this, QStringLiteral("Dynamic Search"));
    progress.Caption("Searching " + s.vocab.DynamicMethodName[state.DynamicType]);
    ran = DynamicSearchNew(s, state, state.DynamicType, state.StartDate, state.EndDate, &progress);
    if (ran)
      for (int i = 1; i <= state.HitCount(); ++i) {
        DynamicHit& hit = state.Hits[i];
        ScoreHit(s, state, hit, NearestEvent(s, hit), true);
      }
  }
  if (!ran) TellEmptySearchWindow(s, state, state.StartDate, state.EndDate);
  Redraw();
  return ran;
}

void TransitSearch::Redraw() {
  ShowWindow();
  FillHits();
  FillEvents();
  const SearchState& state = wb_.rect.search;
  score_->setText(state.HitCount() > 0 ? Q(ScorePercent(SearchTotals(state).Ratio)) : QString());
}

void TransitSearch::FillHits() {
  const Session& s = wb_.session;
  const SearchState& state = wb_.rect.search;
  transits_->clear();
  for (int k = 1; k < static_cast<int>(state.HitOrder.size()); ++k) {
    const int n = state.HitOrder[k];
    if (n < 1 || n > state.HitCount()) continue;
    const DynamicHit& hit = state.Hits[n];
    QString event;
    if (hit.NearestEvent > 0 && hit.NearestEvent <= s.project.Header.RecordCount)
      event = QStringLiteral("#%1 ").arg(hit.NearestEvent) + Q(s.project.Events[hit.NearestEvent].Description);
    auto* item = new QTreeWidgetItem(transits_, {DateOf(s, hit.FirstDate), DateOf(s, hit.LastDate),
                                                 PointLabel(s, hit.DynamicPoint), AspectOf(s, hit.Aspect),
                                                 PointLabel(s, hit.RadixPoint), event});
    item->setData(0, Qt::UserRole, n);
    item->setToolTip(5, StatusOf(hit.Status));
  }
  keywords_->clear();
  age_->clear();
  caption_->clear();
}

void TransitSearch::FillEvents() {
  const Session& s = wb_.session;
  events_->clear();
  for (int i = 1; i <= s.project.Header.RecordCount; ++i) {
    const EventRecord& r = s.project.Events[i];
    auto* item = new QTreeWidgetItem(events_, {QString::number(i), Q(FormatDate(s, r.Day, r.Month, r.Year)),
                                               Q(r.Description)});
    item->setData(0, Qt::UserRole, i);
    if (!r.Enabled) item->setForeground(2, palette().brush(QPalette::Disabled, QPalette::Text));
  }
}

void TransitSearch::HitChosen() {
  if (pairing_) return;
  const QList<QTreeWidgetItem*> chosen = transits_->selectedItems();
  if (chosen.isEmpty()) return;
  QTreeWidgetItem* item = chosen.front();
  Session& s = wb_.session;
  SearchState& state = wb_.rect.search;
  const int n = item->data(0, Qt::UserRole).toInt();
  if (n < 1 || n > state.HitCount()) return;
  DynamicHit& hit = state.Hits[n];
  const HitScoreText text = ScoreHit(s, state, hit, NearestEvent(s, hit), false);
  age_->setText(Q(text.Age));
  caption_->setText(Q(text.Caption));
  ChartAspect aspect;
  aspect.Moving = hit.DynamicPoint;
  aspect.Radix = hit.RadixPoint;
  aspect.Angle = std::abs(hit.Aspect) * 30.0;
  QStringList lines;
  for (const std::string& line : HitKeywordLines(s, LoadKeywords(s), aspect)) lines << Q(line);
  keywords_->setText(lines.join(QLatin1Char('\n')));

  pairing_ = true;
  events_->clearSelection();
  if (hit.NearestEvent > 0)
    if (QTreeWidgetItem* event = events_->topLevelItem(hit.NearestEvent - 1)) {
      event->setSelected(true);
      events_->scrollToItem(event);
    }
  pairing_ = false;
}

void TransitSearch::EventChosen() {
  if (pairing_) return;
  const QList<QTreeWidgetItem*> chosen = events_->selectedItems();
  if (chosen.isEmpty()) return;
  QTreeWidgetItem* item = chosen.front();
  const std::vector<int> hits = HitsOfEvent(wb_.rect.search, item->data(0, Qt::UserRole).toInt());
  pairing_ = true;
  transits_->clearSelection();
  for (int row = 0; row < transits_->topLevelItemCount(); ++row) {
    QTreeWidgetItem* hit = transits_->topLevelItem(row);
    if (std::find(hits.begin(), hits.end(), hit->data(0, Qt::UserRole).toInt()) == hits.end()) continue;
    hit->setSelected(true);
    transits_->scrollToItem(hit);
  }
  pairing_ = false;
}

void TransitSearch::OpenChart() {
  Session& s = wb_.session;
  int16_t hours = 0, minutes = 0, seconds = 0;
  bool failed = false;
  ParseTime(s, L(chartTime_->text().trimmed()), hours, minutes, seconds, true, failed);
  if (failed) return;
  ShowDynamicChart(wb_, parentWidget(), hours + minutes / 60.0 + seconds / 3600.0);
}

void TransitSearch::OpenOptions() {
  TranOpt dialog(wb_, this, wb_.rect.search);
  if (dialog.exec() == QDialog::Accepted) ShowWindow();
}

void TransitSearch::Print() {
  Session& s = wb_.session;
  const Rectification& rect = wb_.rect;
  const std::string time = L(chartTime_->text().trimmed());
  RunPrintGraph(wb_, this, Q(kTransitsPrintTitle),
                [&s, &rect, time](ReportDocument& doc, const ReportOptions& options) {
                  ReportOptions o = options;
                  o.ChartTime = time;
                  DynamicSearchReport(doc, s, rect, o);
                });
}

}  // namespace vintar
