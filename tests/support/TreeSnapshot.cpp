#include "tests/support/TreeSnapshot.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace tavrin::testing {
namespace {

std::set<std::string> listNames(int folder) {
  std::set<std::string> names;
  DIR* listing = ::fdopendir(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (listing == nullptr) return names;
  while (const dirent* entry = ::readdir(listing)) {  // NOLINT(concurrency-mt-unsafe)
    if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
      names.insert(entry->d_name);
    }
  }
  ::closedir(listing);
  return names;
}

std::string hashOfFile(int folder, const std::string& name) {
  const FileDescriptor file(::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  std::uint64_t hash = 14695981039346656037U;
  std::array<unsigned char, 65536> buffer;
  ssize_t count = 0;
  while ((count = ::read(file.get(), buffer.data(), buffer.size())) > 0) {
    for (std::size_t index = 0; index < static_cast<std::size_t>(count); ++index) {
      hash = (hash ^ buffer[index]) * 1099511628211U;
    }
  }
  return count < 0 ? "unreadable" : std::to_string(hash);
}

std::string attributesOf(int folder, const std::string& name) {
  const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + name;
  std::array<char, 65536> names;
  const ssize_t size = ::llistxattr(path.c_str(), names.data(), names.size());
  std::map<std::string, std::string> attributes;
  for (const char* next = names.data(); next < names.data() + size; next += std::strlen(next) + 1) {
    std::array<char, 65536> value;
    const ssize_t length = ::lgetxattr(path.c_str(), next, value.data(), value.size());
    attributes[next] = std::string(value.data(), static_cast<std::size_t>(length < 0 ? 0 : length));
  }
  std::string text;
  for (const auto& [key, value] : attributes) {
    text.append(" ").append(key).append("=").append(value);
  }
  return text;
}

class SnapshotWalk {
 public:
  TreeSnapshot take(int parent, const std::string& name) {
    if (!describe(parent, name, "")) return std::move(snapshot_);
    descend(parent, name, "");
    while (!levels_.empty()) {
      if (levels_.back().folders.empty()) {
        ascend();
        continue;
      }
      const std::string next = levels_.back().folders.back();
      levels_.back().folders.pop_back();
      descend(current_.get(), next, levels_.back().path);
    }
    return std::move(snapshot_);
  }

 private:
  struct Level {
    std::string path;
    std::vector<std::string> folders;
  };

  /// True for a folder.
  bool describe(int folder, const std::string& name, const std::string& path) {
    struct stat status = {};
    if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    std::ostringstream line;
    line << std::oct << status.st_mode << std::dec << " " << status.st_uid << ":" << status.st_gid
         << " " << status.st_mtim.tv_sec << "." << status.st_mtim.tv_nsec << " " << status.st_rdev;
    if (S_ISREG(status.st_mode)) line << " " << status.st_size << " " << hashOfFile(folder, name);
    if (S_ISLNK(status.st_mode)) {
      std::array<char, 4096> target;
      const ssize_t size = ::readlinkat(folder, name.c_str(), target.data(), target.size());
      line << " -> " << std::string(target.data(), static_cast<std::size_t>(size < 0 ? 0 : size));
    }
    line << attributesOf(folder, name);
    if (!S_ISDIR(status.st_mode)) {
      const auto [twin, isFirst] = twins_.try_emplace({status.st_dev, status.st_ino}, path);
      if (!isFirst) line << " same as " << twin->second;
    }
    snapshot_[path] = line.str();
    return S_ISDIR(status.st_mode);
  }

  void descend(int parent, const std::string& name, const std::string& outerPath) {
    FileDescriptor folder(
        ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder) return;
    const std::string path = levels_.empty() ? "" : outerPath + name + "/";
    current_ = std::move(folder);
    levels_.push_back({path, {}});
    for (const std::string& entry : listNames(current_.get())) {
      if (describe(current_.get(), entry, path + entry)) levels_.back().folders.push_back(entry);
    }
  }

  void ascend() {
    levels_.pop_back();
    current_ = FileDescriptor(::openat(current_.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  }

  TreeSnapshot snapshot_;
  std::map<std::pair<dev_t, ino_t>, std::string> twins_;
  std::vector<Level> levels_;
  FileDescriptor current_;
};

}  // namespace

TreeSnapshot snapshotOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const FileDescriptor parent(
      ::open(path.substr(0, slash + 1).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return SnapshotWalk().take(parent.get(), path.substr(slash + 1));
}

std::map<std::string, int> namesIn(const std::string& path) {
  const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::map<std::string, int> names;
  if (!folder) return names;
  for (const std::string& name : listNames(folder.get())) names[name] = 1;
  return names;
}

std::string differencesByRsync(const std::string& first, const std::string& second) {
  const std::string command = "rsync -aHAX --itemize-changes --checksum --dry-run --delete '" +
                              first + "/' '" + second + "/' 2>&1";
  FILE* output = ::popen(command.c_str(), "r");
  if (output == nullptr) return "rsync did not start";
  std::string text;
  std::array<char, 4096> buffer;
  std::size_t count = 0;
  while ((count = std::fread(buffer.data(), 1, buffer.size(), output)) > 0) {
    text.append(buffer.data(), count);
  }
  const int status = ::pclose(output);
  return status == 0 ? text : text + "rsync failed";
}

}  // namespace tavrin::testing
