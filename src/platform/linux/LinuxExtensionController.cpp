#include "platform/linux/LinuxExtensionController.h"

namespace tavrin {

void LinuxExtensionController::showExtensionManagementInterface() {
  log_.write("the menus are always on, there is nothing to switch");
}

}  // namespace tavrin
