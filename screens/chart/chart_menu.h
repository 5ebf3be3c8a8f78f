// The dynamic chart: the trial radix with a moving chart around it, stepped
// through time, and its option and adjustment screens.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>

#include "screens/common/workbench.h"

namespace vintar {

// Opens the dynamic chart (ChartView, non-modal) for the open project. With
// localHours at or above 0 the radix is cast at that local time of the birth
// date (a candidate time from rectification); negative: the natal time.
void ShowDynamicChart(Workbench& wb, QWidget* parent, double localHours = -1);
// Opens the dynamic chart (non-modal) on the chart of record `record` of the
// open project, named by the record's description. A record that has no
// chart (none by that number, no date, no place) opens nothing.
void ShowRecordChart(Workbench& wb, QWidget* parent, int record);

// Opens each screen of the dynamic chart filled with the open project's data,
// hands it to `shoot` under a short name and closes it. Never blocks.
void ScreenshotTourChart(Workbench& wb, QWidget* parent,
                         const std::function<void(QWidget*, const QString&)>& shoot);

}  // namespace vintar
