// Opening a screen as a top-level window of its own beside the main window,
// and the windows that keep their place between sessions (VTDesktop.ini).
#pragma once

#include <QWidget>

#include "core/session.h"

namespace vintar {

// Shows a top-level tool window that deletes itself when closed; Esc
// closes it. With a session, a window with an object name keeps its place.
void ShowToolWindow(QWidget* window, const Session* session = nullptr);

// The window goes back to the place stored under `form` when first shown
// (if that place lies on a screen) and stores its place when closed.
void KeepFormPlace(QWidget* window, const Session& session, const QString& form);

// The screenshot tour's way of opening a screen: as a window of its own,
// shown and painted before the picture is taken. Never waits for input.
void SettleTourWindow(QWidget* window);

}  // namespace vintar
