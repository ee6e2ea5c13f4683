#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"

namespace tavrin::requesttool {

/// The names in a file, each ended by a NUL byte, the last one or not; "-" is standard input.
Result<std::vector<std::string>> readNames(const std::string& file);

/// The absolute path that a name means in `workingFolder`, an absolute path, without ".", ".." and
/// trailing separators. A ".." is looked up on the disk, where a link may lead elsewhere; where
/// there is nothing to look up, by text.
std::string absolutePathOf(const std::string& name, const std::string& workingFolder);

}  // namespace tavrin::requesttool
