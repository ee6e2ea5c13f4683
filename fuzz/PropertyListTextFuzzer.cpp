#include <cstdint>
#include <string>

#include "foundation/Utf8.h"
#include "fuzz/Require.h"
#include "menu/MenuTitle.h"
#include "platform/linux/PropertyListText.h"

namespace tavrin::fuzz {

namespace {

bool isDecodable(std::string_view text) {
  for (std::size_t position = 0; position < text.size();) {
    const DecodedCharacter character = characterAt(text, position);
    if (!character.codePoint) return false;
    position += character.length;
  }
  return true;
}

void run(std::string_view text) {
  require(isUtf8(text) == isDecodable(text), "both decoders take the same for UTF-8");
  require(bytesFromUtf16(utf16FromBytes(text)) == text, "every byte survives UTF-16");
  const std::string escaped = xmlTextFromBytes(text);
  require(isUtf8(escaped), "an escaped text is UTF-8");
  require(bytesFromXmlText(escaped) == text, "every byte survives XML");
  const std::string foreign = bytesFromXmlText(std::string(text));
  require(bytesFromXmlText(xmlTextFromBytes(foreign)) == foreign,
          "what a foreign text reads as survives XML");
  const std::string title = menuTitle(text);
  require(isUtf8(title), "a title is UTF-8");
  require(title.find_first_of(std::string_view("\0\n\r\t\x1b\x7f", 6)) == title.npos,
          "a title has no control characters");
  require(title.size() <= 4 * std::size_t{80}, "a title is short");
  require(title.empty() == text.empty(), "a title is as empty as its text");
  require(menuTitle(title) == title, "a title stays as it is");
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::run({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
