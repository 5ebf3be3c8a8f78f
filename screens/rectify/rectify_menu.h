// The Rectification menu of the main window: the viability report, the
// event graphs, the angle search, the dynamic search and Auto Rectify. Each
// command opens its screen as a window of its own and returns at once.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>

#include "screens/common/workbench.h"

namespace vintar {

void ShowViability(Workbench& wb, QWidget* parent);       // ValRep
void ShowRectify(Workbench& wb, QWidget* parent);         // the event graphs (RectEvents)
void ShowAngleSearch(Workbench& wb, QWidget* parent);
void ShowTransitSearch(Workbench& wb, QWidget* parent);   // RectTransits
void ShowAutoRectify(Workbench& wb, QWidget* parent);     // RectAuto: RectStat

// Opens each rectification screen filled with the open project's data,
// hands it to `shoot` under a short name and closes it. Never blocks.
void ScreenshotTourRectify(Workbench& wb, QWidget* parent,
                           const std::function<void(QWidget*, const QString&)>& shoot);

}  // namespace vintar
