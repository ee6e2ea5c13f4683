#include "platform/linux/LinuxExtensionController.h"

#include <algorithm>
#include <utility>

#include "foundation/FileManagers.h"
#include "platform/linux/FileIcon.h"
#include "platform/linux/FileManagerSwitches.h"
#include "platform/linux/InstalledFileManager.h"
#include "platform/linux/MenuModules.h"

namespace tavrin {

namespace {

/// The file managers that the user has switched the menu off for.
PropertyList::Array disabledIn(const UserDefaults& suite) {
  return suite.arrayForKey(file_manager::disabledSetting);
}

bool contains(const PropertyList::Array& names, const std::string& name) {
  return std::ranges::find(names, PropertyList(name)) != names.end();
}

/// A suite with what is observed in it.
struct ObservedSuite {
  std::unique_ptr<UserDefaults> suite;
  Observation observation;
};

}  // namespace

LinuxExtensionController::LinuxExtensionController(UserDefaultsProvider& userDefaults,
                                                   std::string groupIdentifier,
                                                   std::vector<std::string> libraryFolders,
                                                   Log& log)
    : userDefaults_(userDefaults),
      groupIdentifier_(std::move(groupIdentifier)),
      libraryFolders_(std::move(libraryFolders)),
      log_(log) {}

bool LinuxExtensionController::isExtensionEnabled() const {
  const PropertyList::Array disabled = disabledIn(*userDefaults_.suite(groupIdentifier_));
  return std::ranges::any_of(file_manager::all, [&](const char* identifier) {
    return stateOf(identifier, disabled) == ExtensionHost::State::On &&
           installedFileManager(identifier).has_value();
  });
}

void LinuxExtensionController::showExtensionManagementInterface() {
  if (show_) return show_();
  log_.write("no window is open that could show the file managers");
}

void LinuxExtensionController::setManagementInterface(std::function<void()> show) {
  show_ = std::move(show);
}

std::vector<ExtensionHost> LinuxExtensionController::hosts() const {
  const PropertyList::Array disabled = disabledIn(*userDefaults_.suite(groupIdentifier_));
  std::vector<ExtensionHost> hosts;
  for (const char* identifier : file_manager::all) {
    const auto manager = installedFileManager(identifier);
    if (!manager) continue;
    hosts.push_back({identifier, manager->displayName, stateOf(identifier, disabled)});
  }
  return hosts;
}

ExtensionHost::State LinuxExtensionController::stateOf(const std::string& identifier,
                                                       const PropertyList::Array& disabled) const {
  if (!isMenuModuleInstalled(identifier, libraryFolders_)) return ExtensionHost::State::Missing;
  const bool isOff = contains(disabled, identifier) || isSwitchedOffInFileManager(identifier);
  return isOff ? ExtensionHost::State::Off : ExtensionHost::State::On;
}

std::optional<PropertyList::Data> LinuxExtensionController::iconOfHost(
    const std::string& identifier, int sidePixels) const {
  const auto manager = installedFileManager(identifier);
  auto icon = pngOfNamedIcon(manager ? manager->icon : std::string(), sidePixels);
  if (icon) return std::move(icon.value());
  log_.write(icon.error().describe());
  return std::nullopt;
}

void LinuxExtensionController::setEnabled(const std::string& identifier, bool enabled) {
  storeSwitch(identifier, enabled);
  if (!enabled || !isSwitchedOffInFileManager(identifier)) return;
  const Status switched = switchOnInFileManager(identifier);
  if (!switched) log_.write(switched.error().describe());
}

void LinuxExtensionController::storeSwitch(const std::string& identifier, bool enabled) {
  const auto suite = userDefaults_.suite(groupIdentifier_);
  PropertyList::Array disabled = disabledIn(*suite);
  std::erase(disabled, PropertyList(identifier));
  if (!enabled) disabled.emplace_back(identifier);
  suite->setObject(std::move(disabled), file_manager::disabledSetting);
  suite->synchronize();
}

Observation LinuxExtensionController::observeHosts(std::function<void()> changed) {
  auto observed = std::make_shared<ObservedSuite>();
  observed->suite = userDefaults_.suite(groupIdentifier_);
  observed->observation = observed->suite->observe(
      file_manager::disabledSetting,
      [changed = std::move(changed)](const auto& /*value*/) { changed(); });
  return observed;
}

}  // namespace tavrin
