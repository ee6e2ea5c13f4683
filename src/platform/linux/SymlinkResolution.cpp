#include "platform/linux/SymlinkResolution.h"

#include <fcntl.h>
#include <unistd.h>

#include <climits>
#include <optional>
#include <vector>

#include "foundation/PathString.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

namespace {

// The kernel's own limit.
constexpr int mostLinksFollowed = 40;

/// The components in reverse order, so that the next one is the last.
std::vector<std::string> pendingComponents(const std::string& path) {
  auto components = pathComponents(path);
  if (path.starts_with('/')) components.erase(components.begin());
  return {components.rbegin(), components.rend()};
}

void append(std::string& path, const std::string& name) {
  if (path.back() != '/') path += '/';
  path += name;
}

/// Walks along a path by handles and keeps the real path of where it stands.
class Walk {
 public:
  Walk() { goToRoot(); }

  const std::string& path() const { return path_; }

  void goToRoot() {
    path_ = "/";
    place_ = FileDescriptor(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
  }

  /// Enters what stands under the name, not following it; false when nothing can be entered.
  bool enter(const std::string& name) {
    FileDescriptor next(::openat(place_.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!next) return false;
    place_ = std::move(next);
    if (name == "..") {
      path_ = deletingLastPathComponent(path_);
    } else if (name != ".") {
      append(path_, name);
    }
    return true;
  }

  /// Where the symbolic link of that name points; nothing when there is no such link.
  std::optional<std::string> linkTarget(const std::string& name) const {
    char target[PATH_MAX];
    const ssize_t length = ::readlinkat(place_.get(), name.c_str(), target, sizeof target);
    if (length < 0) return std::nullopt;
    return std::string(target, static_cast<std::size_t>(length));
  }

 private:
  FileDescriptor place_;
  std::string path_;
};

std::string joined(std::string path, const std::vector<std::string>& pending) {
  for (auto name = pending.rbegin(); name != pending.rend(); ++name) {
    append(path, *name);
  }
  return path;
}

enum class Step { Arrived, Missing, Circle };

/// Goes on from `walk` to where `pending` leads; what is left of it follows the missing component.
Step follow(Walk& walk, std::vector<std::string>& pending) {
  int links = 0;
  while (!pending.empty()) {
    const std::string name = pending.back();
    const auto target = walk.linkTarget(name);
    if (!target) {
      if (!walk.enter(name)) return Step::Missing;
      pending.pop_back();
      continue;
    }
    if (++links > mostLinksFollowed) return Step::Circle;
    pending.pop_back();
    if (target->starts_with('/')) walk.goToRoot();
    const auto components = pendingComponents(*target);
    pending.insert(pending.end(), components.begin(), components.end());
  }
  return Step::Arrived;
}

}  // namespace

std::string pathByResolvingSymlinks(const std::string& path) {
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return path;
  Walk walk;
  std::vector<std::string> pending = pendingComponents(path);
  while (!pending.empty()) {
    if (!walk.linkTarget(pending.back())) {
      if (!walk.enter(pending.back())) return joined(walk.path(), pending);
      pending.pop_back();
      continue;
    }
    const std::string before = walk.path();
    std::vector<std::string> link = {pending.back()};
    const Step step = follow(walk, link);
    if (step == Step::Circle) return joined(before, pending);
    pending.pop_back();
    if (step == Step::Missing) return joined(joined(walk.path(), link), pending);
  }
  return walk.path();
}

}  // namespace tavrin
