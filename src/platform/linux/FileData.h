#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <memory>
#include <optional>

#include "foundation/Result.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderEntry.h"

namespace tavrin {

/// An open file and what messages call it.
struct OpenFile {
  int descriptor;
  const FolderEntry& entry;
};

/// Copies the contents of regular files by the cheapest way that both file systems offer: shared
/// blocks, a copy within the kernel, reading and writing. It remembers which ways do not work.
class FileData {
 public:
  /// `operation` is borrowed; it hears of each piece of a large file, and may end it there.
  explicit FileData(FileOperation& operation);

  /// Fills the empty `destination` with what `source` holds; holes stay holes. `status` is that of
  /// the source, `share` what the file is of the whole operation.
  Status copy(const OpenFile& source, const OpenFile& destination, const struct stat& status,
              double share);

 private:
  bool shareBlocks(const OpenFile& source, const OpenFile& destination, const struct stat& status);
  Status copySegments(const OpenFile& source, const OpenFile& destination,
                      const struct stat& status);
  Result<off_t> copySegment(const OpenFile& source, const OpenFile& destination, off_t begin,
                            off_t end);
  Result<off_t> copyInKernel(const OpenFile& source, const OpenFile& destination, off_t begin,
                             off_t end);
  Result<off_t> copyByReading(const OpenFile& source, const OpenFile& destination, off_t begin,
                              off_t end);
  void forgetOnNewDevice(dev_t device);
  Status note(const OpenFile& source, off_t bytes);

  FileOperation& operation_;
  double shareOfByte_ = 0;
  std::unique_ptr<char[]> buffer_;
  std::optional<dev_t> device_;
  bool canShareBlocks_ = true;
  bool canCopyInKernel_ = true;
};

}  // namespace tavrin
