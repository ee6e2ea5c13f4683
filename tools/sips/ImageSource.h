#pragma once

#include <optional>
#include <string>

#include "icons/Bytes.h"

namespace tavrin::sips {

/// How an image is to be read.
struct ImageSource {
  enum class Kind {
    /// By the library itself, from the file.
    File,
    /// By the library itself, from `bytes`.
    Memory,
    /// By a part of the library that is loaded for it, from the file.
    FileByModule,
    /// The same from `bytes`.
    MemoryByModule
  };
  Kind kind = Kind::File;
  std::string path;
  icons::Bytes bytes;

  bool needsModules() const { return kind == Kind::FileByModule || kind == Kind::MemoryByModule; }
};

/// Finds out how to read a file, from how it begins. Nothing, with the reason in `mistake`, when it
/// cannot be read or holds no picture.
std::optional<ImageSource> sourceOf(const std::string& path, std::string& mistake);

}  // namespace tavrin::sips
