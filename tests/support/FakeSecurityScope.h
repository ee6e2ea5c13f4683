#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/SecurityScope.h"
#include "tests/support/FakeFileManager.h"

namespace tavrin {

/// SecurityScope over the items of a FakeFileManager, which outlives it.
class FakeSecurityScope final : public SecurityScope {
 public:
  /// Bookmarks made with one user key are worth nothing with another.
  explicit FakeSecurityScope(FakeFileManager& fileManager, std::string userKey = "user");

  Result<PropertyList::Data> bookmarkDataForURL(const FileURL& url) override;
  ResolvedBookmark urlByResolvingBookmarkData(const PropertyList::Data& bookmark) override;
  bool startAccessingSecurityScopedResource(const FileURL& url) override;

  /// What a panel does when the user picks an item: grants it and starts its scope. False when no
  /// item stands there.
  bool grantByPanel(const std::string& path);

  /// What a save panel does when the user picks the name of a file, there or not.
  void grantPlaceByPanel(const std::string& path);

  /// Makes the file manager refuse what no started scope covers.
  void enforce();

  /// Whether a started scope covers a real path. A scope whose item has left its path covers
  /// nothing.
  bool covers(const std::string& realPath) const;

  /// The real paths of the started scopes, sorted.
  std::vector<std::string> startedPaths() const;

  /// The next bookmark is not made; the cause is `cause`.
  void failNextBookmark(std::errc cause);

 private:
  using Grants = std::map<std::string, std::uint64_t>;

  bool isStarted(const std::string& realPath) const;
  bool isLedElsewhere(const std::string& path) const;
  std::optional<std::uint64_t> grantedIdentity(const std::string& realPath) const;
  PropertyList::Data seal(const std::string& content) const;

  FakeFileManager& fileManager_;
  std::string userKey_;
  mutable std::mutex mutex_;
  /// Real paths and the identities of the items that they were granted for.
  Grants granted_;
  Grants started_;
  /// The real paths of picked places and the identities of their folders.
  Grants places_;
  std::optional<std::errc> nextFault_;
};

}  // namespace tavrin
