#pragma once

namespace tavrin {

/// What the running system offers, in place of comparing its version.
class SystemCapabilities {
 public:
  virtual ~SystemCapabilities() = default;

  /// The system has a dark appearance that windows follow (macOS 10.15 or later).
  virtual bool hasDarkAppearance() const = 0;
};

}  // namespace tavrin
