#pragma once

#include <sys/stat.h>

#include "foundation/Result.h"
#include "platform/linux/FileData.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/HardLinks.h"
#include "platform/linux/NewItemTraits.h"

namespace tavrin {

/// A regular file of the source, open for reading, and its status at that moment.
struct SourceFile {
  FileDescriptor descriptor;
  struct stat status = {};
};

/// Opens a regular file without following a link and without blocking. A handle that owns nothing
/// means that the item is something else or has vanished.
Result<SourceFile> openSourceFile(const FolderEntry& source);

/// Copies single items that are no folders.
class ItemCopy {
 public:
  enum class Outcome { Copied, IsFolder, Vanished };

  /// `operation` is borrowed and hears of what is copied.
  explicit ItemCopy(FileOperation& operation) : operation_(operation), data_(operation) {}

  /// Copies an item to a name in an open folder of a partial copy. `type` is what the listing said
  /// (DT_REG, ...), which need not be true any more. `links` may be null. `share` is what the item
  /// is of the whole operation.
  Result<Outcome> copy(const FolderEntry& source, const FolderEntry& destination,
                       unsigned char type, HardLinks* links, double share);

  /// Fills an empty open file with the contents and metadata of its source, but for what of these
  /// is in place.
  Status fill(const SourceFile& file, const FolderEntry& source, const OpenFile& destination,
              MetadataInPlace inPlace, double share);

 private:
  Status copyFile(const SourceFile& file, const FolderEntry& source, const FolderEntry& destination,
                  double share);
  Status copyAnything(const SourceFile& file, const FolderEntry& source,
                      const FolderEntry& destination, double share);
  Result<Outcome> copyOnce(const SourceFile& file, const FolderEntry& source,
                           const FolderEntry& destination, HardLinks* links, double share);

  FileOperation& operation_;
  FileData data_;
  NewItemTraits newFiles_{S_IRUSR | S_IWUSR};
};

}  // namespace tavrin
