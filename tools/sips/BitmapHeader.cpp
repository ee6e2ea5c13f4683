#include "sips/BitmapHeader.h"

#include <cstdlib>

namespace tavrin::sips {

namespace {

/// A little-endian number of four bytes.
std::uint32_t littleEndianNumber(icons::BytesView bytes, std::size_t position) {
  std::uint32_t number = 0;
  for (unsigned index = 0; index < 4; ++index) {
    number |= std::uint32_t{static_cast<unsigned char>(bytes[position + index])} << 8 * index;
  }
  return number;
}

}  // namespace

bool isTooLarge(std::int64_t width, std::int64_t height, std::string& mistake) {
  const auto pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
  if (pixels <= mostPixels) return false;
  mistake = std::to_string(width) + " x " + std::to_string(height) + " pixels are more than " +
            std::to_string(mostPixels);
  return true;
}

std::string faultOfBitmap(icons::BytesView bytes) {
  constexpr std::size_t headers = 54;
  constexpr std::uint32_t oldHeader = 12;
  if (bytes.size() < headers) return "the image is cut off";
  if (littleEndianNumber(bytes, 14) == oldHeader) return "";
  const std::int64_t width = static_cast<std::int32_t>(littleEndianNumber(bytes, 18));
  // Negative for an image that is stored from top to bottom.
  const std::int64_t height =
      std::abs(std::int64_t{static_cast<std::int32_t>(littleEndianNumber(bytes, 22))});
  if (width < 1 || height < 1) return "the image has no pixels";
  std::string mistake;
  if (isTooLarge(width, height, mistake)) return mistake;
  const std::uint32_t bitsPerPixel = littleEndianNumber(bytes, 28) & 0xffff;
  const bool isCompressed = littleEndianNumber(bytes, 30) % 3 != 0;
  const std::uint64_t row = (static_cast<std::uint64_t>(width) * bitsPerPixel + 31) / 32 * 4;
  const std::uint64_t pixelBytes = isCompressed ? 0 : row * static_cast<std::uint64_t>(height);
  const bool isWhole = littleEndianNumber(bytes, 10) + pixelBytes <= bytes.size();
  return isWhole ? "" : "the image is cut off";
}

}  // namespace tavrin::sips
