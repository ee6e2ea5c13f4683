#pragma once

#include <string>

namespace tavrin::testing {

/// A folder of its own for a test, removed with all that is in it, however deep, afterwards.
class ScratchFolder {
 public:
  /// `base` is an existing folder; "" is the system's for temporary files.
  explicit ScratchFolder(const std::string& base = "");
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder();

  const std::string& path() const { return path_; }
  /// The path of something below the folder.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// A small file system in memory, mounted for a test; needs the rights to mount.
class MountedFolder {
 public:
  /// `options` are those of mount(8) for tmpfs: "size=1m".
  explicit MountedFolder(const std::string& options);
  MountedFolder(const MountedFolder&) = delete;
  MountedFolder& operator=(const MountedFolder&) = delete;
  ~MountedFolder();

  bool isMounted() const { return isMounted_; }
  const std::string& path() const { return folder_.path(); }
  std::string operator/(const std::string& name) const { return folder_ / name; }
  /// Makes it read-only from now on.
  bool makeReadOnly();

 private:
  ScratchFolder folder_;
  bool isMounted_ = false;
};

/// Runs a program found on the search path to its end; its exit status, or -1.
int runProgram(const std::string& program, const std::string& first, const std::string& second,
               const std::string& third = "");

}  // namespace tavrin::testing
