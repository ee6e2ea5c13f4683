#include "NameList.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>

#include "foundation/PathString.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin::requesttool {

namespace {

Result<std::string> readAll(const std::string& file) {
  const bool isStandardInput = file == "-";
  const FileDescriptor opened(isStandardInput ? -1 : ::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!isStandardInput && !opened) return systemError("open", file);
  const int descriptor = isStandardInput ? STDIN_FILENO : opened.get();
  std::string text;
  std::array<char, 65536> buffer{};
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return systemError("read", isStandardInput ? "standard input" : file);
    if (count == 0) return text;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

/// The path with what leads to its last ".." as the disk has it.
std::string withoutParentSteps(const std::string& path) {
  constexpr std::string_view step = "/..";
  auto end = path.ends_with(step) ? path.size() : path.rfind("/../");
  if (end == std::string::npos) return path;
  if (end < path.size()) end += step.size();
  std::error_code missing;
  const std::string reached = std::filesystem::canonical(path.substr(0, end), missing).string();
  return missing ? path : appendingPathComponent(reached, path.substr(end));
}

}  // namespace

Result<std::vector<std::string>> readNames(const std::string& file) {
  const auto text = readAll(file);
  if (!text) return text.error();
  std::vector<std::string> names;
  std::string_view left = text.value();
  while (!left.empty()) {
    const auto end = std::min(left.find('\0'), left.size());
    names.emplace_back(left.substr(0, end));
    left.remove_prefix(std::min(end + 1, left.size()));
  }
  return names;
}

std::string absolutePathOf(const std::string& name, const std::string& workingFolder) {
  const std::string path =
      name.starts_with('/') ? name : appendingPathComponent(workingFolder, name);
  return standardizingPath(withoutParentSteps(path));
}

}  // namespace tavrin::requesttool
