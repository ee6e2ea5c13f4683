#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "settings/DefaultSettings.h"
#include "settings/Links.h"
#include "settings/RuleListEditing.h"
#include "settings/SettingsKeys.h"
#include "settings/SettingsView.h"
#include "settings/WorkingLists.h"

namespace tavrin {

/// What the preferences window does, without its widgets: edits the rule lists, and carries
/// settings from the standard store to the suite that the menu reads. The suite is written through
/// an object opened for each write, is durable after it, and is never read back.
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

  /// The editing of the rule lists.
  RuleListEditing& rules() { return rules_; }

  /// The window that shows the settings, to be set before its viewDidLoad; nullptr when it goes.
  void setView(SettingsView* view);

  /// What the preferences view does once it is loaded, each time: prepares the template folders,
  /// observes the mirrored switches, and has `start` called 0.01 seconds later.
  void viewDidLoad();

  /// Publishes what the menu has to know from the start. With a view this comes after its first
  /// page is shown and before its remove buttons are disabled; the prompt to enable the extension
  /// waits in the main loop where the extension is off or the prompt was never shown. Without a
  /// view the working lists are forgotten afterwards.
  void start();

  /// Whether the file managers show the program's menus.
  bool isExtensionEnabled() const;

  /// Says in an alert that the extension must be enabled; its button opens the system's place for
  /// that.
  void promptToEnableExtension();
  void openSystemPreferences();

  /// To be called when the switch "enableTextService" was clicked: where it is on, launches the
  /// text service in the background.
  void textServiceCheckButtonClick();

  /// Has the file managers load their menus anew.
  void restartFinder();

  /// What a command of the standard shell prints; nothing when that is no UTF-8.
  std::optional<std::string> runCommand(const std::string& command);

  /// Opens a page on the web.
  void openLink(LinkAction action);

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
  void queueExtensionPrompt();
  void mirrorSwitch(const char* key, const std::optional<PropertyList>& newValue);

  Platform& platform_;
  UserDefaults& standardUserDefaults_;
  WorkingLists& workingLists_;
  const DefaultSettings& defaultSettings_;
  RuleListEditing rules_;
  SettingsView* view_ = nullptr;
  std::vector<Observation> observations_;
  /// Work that is still scheduled when the controller goes finds this gone.
  std::shared_ptr<const bool> alive_;
};

}  // namespace tavrin
