#include "foundation/PropertyList.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace tavrin {

namespace {

constexpr auto integerMaximum = std::numeric_limits<std::int64_t>::max();
constexpr auto integerMinimum = std::numeric_limits<std::int64_t>::min();

std::string_view withoutLeadingSpace(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\n\v\f\r");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

bool boolOfString(std::string_view text) {
  text = withoutLeadingSpace(text);
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
  return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != text.npos;
}

std::int64_t integerOfString(std::string_view text) {
  text = withoutLeadingSpace(text);
  const bool negative = !text.empty() && text.front() == '-';
  // from_chars takes a minus, never a plus; "+-5" is no number.
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) return negative ? integerMinimum : integerMaximum;
  return error == std::errc() ? value : 0;
}

std::int64_t integerOfReal(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(integerMaximum)) return integerMaximum;
  if (value <= static_cast<double>(integerMinimum)) return integerMinimum;
  return static_cast<std::int64_t>(value);
}

double doubleOfString(std::string_view text) {
  text = withoutLeadingSpace(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc::invalid_argument ? 0 : value;
}

}  // namespace

PropertyList::PropertyList(bool value) : value_(value) {}
PropertyList::PropertyList(int value) : value_(std::int64_t{value}) {}
PropertyList::PropertyList(std::int64_t value) : value_(value) {}
PropertyList::PropertyList(double value) : value_(value) {}
PropertyList::PropertyList(const char* value) : value_(std::string(value)) {}
PropertyList::PropertyList(std::string value) : value_(std::move(value)) {}
PropertyList::PropertyList(std::string_view value) : value_(std::string(value)) {}
PropertyList::PropertyList(Data value)
    : PropertyList(std::make_shared<const Data>(std::move(value))) {}
PropertyList::PropertyList(std::shared_ptr<const Data> value)
    : value_(SharedData{value ? std::move(value) : std::make_shared<const Data>()}) {}
PropertyList::PropertyList(Date value) : value_(value) {}
PropertyList::PropertyList(Array value) : value_(std::move(value)) {}
PropertyList::PropertyList(Dictionary value) : value_(std::move(value)) {}

bool PropertyList::isBoolean() const {
  return std::holds_alternative<bool>(value_);
}

bool PropertyList::isInteger() const {
  return std::holds_alternative<std::int64_t>(value_);
}

bool PropertyList::isReal() const {
  return std::holds_alternative<double>(value_);
}

bool PropertyList::isNumber() const {
  return isBoolean() || isInteger() || isReal();
}

bool PropertyList::isString() const {
  return stringIfString() != nullptr;
}

bool PropertyList::isData() const {
  return dataIfData() != nullptr;
}

bool PropertyList::isDate() const {
  return dateIfDate() != nullptr;
}

bool PropertyList::isArray() const {
  return arrayIfArray() != nullptr;
}

bool PropertyList::isDictionary() const {
  return dictionaryIfDictionary() != nullptr;
}

bool PropertyList::boolValue() const {
  if (const auto* boolean = std::get_if<bool>(&value_)) return *boolean;
  if (const auto* integer = std::get_if<std::int64_t>(&value_)) return *integer != 0;
  if (const auto* real = std::get_if<double>(&value_)) return *real != 0;
  if (const auto* text = stringIfString()) return boolOfString(*text);
  return false;
}

std::int64_t PropertyList::integerValue() const {
  if (const auto* boolean = std::get_if<bool>(&value_)) return *boolean ? 1 : 0;
  if (const auto* integer = std::get_if<std::int64_t>(&value_)) return *integer;
  if (const auto* real = std::get_if<double>(&value_)) return integerOfReal(*real);
  if (const auto* text = stringIfString()) return integerOfString(*text);
  return 0;
}

double PropertyList::doubleValue() const {
  if (const auto* real = std::get_if<double>(&value_)) return *real;
  if (const auto* text = stringIfString()) return doubleOfString(*text);
  return static_cast<double>(integerValue());
}

const std::string* PropertyList::stringIfString() const {
  return std::get_if<std::string>(&value_);
}

const PropertyList::Data* PropertyList::dataIfData() const {
  const auto* data = std::get_if<SharedData>(&value_);
  return data == nullptr ? nullptr : data->bytes.get();
}

std::shared_ptr<const PropertyList::Data> PropertyList::sharedDataIfData() const {
  const auto* data = std::get_if<SharedData>(&value_);
  return data == nullptr ? nullptr : data->bytes;
}

const PropertyList::Date* PropertyList::dateIfDate() const {
  return std::get_if<Date>(&value_);
}

const PropertyList::Array* PropertyList::arrayIfArray() const {
  return std::get_if<Array>(&value_);
}

PropertyList::Array* PropertyList::arrayIfArray() {
  return std::get_if<Array>(&value_);
}

const PropertyList::Dictionary* PropertyList::dictionaryIfDictionary() const {
  return std::get_if<Dictionary>(&value_);
}

PropertyList::Dictionary* PropertyList::dictionaryIfDictionary() {
  return std::get_if<Dictionary>(&value_);
}

const PropertyList* PropertyList::find(std::string_view key) const {
  const Dictionary* dictionary = dictionaryIfDictionary();
  if (dictionary == nullptr) return nullptr;
  const auto entry = dictionary->find(key);
  return entry == dictionary->end() ? nullptr : &entry->second;
}

std::string PropertyList::stringForKey(std::string_view key) const {
  const PropertyList* value = find(key);
  const std::string* text = value == nullptr ? nullptr : value->stringIfString();
  return text == nullptr ? std::string() : *text;
}

bool PropertyList::boolForKey(std::string_view key) const {
  const PropertyList* value = find(key);
  return value != nullptr && value->boolValue();
}

bool PropertyList::SharedData::operator==(const SharedData& other) const {
  return bytes == other.bytes || *bytes == *other.bytes;
}

bool PropertyList::operator==(const PropertyList& other) const {
  return value_ == other.value_;
}

std::string descriptionOf(const std::optional<std::string>& text) {
  return text.value_or("(null)");
}

}  // namespace tavrin
