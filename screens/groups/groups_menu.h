// The Family menu of the main window: the group pattern search with its
// search points and ranked matches, the chart strips window, and the
// automatic report opened in the word processor. Each command opens its
// screen and returns at once.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>

#include "screens/common/workbench.h"

namespace vintar {

void ShowGroupSearch(Workbench& wb, QWidget* parent);  // GroupSearch with MatchesList
void ShowGroupStrips(Workbench& wb, QWidget* parent);  // the strips window of chosen charts
void ShowGroupReport(Workbench& wb, QWidget* parent);  // GrpAuto

// The tour's pictures of the family screens, filled from the open project;
// never blocks, and leaves the search state as it found it.
void ScreenshotTourGroups(Workbench& wb, QWidget* parent, const std::function<void(QWidget*, const QString&)>& shoot);

}  // namespace vintar
