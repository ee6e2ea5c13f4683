#pragma once

#include <string_view>

namespace tavrin {

/// The system log.
class Log {
 public:
  virtual ~Log() = default;

  /// Writes one line. Control characters of `message` (a file name may hold a newline) are shown
  /// escaped, so that a message never becomes two lines. May be called on any thread.
  virtual void write(std::string_view message) = 0;
};

}  // namespace tavrin
