#include "sips/ImageSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "icons/Files.h"
#include "icons/IconContainer.h"
#include "sips/BitmapHeader.h"

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

std::optional<ImageSource> memorySource(const std::string& path, ImageSource::Kind kind,
                                        std::size_t mostBytes, std::string& mistake) {
  auto bytes = icons::readFile(path, mostBytes, mistake);
  if (!bytes) return std::nullopt;
  return ImageSource{kind, path, std::move(*bytes)};
}

std::optional<ImageSource> iconSource(const std::string& path, std::string& mistake) {
  auto source = memorySource(path, ImageSource::Kind::Memory, icons::mostContainerBytes, mistake);
  if (!source) return std::nullopt;
  auto picture = icons::largestPng(source->bytes, mistake);
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
