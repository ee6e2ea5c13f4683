#include "platform/linux/FolderListing.h"

#include <dirent.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

namespace tavrin {
namespace {

constexpr std::size_t bufferSize = std::size_t{64} * 1024;
constexpr std::size_t largestRecord = sizeof(dirent64);

bool isSelfOrParent(const char* name) {
  return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

std::size_t lengthOf(const char* record) {
  unsigned short length = 0;
  std::memcpy(&length, record + offsetof(dirent64, d_reclen), sizeof(length));
  return length;
}

}  // namespace

FolderListing::FolderListing() : buffer_(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

Result<bool> FolderListing::readPiece(int folder, const std::string& path) {
  ssize_t count = 0;
  do {
    count = ::getdents64(folder, buffer_.get(), bufferSize);
  } while (count < 0 && errno == EINTR);
  filled_ = count > 0 ? static_cast<std::size_t>(count) : 0;
  position_ = 0;
  if (count < 0) {
    return SystemError{"list", path, std::error_code(errno, std::generic_category())};
  }
  return filled_ > 0;
}

bool FolderListing::next(Entry& entry) {
  while (position_ < filled_) {
    const char* record = buffer_.get() + position_;
    position_ += lengthOf(record);
    const char* name = record + offsetof(dirent64, d_name);
    if (isSelfOrParent(name)) continue;
    entry.name = name;
    entry.type = static_cast<unsigned char>(record[offsetof(dirent64, d_type)]);
    return true;
  }
  return false;
}

std::size_t FolderListing::countInPiece() const {
  std::size_t count = 0;
  for (std::size_t position = 0; position < filled_;) {
    const char* record = buffer_.get() + position;
    position += lengthOf(record);
    if (!isSelfOrParent(record + offsetof(dirent64, d_name))) ++count;
  }
  return count;
}

bool FolderListing::isPieceFull() const {
  return filled_ + largestRecord > bufferSize;
}

}  // namespace tavrin
