#pragma once

namespace tavrin {

/// The state of the program's extension in the system's file managers, as FIFinderSyncController.
/// Used on the main thread.
class ExtensionController {
 public:
  virtual ~ExtensionController() = default;

  /// Whether the user has the extension switched on.
  virtual bool isExtensionEnabled() const = 0;

  /// Shows the user where the extension is switched on and off, as far as the system has such a
  /// place.
  virtual void showExtensionManagementInterface() = 0;
};

}  // namespace tavrin
