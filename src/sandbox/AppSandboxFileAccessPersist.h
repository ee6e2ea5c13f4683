#pragma once

#include <string>

#include "platform/UserDefaults.h"
#include "sandbox/AppSandboxFileAccessProtocol.h"

namespace tavrin {

/// Keeps bookmarks in the standard user defaults: a dictionary of path to bookmark data. Paths are
/// compared exactly. Used on the main thread.
class AppSandboxFileAccessPersist final : public AppSandboxFileAccessProtocol {
 public:
  /// The dictionary that lookups read.
  static constexpr const char* cachedBookmarksKey = "cachedBookmarks";
  /// What clearBookmarkDataForURL writes; nobody reads it.
  static constexpr const char* cacheBookmarksKey = "cacheBookmarks";

  /// `standardUserDefaults` outlives this object.
  explicit AppSandboxFileAccessPersist(UserDefaults& standardUserDefaults);

  std::optional<PropertyList::Data> bookmarkDataForURL(const FileURL& url) const override;

  /// Stores the data and drops every entry for the same path and for paths below it.
  void setBookmarkData(const PropertyList::Data& data, const FileURL& url) override;

  /// Writes the dictionary without the URL's entry under cacheBookmarksKey. The dictionary that
  /// lookups read stays as it is: a grant that cannot be made anew is still there to be asked for.
  void clearBookmarkDataForURL(const FileURL& url) override;

  /// The written form of the URL: "file:///tmp".
  static std::string keyForBookmarkDataForURL(const FileURL& url);

 private:
  UserDefaults& standardUserDefaults_;
};

}  // namespace tavrin
