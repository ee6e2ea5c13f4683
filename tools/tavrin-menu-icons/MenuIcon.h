#pragma once

#include <optional>
#include <string>

#include "foundation/PropertyList.h"

namespace tavrin {

/// Makes the image library ready; false when it cannot be used. Once in a process.
bool startImageLibrary();

/// The image of an image file's bytes as a menu shows it: a PNG file of at most 32 x 32 pixels,
/// twice what a menu has room for. Nothing, with the reason in `mistake`, for what is no image.
std::optional<std::string> menuIcon(const PropertyList::Data& image, std::string& mistake);

}  // namespace tavrin
