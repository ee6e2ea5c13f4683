#pragma once

#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// Opens an item, an absolute path, in the application that the desktop opens its type with; the
/// application is started as launchWithFile starts one. Fails when there is no such item, no
/// application opens its type, or that one cannot be started.
Status openWithDefaultApplication(const std::string& path);

/// The same for an item whose content type (shared-mime-info) is known.
Status openWithDefaultApplication(const std::string& path, const std::string& contentType);

}  // namespace tavrin
