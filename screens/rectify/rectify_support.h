// What the rectification screens share: building the three event graphs
// with a progress window, the texts of points and ranges, the way to the
// event editor, and a name for the parts of a control array.
#pragma once

#include <QString>
#include <QWidget>

#include "rectify/rectification.h"
#include "screens/common/tool_window.h"
#include "screens/common/workbench.h"

class QAbstractButton;

namespace vintar {

// The object name of member `index` of a control array: "Planet_5".
QString ArrayName(const char* name, int index);

// Loads the project's graph settings (".pla", or the defaults).
void LoadProjectGraphSettings(Workbench& wb);

// Builds graphs 1 to 3 with a progress window and the busy pointer. False
// when the user refused to sort the events or cancelled.
bool BuildShownGraphs(Workbench& wb, QWidget* parent);

// Builds the graphs when they are marked for rebuilding; true when they stand.
bool EnsureGraphsBuilt(Workbench& wb, QWidget* parent);

// The long name of point p (1 to 24).
QString PointLabel(const Session& session, int point);

// A time of local hours as the candidate charts are cast.
QString HoursText(const Session& session, double hours);

// "low to high" of a range of longitudes.
QString LongitudeRange(const Session& session, const AngleResult::Range& range);

// Opens the event list for editing (the editor that the main window set
// in the workbench).
void OpenEventsEditor(Workbench& wb, QWidget* parent);

}  // namespace vintar
