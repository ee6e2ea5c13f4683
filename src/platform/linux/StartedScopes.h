#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileIdentity.h"
#include "platform/linux/ScopeGrant.h"

namespace tavrin {

enum class ScopeAccess { Read, Change };

/// An item, or the place for one, that a started scope covers. Work on it uses the handle and the
/// name, never the path again.
struct LocatedItem {
  /// For messages: the real path but for the item itself.
  std::string path;
  /// The folder that the item stands in (O_PATH).
  FileDescriptor parent;
  std::string name;
  /// Set when the scope covers this one item and not the folder that it stands in: only an item of
  /// this identity may be worked on.
  std::optional<FileIdentity> required;
};

/// The folder of a started scope and the way from it to an item whose parents may be missing.
struct LocatedWay {
  /// The scope's folder (O_PATH).
  FileDescriptor folder;
  /// The names of the folders from there down to the item, and the item's own.
  std::vector<std::string> names;
};

/// The place of one file, there or not, that the user picked by its name in a folder.
struct PickedPlace {
  std::shared_ptr<const ScopeGrant> folder;
  std::string name;
};

/// The scopes that are open, and the items below them. A scope whose item no longer stands at its
/// path covers nothing. Safe to call on any thread.
class StartedScopes {
 public:
  using Grant = std::shared_ptr<const ScopeGrant>;

  void start(const Grant& grant);

  /// Covers the creation of a file at the place.
  void startPlace(const PickedPlace& place);

  /// Covers a folder without a grant from now on, wherever it leads and whenever it is made.
  void startBuiltIn(const std::string& folder, ScopeAccess access);

  /// Finds an item, or the place for one, beneath a scope. The path is resolved to the real folder
  /// of the item; the item itself is not followed. Fails with invalid_argument for a path that is
  /// relative, is "/", holds a NUL byte or has "", "." or ".." as its last component; with
  /// permission_denied when no scope covers the item; else with the cause why its folder cannot be
  /// entered.
  Result<LocatedItem> locate(const std::string& path, ScopeAccess access) const;

  /// The place for a new file: beneath a scope, or one that was picked. Fails as `locate` does.
  Result<LocatedItem> locateForCreation(const std::string& path) const;

  /// The way to an item that is to be changed. Fails with invalid_argument and permission_denied as
  /// `locate` does. The way of an item that is itself a scope's has its own name only, seen from
  /// its folder.
  Result<LocatedWay> locateWay(const std::string& path) const;

  /// Opens the folder at a path for listing, not following it as a symbolic link; "/" too, when its
  /// scope is started. Fails as `locate` does.
  Result<FileDescriptor> openFolder(const std::string& path) const;

  /// Whether a started scope, the built-in ones not counted, covers the item at a real path.
  bool hasGrantFor(const std::string& realPath) const;

 private:
  struct BuiltIn {
    std::string path;
    ScopeAccess access;
    Grant grant;
  };
  struct Covering {
    Grant grant;
    /// The item's path from the scope's folder; "" when the item is the scope's own.
    std::string below;
  };

  std::vector<Grant> candidates(const std::string& path, ScopeAccess access) const;
  std::optional<Covering> covering(const std::string& path, ScopeAccess access) const;
  void renewBuiltIns() const;
  Grant folderOfPlace(const std::string& realPath) const;
  Result<LocatedItem> locateReal(const std::string& path, ScopeAccess access) const;

  mutable std::mutex mutex_;
  std::map<std::string, Grant> started_;
  /// The folders of the picked places, by the real paths of the places.
  std::map<std::string, Grant> places_;
  mutable std::vector<BuiltIn> builtIns_;
};

}  // namespace tavrin
