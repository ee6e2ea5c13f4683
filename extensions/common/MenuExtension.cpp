#include "extensions/common/MenuExtension.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <unordered_set>
#include <utility>

#include "extensions/common/HelperProgram.h"
#include "extensions/common/Installation.h"
#include "extensions/common/MenuIcons.h"
#include "extensions/common/SettingsWatch.h"
#include "foundation/FileURL.h"
#include "foundation/PathString.h"
#include "foundation/RequestKeys.h"
#include "foundation/Translatable.h"
#include "foundation/Utf8.h"
#include "menu/MenuBuilding.h"
#include "platform/linux/DefaultsReader.h"
#include "platform/linux/DesktopNotification.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/RequestSending.h"
#include "platform/linux/TextTable.h"

namespace tavrin {

namespace {

/// A host that starts needs a second or two; what comes later than this no user connects with the
/// click.
constexpr std::chrono::seconds patience{20};

using Paths = std::unordered_set<std::string>;

std::string moduleFolderOf(const std::string& prefix) {
  return appendingPathComponent(prefix, identity::moduleFolderOfPrefix);
}

std::string suiteFolder() {
  return appendingPathComponent(userConfigDirectory(), identity::groupIdentifier);
}

std::vector<std::string> pathsOf(const SelectedItems& items) {
  std::vector<std::string> paths;
  const std::size_t count = items.count();
  paths.reserve(count);
  for (std::size_t index = 0; index < count; ++index) {
    if (const auto url = FileURL::urlWithString(items.uri(index))) paths.push_back(url->path());
  }
  return paths;
}

/// The items that are marked; none of a list that would keep the windows waiting.
Paths pathsOfList(const std::string& list) {
  constexpr std::size_t mostBytes = 1U << 20U;
  Paths paths;
  if (list.empty() || list.size() > mostBytes) return paths;
  for (const std::string_view uri : splitFileList(list)) {
    if (const auto url = FileURL::urlWithString(uri)) paths.insert(url->path());
  }
  return paths;
}

/// The URLs of those that are in one of the two alone.
std::vector<std::string> differences(const Paths& one, const Paths& other) {
  std::vector<std::string> urls;
  const auto addMissing = [&urls](const Paths& from, const Paths& in) {
    for (const std::string& path : from) {
      if (!in.contains(path)) urls.push_back(FileURL::fileURLWithPath(path).absoluteString());
    }
  };
  addMissing(one, other);
  addMissing(other, one);
  return urls;
}

/// Paths as the clipboard carries them: a text is UTF-8, which a path need not be.
std::string textOfPaths(const std::vector<std::string>& paths) {
  std::string text;
  for (const std::string& path : paths) {
    if (!text.empty()) text += '\n';
    text += isUtf8(path) ? path : FileURL::fileURLWithPath(path).absoluteString();
  }
  return text;
}

void showMessage(const char* text) {
  showDesktopNotification(identity::displayName, translatedText(text));
}

void tellOutcome(const Status& sent) {
  if (sent) return;
  LinuxLog().write(sent.error().describe());
  if (sent.error().code == std::errc::timed_out) {
    return showMessage(
        translatable("Tavrin does not answer. The command has not been carried out."));
  }
  if (sent.error().code == std::errc::no_such_device_or_address) {
    return showMessage(
        translatable("Tavrin cannot be started. The command has not been carried out."));
  }
  if (sent.error().code == std::errc::connection_refused) {
    return showMessage(
        translatable("Tavrin cannot be reached. The command has not been carried out."));
  }
  showMessage(translatable("The command cannot be carried out for this selection."));
}

std::map<std::string, std::string> environmentWithToken(const std::string& token) {
  if (token.empty()) return {};
  return {{"DESKTOP_STARTUP_ID", token}, {"XDG_ACTIVATION_TOKEN", token}};
}

/// Runs what a file manager asked for; whatever goes wrong there is no concern of it.
template <typename Work>
void guarded(Work work) noexcept {
  try {
    work();
  } catch (const std::exception& problem) {
    g_warning("Tavrin: %s", problem.what());
  } catch (...) {
    g_warning("Tavrin: unknown problem");
  }
}

}  // namespace

struct MenuExtension::State {
  explicit State(FileManager usedFileManager)
      : fileManager(std::move(usedFileManager)),
        prefix(installationPrefix(fileManager.prefixFromModule)) {
    bindTextTable(appendingPathComponent(prefix, identity::localeFolderOfPrefix));
    environment.homePath = currentAccount().homeDirectory;
    environment.containerPath =
        appendingPathComponent(userDataDirectory(), identity::groupIdentifier);
    environment.resourcesPath = appendingPathComponent(prefix, identity::resourceFolderOfPrefix);
    environment.isReadable = [](const std::string& path) {
      return ::access(path.c_str(), R_OK) == 0;
    };
    environment.localized = translatedText;
    environment.productIcon = identity::applicationId;
    environment.fileOfIcon = [this](const PropertyList& icon) { return icons.fileOfIcon(icon); };
    watch.watch(folder);
    readSettings();
    cutPaths = pathsOfList(settings.cutItems);
  }

  bool isOff() const {
    const auto& off = settings.disabledFileManagers;
    return std::find(off.begin(), off.end(), fileManager.identifier) != off.end();
  }

  /// Reads the settings. False when they are what they were, and when others keep them from being
  /// read right now.
  bool readSettings() {
    auto values = reader.read(menuSettingsKeys);
    if (!values || *values == read) return false;
    read = std::move(*values);
    useSettings();
    return true;
  }

  void useSettings() {
    settings = readMenuSettings(read, environment);
    icons.makeMissing([this] { guarded([this] { newIcons(); }); });
    if (isOff()) settings = {};
  }

  /// Reads the settings again if they have changed. The file manager, which may be asking for a
  /// menu right now, is told later.
  void refresh() {
    watch.watch(folder);
    if (!reader.hasChanged() || !readSettings()) return;
    isUntold = true;
    watch.tellSoon();
  }

  void newIcons() {
    useSettings();
    isUntold = true;
    watch.tellSoon();
  }

  /// Commits that the menu does not care about come here, too.
  void tellChange() {
    if (reader.hasChanged() && readSettings()) isUntold = true;
    if (!std::exchange(isUntold, false)) return;
    Paths cutNow = pathsOfList(settings.cutItems);
    const std::vector<std::string> items = differences(cutPaths, cutNow);
    cutPaths = std::move(cutNow);
    if (changed) changed(items);
  }

  std::string token() const {
    return fileManager.startupToken ? fileManager.startupToken() : std::string();
  }

  void send(const MenuItem& item, const std::vector<std::string>& paths) {
    auto requests = requestsOfItem(item, paths);
    if (!requests) return tellOutcome(requests.error());
    sendRequestsAsync(std::move(requests).value(), tellOutcome, {patience, token()});
  }

  void copyPath(const MenuItem& item, const std::vector<std::string>& paths) const {
    const auto folderInView = item.keys.find(request_key::path);
    const bool isOfFolder = folderInView != item.keys.end();
    if (!fileManager.copyText) return;
    fileManager.copyText(
        textOfPaths(isOfFolder ? std::vector{*folderInView->second.stringIfString()} : paths));
  }

  void openInTerminal(const MenuItem& item) const {
    const PropertyList keys(item.keys);
    runHelperProgram(
        {appendingPathComponent(moduleFolderOf(prefix), "tavrin-terminal"),
         keys.stringForKey(menu_key::terminalService), keys.stringForKey(request_key::path)},
        environmentWithToken(token()), [](bool succeeded) {
          if (!succeeded) showMessage(translatable("No terminal can be opened."));
        });
  }

  void activate(const OpenedMenu& menu, const MenuItem& item) {
    if (item.action == nullptr) return;
    const bool needsItems = item.subject != MenuItem::Subject::Keys && menu.selection;
    const auto paths = needsItems ? pathsOf(*menu.selection) : std::vector<std::string>();
    const std::string_view action = item.action;
    if (action == menu_action::copyPath) return copyPath(item, paths);
    if (action == menu_action::openInTerminal) return openInTerminal(item);
    send(item, paths);
  }

  FileManager fileManager;
  std::string prefix;
  LinuxLog log;
  std::string folder = suiteFolder();
  DefaultsReader reader{folder, log};
  MenuIcons icons{
      appendingPathComponent(appendingPathComponent(userCacheDirectory(), identity::applicationId),
                             "menu-icons"),
      appendingPathComponent(moduleFolderOf(prefix), "tavrin-menu-icons")};
  MenuEnvironment environment;
  /// What the settings were made of.
  PropertyList::Dictionary read;
  MenuSettings settings;
  bool isUntold = false;
  Paths cutPaths;
  Changed changed;
  SettingsWatch watch{[this] { tellChange(); }};
};

MenuExtension::MenuExtension(FileManager fileManager) noexcept {
  // Without it there are no menus.
  guarded([&] { state_ = std::make_unique<State>(std::move(fileManager)); });
}

MenuExtension::~MenuExtension() = default;

template <typename Build>
std::shared_ptr<const OpenedMenu> MenuExtension::opened(Build build) noexcept {
  auto menu = std::make_shared<OpenedMenu>();
  if (!state_) return menu;
  guarded([&] {
    state_->refresh();
    build(*menu);
  });
  return menu;
}

std::shared_ptr<const OpenedMenu> MenuExtension::menuForItems(
    std::shared_ptr<const SelectedItems> selection) noexcept {
  return opened([&](OpenedMenu& menu) {
    menu.items = tavrin::menuForItems(state_->settings, state_->environment, *selection);
    menu.selection = std::move(selection);
  });
}

std::shared_ptr<const OpenedMenu> MenuExtension::menuForFolder(const std::string& uri) noexcept {
  return opened([&](OpenedMenu& menu) {
    menu.items = tavrin::menuForFolder(state_->settings, state_->environment, uri);
  });
}

std::shared_ptr<const OpenedMenu> MenuExtension::menuForFolderOrItem(
    std::shared_ptr<const SelectedItems> folder) noexcept {
  return opened([&](OpenedMenu& menu) {
    menu.items = tavrin::menuForFolderOrItem(state_->settings, state_->environment, *folder);
    menu.selection = std::move(folder);
  });
}

void MenuExtension::activate(const OpenedMenu& menu, const MenuItem& item) noexcept {
  if (!state_) return;
  guarded([&] { state_->activate(menu, item); });
}

bool MenuExtension::isCut(const std::string& uri) noexcept {
  if (!state_ || state_->cutPaths.empty()) return false;
  bool isCut = false;
  guarded([&] {
    const auto url = FileURL::urlWithString(uri);
    isCut = url && state_->cutPaths.contains(url->path());
  });
  return isCut;
}

void MenuExtension::onChange(Changed changed) noexcept {
  if (state_) state_->changed = std::move(changed);
}

}  // namespace tavrin
