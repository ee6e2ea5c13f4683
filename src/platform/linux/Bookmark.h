#pragma once

#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "platform/linux/BookmarkKey.h"
#include "platform/linux/FileIdentity.h"

namespace tavrin {

/// What a bookmark says: which item stood at which real path when it was made.
struct Bookmark {
  std::string path;
  FileIdentity identity;

  bool operator==(const Bookmark&) const = default;
};

/// The bookmark as bytes that nobody can make or change without the key: a version, the content,
/// and an HMAC-SHA256 (RFC 2104) over both.
PropertyList::Data sealBookmark(const Bookmark& bookmark, const BookmarkKey::Bytes& key);

/// The content of sealed bytes. Fails with bad_message, its path saying why, for bytes that are
/// no bookmark, are of an unknown version, or were not sealed with this key as they are.
Result<Bookmark> unsealBookmark(const PropertyList::Data& sealed, const BookmarkKey::Bytes& key);

}  // namespace tavrin
