#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/PropertyList.h"

namespace tavrin {

/// What a property list may hold at most when it is taken apart or written.
struct PropertyListLimits {
  /// Every element of an array and every key and value of a dictionary counts, a shared object of
  /// the binary format as often as it is used, so that a small file cannot grow without end.
  std::size_t objects = 0;
  /// Bytes of all strings and data, likewise with shared ones counted at each use.
  std::size_t bytes = 0;
};
inline constexpr PropertyListLimits usualPropertyListLimits{4'000'000, std::size_t{256} << 20U};

/// Gives a number for data that the caller keeps elsewhere; nothing for data that stays in place.
using ReferenceForData =
    std::function<std::optional<std::uint32_t>(const std::shared_ptr<const PropertyList::Data>&)>;
/// Gives the data back; null when there is none under that number.
using DataForReference = std::function<std::shared_ptr<const PropertyList::Data>(std::uint32_t)>;

/// Apple's binary format, version 00 (CFBinaryPList.c). Strings are ASCII or UTF-16; a byte that
/// is part of no valid UTF-8 becomes the lone surrogate U+DC80 to U+DCFF, as Python's
/// "surrogateescape" has it, so every byte string survives. Data that `referenceForData` takes is
/// written as a UID of that number. Nothing when the value exceeds a limit.
std::optional<PropertyList::Data> binaryFromPropertyList(const PropertyList& value,
                                                         const ReferenceForData& referenceForData);

/// Takes the binary format apart; nothing for anything malformed or beyond the limits. An unsigned
/// integer beyond 64 signed bits becomes the nearest real. A UID is the data that
/// `dataForReference` gives, or without it a dictionary of the key "CF$UID", as the XML format has
/// it. Sets read as arrays.
std::optional<PropertyList> propertyListFromBinary(
    const std::uint8_t* bytes, std::size_t size, const DataForReference& dataForReference,
    const PropertyListLimits& limits = usualPropertyListLimits);

/// Apple's XML format (PropertyList-1.0.dtd). XML cannot carry bytes that are no UTF-8 nor most
/// control characters: such a byte is written as the private-use character U+10F700 plus the byte,
/// which `propertyListFromXml` turns back and other readers show as that character. Dates have
/// whole seconds (cut downward). Nothing when the value exceeds a limit, or for a date outside the
/// years 1 to 9999.
std::optional<PropertyList::Data> xmlFromPropertyList(const PropertyList& value);

/// Takes the XML format apart; nothing for anything malformed. Entities beyond the five of XML and
/// numeric ones are malformed, as is a document type with declarations of its own.
std::optional<PropertyList> propertyListFromXml(std::string_view text);

}  // namespace tavrin
