#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/linux/HiddenNames.h"
#include "platform/linux/ItemReference.h"
#include "platform/linux/StartedScopes.h"

namespace tavrin {

/// A folder that operations work in, held open, and its list of hidden names.
struct HeldFolder {
  HeldFolder(LocatedItem& located, const PartialItems& partials);

  FileDescriptor handle;
  /// The real path.
  std::string path;
  HiddenNames hidden;
  /// Whether the log has heard why the list does not follow its items.
  bool isHidingFailureNoted = false;
};

/// An item, or the place for one, in a folder that is held.
struct ItemPlace {
  std::shared_ptr<HeldFolder> folder;
  std::string name;
  /// For messages.
  std::string path;

  ItemReference reference() const { return {folder->handle.get(), name, path}; }
};

/// Finds the places of items by the started scopes. Within a batch a folder is found once and then
/// held: what was granted stays in hand until the end of the batch, whoever renames it meanwhile.
class HeldFolders {
 public:
  /// All outlive this object.
  HeldFolders(const StartedScopes& scopes, const PartialItems& partials, Log& log)
      : scopes_(scopes), partials_(partials), log_(log) {}
  HeldFolders(const HeldFolders&) = delete;
  HeldFolders& operator=(const HeldFolders&) = delete;

  /// As StartedScopes::locate.
  Result<ItemPlace> locate(const std::string& path, ScopeAccess access);

  /// Holds folders and their changes while it lives. This object outlives it.
  FileManager::Batch batch();

  /// The end of an operation that changed a list of hidden names: writes it, or leaves that to the
  /// end of the batch.
  Status finish(HeldFolder& folder);

  /// Writes the changes that wait for the end of the batch; a failure reaches the log.
  void writeWaitingChanges();

  /// To be called before an item goes: its path leads elsewhere then.
  void letGoBelow(const ItemPlace& item);

 private:
  std::shared_ptr<HeldFolder> heldFolder(std::string_view path) const;
  bool isHeld(const HeldFolder& folder) const;
  void letGo(HeldFolder& folder);
  void letGoAll();

  const StartedScopes& scopes_;
  const PartialItems& partials_;
  Log& log_;
  int batches_ = 0;
  /// By the path that was asked for, up to and with its last separator.
  std::vector<std::pair<std::string, std::shared_ptr<HeldFolder>>> held_;
};

}  // namespace tavrin
