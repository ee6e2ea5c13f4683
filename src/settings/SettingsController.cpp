#include "settings/SettingsController.h"

#include <optional>
#include <utility>

#include "settings/BundleLoginItems.h"
#include "settings/TemplateFolders.h"

namespace tavrin {

namespace {

constexpr double startDelaySeconds = 0.01;

constexpr const char* loginItemText =
    "Tavrin is not need to auto starts when login,and will be removed from the login item.";

}  // namespace

SettingsController::SettingsController(Platform& platform, UserDefaults& standardUserDefaults,
                                       WorkingLists& workingLists,
                                       const DefaultSettings& defaultSettings)
    : platform_(platform),
      standardUserDefaults_(standardUserDefaults),
      workingLists_(workingLists),
      defaultSettings_(defaultSettings),
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

void SettingsController::start() {
  publishAtStart();
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
  for (const PropertyList& row : rows) {
    if (row.boolForKey(record_field::enable)) enabledRows.push_back(row);
  }
  if (keys.enableAllKey != nullptr) {
    standardUserDefaults_.setObject(enabledRows.size() == rows.size(), keys.enableAllKey);
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
