#include "platform/linux/CopyComparison.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <optional>
#include <string>

namespace tavrin {
namespace {

constexpr TimeGranularity second = 1'000'000'000;

bool isSameTime(const timespec& source, const timespec& copy, TimeGranularity granularity) {
  if (source.tv_sec == copy.tv_sec && source.tv_nsec == copy.tv_nsec) return true;
  const TimeGranularity seconds = granularity > second ? granularity / second : 1;
  const TimeGranularity nanoseconds = granularity > second ? second : granularity;
  return copy.tv_sec == source.tv_sec - source.tv_sec % seconds &&
         copy.tv_nsec == source.tv_nsec - source.tv_nsec % nanoseconds;
}

std::optional<std::string> linkTarget(const FolderEntry& link) {
  std::array<char, PATH_MAX + 1> target;
  const ssize_t size = ::readlinkat(link.folder(), link.nameBytes(), target.data(), target.size());
  if (size < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(size));
}

}  // namespace

Result<bool> isHeldUnchanged(const FolderEntry& source, const FolderEntry& copy,
                             TimeGranularity granularity) {
  struct stat now = {};
  struct stat held = {};
  if (::fstatat(source.folder(), source.nameBytes(), &now, AT_SYMLINK_NOFOLLOW) != 0) {
    return source.failure("stat", errno);
  }
  if (S_ISDIR(now.st_mode)) return source.failure("compare", EISDIR);
  if (::fstatat(copy.folder(), copy.nameBytes(), &held, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return false;
    return copy.failure("stat", errno);
  }
  if ((now.st_mode & S_IFMT) != (held.st_mode & S_IFMT)) return false;
  if (S_ISREG(now.st_mode)) {
    return now.st_size == held.st_size && isSameTime(now.st_mtim, held.st_mtim, granularity);
  }
  if (S_ISLNK(now.st_mode)) {
    const std::optional<std::string> target = linkTarget(source);
    return target.has_value() && target == linkTarget(copy);
  }
  return now.st_rdev == held.st_rdev;
}

}  // namespace tavrin
