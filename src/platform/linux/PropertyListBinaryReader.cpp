#include <bit>

#include "platform/PropertyListSerialization.h"
#include "platform/linux/PropertyListFormats.h"
#include "platform/linux/PropertyListText.h"

namespace tavrin {

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

class BinaryReader {
 public:
  BinaryReader(const std::uint8_t* bytes, std::size_t size,
               const DataForReference& dataForReference, const PropertyListLimits& limits)
      : bytes_(bytes), size_(size), dataForReference_(dataForReference), limits_(limits) {}

  std::optional<PropertyList> read();

 private:
  using Value = std::optional<PropertyList>;

  bool readTrailer();
  /// Advances past `count` bytes of the object area; false when it does not have so many.
  bool take(std::uint64_t count);
  /// The same for the content of a string or data, which counts toward the limit of bytes.
  bool takeContent(std::optional<std::uint64_t> count, std::size_t width);
  std::uint64_t numberAt(std::size_t position, std::size_t width) const;
  std::optional<std::uint64_t> takeCount(unsigned low);
  Value object(std::uint64_t index, std::size_t depth);
  Value objectAtCursor(std::size_t depth);
  static Value simple(unsigned low);
  Value integer(unsigned low);
  Value real(unsigned low);
  Value date(unsigned low);
  Value uid(unsigned low);
  Value data(unsigned low);
  std::optional<std::string> ascii(unsigned low);
  std::optional<std::string> utf16(unsigned low);
  Value array(unsigned low, std::size_t depth);
  Value dictionary(unsigned low, std::size_t depth);

  const std::uint8_t* bytes_;
  std::size_t size_;
  const DataForReference& dataForReference_;
  const PropertyListLimits limits_;
  std::size_t offsetWidth_ = 0;
  std::size_t referenceWidth_ = 0;
  std::uint64_t objectCount_ = 0;
  std::uint64_t root_ = 0;
  std::size_t tableOffset_ = 0;
  std::size_t cursor_ = 0;
  std::size_t objectsRead_ = 0;
  std::size_t bytesRead_ = 0;
};

std::optional<PropertyList> BinaryReader::read() {
  return readTrailer() ? object(root_, 0) : std::nullopt;
}

bool BinaryReader::readTrailer() {
  if (size_ < headerSize + 1 + trailerSize) return false;
  const std::size_t trailer = size_ - trailerSize;
  offsetWidth_ = bytes_[trailer + 6];
  referenceWidth_ = bytes_[trailer + 7];
  objectCount_ = numberAt(trailer + 8, 8);
  root_ = numberAt(trailer + 16, 8);
  const std::uint64_t table = numberAt(trailer + 24, 8);
  if (offsetWidth_ < 1 || offsetWidth_ > 8 || referenceWidth_ < 1 || referenceWidth_ > 8) {
    return false;
  }
  if (table <= headerSize || table > trailer) return false;
  tableOffset_ = static_cast<std::size_t>(table);
  return objectCount_ <= (trailer - tableOffset_) / offsetWidth_;
}

std::uint64_t BinaryReader::numberAt(std::size_t position, std::size_t width) const {
  std::uint64_t number = 0;
  for (std::size_t index = 0; index < width; ++index) {
    number = (number << 8U) | bytes_[position + index];
  }
  return number;
}

bool BinaryReader::take(std::uint64_t count) {
  if (count > tableOffset_ - cursor_) return false;
  cursor_ += static_cast<std::size_t>(count);
  return true;
}

bool BinaryReader::takeContent(std::optional<std::uint64_t> count, std::size_t width) {
  if (!count || *count > size_ || !take(*count * width)) return false;
  bytesRead_ += static_cast<std::size_t>(*count) * width;
  return bytesRead_ <= limits_.bytes;
}

std::optional<PropertyList> BinaryReader::object(std::uint64_t index, std::size_t depth) {
  // The limits also end whatever refers to itself.
  if (index >= objectCount_ || depth > PropertyListSerialization::maximumDepth) return std::nullopt;
  if (++objectsRead_ > limits_.objects) return std::nullopt;
  const std::uint64_t offset =
      numberAt(tableOffset_ + static_cast<std::size_t>(index) * offsetWidth_, offsetWidth_);
  if (offset < headerSize || offset >= tableOffset_) return std::nullopt;
  cursor_ = static_cast<std::size_t>(offset);
  return objectAtCursor(depth);
}

std::optional<PropertyList> BinaryReader::objectAtCursor(std::size_t depth) {
  const unsigned marker = bytes_[cursor_++];
  const unsigned low = marker & 0x0FU;
  switch (marker >> 4U) {
    case 0x0:
      return simple(low);
    case 0x1:
      return integer(low);
    case 0x2:
      return real(low);
    case 0x3:
      return date(low);
    case 0x4:
      return data(low);
    case 0x5:
      return ascii(low);
    case 0x6:
      return utf16(low);
    case 0x8:
      return uid(low);
    case 0xA:
    case 0xB:
    case 0xC:
      return array(low, depth);
    case 0xD:
      return dictionary(low, depth);
    default:
      return std::nullopt;
  }
}

std::optional<PropertyList> BinaryReader::simple(unsigned low) {
  if (low == 0x8) return PropertyList(false);
  return low == 0x9 ? Value(true) : std::nullopt;
}

std::optional<PropertyList> BinaryReader::integer(unsigned low) {
  const std::size_t start = cursor_;
  if (low > 4 || !take(std::uint64_t{1} << low)) return std::nullopt;
  if (low < 4) return PropertyList(static_cast<std::int64_t>(numberAt(start, cursor_ - start)));
  const auto high = static_cast<std::int64_t>(numberAt(start, 8));
  const std::uint64_t value = numberAt(start + 8, 8);
  const auto asSigned = static_cast<std::int64_t>(value);
  if (high == (asSigned < 0 ? -1 : 0)) return PropertyList(asSigned);
  return high == 0 ? Value(static_cast<double>(value)) : std::nullopt;
}

std::optional<PropertyList> BinaryReader::real(unsigned low) {
  const std::size_t start = cursor_;
  if ((low != 2 && low != 3) || !take(std::uint64_t{1} << low)) return std::nullopt;
  if (low == 3) return PropertyList(std::bit_cast<double>(numberAt(start, 8)));
  const auto bits = static_cast<std::uint32_t>(numberAt(start, 4));
  return PropertyList(double{std::bit_cast<float>(bits)});
}

std::optional<PropertyList> BinaryReader::date(unsigned low) {
  const std::size_t start = cursor_;
  if (low != 3 || !take(8)) return std::nullopt;
  return PropertyList(PropertyList::Date{std::bit_cast<double>(numberAt(start, 8))});
}

std::optional<PropertyList> BinaryReader::uid(unsigned low) {
  const std::size_t start = cursor_;
  if (low > 3 || !take(low + 1U)) return std::nullopt;
  const std::uint64_t number = numberAt(start, low + 1U);
  if (!dataForReference_) {
    return PropertyList(
        PropertyList::Dictionary{{"CF$UID", PropertyList(static_cast<std::int64_t>(number))}});
  }
  auto bytes = dataForReference_(static_cast<std::uint32_t>(number));
  return bytes ? Value(std::move(bytes)) : std::nullopt;
}

std::optional<std::uint64_t> BinaryReader::takeCount(unsigned low) {
  if (low < 15) return low;
  const std::size_t marker = cursor_;
  if (!take(1) || (bytes_[marker] & 0xF0U) != 0x10) return std::nullopt;
  const std::size_t start = cursor_;
  const unsigned widthExponent = bytes_[marker] & 0x0FU;
  if (widthExponent > 3 || !take(std::uint64_t{1} << widthExponent)) return std::nullopt;
  return numberAt(start, cursor_ - start);
}

std::optional<PropertyList> BinaryReader::data(unsigned low) {
  const auto count = takeCount(low);
  const std::size_t start = cursor_;
  if (!takeContent(count, 1)) return std::nullopt;
  return PropertyList(PropertyList::Data(bytes_ + start, bytes_ + cursor_));
}

std::optional<std::string> BinaryReader::ascii(unsigned low) {
  const auto count = takeCount(low);
  const std::size_t start = cursor_;
  if (!takeContent(count, 1)) return std::nullopt;
  return std::string(bytes_ + start, bytes_ + cursor_);
}

std::optional<std::string> BinaryReader::utf16(unsigned low) {
  const auto count = takeCount(low);
  const std::size_t start = cursor_;
  if (!takeContent(count, 2)) return std::nullopt;
  std::u16string units;
  units.reserve((cursor_ - start) / 2);
  for (std::size_t position = start; position < cursor_; position += 2) {
    units += static_cast<char16_t>(numberAt(position, 2));
  }
  return bytesFromUtf16(units);
}

std::optional<PropertyList> BinaryReader::array(unsigned low, std::size_t depth) {
  const auto count = takeCount(low);
  const std::size_t start = cursor_;
  if (!count || *count > size_ || !take(*count * referenceWidth_)) return std::nullopt;
  if (depth >= PropertyListSerialization::maximumDepth) return std::nullopt;
  const std::size_t end = cursor_;
  PropertyList::Array elements;
  for (std::size_t position = start; position < end; position += referenceWidth_) {
    auto element = object(numberAt(position, referenceWidth_), depth + 1);
    if (!element) return std::nullopt;
    elements.push_back(std::move(*element));
  }
  return PropertyList(std::move(elements));
}

std::optional<PropertyList> BinaryReader::dictionary(unsigned low, std::size_t depth) {
  const auto count = takeCount(low);
  const std::size_t start = cursor_;
  if (!count || *count > size_ || !take(*count * 2 * referenceWidth_)) return std::nullopt;
  if (depth >= PropertyListSerialization::maximumDepth) return std::nullopt;
  const std::size_t valuesOffset = static_cast<std::size_t>(*count) * referenceWidth_;
  PropertyList::Dictionary entries;
  for (std::size_t position = start; position < start + valuesOffset; position += referenceWidth_) {
    auto key = object(numberAt(position, referenceWidth_), depth + 1);
    if (!key || !key->isString()) return std::nullopt;
    auto value = object(numberAt(position + valuesOffset, referenceWidth_), depth + 1);
    if (!value) return std::nullopt;
    entries.insert_or_assign(*key->stringIfString(), std::move(*value));
  }
  return PropertyList(std::move(entries));
}

}  // namespace

std::optional<PropertyList> propertyListFromBinary(const std::uint8_t* bytes, std::size_t size,
                                                   const DataForReference& dataForReference,
                                                   const PropertyListLimits& limits) {
  return BinaryReader(bytes, size, dataForReference, limits).read();
}

}  // namespace tavrin
