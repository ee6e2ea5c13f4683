#include "app/AppDelegate.h"

#include <utility>

#include "actions/FolderAccess.h"
#include "foundation/PathString.h"
#include "foundation/Translatable.h"
#include "platform/SystemDefaults.h"
#include "sandbox/AppSandboxFileAccessPersist.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

constexpr double launchDelaySeconds = 0.4;

constexpr const char* accessMessage = translatable(
    "\n1. %@ does not have permission to read and write this folder. please click "
    "\"Authorization\". \n2. It is recommended that the authority root directory, no authorization "
    "needed in the future.\n");
constexpr const char* authorizeRootMessage =
    translatable("\nPlease click \"Authorization\". no authorization needed in the future.\n");

constexpr const char* appearanceChanged = "AppleInterfaceThemeChangedNotification";
constexpr const char* exitService = "ExitService";
constexpr const char* textServiceBundle = "TavrinService Pro.service";

std::unique_ptr<Sound> soundResource(Platform& platform, const std::string& name) {
  const auto path = platform.bundle.pathForResource(name, "aiff");
  auto sound = path ? platform.sounds.soundWithContentsOfFile(*path) : nullptr;
  if (sound) sound->setVolume(1.0F);
  return sound;
}

}  // namespace

AppDelegate::AppDelegate(Platform& platform, const DefaultSettings& defaultSettings,
                         PreferencesWindowFactory makePreferencesWindow)
    : platform_(platform),
      defaultSettings_(defaultSettings),
      makePreferencesWindow_(std::move(makePreferencesWindow)),
      sharedSuite_(platform.userDefaults.suite(platform.bundle.groupIdentifier())),
      successSound_(soundResource(platform, "Volume Mount")),
      failureSound_(soundResource(platform, "Funk")),
      trashSound_(soundResource(platform, "empty trash")),
      standardUserDefaults_(platform.userDefaults.standardUserDefaults()),
      fileAccess_(AppSandboxFileAccess::fileAccessWithMessage(
          platform, *standardUserDefaults_, platform.bundle.localizedString(accessMessage))),
      workingLists_(*standardUserDefaults_),
      requests_(platform.mainLoop, platform.log,
                [this](const std::string& fileName) { applicationOpenFile(fileName); }) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationWillFinishLaunching() {
  followAppearance();
  observations_.push_back(standardUserDefaults_->observe(
      settings_key::hiddenIconInStatusBar,
      [this](const std::optional<PropertyList>&) { updateStatusBarItem(); }));
  platform_.mainLoop.performAfterDelay(launchDelaySeconds, [this] { delayedAfterLaunch(); });
  platform_.application.activateIgnoringOtherApps();
  updateStatusBarItem();
}

void AppDelegate::applicationDidFinishLaunching() {
  observations_.push_back(
      platform_.workspace.observeWillSleep([this] { receiveSleepNotification(); }));
}

void AppDelegate::applicationOpen(const std::string& fileName) {
  requests_.add(fileName);
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
  openPreferences();
  return true;
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() {
  return false;
}

void AppDelegate::applicationWillTerminate() {
  for (const std::string& fileName : requests_.takeAll()) {
    platform_.log.write("the program ends before the request " + fileName);
  }
  platform_.distributedNotifications.postNotificationName(exitService);
}

void AppDelegate::delayedAfterLaunch() {
  if (prefswindow_ && prefswindow_->isVisible()) return;
  if (!opened_) openPreferences();
  if (!settingsController_) settingsController().viewDidLoad();
}

void AppDelegate::receiveSleepNotification() {
  platform_.application.exitImmediately(0);
}

void AppDelegate::openPreferences() {
  PreferencesWindow& window = preferencesWindow();
  window.makeKeyAndOrderFront();
  if (window.isOfOtherProcess()) return;
  platform_.application.activateIgnoringOtherApps();
  const std::string textService =
      appendingPathComponent(platform_.bundle.builtInPlugInsPath(), textServiceBundle);
  platform_.mainLoop.runInBackground([&workspace = platform_.workspace, textService] {
    workspace.launchApplication(textService);
  });
}

PreferencesWindow& AppDelegate::preferencesWindow() {
  if (prefswindow_) return *prefswindow_;
  prefswindow_ = makePreferencesWindow_(*standardUserDefaults_, settingsController());
  if (prefswindow_->isOfOtherProcess()) {
    // The other process does so for as long as it shows the window.
    settingsController().observeMirroredSwitches();
    return *prefswindow_;
  }
  prefswindow_->setMovableByWindowBackground(true);
  prefswindow_->setAuthorizeRootButtonState(isRootAuthorized());
  prefswindow_->setAuthorizeRootButtonAction([this] { authorizeRootButtonClick(); });
  prefswindow_->setClosedAction([this] { preferencesWindowClosed(); });
  darkModeChanged();
  // Last, for whatever comes in while the alert is up finds the window made.
  settingsController().removeFromLoginItemsIfListed();
  return *prefswindow_;
}

void AppDelegate::preferencesWindowClosed() {
  // The window is still at work; an idle host does without its memory.
  platform_.mainLoop.performAfterDelay(0, [this] {
    if (prefswindow_ && !prefswindow_->isVisible()) prefswindow_.reset();
  });
}

SettingsController& AppDelegate::settingsController() {
  if (!settingsController_) {
    settingsController_ = std::make_unique<SettingsController>(platform_, *standardUserDefaults_,
                                                               workingLists_, defaultSettings_);
  }
  return *settingsController_;
}

bool AppDelegate::isRootAuthorized() const {
  const auto bookmarks =
      standardUserDefaults_->dictionaryForKey(AppSandboxFileAccessPersist::cachedBookmarksKey);
  return !bookmarks.empty() && bookmarks.begin()->first == "/";
}

void AppDelegate::updateStatusBarItem() {
  const bool hidden = standardUserDefaults_->boolForKey(settings_key::hiddenIconInStatusBar);
  if (!hidden && !statusItem_) statusItem_ = makeStatusItem();
  if (statusItem_) statusItem_->setVisible(!hidden);
}

std::unique_ptr<StatusItem> AppDelegate::makeStatusItem() {
  auto item = platform_.statusBar.statusItem();
  item->setTemplateImageNamed("menuIcon");
  const Bundle& bundle = platform_.bundle;
  item->setMenu(
      {{bundle.localizedString("Preferences…"), [this] { openPreferences(); }},
       {"", {}},
       {bundle.localizedString("Quit Tavrin"), [this] { platform_.application.terminate(); }}});
  return item;
}

void AppDelegate::followAppearance() {
  observations_.push_back(platform_.distributedNotifications.addObserver(
      appearanceChanged, [this] { darkModeChanged(); }));
}

void AppDelegate::darkModeChanged() {
  if (!prefswindow_) return;
  const bool dark =
      platform_.capabilities.hasDarkAppearance() &&
      standardUserDefaults_->stringForKey(system_defaults::appleInterfaceStyle).has_value();
  if (dark) {
    prefswindow_->setBackgroundColor(0.11, 0.12, 0.13);
  } else {
    prefswindow_->setBackgroundColor(1, 1, 1);
  }
}

void AppDelegate::authorizeRootButtonClick() {
  if (!preferencesWindow().authorizeRootButtonState()) {
    standardUserDefaults_->removeObjectForKey(AppSandboxFileAccessPersist::cachedBookmarksKey);
    standardUserDefaults_->synchronize();
    return;
  }
  const auto access = AppSandboxFileAccess::fileAccessWithMessage(
      platform_, *standardUserDefaults_, platform_.bundle.localizedString(authorizeRootMessage));
  if (!access->accessFilePath("/", PersistPermission::Yes, [] {})) {
    preferencesWindow().setAuthorizeRootButtonState(false);
  }
}

std::string AppDelegate::homePath() const {
  return realHomePath(platform_.bundle.account());
}

bool AppDelegate::itemExists(const std::string& path) const {
  return platform_.fileManager.fileExistsAtPath(path);
}

std::optional<FileURL> AppDelegate::urlOfItem(std::string_view item) {
  auto url = FileURL::urlWithString(item);
  if (!url) logFailure("no file URL: " + std::string(item));
  return url;
}

void AppDelegate::accessFolderOfItem(FolderAccess& folders, const std::string& folder,
                                     const std::string& path, const std::function<void()>& work) {
  if (!folders.accessFilePath(folder, work)) logFailure("no access to the folder of " + path);
}

void AppDelegate::logFailure(const std::string& reason) {
  actionInHand_->logFailure(reason);
}

void AppDelegate::playResultSound(std::size_t itemCount, const std::unique_ptr<Sound>& allDone) {
  const bool isAllDone = itemCount == static_cast<std::size_t>(successCounter_);
  if (const auto& sound = isAllDone ? allDone : failureSound_) sound->play();
}

}  // namespace tavrin
