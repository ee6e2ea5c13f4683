#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "foundation/PropertyList.h"

namespace tavrin::fuzz {

/// How far dates are compared.
enum class Dates {
  Exact,
  /// To the whole second below, as the XML format has them.
  WholeSeconds,
};

/// Whether two values are of the same kinds and hold the same; other than for "==", a real that is
/// no number is the same as another one.
bool areSame(const PropertyList& one, const PropertyList& other, Dates dates);

/// Requires that a value that was read is the same after it was written and read in each format
/// that takes it, and that writing it again gives the same bytes.
void requireRoundTrips(const PropertyList& value);

/// Reads a property list file in the binary format; nothing also for one that grows to more than
/// some hundred values, which would only cost time.
std::optional<PropertyList> smallListFromBinary(const std::uint8_t* bytes, std::size_t size);

}  // namespace tavrin::fuzz
