#pragma once

#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// Opens a URL in the default application of its scheme (x-scheme-handler), which is started as
/// launchWithUri starts one. Fails for a text that is no URL (RFC 3986), for a scheme that no
/// application opens, and when the application cannot be started.
Status openUrl(const std::string& url);

}  // namespace tavrin
