#pragma once

#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// Keeps the image at `iconPath` (absolute) as the icon of the item at `path` (absolute, real but
/// for the item itself) in the user's file metadata, which GIO's file managers read
/// ("metadata::custom-icon", a URI); "" removes it. Fails with not_supported when the session keeps
/// no metadata (it takes gvfsd-metadata).
Status setIconMetadata(const std::string& path, const std::string& iconPath);

}  // namespace tavrin
