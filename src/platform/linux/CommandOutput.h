#pragma once

#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// What a command that /bin/sh runs prints to its standard output, until all who could print have
/// closed it; the end of the command itself is not waited for. It has this program's environment
/// and standard error, and reads nothing.
Result<std::string> outputOfCommand(const std::string& command);

}  // namespace tavrin
