#pragma once

#include "platform/Log.h"

namespace tavrin {

/// Standard error, which a desktop session hands to the system's journal.
class LinuxLog final : public Log {
 public:
  void write(std::string_view message) override;
};

}  // namespace tavrin
