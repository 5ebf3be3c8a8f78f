#include "screens/rectify/rect_stat.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "output/rectify_reports.h"
#include "screens/chart/chart_menu.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/rectify/rectify_support.h"
#include "screens/rectify/transit_search.h"

namespace vintar {

// Hands the run's status lines to the screen as well as to the progress
// window, whose Stop button ends the run.
class StatusMirror : public Progress {
 public:
  StatusMirror(RectStat& screen, ProgressWindow& window) : screen_(screen), window_(window) {}
  void Caption(const std::string& text) override { window_.Caption(text); }
  void Status(const std::string& text) override {
    screen_.ShowStatus(text);
    window_.Status(text);
  }
  void Fraction(double done) override { window_.Fraction(done); }
  bool Cancelled() override { return window_.Cancelled(); }

 private:
  RectStat& screen_;
  ProgressWindow& window_;
};

namespace {

QString Percent(float ratio) { return Q(ScorePercent(ratio)); }

}  // namespace

RectStat::RectStat(Workbench& wb, QWidget* parent) : QWidget(parent), wb_(wb) {
  setObjectName("RectStat");
  setWindowTitle(QStringLiteral("Auto Rectify"));
  auto* layout = new QVBoxLayout(this);
  status_ = new QLabel(this);
  status_->setObjectName("lblStatus");
  status_->setWordWrap(true);
  status_->setMinimumHeight(status_->fontMetrics().height() * 2);
  layout->addWidget(status_);

  results_ = new QTreeWidget(this);
  results_->setObjectName("lstResults");
  results_->setHeaderLabels({QStringLiteral("Time"), QStringLiteral("+/- min"), QStringLiteral("Ascendant"),
                             QStringLiteral("Midheaven"), QStringLiteral("Transits"), QStringLiteral("Sec.Progs"),
                             QStringLiteral("Solar Arcs"), QStringLiteral("OverAll")});
  results_->setRootIsDecorated(false);
  results_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  layout->addWidget(results_, 1);

  auto* row = new QHBoxLayout;
  auto button = [&](const char* name, const QString& caption) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    row->addWidget(b);
    return b;
  };
  chart_ = button("btnChart", tr("&Chart..."));
  transits_ = button("btnTransits", tr("&Transits..."));
  print_ = button("btnPrint", tr("&Print..."));
  row->addStretch();
  stop_ = button("btnStop", tr("&Stop"));
  layout->addLayout(row);
  connect(chart_, &QPushButton::clicked, this, &RectStat::OpenChart);
  connect(transits_, &QPushButton::clicked, this, &RectStat::OpenTransits);
  connect(print_, &QPushButton::clicked, this, &RectStat::Print);
  connect(stop_, &QPushButton::clicked, this, &RectStat::Stop);
  connect(results_, &QTreeWidget::itemDoubleClicked, this, &RectStat::OpenChart);
  resize(860, 420);
  Fill();
}

void RectStat::Start(int mode) {
  QTimer::singleShot(0, this, [this, mode] { Run(mode); });
}

void RectStat::Run(int mode) {
  if (running_) return;
  running_ = true;
  stop_->setText(tr("&Stop"));
  Session& s = wb_.session;
  // The run works on a copy of the rectification state and takes back what
  // it made for the other screens (the working graphs, their peaks and the
  // candidates), so that the graphs shown and the search screen's options
  // stay as the user set them.
  Rectification work = wb_.rect;
  {
    BusyPointer busy;
    ProgressWindow window(this, QStringLiteral("Auto Rectify"), QStringLiteral("&Stop"));
    progress_ = &window;
    StatusMirror mirror(*this, window);
    window.Caption("Auto Rectify");
    result_ = RunAutoRectify(s, work, mode, &mirror);
    progress_ = nullptr;
  }
  GraphState& graphs = wb_.rect.graphs;
  for (int g = 4; g <= kGraphRecords; ++g) {
    graphs.Graph[g] = work.graphs.Graph[g];
    for (int c = kGeocentric; c <= kHeliocentric; ++c) graphs.Selection[c][g] = work.graphs.Selection[c][g];
  }
  wb_.rect.peaks = work.peaks;
  // Sorting the events (the question of the graph stage) changes the project.
  if (s.project.Status.DataChanged) wb_.Changed();
  running_ = false;
  ShowStatus(result_.Status);
  stop_->setText(Q(kAutoQuitCaption));
  Fill();
}

void RectStat::ShowStatus(const std::string& text) { status_->setText(Q(text)); }

QString RectStat::StatusText() const { return status_->text(); }

void RectStat::Fill() {
  const Session& s = wb_.session;
  results_->clear();
  for (const AutoRectifyRow& r : result_.Rows) {
    auto* item = new QTreeWidgetItem(
        results_, {Q(r.TimeText), QString::number(r.PlusMinusMinutes), LongitudeRange(s, r.Asc),
                   LongitudeRange(s, r.MC), Percent(r.Transits), Percent(r.Progressions), Percent(r.SolarArcs),
                   Percent(r.Overall)});
    item->setData(0, Qt::UserRole, r.Time);
    for (int c = 4; c <= 7; ++c) item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
  }
  if (!result_.Rows.empty()) results_->setCurrentItem(results_->topLevelItem(0));
  const bool rows = !result_.Rows.empty() && !running_;
  chart_->setEnabled(rows);
  transits_->setEnabled(rows);
  print_->setEnabled(rows);
}

double RectStat::SelectedTime() const {
  QTreeWidgetItem* item = results_->currentItem();
  return item ? item->data(0, Qt::UserRole).toDouble() : -1.0;
}

void RectStat::Stop() {
  if (running_) {
    if (progress_) progress_->RequestCancel();
    return;
  }
  close();
}

void RectStat::OpenChart() {
  const double time = SelectedTime();
  if (time >= 0.0) ShowDynamicChart(wb_, parentWidget(), time);
}

void RectStat::OpenTransits() {
  const double time = SelectedTime();
  if (time >= 0.0) ShowToolWindow(new TransitSearch(wb_, parentWidget(), time), &wb_.session);
}

void RectStat::Print() {
  Session& s = wb_.session;
  const AutoRectifyResult& result = result_;
  RunPrintGraph(wb_, this, Q(kAutoPrintTitle), [&s, &result](ReportDocument& doc, const ReportOptions& options) {
    AutoRectifyReport(doc, s, result, options);
  });
}

}  // namespace vintar
