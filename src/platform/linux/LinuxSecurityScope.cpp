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
  const std::string realPath = pathByResolvingSymlinks(url.path());
  const auto identity = grantedIdentity(realPath);
  if (!identity) return systemError("make bookmark", realPath, identity.error().code.value());
  const auto key = key_.bytes();
  if (!key) return key.error();
  return sealBookmark({realPath, identity.value()}, key.value());
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
  const std::string realPath = pathByResolvingSymlinks(url.path());
  if (const Grant grant = grantAt(realPath)) {
    startedScopes_.start(grant);
    return true;
  }
  return static_cast<bool>(grantedIdentity(realPath));
}

Status LinuxSecurityScope::grantByPicking(const FileURL& url) {
  const std::string realPath = pathByResolvingSymlinks(url.path());
  const auto grant = ScopeGrant::open(realPath);
  if (!grant) return grant.error();
  startedScopes_.start(grant.value());
  const std::lock_guard lock(mutex_);
  granted_[realPath] = grant.value();
  return success();
}

}  // namespace tavrin
