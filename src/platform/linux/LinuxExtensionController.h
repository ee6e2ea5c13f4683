#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/ExtensionController.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"

namespace tavrin {

/// The modules of the menu that the installed file managers load. A file manager is known by its
/// name of file_manager (foundation/FileManagers.h). The user's switch is a setting of the group,
/// which the modules read at each menu; besides, some file managers have a switch of their own.
class LinuxExtensionController final : public ExtensionController {
 public:
  /// `groupIdentifier` names the group's suite, and modules are looked for below `libraryFolders`.
  /// The others outlive the controller.
  LinuxExtensionController(UserDefaultsProvider& userDefaults, std::string groupIdentifier,
                           std::vector<std::string> libraryFolders, Log& log);

  bool isExtensionEnabled() const override;
  /// The desktop has no place for this: without a function that was set, one line in the log says
  /// so.
  void showExtensionManagementInterface() override;
  void setManagementInterface(std::function<void()> show) override;
  std::vector<ExtensionHost> hosts() const override;
  std::optional<PropertyList::Data> iconOfHost(const std::string& identifier,
                                               int sidePixels) const override;
  void setEnabled(const std::string& identifier, bool enabled) override;
  [[nodiscard]] Observation observeHosts(std::function<void()> changed) override;

 private:
  ExtensionHost::State stateOf(const std::string& identifier,
                               const PropertyList::Array& disabled) const;
  void storeSwitch(const std::string& identifier, bool enabled);

  UserDefaultsProvider& userDefaults_;
  const std::string groupIdentifier_;
  const std::vector<std::string> libraryFolders_;
  Log& log_;
  std::function<void()> show_;
};

}  // namespace tavrin
