#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Application.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/LaunchServices.h"
#include "platform/OpenPanel.h"
#include "platform/Sound.h"
#include "platform/StatusItem.h"
#include "platform/SystemCapabilities.h"
#include "platform/Workspace.h"
#include "settings/PreferencesWindow.h"
#include "tests/support/FakeImages.h"
#include "tests/support/FakeSavePanels.h"

/// Services of the desktop that remember what was asked of them.
namespace tavrin {

class FakeApplication final : public Application {
 public:
  /// Thrown in place of ending the process.
  struct Exited {
    int status;
  };

  void setDelegate(ApplicationDelegate* delegate) override { delegate_ = delegate; }
  ApplicationDelegate* delegate() const override { return delegate_; }
  int run() override { return 0; }
  void activateIgnoringOtherApps() override { ++activations; }
  void terminate() override { ++terminations; }
  [[noreturn]] void exitImmediately(int status) override { throw Exited{status}; }

  int activations = 0;
  int terminations = 0;

 private:
  ApplicationDelegate* delegate_ = nullptr;
};

/// How a panel was set up, and what the user who is played does with it.
struct PanelSettings {
  std::optional<bool> canCreateDirectories, canChooseFiles, canChooseDirectories;
  std::optional<bool> allowsMultipleSelection, showsHiddenFiles, extensionHidden;
  std::string prompt, title, message, accessoryText;
  std::optional<FileURL> directory;
  const OpenSavePanelDelegate* delegate = nullptr;
  std::vector<std::string> allowedFileTypes;
};

class FakePanels final : public PanelProvider {
 public:
  /// What the user picks in the panel with these settings; nothing cancels. A pick that the rule
  /// refuses, or that a panel of these settings cannot offer, is a test's mistake and cancels too.
  using User = std::function<std::optional<std::string>(const PanelSettings& settings)>;

  std::shared_ptr<OpenPanel> openPanel() override;
  std::shared_ptr<SavePanel> savePanel() override { return savePanels.make(); }

  /// Answers each panel in turn; without one the panel is cancelled.
  void answerWith(User user);
  void answerWithPath(std::string path);
  /// Picks several items in one panel, which must allow that.
  void answerWithPaths(std::vector<std::string> paths);
  /// Ends the oldest panel that was begun and still stands.
  void endBegunPanel();

  /// The settings of every panel that was shown, in order.
  std::vector<PanelSettings> shown;
  FakeSavePanels savePanels;
  /// What is told of a pick (it starts the scope).
  std::function<void(const FileURL& picked)> grantPicked;

 private:
  class Panel;
  std::vector<FileURL> answer(const PanelSettings& settings);

  std::deque<std::function<std::vector<std::string>(const PanelSettings&)>> users_;
  std::deque<std::function<void()>> begun_;
};

class FakeSounds final : public SoundProvider {
 public:
  std::unique_ptr<Sound> soundWithContentsOfFile(const std::string& path) override;

  /// The last path components of the sounds played, in order.
  std::vector<std::string> played;
};

class FakeStatusBar final : public StatusBar {
 public:
  struct Item {
    std::string image;
    std::vector<MenuItem> menu;
    bool visible = false;
  };
  std::unique_ptr<StatusItem> statusItem() override;

  /// Every item that was made, in order.
  std::vector<std::shared_ptr<Item>> items;
};

class FakeWorkspace final : public Workspace {
 public:
  void selectNoFileInFileViewerRootedAtPath(const std::string& rootPath) override {
    shownFolders.push_back(rootPath);
  }
  bool openFileWithApplication(const std::string& path,
                               const std::string& applicationName) override {
    openedWith.emplace_back(path, applicationName);
    return applicationIsInstalled;
  }
  bool setIcon(const Image* image, const std::string& path) override {
    icons.push_back({path, descriptionOfImage(image), std::chrono::steady_clock::now()});
    return true;
  }
  void selectFile(const std::string& path, const std::string& rootPath) override {
    asked.push_back("select " + path + " in " + rootPath);
  }
  void openFile(const std::string& path) override { asked.push_back("open " + path); }
  std::optional<PropertyList::Data> iconForFile(const std::string& path, int sidePixels) override {
    askedIcons.emplace_back(path, sidePixels);
    if (iconOfFile) return iconOfFile(path);
    const std::string icon = "image icon of " + path;
    return PropertyList::Data(icon.begin(), icon.end());
  }
  void openURL(const std::string& url) override { openedURLs.push_back(url); }
  bool launchApplication(const std::string& path) override {
    launched.push_back(path);
    return true;
  }
  void restartFileViewer() override { ++fileViewerRestarts; }
  [[nodiscard]] Observation observeWillSleep(std::function<void()> willSleep) override;

  /// One setting of an icon: the contents of the image, or "none".
  struct SetIcon {
    std::string path, image;
    std::chrono::steady_clock::time_point time;
  };

  std::vector<std::string> shownFolders;
  std::vector<SetIcon> icons;
  /// The paths and the names of the applications that were to open them, in order.
  std::vector<std::pair<std::string, std::string>> openedWith;
  bool applicationIsInstalled = true;
  /// The icon of each path; without it, an image that shows "icon of <path>".
  std::function<std::optional<PropertyList::Data>(const std::string& path)> iconOfFile;
  /// The paths and sides whose icons were asked for, in order.
  std::vector<std::pair<std::string, int>> askedIcons;
  std::vector<std::string> openedURLs;
  /// What was to be done with files, in order.
  std::vector<std::string> asked;
  std::vector<std::string> launched;
  int fileViewerRestarts = 0;
  std::function<void()> sleep;
};

class FakeLaunchServices final : public LaunchServices {
 public:
  std::vector<std::string> applicationsForBundleIdentifier(
      const std::string& bundleIdentifier) override {
    return installed[bundleIdentifier];
  }
  std::map<std::string, std::vector<std::string>> installed;
};

class FakeDistributedNotifications final : public DistributedNotificationCenter {
 public:
  void postNotificationName(const std::string& name) override;
  void postNotificationWithOptions(const std::string& name, NotificationOptions options) override;
  [[nodiscard]] Observation addObserver(const std::string& name,
                                        std::function<void()> received) override;
  std::vector<std::string> posted;
  /// Those of the notifications that were posted with options, in order.
  std::vector<NotificationOptions> options;

 private:
  std::multimap<std::string, std::weak_ptr<std::function<void()>>> observers_;
};

class FakeCapabilities final : public SystemCapabilities {
 public:
  bool hasDarkAppearance() const override { return darkAppearance; }
  bool darkAppearance = true;
};

class FakePreferencesWindow final : public PreferencesWindow {
 public:
  /// What outlives the window for a test to look at.
  struct Record {
    int made = 0;
    bool visible = false;
    bool movable = false;
    bool rootAuthorized = false;
    std::vector<double> background;
    std::function<void()> clicked;
    std::function<void()> closed;
  };
  explicit FakePreferencesWindow(Record& record) : record_(record) { ++record.made; }

  void makeKeyAndOrderFront() override { record_.visible = true; }
  bool isVisible() const override { return record_.visible; }
  void setMovableByWindowBackground(bool movable) override { record_.movable = movable; }
  void setBackgroundColor(double red, double green, double blue) override {
    record_.background = {red, green, blue};
  }
  void setAuthorizeRootButtonState(bool on) override { record_.rootAuthorized = on; }
  bool authorizeRootButtonState() const override { return record_.rootAuthorized; }
  void setAuthorizeRootButtonAction(std::function<void()> action) override {
    record_.clicked = std::move(action);
  }
  void setClosedAction(std::function<void()> action) override {
    record_.closed = std::move(action);
  }

 private:
  Record& record_;
};

}  // namespace tavrin
