#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/PropertyListSerialization.h"
#include "platform/linux/PropertyListDate.h"
#include "platform/linux/PropertyListFormats.h"
#include "platform/linux/PropertyListText.h"

namespace tavrin {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(whiteSpace);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

template <typename Number, typename... Form>
std::optional<Number> numberFrom(std::string_view digits, Form... form) {
  Number number{};
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, form...);
  if (digits.empty() || error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::optional<PropertyList> integerFrom(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const auto magnitude = isHexadecimal ? numberFrom<std::uint64_t>(text.substr(2), 16)
                                       : numberFrom<std::uint64_t>(text, 10);
  constexpr auto limit = std::uint64_t{1} << 63U;
  if (!magnitude || (isNegative && *magnitude > limit)) return std::nullopt;
  if (isNegative) return PropertyList(static_cast<std::int64_t>(0 - *magnitude));
  if (*magnitude < limit) return PropertyList(static_cast<std::int64_t>(*magnitude));
  return PropertyList(static_cast<double>(*magnitude));
}

std::optional<PropertyList> realFrom(std::string_view text) {
  // from_chars knows "nan", "inf" and "infinity" in any case, and a minus but no plus.
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const auto number = numberFrom<double>(text, std::chars_format::general);
  return number ? std::optional<PropertyList>(*number) : std::nullopt;
}

std::optional<unsigned> base64Digit(char character) {
  if (character >= 'A' && character <= 'Z') return static_cast<unsigned>(character - 'A');
  if (character >= 'a' && character <= 'z') return static_cast<unsigned>(character - 'a' + 26);
  if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0' + 52);
  if (character == '+') return 62;
  return character == '/' ? std::optional(63U) : std::nullopt;
}

std::optional<PropertyList> dataFrom(std::string_view text) {
  PropertyList::Data data;
  data.reserve(text.size() / 4 * 3);
  std::uint32_t group = 0;
  unsigned bits = 0;
  bool ended = false;
  for (const char character : text) {
    if (whiteSpace.find(character) != whiteSpace.npos) continue;
    const auto digit = base64Digit(character);
    if (ended ? character != '=' : !digit && character != '=') return std::nullopt;
    ended = !digit;
    if (!digit) continue;
    group = (group << 6U) | *digit;
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    data.push_back(static_cast<std::uint8_t>(group >> bits));
  }
  return PropertyList(std::move(data));
}

class XmlReader {
 public:
  explicit XmlReader(std::string_view text) : rest_(text) {}

  std::optional<PropertyList> read();

 private:
  struct Tag {
    std::string_view name;
    bool isClosing = false;
    bool isEmpty = false;
  };

  bool take(std::string_view expected);
  /// Takes everything up to and with `end`; nothing when it does not come.
  std::optional<std::string_view> takeThrough(std::string_view end);
  bool takeMisc();
  bool takeDocumentType();
  std::optional<Tag> takeTag();
  bool takeClosingTag(std::string_view name);
  bool appendReference(std::string& text);
  std::optional<std::string> content(const Tag& tag);
  std::optional<PropertyList> value(std::size_t depth);
  std::optional<PropertyList> valueOf(const Tag& tag, std::size_t depth);
  std::optional<PropertyList> scalar(const Tag& tag);
  std::optional<PropertyList> array(const Tag& tag, std::size_t depth);
  std::optional<PropertyList> dictionary(const Tag& tag, std::size_t depth);
  bool atClosingTag();

  std::string_view rest_;
  std::size_t objects_ = 0;
};

bool XmlReader::take(std::string_view expected) {
  if (!rest_.starts_with(expected)) return false;
  rest_.remove_prefix(expected.size());
  return true;
}

std::optional<std::string_view> XmlReader::takeThrough(std::string_view end) {
  const auto position = rest_.find(end);
  if (position == rest_.npos) return std::nullopt;
  const std::string_view taken = rest_.substr(0, position);
  rest_.remove_prefix(position + end.size());
  return taken;
}

bool XmlReader::takeMisc() {
  for (;;) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(whiteSpace), rest_.size()));
    if (take("<!--")) {
      if (!takeThrough("-->")) return false;
    } else if (take("<?")) {
      if (!takeThrough("?>")) return false;
    } else {
      return true;
    }
  }
}

bool XmlReader::takeDocumentType() {
  if (!take("<!DOCTYPE")) return true;
  const auto declaration = takeThrough(">");
  return declaration && declaration->find_first_of("[<") == declaration->npos && takeMisc();
}

std::optional<PropertyList> XmlReader::read() {
  take("\xEF\xBB\xBF");
  if (!takeMisc() || !takeDocumentType()) return std::nullopt;
  const auto root = takeTag();
  if (!root || root->name != "plist" || root->isClosing || root->isEmpty) return std::nullopt;
  auto list = value(0);
  if (!list || !takeMisc() || !takeClosingTag("plist") || !takeMisc()) return std::nullopt;
  return rest_.empty() ? std::move(list) : std::nullopt;
}

std::optional<XmlReader::Tag> XmlReader::takeTag() {
  if (!take("<")) return std::nullopt;
  Tag tag;
  tag.isClosing = take("/");
  const auto end = rest_.find_first_of(" \t\r\n/<>");
  if (end == rest_.npos) return std::nullopt;
  tag.name = rest_.substr(0, end);
  rest_.remove_prefix(end);
  // Only the root has attributes, whose values hold no angle brackets.
  const auto attributes = takeThrough(">");
  if (!attributes || attributes->find('<') != attributes->npos) return std::nullopt;
  tag.isEmpty = attributes->ends_with('/');
  const std::string_view inside = attributes->substr(0, attributes->size() - (tag.isEmpty ? 1 : 0));
  if (tag.name != "plist" && !trimmed(inside).empty()) return std::nullopt;
  return tag.isClosing && tag.isEmpty ? std::nullopt : std::optional(tag);
}

bool XmlReader::takeClosingTag(std::string_view name) {
  const auto tag = takeTag();
  return tag && tag->isClosing && tag->name == name;
}

bool XmlReader::appendReference(std::string& text) {
  static constexpr std::array<std::pair<std::string_view, char>, 5> named{
      {{"amp;", '&'}, {"lt;", '<'}, {"gt;", '>'}, {"quot;", '"'}, {"apos;", '\''}}};
  for (const auto& [name, character] : named) {
    if (!take(name)) continue;
    text += character;
    return true;
  }
  if (!take("#")) return false;
  const bool isHexadecimal = take("x");
  const auto end = rest_.substr(0, 12).find(';');
  if (end == rest_.npos) return false;
  const auto code = numberFrom<std::uint32_t>(rest_.substr(0, end), isHexadecimal ? 16 : 10);
  if (!code || *code == 0 || *code > 0x10FFFF || (*code >= 0xD800 && *code <= 0xDFFF)) return false;
  appendCodePoint(text, *code);
  rest_.remove_prefix(end + 1);
  return true;
}

/// The characters between a tag and its closing tag, references resolved, comments left out.
std::optional<std::string> XmlReader::content(const Tag& tag) {
  std::string text;
  if (tag.isEmpty) return text;
  for (;;) {
    const auto special = rest_.find_first_of("&<");
    if (special == rest_.npos) return std::nullopt;
    text += rest_.substr(0, special);
    rest_.remove_prefix(special);
    if (take("&")) {
      if (!appendReference(text)) return std::nullopt;
    } else if (take("<![CDATA[")) {
      const auto characters = takeThrough("]]>");
      if (!characters) return std::nullopt;
      text += *characters;
    } else if (take("<!--")) {
      if (!takeThrough("-->")) return std::nullopt;
    } else {
      return takeClosingTag(tag.name) ? std::optional(std::move(text)) : std::nullopt;
    }
  }
}

std::optional<PropertyList> XmlReader::value(std::size_t depth) {
  if (!takeMisc()) return std::nullopt;
  const auto tag = takeTag();
  return tag && !tag->isClosing ? valueOf(*tag, depth) : std::nullopt;
}

std::optional<PropertyList> XmlReader::valueOf(const Tag& tag, std::size_t depth) {
  if (++objects_ > usualPropertyListLimits.objects) return std::nullopt;
  if (tag.name != "array" && tag.name != "dict") return scalar(tag);
  if (depth >= PropertyListSerialization::maximumDepth) return std::nullopt;
  return tag.name == "array" ? array(tag, depth + 1) : dictionary(tag, depth + 1);
}

std::optional<PropertyList> XmlReader::scalar(const Tag& tag) {
  auto text = content(tag);
  if (!text) return std::nullopt;
  if (tag.name == "string") return PropertyList(bytesFromXmlText(std::move(*text)));
  if (tag.name == "integer") return integerFrom(trimmed(*text));
  if (tag.name == "real") return realFrom(trimmed(*text));
  if (tag.name == "data") return dataFrom(*text);
  if (tag.name == "date") {
    const auto date = dateFromText(trimmed(*text));
    return date ? std::optional<PropertyList>(*date) : std::nullopt;
  }
  if (!trimmed(*text).empty()) return std::nullopt;
  if (tag.name == "true") return PropertyList(true);
  return tag.name == "false" ? std::optional<PropertyList>(false) : std::nullopt;
}

bool XmlReader::atClosingTag() {
  return takeMisc() && rest_.starts_with("</");
}

std::optional<PropertyList> XmlReader::array(const Tag& tag, std::size_t depth) {
  PropertyList::Array elements;
  while (!tag.isEmpty && !atClosingTag()) {
    auto element = value(depth);
    if (!element) return std::nullopt;
    elements.push_back(std::move(*element));
  }
  if (!tag.isEmpty && !takeClosingTag("array")) return std::nullopt;
  return PropertyList(std::move(elements));
}

std::optional<PropertyList> XmlReader::dictionary(const Tag& tag, std::size_t depth) {
  PropertyList::Dictionary entries;
  while (!tag.isEmpty && !atClosingTag()) {
    const auto keyTag = takeTag();
    if (!keyTag || keyTag->isClosing || keyTag->name != "key") return std::nullopt;
    auto key = content(*keyTag);
    if (!key || ++objects_ > usualPropertyListLimits.objects) return std::nullopt;
    auto entry = value(depth);
    if (!entry) return std::nullopt;
    entries.insert_or_assign(bytesFromXmlText(std::move(*key)), std::move(*entry));
  }
  if (!tag.isEmpty && !takeClosingTag("dict")) return std::nullopt;
  return PropertyList(std::move(entries));
}

}  // namespace

std::optional<PropertyList> propertyListFromXml(std::string_view text) {
  return XmlReader(text).read();
}

}  // namespace tavrin
