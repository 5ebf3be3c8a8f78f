// The commands that draw need a Qt application for fonts and painting; the
// command line has no window, so it runs on Qt's offscreen platform unless
// the caller chose another.
#pragma once

namespace vintar::cli {

// Creates the application once, on first use.
void EnsureGuiApplication();

}  // namespace vintar::cli
