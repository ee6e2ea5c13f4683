#pragma once

#include <optional>
#include <string>

#include "icons/Bytes.h"
#include "sips/ImageSource.h"

namespace tavrin::sips {

/// The image in exactly the given size, both in pixels, as PNG data: reduced by averaging and then
/// by a Lanczos kernel, with the colours weighted by their opacity; upright; with its colour
/// profile. Nothing, with the reason in `mistake`, when it is damaged, too large or of no known
/// kind. Once in a process, on its main thread.
std::optional<icons::Bytes> scaledImage(const ImageSource& source, int width, int height,
                                        std::string& mistake);

}  // namespace tavrin::sips
