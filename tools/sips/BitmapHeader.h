#pragma once

#include <cstdint>
#include <string>

#include "icons/Bytes.h"

namespace tavrin::sips {

/// Images of more pixels are refused before room is made for them: 16384 x 16384, which fill one
/// gibibyte.
inline constexpr std::uint64_t mostPixels = std::uint64_t{16384} * 16384;

/// True, with a reason in `mistake`, for an image that is refused.
bool isTooLarge(std::int64_t width, std::int64_t height, std::string& mistake);

/// What is wrong with a BMP file by its header, as the decoder for it takes a cut file for a whole
/// one; "" for nothing.
std::string faultOfBitmap(icons::BytesView bytes);

}  // namespace tavrin::sips
