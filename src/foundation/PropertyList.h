#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tavrin {

/// One value of a property list: what settings, rule records and requests are made of.
///
/// The kinds are those of Foundation's property lists. Strings are byte strings: usually UTF-8, but
/// a path that is not keeps its bytes. Dictionaries list their keys in byte order, so that "the
/// first key" is the same on every run. Reading never fails: a value of another kind, or an absent
/// one, reads as the conversions of NSUserDefaults say. Data is immutable and shared: copying a
/// list copies no bytes of it.
class PropertyList {
 public:
  using Data = std::vector<std::uint8_t>;
  using Array = std::vector<PropertyList>;
  using Dictionary = std::map<std::string, PropertyList, std::less<>>;

  /// A moment, in seconds since 2001-01-01 00:00:00 UTC (Foundation's reference date).
  struct Date {
    double secondsSinceReferenceDate = 0;
    bool operator==(const Date&) const = default;
  };

  PropertyList(bool value);
  PropertyList(int value);
  PropertyList(std::int64_t value);
  PropertyList(double value);
  PropertyList(const char* value);
  PropertyList(std::string value);
  PropertyList(std::string_view value);
  PropertyList(Data value);
  /// Shares the bytes; null stands for none.
  PropertyList(std::shared_ptr<const Data> value);
  PropertyList(Date value);
  PropertyList(Array value);
  PropertyList(Dictionary value);
  /// Any other pointer would become a boolean.
  PropertyList(const void*) = delete;

  bool isBoolean() const;
  bool isInteger() const;
  bool isReal() const;
  /// True for a boolean, an integer or a real: what Foundation reads as a number object.
  bool isNumber() const;
  bool isString() const;
  bool isData() const;
  bool isDate() const;
  bool isArray() const;
  bool isDictionary() const;

  /// The value as `boolValue` reads it: a number is true unless it is 0; a string is true when,
  /// after white space, a sign and zeros, it goes on with one of "YyTt" or a digit from 1 to 9
  /// (NSString boolValue). Every other kind is false.
  bool boolValue() const;

  /// The value as `integerValue` reads it: a real is cut toward zero; a string gives the decimal
  /// integer at its start after white space, 0 when there is none; both are clamped to the range of
  /// 64 bits (NSString integerValue). Every other kind is 0.
  std::int64_t integerValue() const;

  /// The value as `doubleValue` reads it; a string by the number at its start, 0 when there is
  /// none.
  double doubleValue() const;

  /// The string; nothing when this is no string.
  const std::string* stringIfString() const;
  /// The bytes; nothing when this is no data.
  const Data* dataIfData() const;
  /// The bytes, shared with this value and its copies; null when this is no data.
  std::shared_ptr<const Data> sharedDataIfData() const;
  /// The date; nothing when this is no date.
  const Date* dateIfDate() const;
  /// The elements; nothing when this is no array.
  const Array* arrayIfArray() const;
  Array* arrayIfArray();
  /// The entries; nothing when this is no dictionary.
  const Dictionary* dictionaryIfDictionary() const;
  Dictionary* dictionaryIfDictionary();

  /// The entry of a dictionary; nothing when the key is absent or this is no dictionary.
  const PropertyList* find(std::string_view key) const;

  /// The string entry of a dictionary, or "" when it is absent or no string.
  std::string stringForKey(std::string_view key) const;
  /// The boolean reading of an entry; false when it is absent.
  bool boolForKey(std::string_view key) const;

  /// Equal kind and equal value: the boolean true and the integer 1 differ.
  bool operator==(const PropertyList& other) const;

 private:
  /// Bytes that several values hold; never null.
  struct SharedData {
    std::shared_ptr<const Data> bytes;
    bool operator==(const SharedData& other) const;
  };

  std::variant<bool, std::int64_t, double, std::string, SharedData, Date, Array, Dictionary> value_;
};

/// What `%@` shows for a string that may be missing: the string, or "(null)".
std::string descriptionOf(const std::optional<std::string>& text);

}  // namespace tavrin
