#include "platform/linux/HeldFolders.h"

#include <algorithm>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

constexpr std::size_t mostFoldersHeld = 16;

bool isPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('\0') == std::string_view::npos;
}

}  // namespace

HeldFolder::HeldFolder(LocatedItem& located, const PartialItems& partials)
    : handle(std::move(located.parent)),
      path(deletingLastPathComponent(located.path)),
      hidden(handle.get(), path, partials) {}

std::shared_ptr<HeldFolder> HeldFolders::heldFolder(std::string_view path) const {
  for (const auto& [heldPath, folder] : held_) {
    if (heldPath == path) return folder;
  }
  return nullptr;
}

Result<ItemPlace> HeldFolders::locate(const std::string& path, ScopeAccess access) {
  const std::size_t nameStart = path.rfind('/') + 1;
  const std::string_view parent = std::string_view(path).substr(0, nameStart);
  const std::string_view name = std::string_view(path).substr(nameStart);
  if (auto folder = heldFolder(parent); folder && isPlainName(name)) {
    return ItemPlace{std::move(folder), std::string(name), path};
  }
  auto located = scopes_.locate(path, access);
  if (!located) return located.error();
  LocatedItem& item = located.value();
  ItemPlace place{std::make_shared<HeldFolder>(item, partials_), item.name, item.path};
  // A grant of one item alone, or to read only, says nothing of the others beside it.
  const bool coversFolder = !item.required && access == ScopeAccess::Change;
  if (batches_ > 0 && coversFolder) {
    if (held_.size() >= mostFoldersHeld) letGoAll();
    held_.emplace_back(parent, place.folder);
  }
  return place;
}

FileManager::Batch HeldFolders::batch() {
  ++batches_;
  return {this, [](HeldFolders* folders) {
            if (--folders->batches_ == 0) folders->letGoAll();
          }};
}

/// A folder may be let go while an operation in it runs, by what others do meanwhile.
bool HeldFolders::isHeld(const HeldFolder& folder) const {
  return std::any_of(held_.begin(), held_.end(),
                     [&](const auto& entry) { return entry.second.get() == &folder; });
}

Status HeldFolders::finish(HeldFolder& folder) {
  return isHeld(folder) ? success() : folder.hidden.write();
}

void HeldFolders::writeWaitingChanges() {
  for (const auto& entry : held_) letGo(*entry.second);
}

void HeldFolders::letGo(HeldFolder& folder) {
  const Status written = folder.hidden.write();
  if (!written) log_.write("hidden flags not changed: " + written.error().describe());
}

void HeldFolders::letGoBelow(const ItemPlace& item) {
  const std::string realPath = appendingPathComponent(item.folder->path, item.name);
  const auto isBelow = [&](const auto& entry) {
    const auto& [heldPath, folder] = entry;
    return folder != item.folder &&
           (isPathAtOrBelow(folder->path, realPath) || isPathAtOrBelow(heldPath, item.path));
  };
  for (const auto& entry : held_) {
    if (isBelow(entry)) letGo(*entry.second);
  }
  std::erase_if(held_, isBelow);
}

void HeldFolders::letGoAll() {
  for (const auto& entry : held_) letGo(*entry.second);
  held_.clear();
}

}  // namespace tavrin
