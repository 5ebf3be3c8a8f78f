// Opening a screen as a top-level window of its own beside the main window.
#pragma once

#include <QWidget>

namespace vintar {

// Shows a top-level tool window that deletes itself when closed; Esc
// closes it.
void ShowToolWindow(QWidget* window);

}  // namespace vintar
