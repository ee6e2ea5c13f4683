#include "platform/linux/LinuxFileManager.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/FileCreation.h"
#include "platform/linux/FolderCreation.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/LongPath.h"
#include "platform/linux/PrivateFolder.h"
#include "platform/linux/SymlinkResolution.h"
#include "platform/linux/SystemErrors.h"
#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"

namespace tavrin {

namespace {

constexpr std::size_t largestFileRead = std::size_t{1} << 30;
constexpr mode_t allRightsThatTheUserLeaves = 0777;

struct FolderCloser {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

ItemReference reference(const LocatedItem& item) {
  return {item.parent.get(), item.name, item.path};
}

std::string recordFolder(const std::string& dataFolder) {
  return dataFolder + "/" + identity::applicationId + "/partials";
}

bool isSymbolicLink(const LocatedItem& item) {
  struct stat status {};
  return ::fstatat(item.parent.get(), item.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISLNK(status.st_mode);
}

SystemError cancelled(const char* operation, const std::string& path) {
  return systemError(operation, path, std::errc::operation_canceled);
}

/// What is done in a moment, such as a rename, says nothing of itself.
void noteEnd(const Status& status, FileOperation& operation) {
  if (status && operation.items() == 0) operation.addItems(1);
}

bool isFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

}  // namespace

LinuxFileManager::LinuxFileManager(const LinuxSecurityScope& securityScope, Log& log,
                                   OperationWatch* watch)
    : LinuxFileManager(securityScope, log, userDataDirectory(), watch) {}

LinuxFileManager::LinuxFileManager(const LinuxSecurityScope& securityScope, Log& log,
                                   std::string dataFolder, OperationWatch* watch)
    : scopes_(securityScope.startedScopes()),
      log_(log),
      watch_(watch),
      dataFolder_(std::move(dataFolder)),
      partialItems_(recordFolder(dataFolder_)),
      folders_(scopes_, partialItems_, log) {}

bool LinuxFileManager::fileExistsAtPath(const std::string& path) const {
  return static_cast<bool>(statusAtPath(path, LastLink::Keep));
}

bool LinuxFileManager::isDirectoryAtPath(const std::string& path) const {
  const auto status = statusAtPath(path, LastLink::Follow);
  return status && S_ISDIR(status.value().st_mode);
}

std::string LinuxFileManager::resolvingSymlinksInPath(const std::string& path) const {
  return pathByResolvingSymlinks(path);
}

Result<std::vector<std::string>> LinuxFileManager::contentsOfDirectoryAtPath(
    const std::string& path) const {
  auto opened = scopes_.openFolder(path);
  if (!opened) return opened.error();
  const std::unique_ptr<DIR, FolderCloser> folder(::fdopendir(opened.value().get()));
  if (!folder) return systemError("list", path);
  opened.value().release();
  std::vector<std::string> names;
  while (true) {
    errno = 0;
    // Each call has a stream of its own, which is all that readdir asks for.
    const dirent* entry = ::readdir(folder.get());  // NOLINT(concurrency-mt-unsafe)
    if (entry == nullptr) break;
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  if (errno != 0) return systemError("list", path);
  return names;
}

Result<PropertyList::Data> LinuxFileManager::contentsAtPath(const std::string& path) const {
  auto located = scopes_.locate(path, ScopeAccess::Read);
  if (!located) return located.error();
  if (isSymbolicLink(located.value())) {
    located = scopes_.locate(pathByResolvingSymlinks(path), ScopeAccess::Read);
    if (!located) return located.error();
  }
  return readFile(reference(located.value()), largestFileRead);
}

Status LinuxFileManager::createFileAtPath(const std::string& path,
                                          const PropertyList::Data& contents, Replace replace) {
  const auto place = scopes_.locateForCreation(path);
  if (!place) return place.error();
  const ItemReference item = reference(place.value());
  if (replace == Replace::Yes) return createOrReplaceFile(item, contents, partialItems_);
  Status created = createFile(item, contents, &partialItems_);
  // What is picked in a panel is the file alone, not the folder's list.
  const auto inFolder = created ? folders_.locate(path, ScopeAccess::Change) : created.error();
  if (inFolder) noteHidingFailure(*inFolder.value().folder, dropHiddenName(inFolder.value()));
  return created;
}

Status LinuxFileManager::createDirectoryAtPath(const std::string& path,
                                               IntermediateDirectories intermediates) {
  if (intermediates == IntermediateDirectories::Create) {
    const auto way = scopes_.locateWay(path);
    if (!way) return way.error();
    return createFolders(way.value().folder.get(), way.value().names, path);
  }
  const auto located = scopes_.locate(path, ScopeAccess::Change);
  if (!located) return located.error();
  const LocatedItem& item = located.value();
  if (::mkdirat(item.parent.get(), item.name.c_str(), allRightsThatTheUserLeaves) != 0) {
    return systemError("create folder", path);
  }
  return success();
}

std::unique_ptr<FileOperation> LinuxFileManager::begin(OperationKind kind,
                                                       const std::string& path) {
  return watch_ == nullptr ? std::make_unique<FileOperation>() : watch_->operation(kind, path);
}

Status LinuxFileManager::copy(const std::string& source, const std::string& destination,
                              Copy* copyItem) {
  const auto operation = begin(OperationKind::Copy, source);
  if (operation->isCancelled()) return cancelled("copy", source);
  const auto from = scopes_.locate(source, ScopeAccess::Read);
  if (!from) return from.error();
  const auto to = folders_.locate(destination, ScopeAccess::Change);
  if (!to) return to.error();
  Status copied =
      copyItem(reference(from.value()), to.value().reference(), partialItems_, *operation);
  noteEnd(copied, *operation);
  if (copied) noteHidingFailure(*to.value().folder, dropHiddenName(to.value()));
  return copied;
}

Status LinuxFileManager::copyItemAtPath(const std::string& source, const std::string& destination) {
  return copy(source, destination, &copyItem);
}

Status LinuxFileManager::copyFileReplacingAtPath(const std::string& source,
                                                 const std::string& destination) {
  return copy(source, destination, &copyFileReplacing);
}

Status LinuxFileManager::moveItemAtPath(const std::string& source, const std::string& destination) {
  const auto operation = begin(OperationKind::Move, source);
  if (operation->isCancelled()) return cancelled("move", source);
  const auto from = folders_.locate(source, ScopeAccess::Change);
  if (!from) return from.error();
  const auto to = folders_.locate(destination, ScopeAccess::Change);
  if (!to) return to.error();
  folders_.letGoBelow(from.value());
  if (Status written = writeMovedList(from.value()); !written) return written;
  Status moved =
      moveItem(from.value().reference(), to.value().reference(), partialItems_, *operation);
  noteEnd(moved, *operation);
  if (moved) noteHidingFailure(*from.value().folder, carryHiddenName(from.value(), to.value()));
  return moved;
}

/// A list that moves takes the changes along that wait for it.
Status LinuxFileManager::writeMovedList(const ItemPlace& item) {
  return item.name == hiddenListName ? item.folder->hidden.write() : success();
}

Status LinuxFileManager::removeItemAtPath(const std::string& path) {
  const auto operation = begin(OperationKind::Remove, path);
  if (operation->isCancelled()) return cancelled("remove", path);
  const auto item = folders_.locate(path, ScopeAccess::Change);
  if (!item) return item.error();
  folders_.letGoBelow(item.value());
  Status removed = removeItem(item.value().reference(), *operation);
  noteEnd(removed, *operation);
  if (removed) noteHidingFailure(*item.value().folder, dropHiddenName(item.value()));
  return removed;
}

Status LinuxFileManager::setHiddenAtPath(const std::string& path, IsHidden isHidden) {
  const auto item = folders_.locate(path, ScopeAccess::Change);
  if (!item) return item.error();
  const ItemPlace& place = item.value();
  if (::faccessat(place.folder->handle.get(), place.name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) != 0) {
    return systemError("hide", path);
  }
  if (Status set = place.folder->hidden.set(place.name, isHidden); !set) return set;
  return folders_.finish(*place.folder);
}

FileManager::Batch LinuxFileManager::batch() {
  if (watch_ == nullptr) return folders_.batch();
  // What waits is written while the command still lasts: the second goes first.
  auto series = watch_->series();
  return std::make_shared<std::pair<std::shared_ptr<void>, Batch>>(std::move(series),
                                                                   folders_.batch());
}

Status LinuxFileManager::dropHiddenName(const ItemPlace& item) {
  HiddenNames& hidden = item.folder->hidden;
  if (item.name == hiddenListName) hidden.forget();
  if (Status dropped = hidden.set(item.name, IsHidden::No); !dropped) return dropped;
  return folders_.finish(*item.folder);
}

Status LinuxFileManager::carryHiddenName(const ItemPlace& from, const ItemPlace& to) {
  const auto wasHidden = from.folder->hidden.contains(from.name);
  if (!wasHidden) return wasHidden.error();
  if (Status dropped = dropHiddenName(from); !dropped) return dropped;
  HiddenNames& hidden = to.folder->hidden;
  if (to.name == hiddenListName) hidden.forget();
  const IsHidden isHidden = wasHidden.value() ? IsHidden::Yes : IsHidden::No;
  if (Status carried = hidden.set(to.name, isHidden); !carried) return carried;
  return folders_.finish(*to.folder);
}

/// The operation itself is done by then.
void LinuxFileManager::noteHidingFailure(HeldFolder& folder, const Status& status) {
  if (status || std::exchange(folder.isHidingFailureNoted, true)) return;
  log_.write("hidden flag not carried along: " + status.error().describe());
}

std::optional<std::string> LinuxFileManager::containerPathForSecurityApplicationGroupIdentifier(
    const std::string& groupIdentifier) {
  if (!isFileName(groupIdentifier)) return std::nullopt;
  const std::string path = appendingPathComponent(dataFolder_, groupIdentifier);
  const auto folder = openPrivateFolder(path);
  if (folder) return path;
  log_.write("no group container: " + folder.error().describe());
  return std::nullopt;
}

void LinuxFileManager::clearLeftovers() {
  partialItems_.clearLeftovers(log_, clearing_);
}

void LinuxFileManager::stopClearing() {
  clearing_.cancel();
}

}  // namespace tavrin
