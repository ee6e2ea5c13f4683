#pragma once

#include <cerrno>
#include <string>
#include <system_error>

#include "foundation/Result.h"

namespace tavrin {

/// The failure that errno tells of, or another cause (an errno value).
inline SystemError systemError(std::string operation, std::string path, int cause = errno) {
  return {std::move(operation), std::move(path), std::error_code(cause, std::generic_category())};
}

inline SystemError systemError(std::string operation, std::string path, std::errc cause) {
  return {std::move(operation), std::move(path), std::make_error_code(cause)};
}

}  // namespace tavrin
