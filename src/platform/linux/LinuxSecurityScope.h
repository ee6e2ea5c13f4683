#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/Log.h"
#include "platform/SecurityScope.h"
#include "platform/linux/BookmarkKey.h"
#include "platform/linux/StartedScopes.h"

namespace tavrin {

/// The grants as open handles. A scope is a handle of the granted folder; for a granted file it is
/// that of its folder, with the file's name and identity. Grants are keyed by real path. A bookmark
/// is the item's real path and identity, sealed with a key of the user's.
class LinuxSecurityScope final : public SecurityScope {
 public:
  /// Absolute paths of folders; each may be missing until it is used.
  struct Locations {
    /// Where the bookmark key lies.
    std::string keyFolder;
    /// What may be read and changed without a grant: the group container. "" for none.
    std::string container;
    /// What may be read without a grant: the program's resources. "" for none.
    std::string resources;
  };

  /// The locations in the XDG base directories.
  static Locations standardLocations(const std::string& resources);

  LinuxSecurityScope(const Locations& locations, Log& log);

  Result<PropertyList::Data> bookmarkDataForURL(const FileURL& url) override;
  ResolvedBookmark urlByResolvingBookmarkData(const PropertyList::Data& bookmark) override;
  bool startAccessingSecurityScopedResource(const FileURL& url) override;

  /// Grants what the user has picked in a panel, as the handle that the panel took of it, and
  /// starts its scope.
  void grantByPicking(const std::shared_ptr<const ScopeGrant>& picked);

  /// Grants the creation of a file at a place that the user has picked in a save panel.
  void grantPlaceByPicking(const PickedPlace& place) { startedScopes_.startPlace(place); }

  /// What is covered now.
  const StartedScopes& startedScopes() const { return startedScopes_; }

 private:
  using Grant = StartedScopes::Grant;

  bool isGranted(const std::string& path) const;
  Result<std::string> realPathOf(const FileURL& url) const;
  Grant grantAt(const std::string& realPath) const;
  Result<FileIdentity> grantedIdentity(const std::string& realPath) const;
  ResolvedBookmark grantBookmarked(const std::string& path, const FileIdentity& identity);

  Log& log_;
  BookmarkKey key_;
  StartedScopes startedScopes_;
  mutable std::mutex mutex_;
  std::map<std::string, Grant> granted_;
};

}  // namespace tavrin
