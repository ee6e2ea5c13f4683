#pragma once

#include <sys/types.h>

#include <string>

#include "foundation/Result.h"
#include "platform/linux/BoundedWait.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// The files of one settings domain: `defaults.sqlite` with SQLite's own two beside it, and
/// `defaults.lock`, by which processes take turns.
class DefaultsFile {
 public:
  /// `folder` is an absolute path; "" is a domain that has no files.
  explicit DefaultsFile(std::string folder);

  const std::string& folder() const { return folder_; }
  const std::string& path() const { return path_; }

  /// Makes the folder (for this user alone) and its parents where missing.
  Status ensureFolder() const;
  /// Makes an empty file for this user alone where there is none.
  Status ensureFile() const;

  /// Makes the names in the folder outlive a power cut.
  void makeFolderDurable() const;

  /// Which file stands under the name, and whether it holds anything.
  struct Identity {
    dev_t device = 0;
    ino_t number = 0;
    bool isEmpty = false;
    bool operator==(const Identity&) const = default;
  };
  /// All zeros when there is none.
  Identity identity() const;
  /// Whether SQLite's log or its index is there, as they are beside a database in use.
  bool hasLog() const;

  /// Gives the damaged database and SQLite's files beside it other names, which nothing has yet:
  /// `defaults.sqlite.corrupt-1` and so on. Returns the new path.
  Result<std::string> setAside() const;

  /// Waits, as long as `wait` allows, until no other process or thread holds the lock, and holds it
  /// until the end of its life. Where the lock file cannot be made it holds nothing, since nothing
  /// can be written either.
  class Lock {
   public:
    Lock(DefaultsFile& file, BoundedWait& wait);
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock();

    /// Whether somebody else kept the lock all the time.
    bool isRefused() const { return isRefused_; }

   private:
    DefaultsFile& file_;
    bool isRefused_ = false;
  };

  /// Opens the lock file anew next time, after the folder may have been replaced.
  void forgetLock() { lockFile_.reset(); }

  /// Lets those who watch the folder know that a commit is complete.
  void announceChange();

 private:
  friend class Lock;

  std::string folder_;
  std::string path_;
  FileDescriptor lockFile_;
  int lockDepth_ = 0;
};

}  // namespace tavrin
