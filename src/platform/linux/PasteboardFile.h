#pragma once

#include <optional>
#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// The file that stands for a pasteboard, in a folder that only the user can enter.
class PasteboardFile {
 public:
  /// `folder` is absolute, or "" when there is none: then nothing can be written. `name` is one
  /// path component.
  PasteboardFile(std::string folder, std::string name);

  /// Puts new contents in the place of the old ones, in one step. Makes the folder, and takes
  /// every right on it from others.
  Status replace(const std::string& contents) const;

  void remove() const;

  /// Nothing when there is no such file.
  std::optional<std::string> contents() const;

 private:
  std::string path() const;

  std::string folder_;
  std::string name_;
};

}  // namespace tavrin
