#pragma once

#include <string>

namespace tavrin {

/// An item by the folder it stands in: an open handle and one name. The file engine reaches items
/// in this way only, so that nothing another process renames or swaps can lead it elsewhere.
struct ItemReference {
  /// An open folder (O_PATH or readable), borrowed: the caller keeps it open during the call.
  int parentDescriptor = -1;
  /// One component, neither empty nor "." nor "..", without "/".
  std::string name;
  /// The absolute path as the user knows it, for messages; it is never opened.
  std::string path;
};

}  // namespace tavrin
