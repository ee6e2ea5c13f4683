#pragma once

#include <cstddef>
#include <string>

#include "platform/Log.h"

namespace tavrin {

/// The action that is being carried out, from its construction to its end: its failures reach the
/// log under its name, and those of a long selection do not drown everything else.
class ActionInHand {
 public:
  /// After this many lines further failures are only counted.
  static constexpr std::size_t maximumLines = 20;

  /// Stands in `slot` until its end, when what stood there before comes back.
  ActionInHand(Log& log, ActionInHand*& slot, std::string name);
  ~ActionInHand();
  ActionInHand(const ActionInHand&) = delete;
  ActionInHand& operator=(const ActionInHand&) = delete;

  const std::string& name() const { return name_; }
  void logFailure(const std::string& reason);

 private:
  Log& log_;
  ActionInHand*& slot_;
  ActionInHand* outer_;
  std::string name_;
  std::size_t failures_ = 0;
};

}  // namespace tavrin
