#include "platform/linux/WalkLevel.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace tavrin {
namespace {

// So many items are done before a thread more could win anything.
constexpr std::uint64_t itemsBeforeHelp = 64;
// Each subtree has a path of its own: very deep ones would cost their square.
constexpr std::size_t longestPathToGiveAway = std::size_t{64} * 1024;

}  // namespace

Result<bool> WalkLevel::readPiece(FolderListing& listing, const FolderChain& chain,
                                  FileOperation& operation) {
  Result<bool> found = listing.readPiece(chain.current(), chain.path());
  if (!found) return found;
  if (!found.value()) {
    isListed = true;
    operation.addShare(std::exchange(shareLeft, 0));
    return found;
  }
  const std::size_t count = listing.countInPiece();
  if (count == 0) return found;
  const double share = listing.isPieceFull() ? shareLeft / 2 : shareLeft;
  shareLeft -= share;
  shareOfEntry = share / static_cast<double>(count);
  return found;
}

bool WalkLevel::mayGiveAway(const TreeWorkers& workers, const FileOperation& operation,
                            const FolderChain& chain) const {
  return workers.wantsSubtrees() && operation.items() > itemsBeforeHelp && !subfolders.isEmpty() &&
         chain.path().size() < longestPathToGiveAway;
}

}  // namespace tavrin
