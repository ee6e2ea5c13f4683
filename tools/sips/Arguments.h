#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrin::sips {

/// The longest side of a result, in pixels.
inline constexpr int longestSide = 16384;

/// What the user asked for.
struct Request {
  enum class Command { Scale, Help, Version };
  Command command = Command::Help;
  /// In pixels, from 1 to longestSide.
  int height = 0;
  int width = 0;
  std::string input;
  /// A file, or a folder that is there.
  std::string output;
};

extern const char* const usage;

/// Nothing, with the reason in `mistake`, for words that are no request.
std::optional<Request> requestFromArguments(const std::vector<std::string>& words,
                                            std::string& mistake);

}  // namespace tavrin::sips
