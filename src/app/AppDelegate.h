#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/ActionInHand.h"
#include "app/ActionRequest.h"
#include "app/RequestLine.h"
#include "platform/Platform.h"
#include "sandbox/AppSandboxFileAccess.h"
#include "settings/DefaultSettings.h"
#include "settings/PreferencesWindow.h"
#include "settings/SettingsController.h"
#include "settings/WorkingLists.h"

namespace tavrin {

enum class IsCopy { No, Yes };

class FolderAccess;

/// The host's one long-lived object: it owns what every command shares, leads the program from its
/// launch to its end, and carries out requests. Each command is a method named after its action,
/// defined in src/actions. Used on the main thread.
class AppDelegate final : public ApplicationDelegate {
 public:
  /// Builds the objects that the commands share. `platform` outlives this object; the window is
  /// made by `makePreferencesWindow` when it is first needed, so that a start that serves a request
  /// does not pay for it.
  AppDelegate(Platform& platform, const DefaultSettings& defaultSettings,
              PreferencesWindowFactory makePreferencesWindow);
  ~AppDelegate() override;
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;

  void applicationWillFinishLaunching() override;
  void applicationDidFinishLaunching() override;
  /// Puts the file in the line of requests.
  void applicationOpen(const std::string& fileName) override;
  bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
  bool applicationShouldTerminateAfterLastWindowClosed() override;
  void applicationWillTerminate() override;

  /// Carries out one request file (an absolute path) to its end. A file that cannot be read, is no
  /// request, or names no known action does nothing, with a line in the log for the first two. The
  /// file stays where it is. Always true.
  bool applicationOpenFile(const std::string& fileName);

  /// True once a request file has been received: such a launch shows no window.
  bool opened() const { return opened_; }

  /// Shows, creates or hides the status item as the setting "hiddenIconInStatusBar" says.
  void updateStatusBarItem();
  /// Shows the preferences window and starts the text service.
  void openPreferences();
  /// Shows the preferences window unless a request came in.
  void delayedAfterLaunch();
  /// Ends the process at once: the host never survives a sleep.
  void receiveSleepNotification();
  /// Keeps the preferences window in the system's appearance.
  void followAppearance();
  /// Gives the preferences window the background of the system's appearance.
  void darkModeChanged();
  /// Authorises the whole disk, or forgets every grant, after the check box has changed.
  void authorizeRootButtonClick();

  // The commands, in src/actions. A request's missing key reads as no value.
  /// Makes a file from the template of an enabled rule, or of the format that the user picks in a
  /// save panel. Where no rule has an extension, that panel offers no formats, takes any name, and
  /// the file is empty.
  void createNewFile(const ActionRequest& request);
  /// Allows the picked format alone; the action of the pop-up in the save panel.
  void buttonPressed(std::size_t indexOfSelectedItem);
  void sendFilesTo(const ActionRequest& request, IsCopy isCopy);
  void sendFilesToCustom(const ActionRequest& request, IsCopy isCopy);
  void customIcon(const ActionRequest& request);
  void openCommonPath(const ActionRequest& request);
  void cutSelectedFiles(const ActionRequest& request);
  void pasteSelectedFiles(const ActionRequest& request);
  void hiddenSelectedFiles(const ActionRequest& request, IsHidden isHidden);
  void hiddenAllFilesInPath(const ActionRequest& request, IsHidden isHidden);
  void deleteDirectlySelectedFiles(const ActionRequest& request);
  /// Opens a folder, a path, in the application of the given name.
  void openIn(const std::optional<std::string>& path, const std::string& appName);
  /// Opens a file of a folder, both paths, in the application of the given name.
  void openFile(const std::optional<std::string>& file, const std::optional<std::string>& path,
                const std::string& appName);
  void pinbySnapvane(const ActionRequest& request);
  void imageToIconSetForMac(const ActionRequest& request);
  void imageToIconSetForiOS(const ActionRequest& request);

  /// The name of the installed code editor: "Visual Studio Code" where it is installed, else that
  /// of its Insiders build, installed or not.
  std::string codeEditorName() const;

 private:
  std::optional<ActionRequest> readRequest(const std::string& fileName) const;

  PreferencesWindow& preferencesWindow();
  void preferencesWindowClosed();
  SettingsController& settingsController();
  bool isRootAuthorized() const;
  std::unique_ptr<StatusItem> makeStatusItem();

  // What the commands share with each other (src/actions).
  std::string homePath() const;
  /// The items of a selection, a file list string; of a piece that is no file URL only the log
  /// hears.
  std::vector<FileURL> urlsOfItems(const std::string& selection);
  bool isImage(const std::string& path) const;
  void handOverForPinning(std::vector<FileURL> urls);
  bool itemExists(const std::string& path) const;
  /// One line that names the action in hand.
  void logFailure(const std::string& reason);

  /// A file to make: in the folder that access is asked for, or elsewhere by the user's choice.
  struct NewFile {
    enum class Naming { FirstFree, AsItStands, Replacing };
    std::string folder;
    std::string path;
    std::string templateName;
    Naming naming;
  };
  void createFileOfChosenFormat(const std::string& folder, const PropertyList::Array& rules);
  std::shared_ptr<SavePanel> makeFormatPanel(const std::string& folder,
                                             std::vector<std::string> extensions);
  static std::string templateName(const std::optional<std::string>& displayName,
                                  const std::optional<std::string>& extension);
  /// Nothing when the template is missing.
  PropertyList::Data contentsOfTemplate(const std::string& name);
  void createFile(const NewFile& file);
  Result<std::string> writeNewFile(const NewFile& file);
  void fileCreated(const std::string& path, const std::string& folder);
  void creationFailed(const std::string& reason);
  void playSoundOfNewFile(const std::unique_ptr<Sound>& sound);

  void sendItem(const std::string& sourcePath, const std::string& destinationFolder, IsCopy isCopy);
  void sendItemsToChosenFolder(const std::vector<std::string_view>& items,
                               const std::string& folder, IsCopy isCopy);
  /// The URL of an item of a selection; of what is no file URL only the log hears.
  std::optional<FileURL> urlOfItem(std::string_view item);
  /// Runs `work` inside a grant of `folder`, that of the item at `path`. Without a grant only the
  /// log hears of it.
  void accessFolderOfItem(FolderAccess& folders, const std::string& folder, const std::string& path,
                          const std::function<void()>& work);
  void setHidden(const std::string& path, IsHidden isHidden);
  void setHiddenOfItems(FolderAccess& folders, const std::optional<std::string>& selection,
                        IsHidden isHidden);
  void setHiddenOfFolder(const std::string& folder, IsHidden isHidden);
  void pasteItem(FolderAccess& folders, std::string_view item, const std::string& folder);
  bool mayDeleteDirectly();
  void removeItem(const std::string& path);
  /// Plays `allDone` when the counter has reached `itemCount`, else the failure sound.
  void playResultSound(std::size_t itemCount, const std::unique_ptr<Sound>& allDone);

  /// The script that makes an icon set, from the image's path and the output folder's, both quoted.
  using IconSetScript =
      std::function<std::string(const std::string& image, const std::string& folder)>;
  void makeIconSet(const ActionRequest& request, const std::string& suffix,
                   const IconSetScript& scriptFor);

  Platform& platform_;
  const DefaultSettings& defaultSettings_;
  PreferencesWindowFactory makePreferencesWindow_;

  std::unique_ptr<UserDefaults> sharedSuite_;
  std::unique_ptr<Sound> successSound_;
  std::unique_ptr<Sound> failureSound_;
  std::unique_ptr<Sound> trashSound_;
  bool opened_ = false;
  std::unique_ptr<UserDefaults> standardUserDefaults_;
  std::unique_ptr<AppSandboxFileAccess> fileAccess_;
  WorkingLists workingLists_;

  std::unique_ptr<SettingsController> settingsController_;
  std::unique_ptr<PreferencesWindow> prefswindow_;
  std::unique_ptr<StatusItem> statusItem_;

  /// The action that log lines name; nothing between requests.
  ActionInHand* actionInHand_ = nullptr;
  /// Items that a multi-item command has done; equal to the item count means success.
  std::int32_t successCounter_ = 0;
  /// The formats that the save panel of a new file offers, and the panel; until the next one.
  std::vector<std::string> offeredExtensions_;
  std::shared_ptr<SavePanel> savePanel_;

  RequestLine requests_;
  std::vector<Observation> observations_;
};

}  // namespace tavrin
