#include "platform/linux/PropertyListText.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr char32_t escapeBase = 0x10F700;
constexpr char32_t escapeLast = escapeBase + 0xFF;
constexpr std::string_view escapeLead = "\xF4\x8F";

bool isSurrogate(char32_t codePoint) {
  return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

bool isEscape(char32_t codePoint) {
  return codePoint >= escapeBase && codePoint <= escapeLast;
}

/// The production Char of XML 1.0, without the carriage return, which readers may turn into a line
/// feed, and without the characters that stand for bytes.
bool standsInXml(char32_t codePoint) {
  if (codePoint < 0x20) return codePoint == '\t' || codePoint == '\n' || codePoint == '\r';
  return codePoint != 0xFFFE && codePoint != 0xFFFF && !isEscape(codePoint);
}

struct LeadByte {
  std::size_t length = 0;
  char32_t bits = 0;
  char32_t smallest = 0;
};

LeadByte leadByte(unsigned char byte) {
  if (byte < 0x80) return {1, byte, 0};
  if (byte >= 0xC2 && byte < 0xE0) return {2, byte & 0x1FU, 0x80};
  if (byte >= 0xE0 && byte < 0xF0) return {3, byte & 0x0FU, 0x800};
  if (byte >= 0xF0 && byte < 0xF5) return {4, byte & 0x07U, 0x10000};
  return {};
}

}  // namespace

DecodedCharacter characterAt(std::string_view text, std::size_t position) {
  const LeadByte lead = leadByte(static_cast<unsigned char>(text[position]));
  if (lead.length == 0 || lead.length > text.size() - position) return {};
  char32_t codePoint = lead.bits;
  for (std::size_t index = 1; index < lead.length; ++index) {
    const auto byte = static_cast<unsigned char>(text[position + index]);
    if ((byte & 0xC0U) != 0x80) return {};
    codePoint = (codePoint << 6U) | (byte & 0x3FU);
  }
  if (codePoint < lead.smallest || codePoint > 0x10FFFF || isSurrogate(codePoint)) return {};
  return {codePoint, lead.length};
}

void appendCodePoint(std::string& text, char32_t codePoint) {
  const auto continuation = [codePoint](unsigned shift) {
    return static_cast<char>(0x80U | ((codePoint >> shift) & 0x3FU));
  };
  if (codePoint < 0x80) {
    text += static_cast<char>(codePoint);
  } else if (codePoint < 0x800) {
    text += {static_cast<char>(0xC0U | (codePoint >> 6U)), continuation(0)};
  } else if (codePoint < 0x10000) {
    text += {static_cast<char>(0xE0U | (codePoint >> 12U)), continuation(6), continuation(0)};
  } else {
    text += {static_cast<char>(0xF0U | (codePoint >> 18U)), continuation(12), continuation(6),
             continuation(0)};
  }
}

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::u16string utf16FromBytes(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const DecodedCharacter character = characterAt(text, position);
    const auto byte = static_cast<unsigned char>(text[position]);
    position += character.length;
    if (!character.codePoint) {
      units += static_cast<char16_t>(0xDC00U + byte);
    } else if (*character.codePoint < 0x10000) {
      units += static_cast<char16_t>(*character.codePoint);
    } else {
      const char32_t offset = *character.codePoint - 0x10000;
      units += static_cast<char16_t>(0xD800U + (offset >> 10U));
      units += static_cast<char16_t>(0xDC00U + (offset & 0x3FFU));
    }
  }
  return units;
}

std::string bytesFromUtf16(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char32_t unit = text[index];
    const char32_t next = index + 1 < text.size() ? text[index + 1] : 0;
    if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      appendCodePoint(bytes, 0x10000 + ((unit - 0xD800) << 10U) + (next - 0xDC00));
      ++index;
    } else if (unit >= 0xDC80 && unit <= 0xDCFF) {
      bytes += static_cast<char>(unit - 0xDC00);
    } else {
      appendCodePoint(bytes, unit);
    }
  }
  return bytes;
}

std::string xmlTextFromBytes(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const DecodedCharacter character = characterAt(text, position);
    const std::string_view bytes = text.substr(position, character.length);
    position += character.length;
    if (character.codePoint && standsInXml(*character.codePoint)) {
      escaped += bytes;
      continue;
    }
    for (const char byte : bytes) {
      appendCodePoint(escaped, escapeBase + static_cast<unsigned char>(byte));
    }
  }
  return escaped;
}

std::string bytesFromXmlText(std::string text) {
  if (text.find(escapeLead) == std::string::npos) return text;
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const DecodedCharacter character = characterAt(text, position);
    if (character.codePoint && isEscape(*character.codePoint)) {
      bytes += static_cast<char>(*character.codePoint - escapeBase);
    } else {
      bytes += text.substr(position, character.length);
    }
    position += character.length;
  }
  // Somebody else's use of these characters is left alone.
  return xmlTextFromBytes(bytes) == text ? bytes : text;
}

}  // namespace tavrin
