#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Which names a save panel gives files. Names are byte strings; a type is an extension without its
/// dot, and is found in a name in any case.
class SaveName {
 public:
  enum class OtherTypes { Refused, Allowed };
  SaveName(std::vector<std::string> types, OtherTypes otherTypes)
      : types_(std::move(types)), otherTypes_(otherTypes) {}

  /// The name that a file gets for the name that was typed: with the first type appended when it
  /// has none of them (nor, where others are allowed, any), and with its type written as the rules
  /// have it. "" stays "".
  std::string finished(const std::string& name) const;

  /// The name without the allowed type that it ends with.
  std::string withoutType(const std::string& name) const;

  /// The name of an item that is there, to be used for a file of the allowed types: another
  /// extension gives way to the first type.
  std::string ofExistingItem(const std::string& name) const;

  enum class Problem { Empty, Separator, Reserved, TooLong };
  /// Why no file can have the name.
  static std::optional<Problem> problem(const std::string& name);

 private:
  std::optional<std::string> typeOf(const std::string& name) const;

  std::vector<std::string> types_;
  OtherTypes otherTypes_;
};

}  // namespace tavrin
