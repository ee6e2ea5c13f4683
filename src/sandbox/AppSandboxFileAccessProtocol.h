#pragma once

#include <optional>

#include "foundation/FileURL.h"
#include "foundation/PropertyList.h"

namespace tavrin {

/// Where AppSandboxFileAccess reads and writes bookmarks.
class AppSandboxFileAccessProtocol {
 public:
  virtual ~AppSandboxFileAccessProtocol() = default;

  /// The data stored for the URL's path or for its nearest stored ancestor.
  virtual std::optional<PropertyList::Data> bookmarkDataForURL(const FileURL& url) const = 0;

  /// Stores the data under the URL's path.
  virtual void setBookmarkData(const PropertyList::Data& data, const FileURL& url) = 0;

  /// Told when the bookmark that covers a URL has gone stale.
  virtual void clearBookmarkDataForURL(const FileURL& url) = 0;
};

}  // namespace tavrin
