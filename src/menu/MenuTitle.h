#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// A text as a menu shows it: one line of valid UTF-8, at most 80 characters, the last of which is
/// an ellipsis where something was cut off. A byte that belongs to no character becomes U+FFFD, a
/// control character a blank.
std::string menuTitle(std::string_view text);

}  // namespace tavrin
