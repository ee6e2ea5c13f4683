#pragma once

#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// The icon of an item as a PNG file of `sidePixels` pixels square (1 to 1,024; others are brought
/// into that range): of the icon theme, or a plain drawing of ours where there is none. See
/// Workspace::iconForFile.
Result<PropertyList::Data> pngOfFileIcon(const std::string& path, int sidePixels);

/// The same for the icon of that name in the theme, or the image at that absolute path, as a
/// program's desktop entry names its icon; that of file managers where there is neither.
Result<PropertyList::Data> pngOfNamedIcon(const std::string& nameOrPath, int sidePixels);

}  // namespace tavrin
