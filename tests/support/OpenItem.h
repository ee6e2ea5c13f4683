#pragma once

#include <fcntl.h>

#include <string>

#include "foundation/PathString.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/ItemReference.h"

namespace tavrin::testing {

/// A reference to the item at a path, with its folder held open.
class OpenItem {
 public:
  explicit OpenItem(const std::string& path)
      : parent_(::open(deletingLastPathComponent(path).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
        reference_{parent_.get(), lastPathComponent(path), path} {}

  operator const ItemReference&() const { return reference_; }

 private:
  FileDescriptor parent_;
  ItemReference reference_;
};

}  // namespace tavrin::testing
