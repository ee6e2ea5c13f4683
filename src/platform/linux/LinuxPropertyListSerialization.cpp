#include "platform/linux/LinuxPropertyListSerialization.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PropertyListFormats.h"

namespace tavrin {

namespace {

constexpr std::string_view binaryHeader = "bplist00";

SystemError failure(const char* operation, const std::string& path, std::errc reason) {
  return {operation, path, std::make_error_code(reason)};
}

SystemError lastError(const char* operation, const std::string& path) {
  return {operation, path, std::error_code(errno, std::generic_category())};
}

std::optional<PropertyList> parsed(const PropertyList::Data& data) {
  const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
  return text.starts_with(binaryHeader) ? propertyListFromBinary(data.data(), data.size(), {})
                                        : propertyListFromXml(text);
}

/// Reads to the end of the file, which may grow or shrink meanwhile.
Result<PropertyList::Data> readAll(int descriptor, const std::string& path, std::size_t expected) {
  constexpr std::size_t limit = PropertyListSerialization::maximumFileSize;
  PropertyList::Data data(std::min(expected, limit) + 1);
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = ::read(descriptor, data.data() + size, data.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError("read", path);
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size > limit) return failure("read", path, std::errc::file_too_large);
    if (size == data.size()) data.resize(std::min(size * 2, limit + 1));
  }
  data.resize(size);
  return data;
}

}  // namespace

Result<PropertyList> LinuxPropertyListSerialization::propertyListFromData(
    const PropertyList::Data& data) {
  auto value = data.size() <= maximumFileSize ? parsed(data) : std::nullopt;
  if (!value) return failure("parse", "property list", std::errc::invalid_argument);
  return std::move(*value);
}

Result<PropertyList::Data> LinuxPropertyListSerialization::dataFromPropertyList(
    const PropertyList& value, Format format) {
  auto data =
      format == Format::Xml ? xmlFromPropertyList(value) : binaryFromPropertyList(value, {});
  if (!data) return failure("write", "property list", std::errc::invalid_argument);
  return std::move(*data);
}

Result<PropertyList::Data> contentsOfPropertyListFile(const std::string& path) {
  // Without O_NONBLOCK the opening of a pipe would wait for its writer.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  if (!file) return lastError("open", path);
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) return lastError("stat", path);
  if (S_ISDIR(status.st_mode)) return failure("read", path, std::errc::is_a_directory);
  if (!S_ISREG(status.st_mode)) return failure("read", path, std::errc::invalid_argument);
  const auto size = static_cast<std::uint64_t>(status.st_size);
  if (size > PropertyListSerialization::maximumFileSize) {
    return failure("read", path, std::errc::file_too_large);
  }
  return readAll(file.get(), path, static_cast<std::size_t>(size));
}

Result<PropertyList> propertyListFromContentsOfFile(const PropertyList::Data& contents,
                                                    const std::string& path) {
  auto value = parsed(contents);
  if (!value) return failure("parse", path, std::errc::invalid_argument);
  return std::move(*value);
}

Result<PropertyList> LinuxPropertyListSerialization::propertyListWithContentsOfFile(
    const std::string& path) {
  const auto contents = contentsOfPropertyListFile(path);
  if (!contents) return contents.error();
  return propertyListFromContentsOfFile(contents.value(), path);
}

}  // namespace tavrin
