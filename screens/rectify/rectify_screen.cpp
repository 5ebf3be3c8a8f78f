#include "screens/rectify/rectify_screen.h"

#include <QCloseEvent>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "core/project_ops.h"
#include "output/event_graph.h"
#include "output/rectify_reports.h"
#include "screens/common/drawing_view.h"
#include "screens/common/qt_text.h"
#include "screens/common/report_preview.h"
#include "screens/rectify/angle_search.h"
#include "screens/rectify/graph_options.h"
#include "screens/rectify/rectify_support.h"
#include "screens/rectify/val_rep.h"

namespace vintar {

Rectify::Rectify(Workbench& wb, QWidget* parent) : QWidget(parent), wb_(wb) {
  setObjectName("Rectify");
  setWindowTitle(Q(RectifyCaption(wb.session)));
  auto* layout = new QVBoxLayout(this);
  heading_ = new QLabel(this);
  heading_->setObjectName("lblTitle");
  layout->addWidget(heading_);

  Session& s = wb.session;
  for (int g = 1; g <= kShownGraphs; ++g) {
    auto* view = new DrawingView(this, &s);
    view->setObjectName(ArrayName("GraphView", g));
    view->SetPreferredSize(QSizeF(720, 190));
    view->SetSaveName(QStringLiteral("graph%1.png").arg(g));
    view->setMouseTracking(true);
    view->SetPaint([this, g](QPainter& painter, const QRectF& area) {
      PaintEventGraph(painter, area, wb_.session, wb_.rect, g);
    });
    connect(view, &DrawingView::clicked, this, [this, g](QPointF point, QRectF) { Clicked(g, point); });
    connect(view, &DrawingView::hovered, this, [this, g](QPointF point, QRectF) { Hovered(g, point); });
    views_[g] = view;
    layout->addWidget(view, 1);
  }
  readout_ = new QLabel(this);
  readout_->setObjectName("lblReadout");
  readout_->setMinimumWidth(260);

  auto* row = new QHBoxLayout;
  auto button = [&](const char* name, const QString& caption, void (Rectify::*slot)()) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    row->addWidget(b);
    connect(b, &QPushButton::clicked, this, slot);
    return b;
  };
  auto* events = new QPushButton(tr("&Events..."), this);
  events->setObjectName("EventsButton");
  row->addWidget(events);
  connect(events, &QPushButton::clicked, this, [this] { OpenEventsEditor(wb_, this); });
  button("HarmButton", tr("&Harmonics..."), &Rectify::OpenHarmonics);
  button("PlanetButton", tr("&Planets..."), &Rectify::OpenPlanets);
  button("ViabButton", tr("&Viability..."), &Rectify::OpenViability);
  button("ClearButton", tr("C&lear Peaks"), &Rectify::ClearPeaks);
  recalc_ = new QPushButton(tr("Re&calculate"), this);
  recalc_->setObjectName("RecalcButton");
  row->addWidget(recalc_);
  connect(recalc_, &QPushButton::clicked, this, [this] { Rebuild(); });
  button("PrintButton", tr("P&rint..."), &Rectify::Print);
  row->addStretch();
  row->addWidget(readout_);
  auto* select = button("SelectButton", tr("&Angle Search..."), &Rectify::OpenAngleSearch);
  select->setDefault(true);
  layout->addLayout(row);
  resize(820, 720);
  Redraw();
}

bool Rectify::Rebuild() {
  if (building_) return false;
  building_ = true;
  const bool built = BuildShownGraphs(wb_, this);
  building_ = false;
  declined_ = !built;
  Redraw();
  return built;
}

void Rectify::Redraw() {
  const Session& s = wb_.session;
  heading_->setText(Q(RectifyScreenTitle(s)));
  setWindowTitle(Q(RectifyCaption(s)));
  const bool stale = s.cache.NeedsGraphRecalc != 0;
  for (int g = 1; g <= kShownGraphs; ++g) views_[g]->update();
  recalc_->setEnabled(stale);
}

QString Rectify::Readout() const { return readout_->text(); }

int Rectify::BarAt(int graph, QPointF point) const {
  if (graph < 1 || graph > kShownGraphs) return -1;
  return EventGraphBarAt(QRectF(views_[graph]->rect()), point) - 1;
}

void Rectify::SetPeakBar(int graph, int bar, bool flagged) {
  if (graph < 1 || graph > kShownGraphs || bar < 0 || bar >= kBars) return;
  wb_.rect.graphs.Graph[graph].PeakFlags[bar] = flagged ? kTrue : kFalse;
  views_[graph]->update();
}

void Rectify::Clicked(int graph, QPointF point) {
  const int bar = BarAt(graph, point);
  if (bar < 0 || wb_.session.cache.NeedsGraphRecalc) return;
  dragValue_ = !wb_.rect.graphs.Graph[graph].PeakFlags[bar];
  SetPeakBar(graph, bar, dragValue_);
  readout_->setText(Q(GraphReadout(wb_.rect.graphs, graph, bar)));
}

void Rectify::Hovered(int graph, QPointF point) {
  const int bar = BarAt(graph, point);
  if (bar < 0 || wb_.session.cache.NeedsGraphRecalc) {
    readout_->clear();
    return;
  }
  if (QGuiApplication::mouseButtons() & Qt::LeftButton) SetPeakBar(graph, bar, dragValue_);
  readout_->setText(Q(GraphReadout(wb_.rect.graphs, graph, bar)));
}

void Rectify::OpenHarmonics() {
  SelHarms dialog(wb_, this);
  if (dialog.exec() != QDialog::Accepted) return;
  Rebuild();
}

void Rectify::OpenPlanets() {
  RectOpt dialog(wb_, this, Q(kSelectPlanetsTitle));
  if (dialog.exec() != QDialog::Accepted) return;
  Rebuild();
}

void Rectify::OpenViability() {
  ValRep dialog(wb_, this);
  dialog.exec();
  Redraw();
}

void Rectify::OpenAngleSearch() {
  if (wb_.session.cache.NeedsGraphRecalc && !Rebuild()) return;
  ShowToolWindow(new AngleSearch(wb_, parentWidget()), &wb_.session);
}

void Rectify::ClearPeaks() {
  for (int g = 1; g <= kShownGraphs; ++g) ClearPeakFlags(wb_.rect.graphs, g);
  Redraw();
}

void Rectify::Print() {
  Session& s = wb_.session;
  const Rectification& rect = wb_.rect;
  RunPrintGraph(wb_, this, QStringLiteral("Print Rectification Graphs"),
                [&s, &rect](ReportDocument& doc, const ReportOptions& options) {
                  RectificationGraphsReport(doc, s, rect, options);
                });
}

bool Rectify::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate) {
    if (wb_.session.cache.NeedsGraphRecalc && !declined_ && !building_)
      QTimer::singleShot(0, this, [this] {
        if (wb_.session.cache.NeedsGraphRecalc && !declined_ && !building_) Rebuild();
      });
    else
      Redraw();
  }
  return QWidget::event(event);
}

void Rectify::closeEvent(QCloseEvent* event) {
  SaveGraphSettingsOnClose(wb_.session, wb_.rect.graphs);
  QWidget::closeEvent(event);
}

}  // namespace vintar
