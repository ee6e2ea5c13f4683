#include "menu/MenuTitle.h"

#include <cstddef>

#include "foundation/Utf8.h"

namespace tavrin {

namespace {

constexpr std::size_t maximumCharacters = 80;
constexpr const char* ellipsis = "\u2026";
constexpr const char* replacement = "\uFFFD";

/// The bytes of the character that `text` begins with; 0 when it begins with none.
std::size_t lengthOfFirst(std::string_view text) {
  for (std::size_t length = 1; length <= 4 && length <= text.size(); ++length) {
    if (isUtf8(text.substr(0, length))) return length;
  }
  return 0;
}

bool isControl(char byte) {
  return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
}

}  // namespace

std::string menuTitle(std::string_view text) {
  std::string title;
  std::size_t beforeLast = 0;
  for (std::size_t characters = 0; !text.empty(); ++characters) {
    if (characters == maximumCharacters) return title.substr(0, beforeLast) + ellipsis;
    beforeLast = title.size();
    const std::size_t length = lengthOfFirst(text);
    if (length == 0) {
      title += replacement;
    } else if (isControl(text.front())) {
      title += ' ';
    } else {
      title += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return title;
}

}  // namespace tavrin
