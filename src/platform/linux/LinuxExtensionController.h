#pragma once

#include "platform/ExtensionController.h"
#include "platform/Log.h"

namespace tavrin {

/// The menus are part of the program, and always on.
class LinuxExtensionController final : public ExtensionController {
 public:
  /// `log` outlives the controller.
  explicit LinuxExtensionController(Log& log) : log_(log) {}

  bool isExtensionEnabled() const override { return true; }
  /// There is no such place: one line in the log says so.
  void showExtensionManagementInterface() override;

 private:
  Log& log_;
};

}  // namespace tavrin
