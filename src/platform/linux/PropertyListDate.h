#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/PropertyList.h"

namespace tavrin {

/// The XML form "2001-01-01T00:00:00Z" of a date, cut downward to whole seconds; nothing outside
/// the years 1 to 9999.
std::optional<std::string> textFromDate(const PropertyList::Date& date);

/// The date of such a text; nothing for any other text.
std::optional<PropertyList::Date> dateFromText(std::string_view text);

}  // namespace tavrin
