#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/FolderChain.h"
#include "platform/linux/FolderListing.h"
#include "platform/linux/NameStack.h"
#include "platform/linux/TreeWorkers.h"

namespace tavrin {

/// A folder on the way of a walk: which of its subfolders are still to be entered, and how the
/// share that it has of the whole operation is spread over what is in it.
struct WalkLevel {
  std::string name;
  NameStack subfolders;
  /// That of each entry of the piece read last.
  double shareOfEntry = 0;
  double shareLeft = 0;
  bool isListed = false;

  /// Reads the next piece of the folder that `chain` stands in; false when there is none, and the
  /// folder is listed then.
  Result<bool> readPiece(FolderListing& listing, const FolderChain& chain,
                         FileOperation& operation);

  /// Whether a walk that stands here should give away the subfolder that it has taken from
  /// `subfolders`. Not the last one: it would have nothing left to do meanwhile.
  bool mayGiveAway(const TreeWorkers& workers, const FileOperation& operation,
                   const FolderChain& chain) const;
};

}  // namespace tavrin
