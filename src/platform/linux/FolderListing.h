#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// Reads the names of folders in pieces of bounded size, however many there are.
class FolderListing {
 public:
  FolderListing();

  struct Entry {
    std::string name;
    /// DT_DIR, DT_REG, ... of readdir(3); DT_UNKNOWN when the file system does not say.
    unsigned char type = 0;
  };

  /// Reads the piece that follows where the readable handle `folder` stands; false when there is
  /// none. Messages call the folder `path`.
  Result<bool> readPiece(int folder, const std::string& path);

  /// Gives the next name of the piece, without "." and ".."; false after the last one.
  bool next(Entry& entry);

  /// How many names the piece has, without "." and "..".
  std::size_t countInPiece() const;
  /// True when a piece of that size is rarely a folder's last.
  bool isPieceFull() const;

 private:
  std::unique_ptr<char[]> buffer_;
  std::size_t filled_ = 0;
  std::size_t position_ = 0;
};

}  // namespace tavrin
