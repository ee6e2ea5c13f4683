#include "platform/linux/LinuxSecurityScope.h"

#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/Bookmark.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/SymlinkResolution.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

LinuxSecurityScope::Locations LinuxSecurityScope::standardLocations(const std::string& resources) {
  return {appendingPathComponent(userConfigDirectory(), identity::applicationId),
          appendingPathComponent(userDataDirectory(), identity::groupIdentifier), resources};
}

LinuxSecurityScope::LinuxSecurityScope(const Locations& locations, Log& log)
    : log_(log), key_(locations.keyFolder, log) {
  if (!locations.container.empty()) {
    startedScopes_.startBuiltIn(locations.container, ScopeAccess::Change);
  }
  if (!locations.resources.empty()) {
    startedScopes_.startBuiltIn(locations.resources, ScopeAccess::Read);
  }
}

bool LinuxSecurityScope::isGranted(const std::string& path) const {
  const std::lock_guard lock(mutex_);
  return granted_.contains(path);
}

/// Where the links of a URL lead. A granted URL had none: one that came into its path since must
/// not lead its grant elsewhere.
Result<std::string> LinuxSecurityScope::realPathOf(const FileURL& url) const {
  std::string realPath = pathByResolvingSymlinks(url.path());
  if (realPath != url.path() && isGranted(url.path())) {
    return systemError("find grant", url.path(), std::errc::permission_denied);
  }
  return realPath;
}

/// The grant of a real path as long as its item stands there.
LinuxSecurityScope::Grant LinuxSecurityScope::grantAt(const std::string& realPath) const {
  Grant grant;
  {
    const std::lock_guard lock(mutex_);
    const auto entry = granted_.find(realPath);
    if (entry != granted_.end()) grant = entry->second;
  }
  return grant && grant->standsAtItsPath() ? grant : nullptr;
}

Result<FileIdentity> LinuxSecurityScope::grantedIdentity(const std::string& realPath) const {
  if (const Grant grant = grantAt(realPath)) return grant->identity();
  auto present = identityAtPath(realPath);
  if (present && !startedScopes_.hasGrantFor(realPath)) {
    return systemError("find grant", realPath, std::errc::permission_denied);
  }
  return present;
}

Result<PropertyList::Data> LinuxSecurityScope::bookmarkDataForURL(const FileURL& url) {
  const auto realPath = realPathOf(url);
  if (!realPath) return realPath.error();
  const auto identity = grantedIdentity(realPath.value());
  if (!identity) {
    return systemError("make bookmark", realPath.value(), identity.error().code.value());
  }
  const auto key = key_.bytes();
  if (!key) return key.error();
  return sealBookmark({realPath.value(), identity.value()}, key.value());
}

ResolvedBookmark LinuxSecurityScope::urlByResolvingBookmarkData(
    const PropertyList::Data& bookmark) {
  const auto key = key_.bytes();
  if (!key) {
    log_.write(key.error().describe());
    return {};
  }
  const auto content = unsealBookmark(bookmark, key.value());
  if (!content) {
    log_.write(content.error().describe());
    return {};
  }
  return grantBookmarked(content.value().path, content.value().identity);
}

ResolvedBookmark LinuxSecurityScope::grantBookmarked(const std::string& path,
                                                     const FileIdentity& identity) {
  const auto grant = ScopeGrant::open(path);
  if (!grant) {
    log_.write("bookmark does not resolve: " + grant.error().describe());
    return {};
  }
  const std::lock_guard lock(mutex_);
  granted_[path] = grant.value();
  return {FileURL::fileURLWithPath(path), grant.value()->identity() != identity};
}

bool LinuxSecurityScope::startAccessingSecurityScopedResource(const FileURL& url) {
  const auto realPath = realPathOf(url);
  if (!realPath) return false;
  if (const Grant grant = grantAt(realPath.value())) {
    startedScopes_.start(grant);
    return true;
  }
  return static_cast<bool>(grantedIdentity(realPath.value()));
}

void LinuxSecurityScope::grantByPicking(const Grant& picked) {
  startedScopes_.start(picked);
  const std::lock_guard lock(mutex_);
  granted_[picked->path()] = picked;
}

}  // namespace tavrin
