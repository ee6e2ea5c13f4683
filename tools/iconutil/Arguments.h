#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrin::iconutil {

/// What the user asked for.
struct Request {
  enum class Command { Pack, Unpack, Help, Version };
  Command command = Command::Help;
  /// The folder or file to convert, without trailing separators.
  std::string input;
  /// Where the result goes.
  std::string output;
};

extern const char* const usage;

/// Nothing, with the reason in `mistake`, for words that are no request.
std::optional<Request> requestFromArguments(const std::vector<std::string>& words,
                                            std::string& mistake);

}  // namespace tavrin::iconutil
