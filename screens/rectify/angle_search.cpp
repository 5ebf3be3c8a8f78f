#include "screens/rectify/angle_search.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "core/text.h"
#include "output/rectify_reports.h"
#include "rectify/auto_rectify.h"
#include "screens/chart/chart_menu.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/rectify/peak_options.h"
#include "screens/rectify/rect_stat.h"
#include "screens/rectify/rectify_support.h"
#include "screens/rectify/transit_search.h"

namespace vintar {

namespace {

constexpr std::pair<int, int> kPairs[] = {{1, 2}, {1, 3}, {2, 3}};

QString Degrees(float value) { return QString::number(static_cast<double>(value), 'f', 2); }

}  // namespace

AngleSearch::AngleSearch(Workbench& wb, QWidget* parent) : QWidget(parent), wb_(wb) {
  setObjectName("AngleSearch");
  const Session& s = wb.session;
  const ProjectHeader& h = s.project.Header;
  setWindowTitle(Q(AngleSearchHeading(s)));
  auto* layout = new QVBoxLayout(this);
  heading_ = new QLabel(this);
  heading_->setObjectName("lblHeading");
  header_ = new QLabel(this);
  header_->setObjectName("lblHeader");
  layout->addWidget(heading_);
  layout->addWidget(header_);

  auto* limits = new QHBoxLayout;
  from_ = new QLineEdit(Q(h.EarliestTime), this);
  from_->setObjectName("From");
  to_ = new QLineEdit(Q(h.LatestTime), this);
  to_->setObjectName("To");
  pair_ = new QComboBox(this);
  pair_->setObjectName("cmbPair");
  for (const auto& [a, b] : kPairs) pair_->addItem(tr("Graphs %1 and %2").arg(a).arg(b));
  auto* fromLabel = new QLabel(tr("Time &from:"), this);
  fromLabel->setBuddy(from_);
  auto* toLabel = new QLabel(tr("&to:"), this);
  toLabel->setBuddy(to_);
  auto* pairLabel = new QLabel(tr("Co&mbine:"), this);
  pairLabel->setBuddy(pair_);
  limits->addWidget(fromLabel);
  limits->addWidget(from_);
  limits->addWidget(toLabel);
  limits->addWidget(to_);
  limits->addSpacing(12);
  limits->addWidget(pairLabel);
  limits->addWidget(pair_);
  limits->addStretch();
  layout->addLayout(limits);

  peaks_ = new QTreeWidget(this);
  peaks_->setObjectName("PeakList");
  peaks_->setHeaderLabels({tr("Peaks"), tr("Start"), tr("End"), tr("Area"), tr("Source")});
  peaks_->setRootIsDecorated(true);
  peaks_->setMaximumHeight(180);
  layout->addWidget(peaks_);

  angles_ = new QTreeWidget(this);
  angles_->setObjectName("AngleList");
  angles_->setHeaderLabels({tr("Time"), tr("Ascendant"), tr("Midheaven")});
  angles_->setRootIsDecorated(false);
  angles_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  angles_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  layout->addWidget(angles_, 1);
  connect(angles_, &QTreeWidget::itemSelectionChanged, this, &AngleSearch::SelectionChanged);
  connect(angles_, &QTreeWidget::itemDoubleClicked, this, &AngleSearch::OpenChart);

  auto* sortBox = new QGroupBox(tr("Sort by"), this);
  auto* sortRow = new QHBoxLayout(sortBox);
  optionAsc_ = new QRadioButton(tr("A&scendant"), sortBox);
  optionAsc_->setObjectName("OptionAsc");
  optionMC_ = new QRadioButton(tr("&MC"), sortBox);
  optionMC_->setObjectName("OptionMC");
  optionTime_ = new QRadioButton(tr("T&ime"), sortBox);
  optionTime_->setObjectName("OptionTime");
  optionTime_->setChecked(true);
  for (QRadioButton* option : {optionTime_, optionAsc_, optionMC_}) {
    sortRow->addWidget(option);
    connect(option, &QRadioButton::toggled, this, [this](bool on) {
      if (!on) return;
      Sort();
      FillCandidates();
    });
  }
  sortRow->addStretch();
  layout->addWidget(sortBox);

  auto* buttons = new QGridLayout;
  int column = 0, line = 0;
  auto button = [&](const char* name, const QString& caption, void (AngleSearch::*slot)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    buttons->addWidget(b, line, column);
    if (++column == 5) {
      column = 0;
      ++line;
    }
    connect(b, &QPushButton::clicked, this, slot);
    return b;
  };
  auto* scan = button("ScanButton", tr("&Scan"), &AngleSearch::Scan);
  button("AutoSelButton", tr("A&uto Peaks"), &AngleSearch::AutoSelect);
  button("btnOptions", tr("Peak &Options..."), &AngleSearch::PeakOptions);
  del_ = button("DelButton", tr("&Delete"), &AngleSearch::DeleteSelected);
  button("ClearButton", tr("C&lear"), &AngleSearch::ClearList);
  chart_ = button("ChartButton", tr("&Chart..."), &AngleSearch::OpenChart);
  transit_ = button("TransitButton", tr("&Transits..."), &AngleSearch::OpenTransits);
  button("btnAutoRect", tr("Auto &Rectify..."), &AngleSearch::OpenAutoRectify);
  button("PrintButton", tr("&Print..."), &AngleSearch::Print);
  auto* close = new QPushButton(tr("Cl&ose"), this);
  close->setObjectName("QuitButton");
  close->setAutoDefault(false);
  buttons->addWidget(close, line, column);
  connect(close, &QPushButton::clicked, this, &QWidget::close);
  layout->addLayout(buttons);
  scan->setDefault(true);
  connect(from_, &QLineEdit::returnPressed, this, &AngleSearch::Scan);
  connect(to_, &QLineEdit::returnPressed, this, &AngleSearch::Scan);

  resize(720, 640);
  Refresh();
}

std::pair<int, int> AngleSearch::Pair() const {
  return kPairs[std::clamp(pair_->currentIndex(), 0, static_cast<int>(std::size(kPairs)) - 1)];
}

void AngleSearch::Refresh() {
  const Session& s = wb_.session;
  heading_->setText(Q(AngleSearchHeading(s)));
  QStringList lines;
  for (const std::string& line : AngleSearchHeader(s, wb_.rect.graphs)) lines << Q(line);
  header_->setText(lines.join(QLatin1Char('\n')));
  for (int g = 1; g <= kShownGraphs; ++g) ReadPeaks(wb_.rect.graphs, g, lists_[g]);
  FillPeaks();
  FillCandidates();
}

void AngleSearch::FillPeaks() {
  peaks_->clear();
  auto add = [this](const QString& title, const PeakList& list) {
    auto* top = new QTreeWidgetItem(peaks_, {title});
    for (int i = 1; i <= list.Count(); ++i) {
      const PeakRow& r = list.Rows[i];
      QString source;
      if (list.HasSource) source = r.Source == 0.0f ? tr("common") : tr("graph list %1").arg(int(r.Source));
      new QTreeWidgetItem(top, {QString(), Degrees(r.Start), Degrees(r.End), QString::number(r.Area, 'f', 3), source});
    }
    top->setExpanded(true);
  };
  for (int g = 1; g <= kShownGraphs; ++g) add(QStringLiteral("Peaks for Graph %1").arg(g), lists_[g]);
  add(QStringLiteral("Combined Peaks..."), wb_.rect.peaks.Common);
  for (int c = 0; c < peaks_->columnCount(); ++c) peaks_->resizeColumnToContents(c);
}

void AngleSearch::FillCandidates() {
  const Session& s = wb_.session;
  const AngleResult& r = wb_.rect.peaks.Results;
  angles_->clear();
  for (int c = 1; c <= r.Count; ++c) {
    auto* item = new QTreeWidgetItem(angles_, {HoursText(s, r.ResultTime[c][kLow]) + " to " +
                                                   HoursText(s, r.ResultTime[c][kHigh]),
                                               LongitudeRange(s, r.ResultAsc[c]), LongitudeRange(s, r.ResultMC[c])});
    item->setData(0, Qt::UserRole, c);
  }
  if (r.Count > 0) angles_->setCurrentItem(angles_->topLevelItem(0));
  SelectionChanged();
}

void AngleSearch::Sort() {
  const AngleSortKey key = optionAsc_->isChecked()  ? AngleSortKey::Asc
                           : optionMC_->isChecked() ? AngleSortKey::MC
                                                    : AngleSortKey::Time;
  SortAngleResults(wb_.rect.peaks.Results, key);
}

void AngleSearch::SelectionChanged() {
  const bool chosen = !SelectedCandidates().empty();
  del_->setEnabled(chosen);
  chart_->setEnabled(chosen);
  transit_->setEnabled(chosen);
}

std::vector<int> AngleSearch::SelectedCandidates() const {
  std::vector<int> rows;
  for (QTreeWidgetItem* item : angles_->selectedItems()) rows.push_back(item->data(0, Qt::UserRole).toInt());
  std::sort(rows.begin(), rows.end());
  return rows;
}

double AngleSearch::CandidateTime(int candidate) const {
  const AngleResult& r = wb_.rect.peaks.Results;
  if (candidate < 1 || candidate > r.Count) return -1.0;
  return CircularMid(24.0, r.ResultTime[candidate][kLow], r.ResultTime[candidate][kHigh]);
}

void AngleSearch::Scan() {
  Session& s = wb_.session;
  if (!EnsureGraphsBuilt(wb_, this)) return;
  Rectification& rect = wb_.rect;
  const auto [a, b] = Pair();
  int harmonic = 0;
  topPeaks_ = CombineGraphPeaks(s, rect.graphs, a, b, lists_, rect.peaks.Common, harmonic);
  rect.peaks.CommonHarmonic = static_cast<int16_t>(harmonic);
  {
    BusyPointer busy;
    ProgressWindow progress(this, QStringLiteral("Angle Search"));
    progress.Caption("Searching For Angles...");
    SearchAngles(s, rect.graphs, 0, harmonic, rect.peaks.Common, L(from_->text().trimmed()),
                 L(to_->text().trimmed()), rect.peaks.Results, false, &progress);
  }
  Sort();
  FillPeaks();
  FillCandidates();
}

void AngleSearch::DeleteSelected() {
  DeleteAngleResults(wb_.rect.peaks.Results, SelectedCandidates());
  FillCandidates();
}

void AngleSearch::ClearList() {
  wb_.rect.peaks.Results.Clear();
  FillCandidates();
}

void AngleSearch::AutoSelect() {
  if (!EnsureGraphsBuilt(wb_, this)) return;
  AutoSelectAllGraphs(wb_.session, wb_.rect.graphs);
  Refresh();
}

void AngleSearch::PeakOptions() {
  PeakOpt dialog(wb_, this);
  dialog.exec();
}

void AngleSearch::OpenChart() {
  const std::vector<int> rows = SelectedCandidates();
  if (rows.empty()) return;
  ShowDynamicChart(wb_, parentWidget(), CandidateTime(rows.front()));
}

void AngleSearch::OpenTransits() {
  const std::vector<int> rows = SelectedCandidates();
  if (rows.empty()) return;
  ShowToolWindow(new TransitSearch(wb_, parentWidget(), CandidateTime(rows.front())), &wb_.session);
}

void AngleSearch::OpenAutoRectify() {
  // With candidates in the list Auto Rectify scores those; otherwise it
  // starts from the events.
  const int mode = wb_.rect.peaks.Results.Count > 0 ? kAutoFromCandidates : kAutoFromEvents;
  auto* screen = new RectStat(wb_, parentWidget());
  ShowToolWindow(screen, &wb_.session);
  screen->Start(mode);
}

void AngleSearch::Print() {
  Session& s = wb_.session;
  const Rectification& rect = wb_.rect;
  const std::string from = L(from_->text().trimmed()), to = L(to_->text().trimmed());
  RunPrintGraph(wb_, this, Q(kAnglesPrintTitle),
                [&s, &rect, from, to](ReportDocument& doc, const ReportOptions& options) {
                  ReportOptions o = options;
                  o.TimeFrom = from;
                  o.TimeTo = to;
                  AngleSearchReport(doc, s, rect, o);
                });
}

}  // namespace vintar
