#pragma once

#include "Arguments.h"

namespace tavrin::defaultstool {

/// Does what was asked for. Returns the exit status, after one line on standard error when it is
/// not 0.
int perform(const Request& request);

/// One line on standard error.
void complain(const std::string& message);

}  // namespace tavrin::defaultstool
