#pragma once

#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin::defaultstool {

/// The property list in a file, or on standard input for "-".
Result<PropertyList> readPropertyList(const std::string& file);

/// Replaces a file in one step, keeping the old one on failure; "-" is standard output. What is no
/// regular file (a pipe, a device) is written as it stands.
Status writeFile(const std::string& file, const PropertyList::Data& data);

/// Writes to standard output.
Status writeOutput(std::string_view text);

}  // namespace tavrin::defaultstool
