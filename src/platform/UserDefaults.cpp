#include "platform/UserDefaults.h"

#include <array>
#include <charconv>

namespace tavrin {

namespace {

std::string textOfReal(double value, int digits) {
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                 std::chars_format::general, digits);
  return {buffer.data(), end.ptr};
}

std::string textOfReal(double value) {
  // 16 digits keep 0.1 readable; some values need the seventeenth to be told apart.
  std::string text = textOfReal(value, 16);
  return PropertyList(text).doubleValue() == value ? text : textOfReal(value, 17);
}

}  // namespace

bool UserDefaults::boolForKey(const std::string& key) const {
  const auto value = objectForKey(key);
  return value && value->boolValue();
}

std::optional<std::string> UserDefaults::stringForKey(const std::string& key) const {
  const auto value = objectForKey(key);
  if (!value) return std::nullopt;
  if (const std::string* text = value->stringIfString()) return *text;
  if (value->isReal()) return textOfReal(value->doubleValue());
  if (value->isNumber()) return std::to_string(value->integerValue());
  return std::nullopt;
}

PropertyList::Array UserDefaults::arrayForKey(const std::string& key) const {
  auto value = objectForKey(key);
  auto* elements = value ? value->arrayIfArray() : nullptr;
  return elements == nullptr ? PropertyList::Array() : std::move(*elements);
}

PropertyList::Dictionary UserDefaults::dictionaryForKey(const std::string& key) const {
  auto value = objectForKey(key);
  auto* entries = value ? value->dictionaryIfDictionary() : nullptr;
  return entries == nullptr ? PropertyList::Dictionary() : std::move(*entries);
}

}  // namespace tavrin
