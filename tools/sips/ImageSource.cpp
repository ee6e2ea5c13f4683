#include "sips/ImageSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "icons/Files.h"
#include "icons/IconContainer.h"
#include "icons/Png.h"

namespace tavrin::sips {

namespace {

// Room for the pixels of the largest image that is accepted, uncompressed.
constexpr std::size_t mostBitmapBytes = (std::size_t{1} << 30) + (std::size_t{1} << 20);

/// The first bytes of a regular file that is not empty.
std::optional<icons::Bytes> beginningOf(const std::string& path, std::string& mistake) {
  struct stat status {};
  // A pipe would be waited for.
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (file < 0 || ::fstat(file, &status) != 0) {
    mistake = icons::reasonFor("cannot open", path);
    return std::nullopt;
  }
  std::array<char, 12> bytes{};
  const ssize_t size = S_ISREG(status.st_mode) ? ::read(file, bytes.data(), bytes.size()) : 0;
  if (size <= 0) mistake = path + " is empty or no file";
  ::close(file);
  if (size <= 0) return std::nullopt;
  return icons::Bytes(bytes.data(), static_cast<std::size_t>(size));
}

std::uint64_t pixelsOf(const icons::IconElement& element) {
  const auto size = icons::sizeOfPng(element.data);
  return size ? std::uint64_t{size->width} * size->height : 0;
}

/// Older kinds of pictures in such a file are for sizes that nobody scales up.
std::optional<icons::Bytes> largestPicture(const icons::Bytes& container, std::string& mistake) {
  auto elements = icons::elementsOf(container, mistake);
  if (!elements) return std::nullopt;
  icons::IconElement* largest = nullptr;
  for (icons::IconElement& element : *elements) {
    if (pixelsOf(element) > (largest == nullptr ? 0 : pixelsOf(*largest))) largest = &element;
  }
  if (largest != nullptr) return std::move(largest->data);
  mistake = "there is no PNG picture in the icon file";
  return std::nullopt;
}

/// A little-endian number of four bytes.
std::uint32_t littleEndianNumber(icons::BytesView bytes, std::size_t position) {
  std::uint32_t number = 0;
  for (unsigned index = 0; index < 4; ++index) {
    number |= std::uint32_t{static_cast<unsigned char>(bytes[position + index])} << 8 * index;
  }
  return number;
}

/// What is wrong with a BMP file by its header, as the decoder for it takes a cut file for a whole
/// one; "" for nothing.
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

std::optional<ImageSource> memorySource(const std::string& path, ImageSource::Kind kind,
                                        std::size_t mostBytes, std::string& mistake) {
  auto bytes = icons::readFile(path, mostBytes, mistake);
  if (!bytes) return std::nullopt;
  return ImageSource{kind, path, std::move(*bytes)};
}

std::optional<ImageSource> iconSource(const std::string& path, std::string& mistake) {
  auto source = memorySource(path, ImageSource::Kind::Memory, icons::mostContainerBytes, mistake);
  if (!source) return std::nullopt;
  auto picture = largestPicture(source->bytes, mistake);
  if (!picture) {
    mistake = path + ": " + mistake;
    return std::nullopt;
  }
  source->bytes = std::move(*picture);
  return source;
}

std::optional<ImageSource> bitmapSource(const std::string& path, std::string& mistake) {
  auto source = memorySource(path, ImageSource::Kind::MemoryByModule, mostBitmapBytes, mistake);
  const std::string fault = source ? faultOfBitmap(source->bytes) : "";
  if (fault.empty()) return source;
  mistake = path + ": " + fault;
  return std::nullopt;
}

}  // namespace

bool isTooLarge(std::int64_t width, std::int64_t height, std::string& mistake) {
  const auto pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
  if (pixels <= mostPixels) return false;
  mistake = std::to_string(width) + " x " + std::to_string(height) + " pixels are more than " +
            std::to_string(mostPixels);
  return true;
}

std::optional<ImageSource> sourceOf(const std::string& path, std::string& mistake) {
  const auto beginning = beginningOf(path, mistake);
  if (!beginning) return std::nullopt;
  if (icons::isIconContainer(*beginning)) return iconSource(path, mistake);
  if (beginning->starts_with("BM")) return bitmapSource(path, mistake);
  // The mark of the files that HEIC and AVIF images are kept in.
  const bool isHeif = beginning->size() == 12 && beginning->substr(4, 4) == "ftyp";
  return ImageSource{isHeif ? ImageSource::Kind::FileByModule : ImageSource::Kind::File, path, ""};
}

}  // namespace tavrin::sips
