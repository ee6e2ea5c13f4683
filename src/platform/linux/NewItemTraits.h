#pragma once

#include <sys/stat.h>

#include <optional>

#include "platform/linux/ItemMetadata.h"

namespace tavrin {

/// What new items of one kind get from the system by themselves, below a folder without a default
/// access control list: their owner and group, and the mode bits that they are asked for as far as
/// the process' mask leaves them. Most need no call to set these then.
class NewItemTraits {
 public:
  /// `neededRights` is what the copying itself needs of the new items.
  explicit NewItemTraits(mode_t neededRights) : neededRights_(neededRights) {}

  /// The mode to create the copy of an item with `source` with.
  mode_t modeToAskFor(const struct stat& source) const;

  /// To be called for each open new item: looks at it when it has something to tell. False with
  /// errno when that fails.
  bool learn(int descriptor, mode_t askedFor);

  /// What a new item that was asked for so has in common with `source`.
  MetadataInPlace inPlace(const struct stat& source, mode_t askedFor) const;

 private:
  mode_t neededRights_;
  mode_t triedBits_ = 0;
  mode_t grantedBits_ = 0;
  /// The file system gives modes that nobody asked for.
  bool hasOwnModes_ = false;
  std::optional<uid_t> user_;
  std::optional<gid_t> group_;
};

}  // namespace tavrin
