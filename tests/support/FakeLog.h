#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Log.h"

namespace tavrin {

/// A log that a test reads.
class FakeLog final : public Log {
 public:
  void write(std::string_view message) override {
    const std::lock_guard lock(mutex_);
    lines_.emplace_back(message);
  }

  std::vector<std::string> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
};

}  // namespace tavrin
