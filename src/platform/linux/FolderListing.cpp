#include "platform/linux/FolderListing.h"

#include <dirent.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

namespace tavrin {
namespace {

constexpr std::size_t bufferSize = std::size_t{64} * 1024;

bool isSelfOrParent(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

}  // namespace

FolderListing::FolderListing() : buffer_(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

void FolderListing::start(int folder, const std::string& path) {
  folder_ = folder;
  path_ = &path;
  filled_ = 0;
  position_ = 0;
  ::lseek(folder, 0, SEEK_SET);
}

Result<bool> FolderListing::fill() {
  ssize_t count = 0;
  do {
    count = ::getdents64(folder_, buffer_.get(), bufferSize);
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    return SystemError{"list", *path_, std::error_code(errno, std::generic_category())};
  }
  filled_ = static_cast<std::size_t>(count);
  position_ = 0;
  return filled_ > 0;
}

Result<bool> FolderListing::next(Entry& entry) {
  while (true) {
    if (position_ >= filled_) {
      Result<bool> hasMore = fill();
      if (!hasMore || !hasMore.value()) return hasMore;
    }
    const char* record = buffer_.get() + position_;
    unsigned short length = 0;
    std::memcpy(&length, record + offsetof(dirent64, d_reclen), sizeof(length));
    position_ += length;
    const char* name = record + offsetof(dirent64, d_name);
    if (isSelfOrParent(name)) continue;
    entry.name = name;
    entry.type = static_cast<unsigned char>(record[offsetof(dirent64, d_type)]);
    return true;
  }
}

}  // namespace tavrin
