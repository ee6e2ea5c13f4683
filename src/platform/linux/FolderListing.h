#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// Reads the names of a folder piece by piece, however many there are.
class FolderListing {
 public:
  FolderListing();

  struct Entry {
    std::string name;
    /// DT_DIR, DT_REG, ... of readdir(3); DT_UNKNOWN when the file system does not say.
    unsigned char type = 0;
  };

  /// Begins with the first name of `folder`, a readable open folder that messages call `path`. Both
  /// are borrowed until the last name is read.
  void start(int folder, const std::string& path);

  /// Gives the next name, without "." and ".."; false after the last one.
  Result<bool> next(Entry& entry);

 private:
  Result<bool> fill();

  std::unique_ptr<char[]> buffer_;
  std::size_t filled_ = 0;
  std::size_t position_ = 0;
  int folder_ = -1;
  const std::string* path_ = nullptr;
};

}  // namespace tavrin
