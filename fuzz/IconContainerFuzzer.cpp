#include <algorithm>

#include "fuzz/Require.h"
#include "icons/IconContainer.h"
#include "icons/Png.h"
#include "sips/BitmapHeader.h"

namespace tavrin::fuzz {

namespace {

using icons::BytesView;

void readPng(BytesView bytes) {
  const auto size = icons::sizeOfPng(bytes);
  require(!size || (size->width > 0 && size->height > 0), "an image has pixels");
}

void requireLargest(const std::vector<icons::IconElement>& elements,
                    const std::optional<icons::Bytes>& largest) {
  const auto size = largest ? icons::sizeOfPng(*largest) : std::nullopt;
  require(size.has_value() == largest.has_value(), "the largest image is a PNG image");
  for (const icons::IconElement& element : elements) {
    const auto its = icons::sizeOfPng(element.data);
    if (!its) continue;
    require(size && std::uint64_t{its->width} * its->height <=
                        std::uint64_t{size->width} * size->height,
            "no image is larger than the largest");
  }
}

void readContainer(BytesView bytes) {
  std::string mistake;
  const auto elements = icons::elementsOf(bytes, mistake);
  require(elements.has_value() == mistake.empty(), "what is refused has a reason");
  const auto largest = icons::largestPng(bytes, mistake);
  if (!elements) return;
  const auto written = icons::iconContainerOf(*elements);
  require(written && bytes.starts_with(*written), "a container is its images");
  requireLargest(*elements, largest);
}

/// A container of images whose beginnings are like those of PNG images, cut from the bytes.
void readAssembled(BytesView bytes) {
  constexpr std::size_t pieceLength = 40;
  std::vector<icons::IconElement> elements;
  for (; bytes.size() > 1; bytes.remove_prefix(std::min(bytes.size(), pieceLength))) {
    const auto& bitmap = icons::iconBitmaps.at(static_cast<unsigned char>(bytes[0]) % 10U);
    icons::Bytes data("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
    data += bytes.substr(1, pieceLength - 1);
    elements.push_back({std::string(bitmap.type), std::move(data)});
  }
  const auto container = icons::iconContainerOf(elements);
  require(container.has_value(), "a small container can be written");
  readContainer(*container);
}

void readBitmap(BytesView bytes) {
  const std::string fault = sips::faultOfBitmap(bytes);
  require(!fault.empty() || bytes.size() >= 54, "a bitmap has its header");
}

void run(std::uint8_t choice, BytesView bytes) {
  switch (choice % 4) {
    case 0:
      return readContainer(bytes);
    case 1:
      return readAssembled(bytes);
    case 2:
      return readPng(bytes);
    default:
      return readBitmap(bytes);
  }
}

}  // namespace

}  // namespace tavrin::fuzz

/// The first byte says what the rest is taken for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  tavrin::fuzz::run(bytes[0], {reinterpret_cast<const char*>(bytes) + 1, size - 1});
  return 0;
}
