#pragma once

#include <string>
#include <string_view>

#include "foundation/Result.h"
#include "platform/Log.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

/// The hidden name under which one item grows, and the record of it that outlives a killed process.
/// The record goes with this object: the item must have its final name or be removed by then.
class PartialItem {
 public:
  PartialItem(std::string name, std::string recordPath, FileDescriptor record);
  PartialItem(PartialItem&&) noexcept = default;
  PartialItem& operator=(PartialItem&&) = delete;
  PartialItem(const PartialItem&) = delete;
  PartialItem& operator=(const PartialItem&) = delete;
  ~PartialItem();

  /// One component, free at random: ".tavrin-0123456789abcdef.partial".
  const std::string& name() const { return name_; }

  /// Writes the record; to be done once.
  Status write(std::string_view content);

  /// Leaves the record for the next start, when the item could not be removed.
  void keepRecord();

 private:
  std::string name_;
  std::string recordPath_;
  FileDescriptor record_;
};

/// The partial items of all processes that share a folder of records. A record is written before
/// its item is created and is locked (flock) as long as its process lives.
class PartialItems {
 public:
  /// `recordFolder` is an absolute path; the folder is created when it is needed.
  explicit PartialItems(std::string recordFolder);

  /// A name for an item that is about to grow in the folder of `destination`.
  Result<PartialItem> begin(const ItemReference& destination) const;

  /// A name for `item` itself, which is to be set aside under it for a while. When the process is
  /// killed it gets its own name again, with a number behind it where that is taken by then.
  Result<PartialItem> beginSettingAside(const ItemReference& item) const;

  /// Removes or returns what killed processes have left. A record whose folder is not the one it
  /// was written for is left alone, with a line in the log. Ends soon when `operation` is
  /// cancelled, and leaves the rest for the next time.
  void clearLeftovers(Log& log, FileOperation& operation) const;

 private:
  Result<PartialItem> beginRecorded(const ItemReference& item,
                                    const std::string& nameToReturnTo) const;

  std::string recordFolder_;
};

}  // namespace tavrin
