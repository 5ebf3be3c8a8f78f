#include "screens/rectify/rectify_support.h"


#include "calc/astro.h"
#include "core/parse.h"
#include "rectify/auto_rectify.h"
#include "screens/common/progress_window.h"
#include "screens/common/qt_text.h"
#include "screens/rectify/rectify_menu.h"

namespace vintar {

QString ArrayName(const char* name, int index) { return QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index); }

void LoadProjectGraphSettings(Workbench& wb) { LoadGraphSettings(wb.session, wb.rect.graphs); }

bool BuildShownGraphs(Workbench& wb, QWidget* parent) {
  BusyPointer busy;
  ProgressWindow progress(parent, QStringLiteral("Calculating Harmonic Graphs"));
  bool cancelled = false;
  BuildGraphs(wb.session, wb.rect.graphs, cancelled, &progress);
  // Sorting the events changes the project.
  if (wb.session.project.Status.DataChanged) wb.Changed();
  return !cancelled;
}

bool EnsureGraphsBuilt(Workbench& wb, QWidget* parent) {
  if (!wb.session.cache.NeedsGraphRecalc) return true;
  return BuildShownGraphs(wb, parent);
}

QString PointLabel(const Session& session, int point) {
  const auto& names = session.vocab.PointName;
  return point >= 0 && point < static_cast<int>(names.size()) ? Q(names[point]) : QString::number(point);
}

QString HoursText(const Session& session, double hours) { return Q(AutoTimeText(session, hours)); }

QString LongitudeRange(const Session& session, const AngleResult::Range& range) {
  return Q(ZodiacPosition(session, range[kLow], false) + " to " + ZodiacPosition(session, range[kHigh], false));
}

void OpenEventsEditor(Workbench& wb, QWidget* parent) {
  if (wb.editEvents) wb.editEvents(wb, parent);
}

}  // namespace vintar
