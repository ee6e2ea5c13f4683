#include "platform/linux/panel/PanelListing.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "platform/linux/FileDescriptor.h"

namespace tavrin {

namespace {

struct DirectoryCloser {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

SystemError lastError(const char* operation, const std::string& path) {
  return {operation, path, std::error_code(errno, std::generic_category())};
}

/// The content of a folder's ".hidden" file, as far as a sensible one goes.
std::string hiddenFileText(int folder) {
  constexpr std::size_t longestText = 1 << 20;
  // A pipe of that name must not hold up the panel.
  const FileDescriptor file(::openat(folder, ".hidden", O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  std::string text;
  if (!file) return text;
  std::array<char, 4096> buffer{};
  ssize_t length = 0;
  while (text.size() < longestText &&
         (length = ::read(file.get(), buffer.data(), buffer.size())) > 0) {
    text.append(buffer.data(), static_cast<std::size_t>(length));
  }
  return text;
}

std::unordered_set<std::string> hiddenNames(int folder) {
  const std::string text = hiddenFileText(folder);
  std::unordered_set<std::string> names;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    names.insert(text.substr(start, end - start));
    start = end + 1;
  }
  return names;
}

bool isFolder(int folder, const dirent& item) {
  if (item.d_type == DT_DIR) return true;
  if (item.d_type != DT_LNK && item.d_type != DT_UNKNOWN) return false;
  struct stat status {};
  return ::fstatat(folder, item.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

bool isSelfOrParent(std::string_view name) {
  return name == "." || name == "..";
}

}  // namespace

Result<std::vector<PanelEntry>> listFolder(int folder, const std::string& path,
                                           HiddenFiles hiddenFiles) {
  FileDescriptor reader(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const Directory directory(reader ? ::fdopendir(reader.get()) : nullptr);
  if (!directory) return lastError("read folder", path);
  reader.release();

  const bool leaveOut = hiddenFiles == HiddenFiles::LeaveOut;
  const auto hidden = leaveOut ? hiddenNames(folder) : std::unordered_set<std::string>();
  std::vector<PanelEntry> entries;
  // The directory is this call's own, so no other thread reads it.
  while (const dirent* item = ::readdir(directory.get())) {  // NOLINT(concurrency-mt-unsafe)
    std::string name = item->d_name;
    if (isSelfOrParent(name)) continue;
    if (leaveOut && (name.front() == '.' || hidden.count(name) > 0)) continue;
    entries.push_back({std::move(name), isFolder(folder, *item)});
  }
  return entries;
}

}  // namespace tavrin
