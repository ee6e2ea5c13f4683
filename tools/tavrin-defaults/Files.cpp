#include "Files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxPropertyListSerialization.h"

namespace tavrin::defaultstool {

namespace {

SystemError lastError(const char* operation, const std::string& path) {
  return {operation, path, std::error_code(errno, std::generic_category())};
}

Status writeAll(int descriptor, std::string_view text, const std::string& name) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError("write", name);
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return success();
}

Result<PropertyList::Data> readInput() {
  PropertyList::Data data;
  std::array<std::uint8_t, 65536> buffer{};
  for (;;) {
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError("read", "standard input");
    if (count == 0) return data;
    data.insert(data.end(), buffer.begin(), buffer.begin() + count);
    if (data.size() > PropertyListSerialization::maximumFileSize) {
      errno = EFBIG;
      return lastError("read", "standard input");
    }
  }
}

Status writeThrough(const std::string& file, std::string_view text) {
  const FileDescriptor target(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  if (!target) return lastError("open", file);
  return writeAll(target.get(), text, file);
}

Status fillTemporary(const FileDescriptor& file, const std::string& name, std::string_view text) {
  if (Status written = writeAll(file.get(), text, name); !written) return written;
  if (::fsync(file.get()) != 0) return lastError("synchronize", name);
  return success();
}

Status replace(const std::string& file, std::string_view text) {
  std::string temporary = file + ".XXXXXX";
  const FileDescriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!descriptor) return lastError("make", temporary);
  Status filled = fillTemporary(descriptor, temporary, text);
  if (filled && ::rename(temporary.c_str(), file.c_str()) != 0) {
    filled = lastError("replace", file);
  }
  if (!filled) ::unlink(temporary.c_str());
  return filled;
}

}  // namespace

Result<PropertyList> readPropertyList(const std::string& file) {
  LinuxPropertyListSerialization lists;
  if (file != "-") return lists.propertyListWithContentsOfFile(file);
  const auto data = readInput();
  if (!data) return data.error();
  auto list = lists.propertyListFromData(data.value());
  if (!list) return SystemError{"parse", "standard input", list.error().code};
  return list;
}

Status writeOutput(std::string_view text) {
  return writeAll(STDOUT_FILENO, text, "standard output");
}

Status writeFile(const std::string& file, const PropertyList::Data& data) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  if (file == "-") return writeOutput(text);
  struct stat status {};
  if (::stat(file.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    return writeThrough(file, text);
  }
  // A link keeps pointing at the file, which is replaced.
  std::error_code unresolved;
  const auto target = std::filesystem::canonical(file, unresolved);
  return replace(unresolved ? file : target.string(), text);
}

}  // namespace tavrin::defaultstool
