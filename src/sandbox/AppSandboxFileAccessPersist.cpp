#include "sandbox/AppSandboxFileAccessPersist.h"

#include <utility>

#include "foundation/PathString.h"

namespace tavrin {

AppSandboxFileAccessPersist::AppSandboxFileAccessPersist(UserDefaults& standardUserDefaults)
    : standardUserDefaults_(standardUserDefaults) {}

std::optional<PropertyList::Data> AppSandboxFileAccessPersist::bookmarkDataForURL(
    const FileURL& url) const {
  const auto bookmarks = standardUserDefaults_.objectForKey(cachedBookmarksKey);
  if (!bookmarks) return std::nullopt;
  for (FileURL folder = url;; folder = folder.deletingLastPathComponent()) {
    const PropertyList* entry = bookmarks->find(folder.path());
    const PropertyList::Data* data = entry == nullptr ? nullptr : entry->dataIfData();
    if (data != nullptr) return *data;
    if (folder.path() == "/") return std::nullopt;
  }
}

void AppSandboxFileAccessPersist::setBookmarkData(const PropertyList::Data& data,
                                                  const FileURL& url) {
  auto bookmarks = standardUserDefaults_.dictionaryForKey(cachedBookmarksKey);
  std::erase_if(bookmarks,
                [&](const auto& entry) { return isPathAtOrBelow(entry.first, url.path()); });
  bookmarks.insert_or_assign(url.path(), data);
  standardUserDefaults_.setObject(std::move(bookmarks), cachedBookmarksKey);
  standardUserDefaults_.synchronize();
}

void AppSandboxFileAccessPersist::clearBookmarkDataForURL(const FileURL& url) {
  auto bookmarks = standardUserDefaults_.dictionaryForKey(cachedBookmarksKey);
  bookmarks.erase(url.path());
  standardUserDefaults_.setObject(std::move(bookmarks), cacheBookmarksKey);
}

std::string AppSandboxFileAccessPersist::keyForBookmarkDataForURL(const FileURL& url) {
  return url.absoluteString();
}

}  // namespace tavrin
