#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// One character of a byte string that is mostly UTF-8.
struct DecodedCharacter {
  /// The code point; nothing when the bytes here are no valid UTF-8, of which one is then taken.
  std::optional<char32_t> codePoint;
  std::size_t length = 1;
};

/// The character at `position`, which must be inside `text`.
DecodedCharacter characterAt(std::string_view text, std::size_t position);

/// Appends the UTF-8 form; a surrogate gets three bytes like its neighbours.
void appendCodePoint(std::string& text, char32_t codePoint);

/// Whether every byte is ASCII.
bool isAscii(std::string_view text);

/// UTF-16 with each stray byte as a lone surrogate U+DC80 to U+DCFF, and back.
std::u16string utf16FromBytes(std::string_view text);
std::string bytesFromUtf16(std::u16string_view text);

/// Valid UTF-8 of characters that XML allows, with each other byte as a private-use character,
/// and back. Text that was not made so comes back as it is.
std::string xmlTextFromBytes(std::string_view text);
std::string bytesFromXmlText(std::string text);

}  // namespace tavrin
