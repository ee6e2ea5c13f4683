#pragma once

#include <string>
#include <system_error>
#include <utility>
#include <variant>

namespace tavrin {

/// Why an operation on the system failed, captured at the call that failed.
struct SystemError {
  /// What was tried, as a log line names it: "open", "rename", "copy data".
  std::string operation;
  /// The path it was tried on.
  std::string path;
  /// The system's own reason.
  std::error_code code;

  /// One line for the log: "rename /a/b: No such file or directory".
  std::string describe() const;
};

/// A value, or the reason why there is none.
template <typename Value>
class [[nodiscard]] Result {
 public:
  Result(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(SystemError error) : content_(std::in_place_index<1>, std::move(error)) {}

  explicit operator bool() const { return content_.index() == 0; }
  const Value& value() const& { return std::get<0>(content_); }
  Value& value() & { return std::get<0>(content_); }
  Value&& value() && { return std::get<0>(std::move(content_)); }
  const SystemError& error() const { return std::get<1>(content_); }

 private:
  std::variant<Value, SystemError> content_;
};

/// Success, or the reason why there was none.
using Status = Result<std::monostate>;

/// The successful Status.
inline Status success() {
  return std::monostate{};
}

}  // namespace tavrin
