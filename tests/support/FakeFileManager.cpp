#include "tests/support/FakeFileManager.h"

#include <algorithm>
#include <deque>
#include <stdexcept>
#include <utility>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

constexpr int mostLinksFollowed = 40;
constexpr std::size_t longestName = 255;
constexpr std::string_view containersFolder = "/containers";

SystemError failure(std::string operation, const std::string& path, std::errc cause) {
  return {std::move(operation), path, std::make_error_code(cause)};
}

/// The components of a path, "." and ".." among them.
std::deque<std::string> componentsOf(const std::string& path) {
  const auto components = pathComponents(path);
  return {components.begin() + (path.starts_with('/') ? 1 : 0), components.end()};
}

bool namesAnItem(const std::string& path) {
  if (!path.starts_with('/')) return false;
  const std::string name = path.substr(path.rfind('/') + 1);
  return path == "/" || (!name.empty() && name != "." && name != "..");
}

}  // namespace

struct FakeFileManager::Item {
  enum class Kind { File, Folder, Symlink };
  Kind kind = Kind::File;
  std::uint64_t identity = 0;
  bool isHidden = false;
  /// The bytes of a file, the target of a link.
  std::string text;
  std::map<std::string, std::shared_ptr<Item>> children;

  std::shared_ptr<Item> child(const std::string& name) const {
    const auto entry = children.find(name);
    return entry == children.end() ? nullptr : entry->second;
  }
};

/// Where an item stands or could stand.
struct FakeFileManager::Place {
  std::string realPath;
  std::shared_ptr<Item> parent;
  std::string name;
  std::shared_ptr<Item> item;
};

FakeFileManager::FakeFileManager() : root_(makeItem()) {
  root_->kind = Item::Kind::Folder;
}

FakeFileManager::~FakeFileManager() = default;

std::shared_ptr<FakeFileManager::Item> FakeFileManager::makeItem() const {
  auto item = std::make_shared<Item>();
  item->identity = ++lastIdentity_;
  return item;
}

std::shared_ptr<FakeFileManager::Item> FakeFileManager::folderCopy(const Item& item,
                                                                   std::uint64_t& lastIdentity) {
  auto copy = std::make_shared<Item>(item);
  copy->identity = ++lastIdentity;
  for (auto& [name, child] : copy->children) child = folderCopy(*child, lastIdentity);
  return copy;
}

// Resolution

Result<std::pair<std::string, std::shared_ptr<FakeFileManager::Item>>> FakeFileManager::follow(
    const std::string& path) const {
  std::vector<std::pair<std::string, std::shared_ptr<Item>>> way = {{"/", root_}};
  std::deque<std::string> pending = componentsOf(path);
  int links = 0;
  while (!pending.empty()) {
    const std::string name = pending.front();
    pending.pop_front();
    const auto& [folderPath, folder] = way.back();
    if (folder->kind != Item::Kind::Folder)
      return failure("open", path, std::errc::not_a_directory);
    if (name == ".") continue;
    if (name == "..") {
      if (way.size() > 1) way.pop_back();
      continue;
    }
    const auto child = folder->child(name);
    if (!child) return failure("open", path, std::errc::no_such_file_or_directory);
    if (child->kind != Item::Kind::Symlink) {
      way.emplace_back(appendingPathComponent(folderPath, name), child);
      continue;
    }
    if (++links > mostLinksFollowed) {
      return failure("open", path, std::errc::too_many_symbolic_link_levels);
    }
    if (child->text.starts_with('/')) way.resize(1);
    const auto target = componentsOf(child->text);
    pending.insert(pending.begin(), target.begin(), target.end());
  }
  return way.back();
}

Result<FakeFileManager::Place> FakeFileManager::place(const std::string& operation,
                                                      const std::string& path,
                                                      Access access) const {
  if (!namesAnItem(path)) return failure(operation, path, std::errc::invalid_argument);
  if (path == "/") {
    if (access != Access::Read) return failure(operation, path, std::errc::invalid_argument);
    if (!isCovered("/", access)) return failure(operation, path, std::errc::permission_denied);
    return Place{"/", nullptr, "", root_};
  }
  const std::string folderPath = path.substr(0, path.rfind('/') + 1);
  const std::string name = lastPathComponent(path);
  const std::string realPath = appendingPathComponent(resolvingSymlinksInPath(folderPath), name);
  if (!isCovered(realPath, access)) return failure(operation, path, std::errc::permission_denied);
  const auto parent = follow(folderPath);
  if (!parent) return SystemError{operation, path, parent.error().code};
  const auto& folder = parent.value().second;
  if (folder->kind != Item::Kind::Folder) {
    return failure(operation, path, std::errc::not_a_directory);
  }
  if (name.size() > longestName) return failure(operation, path, std::errc::filename_too_long);
  return Place{realPath, folder, name, folder->child(name)};
}

Result<FakeFileManager::Place> FakeFileManager::freePlace(const std::string& operation,
                                                          const std::string& path,
                                                          Access access) const {
  auto found = place(operation, path, access);
  if (found && found.value().item) return failure(operation, path, std::errc::file_exists);
  return found;
}

bool FakeFileManager::isCovered(const std::string& realPath, Access access) const {
  if (!covers_ || isPathAtOrBelow(realPath, containersFolder)) return true;
  const bool isResource = !resourceFolder_.empty() && isPathAtOrBelow(realPath, resourceFolder_);
  if (access == Access::Create && isPickedPlace_ && isPickedPlace_(realPath)) return true;
  return (access == Access::Read && isResource) || covers_(realPath);
}

// FileManager

bool FakeFileManager::fileExistsAtPath(const std::string& path) const {
  if (!path.starts_with('/')) return false;
  if (!namesAnItem(path)) return isDirectoryAtPath(path);
  return find(path) != nullptr;
}

bool FakeFileManager::isDirectoryAtPath(const std::string& path) const {
  if (!path.starts_with('/')) return false;
  const auto found = follow(path);
  return found && found.value().second->kind == Item::Kind::Folder;
}

std::string FakeFileManager::resolvingSymlinksInPath(const std::string& path) const {
  if (!path.starts_with('/')) return path;
  std::string resolved = "/";
  std::deque<std::string> pending = componentsOf(path);
  while (!pending.empty()) {
    const std::string name = pending.front();
    const std::string candidate =
        name == ".." ? deletingLastPathComponent(resolved) : appendingPathComponent(resolved, name);
    const auto found = follow(candidate);
    const auto target = targetOfSymlink(candidate);
    if (!found && !target) break;
    if (!found && found.error().code == std::errc::too_many_symbolic_link_levels) break;
    pending.pop_front();
    if (name == ".") continue;
    if (found) {
      resolved = found.value().first;
      continue;
    }
    resolved = resolvingSymlinksInPath(
        target->starts_with('/') ? *target : appendingPathComponent(resolved, *target));
    break;
  }
  for (const std::string& name : pending) resolved = appendingPathComponent(resolved, name);
  return resolved;
}

Result<std::vector<std::string>> FakeFileManager::contentsOfDirectoryAtPath(
    const std::string& path) const {
  if (const auto injected = fault("list", path)) return *injected;
  const auto found = place("list", path, Access::Read);
  if (!found) return found.error();
  const auto& folder = found.value().item;
  if (!folder) return failure("list", path, std::errc::no_such_file_or_directory);
  if (folder->kind != Item::Kind::Folder) return failure("list", path, std::errc::not_a_directory);
  std::vector<std::string> names;
  for (const auto& entry : folder->children) names.push_back(entry.first);
  return names;
}

Result<PropertyList::Data> FakeFileManager::contentsAtPath(const std::string& path) const {
  if (const auto injected = fault("read", path)) return *injected;
  const auto found = place("read", path, Access::Read);
  if (!found) return found.error();
  auto item = found.value().item;
  if (!item) return failure("read", path, std::errc::no_such_file_or_directory);
  if (item->kind == Item::Kind::Symlink) {
    const auto target = follow(path);
    if (!target) return SystemError{"read", path, target.error().code};
    if (!isCovered(target.value().first, Access::Read)) {
      return failure("read", path, std::errc::permission_denied);
    }
    item = target.value().second;
  }
  if (item->kind == Item::Kind::Folder) return failure("read", path, std::errc::is_a_directory);
  return PropertyList::Data(item->text.begin(), item->text.end());
}

Status FakeFileManager::createFileAtPath(const std::string& path,
                                         const PropertyList::Data& contents, Replace replace) {
  if (const auto injected = fault("create", path)) return *injected;
  const auto found = replace == Replace::Yes ? place("create", path, Access::Create)
                                             : freePlace("create", path, Access::Create);
  if (!found) return found.error();
  const auto& replaced = found.value().item;
  if (replaced && replaced->kind == Item::Kind::Folder) {
    return failure("create", path, std::errc::is_a_directory);
  }
  auto file = makeItem();
  file->text.assign(contents.begin(), contents.end());
  found.value().parent->children[found.value().name] = std::move(file);
  return success();
}

Status FakeFileManager::makeMissingFolders(const std::string& path) {
  if (isDirectoryAtPath(path)) return success();
  auto made = makeMissingFolders(deletingLastPathComponent(path));
  if (!made) return made;
  if (find(path)) return failure("create folder", path, std::errc::not_a_directory);
  const auto found = freePlace("create folder", path);
  if (!found) return found.error();
  auto folder = makeItem();
  folder->kind = Item::Kind::Folder;
  found.value().parent->children[found.value().name] = std::move(folder);
  return success();
}

Status FakeFileManager::createDirectoryAtPath(const std::string& path,
                                              IntermediateDirectories intermediates) {
  if (const auto injected = fault("create folder", path)) return *injected;
  if (!namesAnItem(path)) return failure("create folder", path, std::errc::invalid_argument);
  if (intermediates == IntermediateDirectories::No) {
    const auto found = freePlace("create folder", path);
    if (!found) return found.error();
    return makeMissingFolders(path);
  }
  for (const std::string& name : componentsOf(path)) {
    if (name.size() > longestName) {
      return failure("create folder", path, std::errc::filename_too_long);
    }
  }
  auto parent = makeMissingFolders(deletingLastPathComponent(path));
  if (!parent) return parent;
  const auto found = place("create folder", path, Access::Change);
  if (!found) return found.error();
  const auto& item = found.value().item;
  if (!item) return makeMissingFolders(path);
  if (item->kind == Item::Kind::Folder) return success();
  return failure("create folder", path, std::errc::file_exists);
}

Status FakeFileManager::copyItemAtPath(const std::string& source, const std::string& destination) {
  if (const auto injected = fault("copy", source, destination)) return *injected;
  const auto from = place("copy", source, Access::Read);
  if (!from) return from.error();
  const auto& item = from.value().item;
  if (!item) return failure("copy", source, std::errc::no_such_file_or_directory);
  const auto to = freePlace("copy", destination);
  if (!to) return to.error();
  if (isPathAtOrBelow(to.value().realPath, from.value().realPath)) {
    return failure("copy", destination, std::errc::invalid_argument);
  }
  auto copy = folderCopy(*item, lastIdentity_);
  copy->isHidden = false;
  to.value().parent->children[to.value().name] = std::move(copy);
  return success();
}

Status FakeFileManager::copyFileReplacingAtPath(const std::string& source,
                                                const std::string& destination) {
  if (const auto injected = fault("copy", source, destination)) return *injected;
  const auto from = place("copy", source, Access::Read);
  if (!from) return from.error();
  const auto& item = from.value().item;
  if (!item) return failure("copy", source, std::errc::no_such_file_or_directory);
  const auto to = place("copy", destination, Access::Change);
  if (!to) return to.error();
  if (item->kind == Item::Kind::Symlink) {
    return failure("copy", source, std::errc::too_many_symbolic_link_levels);
  }
  for (const auto& either : {item, to.value().item}) {
    if (either && either->kind == Item::Kind::Folder) {
      return failure("copy", source, std::errc::is_a_directory);
    }
  }
  auto copy = folderCopy(*item, lastIdentity_);
  copy->isHidden = false;
  to.value().parent->children[to.value().name] = std::move(copy);
  return success();
}

Status FakeFileManager::moveItemAtPath(const std::string& source, const std::string& destination) {
  if (const auto injected = fault("move", source, destination)) return *injected;
  if (batches_.use_count() == 1) ++movesOutsideBatches_;
  const auto from = place("move", source, Access::Change);
  if (!from) return from.error();
  const auto& item = from.value().item;
  if (!item) return failure("move", source, std::errc::no_such_file_or_directory);
  const auto to = freePlace("move", destination);
  if (!to) return to.error();
  if (isPathAtOrBelow(to.value().realPath, from.value().realPath)) {
    return failure("move", destination, std::errc::invalid_argument);
  }
  to.value().parent->children[to.value().name] = item;
  from.value().parent->children.erase(from.value().name);
  return success();
}

Status FakeFileManager::removeItemAtPath(const std::string& path) {
  if (const auto injected = fault("remove", path)) return *injected;
  const auto found = place("remove", path, Access::Change);
  if (!found) return found.error();
  if (!found.value().item) return failure("remove", path, std::errc::no_such_file_or_directory);
  found.value().parent->children.erase(found.value().name);
  return success();
}

Status FakeFileManager::setHiddenAtPath(const std::string& path, IsHidden isHidden) {
  if (const auto injected = fault("hide", path)) return *injected;
  const auto found = place("hide", path, Access::Change);
  if (!found) return found.error();
  if (!found.value().item) return failure("hide", path, std::errc::no_such_file_or_directory);
  found.value().item->isHidden = isHidden == IsHidden::Yes;
  return success();
}

FileManager::Batch FakeFileManager::batch() {
  return batches_;
}

std::optional<std::string> FakeFileManager::containerPathForSecurityApplicationGroupIdentifier(
    const std::string& groupIdentifier) {
  const bool isName = !groupIdentifier.empty() && groupIdentifier != "." &&
                      groupIdentifier != ".." && groupIdentifier.find('/') == std::string::npos;
  if (!isName) return std::nullopt;
  const std::string path = appendingPathComponent(containersFolder, groupIdentifier);
  if (!makeMissingFolders(path)) return std::nullopt;
  return path;
}

// What others do

void FakeFileManager::put(const std::string& path, std::shared_ptr<Item> item) {
  addFolder(deletingLastPathComponent(path));
  const auto parent = follow(deletingLastPathComponent(path));
  auto& entry = parent.value().second->children[lastPathComponent(path)];
  if (entry) throw std::logic_error("an item stands at " + path);
  entry = std::move(item);
}

void FakeFileManager::addFile(const std::string& path, std::string_view text) {
  auto file = makeItem();
  file->text = text;
  put(path, std::move(file));
}

void FakeFileManager::addFolder(const std::string& path) {
  if (isDirectoryAtPath(path)) return;
  if (find(path)) throw std::logic_error("no folder stands at " + path);
  auto folder = makeItem();
  folder->kind = Item::Kind::Folder;
  put(path, std::move(folder));
}

void FakeFileManager::addSymlink(const std::string& path, const std::string& target) {
  auto link = makeItem();
  link->kind = Item::Kind::Symlink;
  link->text = target;
  put(path, std::move(link));
}

void FakeFileManager::discardItem(const std::string& path) {
  const auto parent = follow(deletingLastPathComponent(path));
  if (!parent || parent.value().second->children.erase(lastPathComponent(path)) == 0) {
    throw std::logic_error("no item stands at " + path);
  }
}

void FakeFileManager::renameItem(const std::string& path, const std::string& newPath) {
  auto item = find(path);
  discardItem(path);
  put(newPath, std::move(item));
}

// What a test looks at

std::shared_ptr<FakeFileManager::Item> FakeFileManager::find(const std::string& path) const {
  if (path == "/") return root_;
  const auto parent = follow(deletingLastPathComponent(path));
  return parent ? parent.value().second->child(lastPathComponent(path)) : nullptr;
}

std::optional<std::string> FakeFileManager::textOfFile(const std::string& path) const {
  const auto item = find(path);
  if (!item || item->kind != Item::Kind::File) return std::nullopt;
  return item->text;
}

std::optional<std::string> FakeFileManager::targetOfSymlink(const std::string& path) const {
  const auto item = find(path);
  if (!item || item->kind != Item::Kind::Symlink) return std::nullopt;
  return item->text;
}

void FakeFileManager::collectPaths(const Item& folder, const std::string& path,
                                   std::vector<std::string>& paths) {
  for (const auto& [name, child] : folder.children) {
    paths.push_back(appendingPathComponent(path, name));
    collectPaths(*child, appendingPathComponent(path, name), paths);
  }
}

bool FakeFileManager::isHidden(const std::string& path) const {
  const auto item = find(path);
  return item && item->isHidden;
}

std::vector<std::string> FakeFileManager::allPaths() const {
  std::vector<std::string> paths;
  collectPaths(*root_, "/", paths);
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::optional<std::uint64_t> FakeFileManager::identityOfItem(const std::string& path) const {
  const auto found = follow(path);
  if (!found) return std::nullopt;
  return found.value().second->identity;
}

// Faults

void FakeFileManager::failNext(std::errc cause) {
  nextFault_ = cause;
}

void FakeFileManager::failOn(const std::string& path, std::errc cause) {
  faults_[path] = cause;
}

void FakeFileManager::stopFailing() {
  nextFault_.reset();
  faults_.clear();
}

std::optional<SystemError> FakeFileManager::fault(const std::string& operation,
                                                  const std::string& path,
                                                  const std::string& otherPath) const {
  if (const auto cause = std::exchange(nextFault_, std::nullopt)) {
    return failure(operation, path, *cause);
  }
  for (const std::string& faulty : {path, otherPath}) {
    const auto found = faults_.find(faulty);
    if (found != faults_.end()) return failure(operation, faulty, found->second);
  }
  return std::nullopt;
}

void FakeFileManager::enforceScopes(Coverage covers) {
  covers_ = std::move(covers);
}

void FakeFileManager::allowCreation(Coverage isPickedPlace) {
  isPickedPlace_ = std::move(isPickedPlace);
}

void FakeFileManager::setResourceFolder(const std::string& path) {
  resourceFolder_ = path;
}

}  // namespace tavrin
