#include "settings/SettingsController.h"

#include <optional>
#include <utility>

#include "foundation/PathString.h"
#include "foundation/Translatable.h"
#include "foundation/Utf8.h"
#include "settings/BundleLoginItems.h"
#include "settings/TemplateFolders.h"

namespace tavrin {

namespace {

constexpr double startDelaySeconds = 0.01;

constexpr const char* loginItemText = translatable(
    "Tavrin is not need to auto starts when login,and will be removed from the login item.");

constexpr const char* extensionTitle = "Enable Extension";
constexpr const char* extensionText =
    "The Tavrin Finder extension must be enabled in System Preferences";
constexpr const char* extensionButton = "Open System Preferences";

constexpr const char* textServiceBundle = "TavrinService.service";

/// The lists from which the user can remove rows.
constexpr std::array shrinkingLists{RuleList::CreateNewFile, RuleList::CustomIcon,
                                    RuleList::CopyFilesTo, RuleList::CommonPath};

}  // namespace

SettingsController::SettingsController(Platform& platform, UserDefaults& standardUserDefaults,
                                       WorkingLists& workingLists,
                                       const DefaultSettings& defaultSettings)
    : platform_(platform),
      standardUserDefaults_(standardUserDefaults),
      workingLists_(workingLists),
      defaultSettings_(defaultSettings),
      rules_(platform, standardUserDefaults, workingLists, *this),
      alive_(std::make_shared<const bool>(true)) {}

SettingsController::~SettingsController() = default;

void SettingsController::removeFromLoginItemsIfListed() {
  BundleLoginItems ownItem(platform_.bundle, platform_.loginItems);
  if (!ownItem.isLoginItem()) return;
  const auto alert = platform_.alerts.alert();
  alert->setAlertStyle(Alert::Style::Warning);
  alert->setInformativeText(platform_.bundle.localizedString(loginItemText));
  alert->addButtonWithTitle(platform_.bundle.localizedString("OK"));
  alert->addButtonWithTitle(platform_.bundle.localizedString("Cancel"));
  if (alert->runModal() == Alert::firstButtonReturn) ownItem.removeFromLoginItems();
}

void SettingsController::viewDidLoad() {
  prepareTemplateFolders();
  platform_.mainLoop.performAfterDelay(startDelaySeconds,
                                       [this, alive = std::weak_ptr<const bool>(alive_)] {
                                         if (!alive.expired()) start();
                                       });
  observeMirroredSwitches();
}

void SettingsController::setView(SettingsView* view) {
  view_ = view;
  rules_.setView(view);
}

void SettingsController::start() {
  if (view_ == nullptr) {
    publishAtStart();
    workingLists_.release();
    return;
  }
  view_->createNewFilePressed();
  queueExtensionPrompt();
  publishAtStart();
  for (const RuleList list : shrinkingLists) view_->setRemoveButtonEnabled(list, false);
}

void SettingsController::queueExtensionPrompt() {
  const bool wasShown = standardUserDefaults_.boolForKey(settings_key::shownEnableExtensionAlert);
  if (isExtensionEnabled() && wasShown) return;
  platform_.mainLoop.async([this, alive = std::weak_ptr<const bool>(alive_)] {
    if (alive.expired()) return;
    promptToEnableExtension();
    if (alive.expired()) return;
    standardUserDefaults_.setObject(true, settings_key::shownEnableExtensionAlert);
  });
}

bool SettingsController::isExtensionEnabled() const {
  return platform_.extensionController.isExtensionEnabled();
}

void SettingsController::promptToEnableExtension() {
  const auto alert = platform_.alerts.alert();
  alert->setMessageText(extensionTitle);
  alert->setInformativeText(extensionText);
  alert->addButtonWithTitle(extensionButton);
  if (alert->runModal() == Alert::firstButtonReturn) openSystemPreferences();
}

void SettingsController::openSystemPreferences() {
  platform_.extensionController.showExtensionManagementInterface();
}

void SettingsController::textServiceCheckButtonClick() {
  const std::string service =
      appendingPathComponent(platform_.bundle.builtInPlugInsPath(), textServiceBundle);
  platform_.mainLoop.runInBackground([&platform = platform_, service] {
    const auto standardUserDefaults = platform.userDefaults.standardUserDefaults();
    if (!standardUserDefaults->boolForKey(settings_key::enableTextService)) return;
    platform.workspace.launchApplication(service);
  });
}

void SettingsController::restartFinder() {
  platform_.workspace.restartFileViewer();
}

std::optional<std::string> SettingsController::runCommand(const std::string& command) {
  std::string output = platform_.shell.outputOfCommand(command);
  return isUtf8(output) ? std::optional(std::move(output)) : std::nullopt;
}

void SettingsController::openLink(LinkAction action) {
  platform_.workspace.openURL(addressOfLink(action));
}

void SettingsController::saveData(const PropertyList& object, const std::string& key) {
  const auto sharedSuite = openSharedSuite();
  sharedSuite->setObject(object, key);
  sharedSuite->synchronize();
}

void SettingsController::setCreateNewFileToSettings() {
  publishList(RuleList::CreateNewFile);
}

void SettingsController::setCopyFilesToSettings() {
  publishList(RuleList::CopyFilesTo);
}

void SettingsController::setCommonPathSettings() {
  publishList(RuleList::CommonPath);
}

void SettingsController::setCustomIconToSettings() {
  publishList(RuleList::CustomIcon);
}

void SettingsController::setOthersToSettings() {
  publishList(RuleList::Others);
}

void SettingsController::publishList(RuleList list) {
  const RuleListKeys& keys = keysOfRuleList(list);
  const PropertyList::Array& rows = workingLists_.list(list);
  PropertyList::Array enabledRows;
  PropertyList::Array positions;
  for (std::size_t index = 0; index < rows.size(); ++index) {
    if (!rows[index].boolForKey(record_field::enable)) continue;
    enabledRows.push_back(rows[index]);
    positions.emplace_back(static_cast<std::int64_t>(index) + 1);
  }
  if (keys.enableAllKey != nullptr) {
    standardUserDefaults_.setObject(enabledRows.size() == rows.size(), keys.enableAllKey);
  }
  // Requests name an icon by its place among all rows, which the menu does not see. The list that
  // follows makes it durable.
  if (list == RuleList::CustomIcon) {
    openSharedSuite()->setObject(positions, settings_key::positionsOfCustomIcon);
  }
  saveData(std::move(enabledRows), keys.listKey);
}

void SettingsController::publishAtStart() {
  setCopyFilesToSettings();
  setCustomIconToSettings();
  setOthersToSettings();
  setCreateNewFileToSettings();
}

void SettingsController::resetArrOfCreateNewFile() {
  resetList(RuleList::CreateNewFile);
}

void SettingsController::resetArrOfCopyFilesTo() {
  resetList(RuleList::CopyFilesTo);
}

void SettingsController::resetArrOfOpenCommonPath() {
  resetList(RuleList::CommonPath);
}

void SettingsController::resetArrOfCustomIcon() {
  resetList(RuleList::CustomIcon);
}

void SettingsController::resetArrOfOthers() {
  resetList(RuleList::Others);
}

void SettingsController::resetList(RuleList list) {
  const std::string key = keysOfRuleList(list).listKey;
  workingLists_.list(list) = defaultSettings_.arrayForKey(key);
  standardUserDefaults_.setObject(workingLists_.list(list), key);
  standardUserDefaults_.synchronize();
}

void SettingsController::observeMirroredSwitches() {
  observations_.clear();
  for (const char* key : mirroredSwitches) {
    observations_.push_back(standardUserDefaults_.observe(
        key, [this, key](const auto& newValue) { mirrorSwitch(key, newValue); }));
  }
}

void SettingsController::mirrorSwitch(const char* key,
                                      const std::optional<PropertyList>& newValue) {
  saveData(newValue && newValue->boolValue(), key);
}

void SettingsController::prepareTemplateFolders() {
  TemplateFolders(platform_.bundle, platform_.fileManager, platform_.log)
      .prepare(standardUserDefaults_.arrayForKey(settings_key::arrOfCreateNewFile));
}

std::unique_ptr<UserDefaults> SettingsController::openSharedSuite() const {
  return platform_.userDefaults.suite(platform_.bundle.groupIdentifier());
}

}  // namespace tavrin
