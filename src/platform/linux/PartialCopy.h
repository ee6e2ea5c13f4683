#pragma once

#include <sys/stat.h>

#include <optional>

#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderCopy.h"
#include "platform/linux/ItemReference.h"
#include "platform/linux/PartialItems.h"
#include "platform/linux/TreeRemoval.h"

namespace tavrin {

/// A copy that is whole before it has a name. Without one it is removed again.
class PartialCopy {
 public:
  /// The arguments are borrowed.
  PartialCopy(const ItemReference& source, const ItemReference& destination,
              const PartialItems& partials, CopyPurpose purpose, FileOperation& operation);
  PartialCopy(const PartialCopy&) = delete;
  PartialCopy& operator=(const PartialCopy&) = delete;
  ~PartialCopy();

  /// Looks at the source; to be done first.
  Status examine();

  /// True for a folder and a large file.
  bool mayTakeLong() const;

  /// Copies the source; see copyItem for what it keeps and when it fails.
  Status build();

  /// Copies a source that is to be a regular file, for `replace`; see copyFileReplacing.
  Status buildReplacement();

  /// Makes what was built survive a power cut.
  Status makeDurable();

  /// Gives the copy its name. When that is taken, file_exists.
  Status giveName();

  /// Puts what `buildReplacement` has built in the place of what has the name.
  Status replace();

  /// Removes what was built unless it has its name; to be done where that may take long.
  void discard();

  /// Makes the name survive a power cut.
  Status makeNameDurable();

  /// How exactly the copy keeps times, found by trying.
  Result<TimeGranularity> timeGranularity();

 private:
  Status buildFile();
  Status buildFolder();
  Status buildOther();
  Status begin();
  Result<FileDescriptor> createFile();

  const ItemReference& source_;
  const ItemReference& destination_;
  const PartialItems& partials_;
  CopyPurpose purpose_;
  FileOperation& operation_;
  struct stat sourceStatus_ = {};
  std::optional<PartialItem> partial_;
  /// The open file or folder root, from before its first byte: write-back errors are told to
  /// handles that were open when they happened.
  FileDescriptor content_;
  bool isNamed_ = false;
};

}  // namespace tavrin
