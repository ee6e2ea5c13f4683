#include "foundation/PathHelpers.h"

#include <array>

#include "foundation/PathString.h"
#include "foundation/Translatable.h"

namespace tavrin {

constexpr std::string_view undefinedFolder = translatable("Undefined");

std::string uniquePathForPath(const std::string& path, const ItemExists& itemExists) {
  if (!itemExists(path)) return path;
  const std::string base = deletingPathExtension(path);
  std::string candidate = path;
  for (int counter = 2;; ++counter) {
    const std::string extension = pathExtension(candidate);
    candidate = base + " " + std::to_string(counter);
    if (!extension.empty()) candidate += "." + extension;
    if (!itemExists(candidate)) return candidate;
  }
}

std::string realHomePath(const Account& account) {
  return account.homeDirectory;
}

std::string expandingHome(std::string_view path, std::string_view homePath) {
  if (!path.starts_with('~')) return std::string(path);
  return std::string(homePath).append(path.substr(1));
}

std::string abbreviatingHome(std::string_view path, std::string_view homePath) {
  if (!isPathAtOrBelow(path, homePath)) return std::string(path);
  return std::string("~").append(path.substr(homePath.size()));
}

bool isApplicationInstalled(
    const std::string& bundleIdentifier,
    const std::function<std::size_t(const std::string& bundleIdentifier)>& countApplications) {
  return countApplications(bundleIdentifier) > 0;
}

std::string displayNameOfFolder(const std::string& path, std::string_view homePath,
                                const std::function<std::string(const std::string&)>& localized) {
  static constexpr std::array<std::string_view, 6> knownFolders = {
      translatable("Downloads"), translatable("Pictures"), translatable("Music"),
      translatable("Movies"),    translatable("Desktop"),  translatable("Documents")};
  for (const std::string_view folder : knownFolders) {
    if (path == std::string(homePath).append("/").append(folder)) {
      return localized(std::string(folder));
    }
  }
  if (path == undefinedFolder) return localized(std::string(undefinedFolder));
  return lastPathComponent(path);
}

}  // namespace tavrin
