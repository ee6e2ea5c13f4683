#include "platform/linux/StartedScopes.h"

#include <fcntl.h>

#include <algorithm>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/BeneathFolder.h"
#include "platform/linux/SymlinkResolution.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

bool namesAnItem(const std::string& path) {
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return false;
  const std::string name = path.substr(path.rfind('/') + 1);
  return !name.empty() && name != "." && name != "..";
}

Result<FileDescriptor> duplicate(int descriptor, const std::string& path) {
  FileDescriptor copy(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
  if (!copy) return systemError("open", path);
  return copy;
}

std::string pathBelow(const std::string& path, const std::string& folder) {
  if (path == folder) return "";
  return path.substr(folder == "/" ? 1 : folder.size() + 1);
}

/// The path with its folder resolved and its last component as it is.
std::string pathInRealFolder(const std::string& path) {
  return appendingPathComponent(pathByResolvingSymlinks(path.substr(0, path.rfind('/') + 1)),
                                lastPathComponent(path));
}

SystemError uncovered(const std::string& path) {
  return systemError("find scope", path, std::errc::permission_denied);
}

/// A grant of one item, seen from the folder that it stands in.
Result<LocatedItem> locateGranted(const ScopeGrant& grant) {
  const std::string name = lastPathComponent(grant.path());
  const auto present = identityAt(grant.parent(), name);
  if (!present || present.value() != grant.identity()) return uncovered(grant.path());
  auto parent = duplicate(grant.parent(), grant.path());
  if (!parent) return parent.error();
  return LocatedItem{grant.path(), std::move(parent).value(), name, grant.identity()};
}

}  // namespace

void StartedScopes::start(const Grant& grant) {
  const std::lock_guard lock(mutex_);
  started_[grant->path()] = grant;
}

void StartedScopes::startPlace(const PickedPlace& place) {
  const std::lock_guard lock(mutex_);
  places_[appendingPathComponent(place.folder->path(), place.name)] = place.folder;
}

void StartedScopes::startBuiltIn(const std::string& folder, ScopeAccess access) {
  const std::lock_guard lock(mutex_);
  builtIns_.push_back({folder, access, nullptr});
}

void StartedScopes::renewBuiltIns() const {
  const std::lock_guard lock(mutex_);
  for (BuiltIn& builtIn : builtIns_) {
    auto grant = ScopeGrant::open(pathByResolvingSymlinks(builtIn.path));
    builtIn.grant = grant ? std::move(grant).value() : nullptr;
  }
}

/// The scopes that cover a real path by their own paths, those first that cover its folder too.
std::vector<StartedScopes::Grant> StartedScopes::candidates(const std::string& path,
                                                            ScopeAccess access) const {
  const std::lock_guard lock(mutex_);
  std::vector<Grant> found;
  for (std::string folder = path; folder != "/" && !started_.empty();) {
    folder = deletingLastPathComponent(folder);
    const auto entry = started_.find(folder);
    if (entry != started_.end() && entry->second->isFolder()) found.push_back(entry->second);
  }
  for (const BuiltIn& builtIn : builtIns_) {
    if (!builtIn.grant || !isPathAtOrBelow(path, builtIn.grant->path())) continue;
    if (access == ScopeAccess::Read || builtIn.access == access) found.push_back(builtIn.grant);
  }
  const auto own = started_.find(path);
  if (own != started_.end()) found.push_back(own->second);
  return found;
}

std::optional<StartedScopes::Covering> StartedScopes::covering(const std::string& path,
                                                               ScopeAccess access) const {
  for (int attempt = 0; attempt < 2; ++attempt) {
    for (const Grant& grant : candidates(path, access)) {
      if (grant->standsAtItsPath()) return Covering{grant, pathBelow(path, grant->path())};
    }
    // A built-in folder may have been made, or made anew, since it was last looked for.
    if (attempt == 0) renewBuiltIns();
  }
  return std::nullopt;
}

Result<LocatedItem> StartedScopes::locateReal(const std::string& path, ScopeAccess access) const {
  const auto scope = covering(path, access);
  if (!scope) return uncovered(path);
  if (scope->below.empty()) return locateGranted(*scope->grant);
  auto parent = openFolderBeneath(scope->grant->item(), deletingLastPathComponent(scope->below));
  if (!parent) return systemError("open folder of", path, parent.error().code.value());
  return LocatedItem{path, std::move(parent).value(), lastPathComponent(path), std::nullopt};
}

Result<LocatedItem> StartedScopes::locate(const std::string& path, ScopeAccess access) const {
  if (!namesAnItem(path)) return systemError("locate", path, std::errc::invalid_argument);
  // Most paths are real as they come, and then this is all: beneath a scope no link is followed.
  auto direct = locateReal(path, access);
  if (direct) return direct;
  const std::string realPath = pathInRealFolder(path);
  return realPath == path ? std::move(direct) : locateReal(realPath, access);
}

StartedScopes::Grant StartedScopes::folderOfPlace(const std::string& realPath) const {
  Grant folder;
  {
    const std::lock_guard lock(mutex_);
    const auto place = places_.find(realPath);
    if (place != places_.end()) folder = place->second;
  }
  return folder && folder->standsAtItsPath() ? folder : nullptr;
}

Result<LocatedItem> StartedScopes::locateForCreation(const std::string& path) const {
  auto located = locate(path, ScopeAccess::Change);
  if (located || located.error().code != std::errc::permission_denied) return located;
  const std::string realPath = pathInRealFolder(path);
  const Grant folder = folderOfPlace(realPath);
  if (!folder) return located;
  auto parent = duplicate(folder->item(), path);
  if (!parent) return parent.error();
  return LocatedItem{realPath, std::move(parent).value(), lastPathComponent(path), std::nullopt};
}

Result<LocatedWay> StartedScopes::locateWay(const std::string& path) const {
  if (!namesAnItem(path)) return systemError("locate", path, std::errc::invalid_argument);
  const std::string realPath = pathInRealFolder(path);
  const auto scope = covering(realPath, ScopeAccess::Change);
  if (!scope) return uncovered(path);
  const bool isOwn = scope->below.empty();
  auto folder = duplicate(isOwn ? scope->grant->parent() : scope->grant->item(), path);
  if (!folder) return folder.error();
  return LocatedWay{std::move(folder).value(), isOwn ? std::vector{lastPathComponent(realPath)}
                                                     : pathComponents(scope->below)};
}

Result<FileDescriptor> StartedScopes::openFolder(const std::string& path) const {
  constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  if (path == "/") {
    if (!covering(path, ScopeAccess::Read)) return uncovered(path);
    FileDescriptor root(::open("/", flags));
    if (!root) return systemError("open folder", path);
    return root;
  }
  const auto located = locate(path, ScopeAccess::Read);
  if (!located) return located.error();
  const LocatedItem& item = located.value();
  FileDescriptor folder(::openat(item.parent.get(), item.name.c_str(), flags));
  if (!folder) return systemError("open folder", path, errno == ELOOP ? ENOTDIR : errno);
  if (!item.required) return folder;
  const auto opened = identityAt(folder.get(), "");
  if (!opened || opened.value() != *item.required) return uncovered(path);
  return folder;
}

bool StartedScopes::hasGrantFor(const std::string& realPath) const {
  std::vector<Grant> grants;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [path, grant] : started_) {
      if (isPathAtOrBelow(realPath, path)) grants.push_back(grant);
    }
  }
  return std::any_of(grants.begin(), grants.end(), [&realPath](const Grant& grant) {
    const bool covers = grant->isFolder() || grant->path() == realPath;
    return covers && grant->standsAtItsPath();
  });
}

}  // namespace tavrin
