#pragma once

#include "platform/Alert.h"
#include "platform/MainLoop.h"

namespace tavrin {

/// Runs an alert as a sheet of `window` and returns the code of the button pressed (1000 for the
/// first, 1001 for the second, ...). May be called on any thread, which waits; the alert runs on
/// the main thread.
int runModalSheetForWindow(Alert& alert, MainLoop& mainLoop, Window* window);

/// The same for the program's main window.
int runModalSheet(Alert& alert, MainLoop& mainLoop);

}  // namespace tavrin
