#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "settings/DefaultSettings.h"
#include "settings/SettingsKeys.h"
#include "settings/WorkingLists.h"

namespace tavrin {

/// Carries settings from the standard store to the suite that the menu reads. The suite is written
/// through an object opened for each write, is durable after it, and is never read back.
/// Used on the main thread.
class SettingsController {
 public:
  /// All outlive this object.
  SettingsController(Platform& platform, UserDefaults& standardUserDefaults,
                     WorkingLists& workingLists, const DefaultSettings& defaultSettings);
  ~SettingsController();
  SettingsController(const SettingsController&) = delete;
  SettingsController& operator=(const SettingsController&) = delete;

  /// To be called when the controller is made for the window: when the program is among the login
  /// items, says in an alert that it need not be, and removes it on "OK".
  void removeFromLoginItemsIfListed();

  /// What the preferences view does once it is loaded, each time: prepares the template folders,
  /// observes the mirrored switches, and has `start` called 0.01 seconds later.
  void viewDidLoad();

  /// Publishes what the menu has to know from the start.
  void start();

  /// Stores a value in the shared suite.
  void saveData(const PropertyList& object, const std::string& key);

  // Publishing: the enabled rows of a working list go to the shared suite, in their order and with
  // all their fields. A list's enable-all switch is set in the standard store: on when every row is
  // enabled, also when there is none.
  void setCreateNewFileToSettings();
  void setCopyFilesToSettings();
  void setCommonPathSettings();
  void setCustomIconToSettings();
  void setOthersToSettings();
  void publishList(RuleList list);

  /// Publishes all lists but that of the common paths, which waits for its first edit.
  void publishAtStart();

  // Reset: a working list becomes that of the default settings and is written to the standard
  // store. Publishing it is up to the caller.
  void resetArrOfCreateNewFile();
  void resetArrOfCopyFilesTo();
  void resetArrOfOpenCommonPath();
  void resetArrOfCustomIcon();
  void resetArrOfOthers();
  void resetList(RuleList list);

  /// From now on each change of a mirrored switch in the standard store, by whoever, is stored as a
  /// boolean in the shared suite. Calling it again changes nothing.
  void observeMirroredSwitches();

  /// Prepares the template folders for the records of the standard store (see TemplateFolders).
  void prepareTemplateFolders();

 private:
  std::unique_ptr<UserDefaults> openSharedSuite() const;
  void mirrorSwitch(const char* key, const std::optional<PropertyList>& newValue);

  Platform& platform_;
  UserDefaults& standardUserDefaults_;
  WorkingLists& workingLists_;
  const DefaultSettings& defaultSettings_;
  std::vector<Observation> observations_;
  /// Work that is still scheduled when the controller goes finds this gone.
  std::shared_ptr<const bool> alive_;
};

}  // namespace tavrin
