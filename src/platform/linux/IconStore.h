#pragma once

#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "platform/FileManager.h"
#include "platform/Image.h"

namespace tavrin {

/// The images that items have as their icons, each once, under a name that tells its contents. A
/// folder that is copied or moved takes its icon along by naming the image, so nobody knows when an
/// image is not used any more: the store keeps the `mostImages` that were set last.
class IconStore {
 public:
  static constexpr int largestSide = 512;
  static constexpr std::size_t mostImages = 500;

  /// `fileManager` outlives the store. The images lie in the container of that group.
  IconStore(FileManager& fileManager, std::string groupIdentifier);

  /// Keeps an image as a PNG of at most `largestSide` pixels; its absolute path.
  Result<std::string> keep(const Image& image);

 private:
  void removeOldest(const std::string& folder, const std::string& kept);

  FileManager& fileManager_;
  std::string groupIdentifier_;
};

}  // namespace tavrin
