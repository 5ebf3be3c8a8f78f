// The Research menu of the main window: the point list, tabulation with its
// results window and filter, the criteria search, record selection by
// category and the control data generator. Each command opens its screen
// and returns at once; the passes over a project show a progress window
// with a working Stop.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>

#include "screens/common/workbench.h"

namespace vintar {

void ShowPointList(Workbench& wb, QWidget* parent);       // the point list editor (.vpt)
void ShowTabulate(Workbench& wb, QWidget* parent);        // ResTabulate, then the results window
void ShowCriteriaSearch(Workbench& wb, QWidget* parent);  // ResCriteria, then ResOut
void ShowRecordSelection(Workbench& wb, QWidget* parent); // CatSel, then ResOut
// The record editor's Select button: CatSel modally, then the "Selection
// Finished" question. True when records were switched off.
bool SelectRecordsFromEditor(Workbench& wb, QWidget* parent);
void ShowControlData(Workbench& wb, QWidget* parent);     // RandParam

using ShootFunction = std::function<void(QWidget*, const QString&)>;

// The tour's pictures of the research screens, filled from the open project;
// never blocks, and leaves the research state as it found it.
void ScreenshotTourTabulation(Workbench& wb, QWidget* parent, const ShootFunction& shoot);
void ScreenshotTourCriteria(Workbench& wb, QWidget* parent, const ShootFunction& shoot);
void ScreenshotTourResearch(Workbench& wb, QWidget* parent, const ShootFunction& shoot);

}  // namespace vintar
