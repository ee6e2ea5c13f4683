#include "sandbox/AppSandboxFileAccess.h"

#include <utility>

#include "foundation/PathString.h"
#include "sandbox/AppSandboxFileAccessOpenSavePanelDelegate.h"
#include "sandbox/AppSandboxFileAccessPersist.h"

namespace tavrin {

namespace {

// What follows goes up a path step by step, and each step costs as much as the path is long. No
// real path comes near.
constexpr std::size_t longestPath = std::size_t{128} << 10;

std::string applicationName(const Bundle& bundle) {
  const auto displayName = bundle.objectForInfoDictionaryKey("CFBundleDisplayName");
  return descriptionOf(displayName ? displayName
                                   : bundle.objectForInfoDictionaryKey("CFBundleName"));
}

std::string formatWithName(std::string format, const std::string& name) {
  constexpr std::string_view placeholder = "%@";
  const auto position = format.find(placeholder);
  if (position != std::string::npos) format.replace(position, placeholder.size(), name);
  return format;
}

}  // namespace

std::unique_ptr<AppSandboxFileAccess> AppSandboxFileAccess::fileAccessWithMessage(
    Platform& platform, UserDefaults& standardUserDefaults, const std::string& message) {
  return std::make_unique<AppSandboxFileAccess>(platform, standardUserDefaults, message);
}

AppSandboxFileAccess::AppSandboxFileAccess(Platform& platform, UserDefaults& standardUserDefaults,
                                           const std::string& messageFormat)
    : title(platform.bundle.localizedString("Allow Access")),
      message(formatWithName(messageFormat, applicationName(platform.bundle))),
      prompt(platform.bundle.localizedString("Authorization")),
      platform_(platform),
      defaultDelegate_(std::make_shared<AppSandboxFileAccessPersist>(standardUserDefaults)),
      bookmarkPersistanceDelegate_(defaultDelegate_) {}

void AppSandboxFileAccess::setBookmarkPersistanceDelegate(
    const std::shared_ptr<AppSandboxFileAccessProtocol>& delegate) {
  bookmarkPersistanceDelegate_ = delegate ? delegate : defaultDelegate_;
}

std::shared_ptr<AppSandboxFileAccessProtocol> AppSandboxFileAccess::bookmarkPersistanceDelegate()
    const {
  auto delegate = bookmarkPersistanceDelegate_.lock();
  return delegate ? delegate : defaultDelegate_;
}

std::string AppSandboxFileAccess::nearestExistingPath(const FileURL& url) const {
  std::string path = url.path();
  while (path.size() >= 2 && !platform_.fileManager.fileExistsAtPath(path)) {
    path = deletingLastPathComponent(path);
  }
  return path;
}

std::optional<FileURL> AppSandboxFileAccess::runPanel(const FileURL& directory,
                                                      const OpenSavePanelDelegate& rule) {
  const auto panel = platform_.panels.openPanel();
  panel->setCanCreateDirectories(false);
  panel->setCanChooseFiles(true);
  panel->setCanChooseDirectories(true);
  panel->setAllowsMultipleSelection(false);
  panel->setPrompt(prompt);
  panel->setTitle(title);
  panel->setShowsHiddenFiles(false);
  panel->setExtensionHidden(false);
  panel->setDirectoryURL(directory);
  panel->setDelegate(&rule);
  panel->setAccessoryText(message);
  platform_.application.activateIgnoringOtherApps();
  if (panel->runModal() != OpenPanel::Response::OK) return std::nullopt;
  const std::vector<FileURL> urls = panel->urls();
  return urls.empty() ? std::nullopt : std::optional<FileURL>(urls.front());
}

std::optional<FileURL> AppSandboxFileAccess::askPermissionForURL(const FileURL& url) {
  const AppSandboxFileAccessOpenSavePanelDelegate rule(url);
  const FileURL directory = FileURL::fileURLWithPath(nearestExistingPath(url));
  std::optional<FileURL> picked;
  platform_.mainLoop.sync([&] { picked = runPanel(directory, rule); });
  return picked;
}

std::optional<PropertyList::Data> AppSandboxFileAccess::persistPermissionURL(const FileURL& url) {
  auto bookmark = platform_.securityScope.bookmarkDataForURL(url);
  if (!bookmark) {
    platform_.log.write("no bookmark made: " + bookmark.error().describe());
    return std::nullopt;
  }
  bookmarkPersistanceDelegate()->setBookmarkData(bookmark.value(), url);
  return std::move(bookmark).value();
}

std::optional<PropertyList::Data> AppSandboxFileAccess::persistPermissionPath(
    const std::string& path) {
  return persistPermissionURL(FileURL::fileURLWithPath(path));
}

bool AppSandboxFileAccess::usesStaleBookmark(const FileURL& requested,
                                             const std::optional<FileURL>& resolved,
                                             const ScopedBlock& block) {
  bookmarkPersistanceDelegate()->clearBookmarkDataForURL(requested);
  if (!resolved) return false;
  const auto fresh = persistPermissionURL(*resolved);
  if (!fresh) return false;
  if (block) block(*resolved, fresh);
  return true;
}

bool AppSandboxFileAccess::requestAccessPermissionsForFileURL(const FileURL& fileURL,
                                                              PersistPermission persistPermission,
                                                              const ScopedBlock& block) {
  if (fileURL.path().size() > longestPath) {
    platform_.log.write("no access to a path of " + std::to_string(fileURL.path().size()) +
                        " bytes");
    return false;
  }
  const FileURL requested = FileURL::fileURLWithPath(
      platform_.fileManager.resolvingSymlinksInPath(fileURL.standardizingPath().path()));
  auto bookmark = bookmarkPersistanceDelegate()->bookmarkDataForURL(requested);
  if (bookmark) {
    const ResolvedBookmark resolved = platform_.securityScope.urlByResolvingBookmarkData(*bookmark);
    if (resolved.isStale) {
      if (usesStaleBookmark(requested, resolved.url, block)) return true;
      bookmark.reset();
    } else if (resolved.url) {
      if (block) block(*resolved.url, bookmark);
      return true;
    }
  }

  const auto picked = askPermissionForURL(requested);
  if (!picked) return false;
  // A bookmark that no longer resolves is handed on and kept: it may come back with its volume.
  if (persistPermission == PersistPermission::Yes && !bookmark) {
    bookmark = persistPermissionURL(*picked);
  }
  if (block) block(*picked, bookmark);
  return true;
}

bool AppSandboxFileAccess::requestAccessPermissionsForFilePath(const std::string& path,
                                                               PersistPermission persistPermission,
                                                               const ScopedBlock& block) {
  return requestAccessPermissionsForFileURL(FileURL::fileURLWithPath(path), persistPermission,
                                            block);
}

bool AppSandboxFileAccess::accessFileURL(const FileURL& fileURL,
                                         PersistPermission persistPermission, const Block& block) {
  return requestAccessPermissionsForFileURL(
      fileURL, persistPermission,
      [&](const FileURL& securityScopedURL, const std::optional<PropertyList::Data>&) {
        if (!platform_.securityScope.startAccessingSecurityScopedResource(securityScopedURL)) {
          platform_.log.write("no scope started for " + securityScopedURL.path());
        }
        if (block) block();
      });
}

bool AppSandboxFileAccess::accessFileURL(const FileURL& fileURL, const Block& block,
                                         PersistPermission persistPermission) {
  return accessFileURL(fileURL, persistPermission, block);
}

bool AppSandboxFileAccess::accessFilePath(const std::string& path,
                                          PersistPermission persistPermission, const Block& block) {
  return accessFileURL(FileURL::fileURLWithPath(path), persistPermission, block);
}

bool AppSandboxFileAccess::accessFilePath(const std::string& path, const Block& block,
                                          PersistPermission persistPermission) {
  return accessFilePath(path, persistPermission, block);
}

}  // namespace tavrin
