#pragma once

#include "platform/SystemCapabilities.h"

namespace tavrin {

/// Linux desktops answer as the newest system.
class LinuxSystemCapabilities final : public SystemCapabilities {
 public:
  bool hasDarkAppearance() const override { return true; }
};

}  // namespace tavrin
