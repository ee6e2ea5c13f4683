#include "icons/IconContainer.h"

#include <utility>

#include "icons/Png.h"

namespace tavrin::icons {

namespace {

constexpr BytesView magic = "icns";
constexpr std::size_t headerSize = 8;

void append(Bytes& container, std::string_view type, std::size_t length) {
  container += type;
  for (unsigned shift = 32; shift > 0; shift -= 8) {
    container += static_cast<char>(length >> (shift - 8) & 0xff);
  }
}

std::uint64_t pixelsOf(const IconElement& element) {
  const auto size = sizeOfPng(element.data);
  return size ? std::uint64_t{size->width} * size->height : 0;
}

}  // namespace

bool isIconContainer(BytesView bytes) {
  return bytes.starts_with(magic);
}

std::optional<Bytes> iconContainerOf(const std::vector<IconElement>& elements) {
  std::size_t length = headerSize;
  for (const IconElement& element : elements) length += headerSize + element.data.size();
  if (length > mostContainerBytes) return std::nullopt;
  Bytes container;
  container.reserve(length);
  append(container, magic, length);
  for (const IconElement& element : elements) {
    append(container, element.type, headerSize + element.data.size());
    container += element.data;
  }
  return container;
}

std::optional<std::vector<IconElement>> elementsOf(BytesView container, std::string& mistake) {
  const bool hasHeader = isIconContainer(container) && container.size() >= headerSize;
  const std::size_t length = hasHeader ? bigEndianNumber(container, magic.size()) : 0;
  if (length < headerSize || length > container.size()) {
    mistake = hasHeader ? "the file is shorter than it says" : "this is no icon file";
    return std::nullopt;
  }
  std::vector<IconElement> elements;
  BytesView rest = container.substr(headerSize, length - headerSize);
  while (!rest.empty()) {
    const std::size_t size = rest.size() < headerSize ? 0 : bigEndianNumber(rest, 4);
    if (size < headerSize || size > rest.size()) {
      mistake = "an image in the file has an impossible length";
      return std::nullopt;
    }
    elements.push_back(
        {Bytes(rest.substr(0, 4)), Bytes(rest.substr(headerSize, size - headerSize))});
    rest.remove_prefix(size);
  }
  return elements;
}

std::optional<Bytes> largestPng(BytesView container, std::string& mistake) {
  auto elements = elementsOf(container, mistake);
  if (!elements) return std::nullopt;
  IconElement* largest = nullptr;
  for (IconElement& element : *elements) {
    if (pixelsOf(element) > (largest == nullptr ? 0 : pixelsOf(*largest))) largest = &element;
  }
  if (largest != nullptr) return std::move(largest->data);
  mistake = "there is no PNG picture in the icon file";
  return std::nullopt;
}

}  // namespace tavrin::icons
