#pragma once

#include <cstdint>
#include <optional>

#include "icons/Bytes.h"

namespace tavrin::icons {

/// In pixels.
struct ImageSize {
  std::uint32_t width;
  std::uint32_t height;
};

/// The size of a PNG image, as its header says (ISO/IEC 15948). Nothing when the bytes are no PNG
/// datastream from its signature to the end of its last chunk; the pixels are not looked at.
std::optional<ImageSize> sizeOfPng(BytesView bytes);

/// A big-endian number of four bytes, which are there.
std::uint32_t bigEndianNumber(BytesView bytes, std::size_t position);

}  // namespace tavrin::icons
