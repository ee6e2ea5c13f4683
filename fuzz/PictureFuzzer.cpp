#include <zlib.h>

#include <QImage>
#include <algorithm>

#include "fuzz/HostileValues.h"
#include "fuzz/Require.h"
#include "icons/Png.h"
#include "platform/linux/LinuxImage.h"
#include "platform/linux/SquarePicture.h"
#include "tests/support/FakeFileManager.h"
#include "tests/support/FakeLog.h"

namespace tavrin::fuzz {

namespace {

void append(PropertyList::Data& file, std::uint32_t number) {
  for (unsigned shift = 32; shift > 0; shift -= 8) {
    file.push_back(static_cast<std::uint8_t>(number >> (shift - 8)));
  }
}

/// A PNG file that ends where its pixels would begin.
PropertyList::Data headerOf(std::uint32_t width, std::uint32_t height) {
  const std::string_view beginning("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
  PropertyList::Data file(beginning.begin(), beginning.end());
  append(file, width);
  append(file, height);
  file.insert(file.end(), {8, 6, 0, 0, 0});
  append(file, static_cast<std::uint32_t>(::crc32(0, file.data() + 12, 17)));
  append(file, 0);
  for (const char letter : std::string_view("IEND")) {
    file.push_back(static_cast<std::uint8_t>(letter));
  }
  append(file, 0xAE426082);
  return file;
}

/// Both readers of headers, and the bounds, for pictures that are far too large.
void claimSize(Input& input) {
  const auto width = input.ConsumeIntegral<std::uint32_t>();
  const auto height = input.ConsumeIntegral<std::uint32_t>();
  const auto file = headerOf(width, height);
  const auto told = icons::sizeOfPng({reinterpret_cast<const char*>(file.data()), file.size()});
  require(told.has_value() == (width > 0 && height > 0), "a size is told where there is one");
  static FakeFileManager fileManager;
  FakeLog log;
  LinuxImageProvider images(fileManager, log);
  const auto size = images.sizeOfImageWithData(file);
  const bool isWithin =
      std::uint64_t{width} * height <= std::uint64_t{ImageProvider::largestPixelCount};
  require(!size || isWithin, "a picture that is too large has no size");
  require(!size || (told && std::cmp_equal(size->width, told->width) &&
                    std::cmp_equal(size->height, told->height)),
          "both readers tell the same size");
  if (!isWithin) require(images.imageWithData(file) == nullptr, "it is refused");
}

void centre(Input& input) {
  const int width = input.ConsumeIntegralInRange(1, 24);
  const int height = input.ConsumeIntegralInRange(1, 24);
  const int side = std::max(width, height) + input.ConsumeIntegralInRange(0, 5);
  QImage picture(width, height, QImage::Format_ARGB32);
  picture.fill(Qt::blue);
  const QImage square = centredOnSquare(picture, side);
  require(square.width() == side && square.height() == side, "a square has its side");
  const QRect inside((side - width) / 2, (side - height) / 2, width, height);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const bool isOpaque = qAlpha(square.pixel(x, y)) == 255;
      require(isOpaque == inside.contains(x, y), "a picture is in the middle, with nothing around");
    }
  }
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::Input input(bytes, size);
  if (input.ConsumeBool()) {
    tavrin::fuzz::claimSize(input);
  } else {
    tavrin::fuzz::centre(input);
  }
  return 0;
}
