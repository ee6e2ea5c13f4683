#include "icons/Png.h"

namespace tavrin::icons {

namespace {

constexpr BytesView signature("\x89PNG\r\n\x1a\n", 8);
// Around a chunk's data: its length and type before, a checksum behind.
constexpr std::size_t chunkHeader = 8;
constexpr std::size_t chunkFrame = 12;
constexpr std::size_t headerData = 13;

bool chunksReachTheEnd(BytesView chunks) {
  while (chunks.size() >= chunkFrame) {
    const std::size_t length = bigEndianNumber(chunks, 0);
    if (length > chunks.size() - chunkFrame) return false;
    if (chunks.substr(4, 4) == "IEND") return true;
    chunks.remove_prefix(chunkFrame + length);
  }
  return false;
}

}  // namespace

std::uint32_t bigEndianNumber(BytesView bytes, std::size_t position) {
  std::uint32_t number = 0;
  for (const char byte : bytes.substr(position, 4)) {
    number = number << 8U | static_cast<unsigned char>(byte);
  }
  return number;
}

std::optional<ImageSize> sizeOfPng(BytesView bytes) {
  if (!bytes.starts_with(signature)) return std::nullopt;
  const BytesView chunks = bytes.substr(signature.size());
  if (!chunksReachTheEnd(chunks) || bigEndianNumber(chunks, 0) != headerData ||
      chunks.substr(4, 4) != "IHDR") {
    return std::nullopt;
  }
  const ImageSize size{bigEndianNumber(chunks, chunkHeader),
                       bigEndianNumber(chunks, chunkHeader + 4)};
  if (size.width == 0 || size.height == 0) return std::nullopt;
  return size;
}

}  // namespace tavrin::icons
