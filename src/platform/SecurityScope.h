#pragma once

#include <optional>
#include <string>

#include "foundation/FileURL.h"
#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// What a bookmark leads to.
struct ResolvedBookmark {
  /// The folder (or file) that the bookmark was made for; nothing when it does not resolve.
  std::optional<FileURL> url;
  /// True when another item than the one of the bookmark stands at its path now.
  bool isStale = false;
};

/// The grants of the program: which folders the user has opened to it, and their bookmarks.
///
/// A URL can be granted in two ways: the user picked it in a panel, which starts its scope at once,
/// or an authentic bookmark of it was resolved. Only a granted URL, or one below a started scope,
/// can be bookmarked or started. A place that the user picked in a save panel is no item yet: it
/// grants the creation of a file of that name in that folder, and nothing else of the folder. A URL
/// with symbolic links stands for the item that they lead to; a granted URL has none, and counts as
/// not granted while a link in its path leads elsewhere. Safe to call on any thread.
class SecurityScope {
 public:
  virtual ~SecurityScope() = default;

  /// Makes the security-scoped bookmark of a URL: opaque, versioned bytes that are worth nothing to
  /// another user and cannot be made up. Fails with permission_denied when the URL is not granted,
  /// and when it does not exist.
  virtual Result<PropertyList::Data> bookmarkDataForURL(const FileURL& url) = 0;

  /// Resolves a bookmark without any user interface and grants what it leads to. The same item at
  /// its path resolves fresh; another one resolves stale; a missing one, a path that holds a
  /// symbolic link now, and a bookmark that is forged, damaged or another user's resolve to no URL,
  /// not stale; the cause reaches the log.
  virtual ResolvedBookmark urlByResolvingBookmarkData(const PropertyList::Data& bookmark) = 0;

  /// Opens the scope of a granted URL: from now on FileManager may work on the item and on all
  /// below it, until the process ends; there is no stop. Starting again is harmless. False when the
  /// URL is not granted or has gone.
  virtual bool startAccessingSecurityScopedResource(const FileURL& url) = 0;
};

}  // namespace tavrin
