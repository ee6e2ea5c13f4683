#include "platform/linux/FileData.h"

#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace tavrin {
namespace {

constexpr std::size_t bufferSize = std::size_t{256} * 1024;
// Some hundredths of a second: so soon a cancelled copy ends.
constexpr off_t largestKernelCopy = off_t{32} << 20;
constexpr off_t wholeFile = std::numeric_limits<off_t>::max();

bool mayHaveHoles(const struct stat& status) {
  constexpr off_t blockUnit = 512;
  return status.st_blocks * blockUnit < status.st_size;
}

bool isUnsupported(int cause) {
  return cause == EXDEV || cause == EOPNOTSUPP || cause == ENOSYS || cause == ENOTTY ||
         cause == EPERM;
}

Status writeAll(const OpenFile& file, const char* bytes, std::size_t count, off_t offset) {
  while (count > 0) {
    const ssize_t written = ::pwrite(file.descriptor, bytes, count, offset);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return file.entry.failure("write", errno);
    bytes += written;
    count -= static_cast<std::size_t>(written);
    offset += written;
  }
  return success();
}

/// A read beside a change of the size may give zeros for what is not there any more.
Status cutToSource(const OpenFile& source, const OpenFile& destination, off_t size) {
  struct stat now = {};
  if (::fstat(source.descriptor, &now) != 0) return source.entry.failure("stat", errno);
  if (now.st_size >= size || ::ftruncate(destination.descriptor, now.st_size) == 0) {
    return success();
  }
  return destination.entry.failure("set the size of", errno);
}

/// For what ends in a hole: that is one only as far as the source still goes.
Status setSize(const OpenFile& source, const OpenFile& destination, off_t size) {
  if (::ftruncate(destination.descriptor, size) != 0) {
    return destination.entry.failure("set the size of", errno);
  }
  return cutToSource(source, destination, size);
}

}  // namespace

FileData::FileData(FileOperation& operation)
    : operation_(operation), buffer_(std::make_unique_for_overwrite<char[]>(bufferSize)) {}

void FileData::forgetOnNewDevice(dev_t device) {
  if (device_ == device) return;
  device_ = device;
  canShareBlocks_ = true;
  canCopyInKernel_ = true;
}

Status FileData::note(const OpenFile& source, off_t bytes) {
  operation_.addBytes(static_cast<std::uint64_t>(bytes));
  operation_.addShare(shareOfByte_ * static_cast<double>(bytes));
  return operation_.isCancelled() ? Status(source.entry.failure("copy", ECANCELED)) : success();
}

Status FileData::copy(const OpenFile& source, const OpenFile& destination,
                      const struct stat& status, double share) {
  forgetOnNewDevice(status.st_dev);
  shareOfByte_ = status.st_size > 0 ? share / static_cast<double>(status.st_size) : 0;
  if (status.st_size == 0) operation_.addShare(share);
  if (status.st_size > 0 && shareBlocks(source, destination, status)) {
    return note(source, status.st_size);
  }
  if (status.st_size > static_cast<off_t>(bufferSize) || mayHaveHoles(status)) {
    return copySegments(source, destination, status);
  }
  // Files of the kernel say that they are empty and hold bytes nevertheless.
  const off_t end = status.st_size > 0 ? status.st_size : wholeFile;
  const Result<off_t> copied = copyByReading(source, destination, 0, end);
  if (!copied) return copied.error();
  return end == wholeFile ? success() : cutToSource(source, destination, copied.value());
}

bool FileData::shareBlocks(const OpenFile& source, const OpenFile& destination,
                           const struct stat& status) {
  if (!canShareBlocks_ || status.st_size == 0) return false;
  if (::ioctl(destination.descriptor, FICLONE, source.descriptor) == 0) return true;
  if (isUnsupported(errno)) canShareBlocks_ = false;
  return false;
}

Status FileData::copySegments(const OpenFile& source, const OpenFile& destination,
                              const struct stat& status) {
  off_t position = 0;
  while (position < status.st_size) {
    off_t begin = ::lseek(source.descriptor, position, SEEK_DATA);
    if (begin < 0 && errno == ENXIO) break;
    if (begin < 0) begin = position;
    off_t end = ::lseek(source.descriptor, begin, SEEK_HOLE);
    if (end <= begin) end = status.st_size;
    end = std::min(end, status.st_size);
    if (begin >= end) break;
    if (Status noted = note(source, begin - position); !noted) return noted;
    const Result<off_t> reached = copySegment(source, destination, begin, end);
    if (!reached) return reached.error();
    if (reached.value() < end) return cutToSource(source, destination, reached.value());
    position = end;
  }
  Status sized = setSize(source, destination, status.st_size);
  return sized ? note(source, status.st_size - position) : sized;
}

Result<off_t> FileData::copySegment(const OpenFile& source, const OpenFile& destination,
                                    off_t begin, off_t end) {
  Result<off_t> reached = copyInKernel(source, destination, begin, end);
  if (!reached || reached.value() == end) return reached;
  return copyByReading(source, destination, reached.value(), end);
}

Result<off_t> FileData::copyInKernel(const OpenFile& source, const OpenFile& destination,
                                     off_t begin, off_t end) {
  off_t from = begin;
  off_t to = begin;
  while (canCopyInKernel_ && from < end) {
    const auto count = static_cast<std::size_t>(std::min(end - from, largestKernelCopy));
    const ssize_t copied =
        ::copy_file_range(source.descriptor, &from, destination.descriptor, &to, count, 0);
    // Some file systems answer 0 before the end; reading tells whether it is one.
    if (copied == 0) break;
    if (copied > 0) {
      if (Status noted = note(source, copied); !noted) return noted.error();
      continue;
    }
    if (errno == EINTR) continue;
    if (errno == EINVAL) break;
    if (!isUnsupported(errno)) return destination.entry.failure("copy data to", errno);
    canCopyInKernel_ = false;
  }
  return from;
}

Result<off_t> FileData::copyByReading(const OpenFile& source, const OpenFile& destination,
                                      off_t begin, off_t end) {
  off_t position = begin;
  while (position < end) {
    const auto wanted =
        static_cast<std::size_t>(std::min(end - position, static_cast<off_t>(bufferSize)));
    const ssize_t count = ::pread(source.descriptor, buffer_.get(), wanted, position);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return source.entry.failure("read", errno);
    if (count == 0) break;
    Status written =
        writeAll(destination, buffer_.get(), static_cast<std::size_t>(count), position);
    if (!written) return written.error();
    position += count;
    if (Status noted = note(source, count); !noted) return noted.error();
  }
  return position;
}

}  // namespace tavrin
