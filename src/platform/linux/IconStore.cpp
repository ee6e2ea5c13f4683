#include "platform/linux/IconStore.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "foundation/PathString.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr const char* folderName = "ItemIcons";

std::string nameOf(const PropertyList::Data& png) {
  const GLibPointer<char> digest(
      g_compute_checksum_for_data(G_CHECKSUM_SHA256, png.data(), png.size()));
  return std::string(digest.get()) + ".png";
}

/// When an image was set last, in seconds and nanoseconds.
std::pair<time_t, long> timeOfUse(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return {0, 0};
  return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

}  // namespace

IconStore::IconStore(FileManager& fileManager, std::string groupIdentifier)
    : fileManager_(fileManager), groupIdentifier_(std::move(groupIdentifier)) {}

Result<std::string> IconStore::keep(const Image& image) {
  const auto png = image.squarePng(largestSide);
  if (!png) return png.error();
  const auto container =
      fileManager_.containerPathForSecurityApplicationGroupIdentifier(groupIdentifier_);
  if (!container) return systemError("find the container for", "icons", ENOENT);
  const std::string folder = appendingPathComponent(*container, folderName);
  const Status made =
      fileManager_.createDirectoryAtPath(folder, FileManager::IntermediateDirectories::Create);
  if (!made) return made.error();
  std::string path = appendingPathComponent(folder, nameOf(png.value()));
  const Status created = fileManager_.createFileAtPath(path, png.value(), FileManager::Replace::No);
  if (created) {
    removeOldest(folder, path);
  } else if (created.error().code != std::errc::file_exists) {
    return created.error();
  }
  // The time of a use decides only what goes first, so a failure matters little.
  ::utimensat(AT_FDCWD, path.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
  return path;
}

void IconStore::removeOldest(const std::string& folder, const std::string& kept) {
  const auto names = fileManager_.contentsOfDirectoryAtPath(folder);
  if (!names || names.value().size() <= mostImages) return;
  std::vector<std::pair<std::pair<time_t, long>, std::string>> images;
  for (const std::string& name : names.value()) {
    std::string path = appendingPathComponent(folder, name);
    if (path != kept) images.emplace_back(timeOfUse(path), std::move(path));
  }
  std::sort(images.begin(), images.end());
  const std::size_t surplus = names.value().size() - mostImages;
  for (std::size_t index = 0; index < std::min(surplus, images.size()); ++index) {
    // What cannot be removed is tried again with the next image.
    [[maybe_unused]] const Status removed = fileManager_.removeItemAtPath(images[index].second);
  }
}

}  // namespace tavrin
