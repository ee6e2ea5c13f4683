#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "platform/UserDefaults.h"

namespace tavrin {

/// A file manager that is installed, and the state of the program's extension in it.
struct ExtensionHost {
  enum class State {
    On,
    Off,
    /// The extension is not installed for it.
    Missing,
  };

  /// What the controller knows it by.
  std::string identifier;
  /// In the user's language, UTF-8; no two are alike.
  std::string displayName;
  State state = State::Missing;
};

/// The state of the program's extension in the system's file managers, as FIFinderSyncController.
/// Used on the main thread.
class ExtensionController {
 public:
  virtual ~ExtensionController() = default;

  /// Whether the user has the extension switched on in some file manager.
  virtual bool isExtensionEnabled() const = 0;

  /// Shows the user where the extension is switched on and off.
  virtual void showExtensionManagementInterface() = 0;

  /// Has showExtensionManagementInterface call `show` on a system that has no such place itself; an
  /// empty function takes that back.
  virtual void setManagementInterface(std::function<void()> show) = 0;

  /// The installed file managers that the program has an extension for, in an order that stays.
  virtual std::vector<ExtensionHost> hosts() const = 0;

  /// The icon of a file manager, a PNG file of `sidePixels` pixels square; nothing, and a line in
  /// the log, when it cannot be drawn.
  virtual std::optional<PropertyList::Data> iconOfHost(const std::string& identifier,
                                                       int sidePixels) const = 0;

  /// Switches the extension on or off in one file manager, for this user. It is durable when this
  /// returns. Switching on also ends what the file manager's own settings have against it; what
  /// that fails for reaches the log, and the state says whether it is on.
  virtual void setEnabled(const std::string& identifier, bool enabled) = 0;

  /// Calls `changed` after changes of what setEnabled sets, by whichever process.
  [[nodiscard]] virtual Observation observeHosts(std::function<void()> changed) = 0;
};

}  // namespace tavrin
