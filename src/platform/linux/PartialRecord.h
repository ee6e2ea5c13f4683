#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The kind of the hidden names of partial items (randomHiddenName).
inline constexpr const char* partialItemKind = "partial";

/// Where a partial item stands.
struct PartialRecord {
  /// The folder's, in decimal digits.
  std::string inode;
  /// One component, a random hidden name.
  std::string name;
  /// Absolute.
  std::string folderPath;
  /// Another component, when the item is whole, is only set aside under `name` and is to have this
  /// name again; else empty.
  std::string nameToReturnTo = {};

  /// The contents of the record's file: fields that end with a NUL byte.
  std::string written() const;

  bool operator==(const PartialRecord&) const = default;
};

/// What a record's file says; nothing when it is none, not whole, or does not name a partial item.
std::optional<PartialRecord> partialRecordFrom(std::string_view contents);

}  // namespace tavrin
