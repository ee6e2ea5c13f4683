#include "sandbox/NSAlertSynchronousSheet.h"

namespace tavrin {

int runModalSheetForWindow(Alert& alert, MainLoop& mainLoop, Window* window) {
  int code = 0;
  mainLoop.sync([&] { code = alert.runModalAsSheet(window); });
  return code;
}

int runModalSheet(Alert& alert, MainLoop& mainLoop) {
  return runModalSheetForWindow(alert, mainLoop, nullptr);
}

}  // namespace tavrin
