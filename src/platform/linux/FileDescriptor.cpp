#include "platform/linux/FileDescriptor.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tavrin {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    reset();
    descriptor_ = other.release();
  }
  return *this;
}

int FileDescriptor::release() {
  return std::exchange(descriptor_, -1);
}

void FileDescriptor::reset() {
  if (descriptor_ >= 0) ::close(release());
}

int FileDescriptor::close() {
  // The handle is gone even when a signal came in between.
  return descriptor_ < 0 || ::close(release()) == 0 || errno == EINTR ? 0 : errno;
}

}  // namespace tavrin
