#include "screens/rectify/rectify_menu.h"

#include <QTreeWidget>

#include "core/project_file.h"
#include "rectify/auto_rectify.h"
#include "rectify/viability.h"
#include "screens/rectify/angle_search.h"
#include "screens/rectify/graph_options.h"
#include "screens/rectify/peak_options.h"
#include "screens/rectify/rect_stat.h"
#include "screens/rectify/rectify_screen.h"
#include "screens/rectify/rectify_support.h"
#include "screens/rectify/transit_search.h"
#include "screens/rectify/val_rep.h"

namespace vintar {

namespace {

// What every command of the menu asks first: an open project that is not
// too large, with natal details to cast its charts from.
bool ReadyToRectify(Workbench& wb) {
  Session& s = wb.session;
  return s.project.Open && !ProjectTooLarge(s) && CheckNatalForRectify(s);
}

void OpenGraphs(Workbench& wb, QWidget* parent) {
  LoadProjectGraphSettings(wb);
  MarkGraphsStale(wb.session);
  auto* screen = new Rectify(wb, parent);
  ShowToolWindow(screen, &wb.session);
}

}  // namespace

void ShowViability(Workbench& wb, QWidget* parent) {
  if (!wb.session.project.Open) return;
  ShowToolWindow(new ValRep(wb, parent), &wb.session);
}

void ShowRectify(Workbench& wb, QWidget* parent) {
  if (!ReadyToRectify(wb)) return;
  // The viability report stands in front of the graphs while it warns.
  std::string text;
  bool problems = false;
  ViabilityReport(wb.session, text, problems);
  if (!problems) {
    OpenGraphs(wb, parent);
    return;
  }
  auto* report = new ValRep(wb, parent, /*beforeGraphs=*/true);
  QObject::connect(report, &ValRep::continued, report, [&wb, parent] { OpenGraphs(wb, parent); });
  ShowToolWindow(report, &wb.session);
}

void ShowAngleSearch(Workbench& wb, QWidget* parent) {
  if (!ReadyToRectify(wb)) return;
  LoadProjectGraphSettings(wb);
  MarkGraphsStale(wb.session);
  if (!BuildShownGraphs(wb, parent)) return;
  ShowToolWindow(new AngleSearch(wb, parent), &wb.session);
}

void ShowTransitSearch(Workbench& wb, QWidget* parent) {
  if (!ReadyToRectify(wb)) return;
  ShowToolWindow(new TransitSearch(wb, parent), &wb.session);
}

void ShowAutoRectify(Workbench& wb, QWidget* parent) {
  if (!ReadyToRectify(wb)) return;
  auto* screen = new RectStat(wb, parent);
  ShowToolWindow(screen, &wb.session);
  screen->Start(kAutoFromEvents);
}

void ScreenshotTourRectify(Workbench& wb, QWidget* parent,
                           const std::function<void(QWidget*, const QString&)>& shoot) {
  Session& s = wb.session;
  if (!s.project.Open || !NatalCheck(s, s.project.Header)) return;
  // The tour leaves the rectification state as it found it.
  const Rectification before = wb.rect;

  {
    ValRep report(wb, parent);
    SettleTourWindow(&report);
    shoot(&report, "viability-report");
  }
  LoadProjectGraphSettings(wb);
  {
    Rectify graphs(wb, parent);
    graphs.Rebuild();
    AutoSelectAllGraphs(s, wb.rect.graphs);
    graphs.Redraw();
    SettleTourWindow(&graphs);
    shoot(&graphs, "event-graphs");

    RectOpt options(wb, &graphs, QString::fromLatin1(kSelectPlanetsTitle));
    SettleTourWindow(&options);
    shoot(&options, "graph-options");
    SelHarms harmonics(wb, &graphs);
    SettleTourWindow(&harmonics);
    shoot(&harmonics, "harmonics");
    PeakOpt peaks(wb, &graphs);
    SettleTourWindow(&peaks);
    shoot(&peaks, "peak-options");
  }
  double candidate = -1.0;
  {
    AngleSearch angles(wb, parent);
    angles.Scan();
    SettleTourWindow(&angles);
    shoot(&angles, "angle-search");
    candidate = angles.CandidateTime(1);
  }
  {
    TransitSearch search(wb, parent, candidate);
    search.Search();
    SettleTourWindow(&search);
    shoot(&search, "transit-search");
    TranOpt options(wb, &search, wb.rect.search);
    SettleTourWindow(&options);
    shoot(&options, "search-options");
  }
  {
    RectStat autoRectify(wb, parent);
    autoRectify.Run(kAutoFromEvents);
    SettleTourWindow(&autoRectify);
    shoot(&autoRectify, "auto-rectify");
  }
  wb.rect = before;
  MarkGraphsStale(s);
}

}  // namespace vintar
