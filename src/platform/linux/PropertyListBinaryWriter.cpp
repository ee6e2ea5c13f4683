#include <bit>
#include <cstring>
#include <unordered_map>
#include <vector>

#include "platform/PropertyListSerialization.h"
#include "platform/linux/PropertyListFormats.h"
#include "platform/linux/PropertyListText.h"

namespace tavrin {

namespace {

enum Marker : unsigned {
  markerFalse = 0x08,
  markerTrue = 0x09,
  markerInteger = 0x10,
  markerReal = 0x23,
  markerDate = 0x33,
  markerData = 0x40,
  markerAscii = 0x50,
  markerUtf16 = 0x60,
  markerUid = 0x80,
  markerArray = 0xA0,
  markerDictionary = 0xD0,
};

/// An object of the file: a value, or a string that may serve several places.
struct Object {
  const PropertyList* value = nullptr;
  const std::string* text = nullptr;
  std::optional<std::uint32_t> reference;
  std::vector<std::uint32_t> children;
};

class BinaryWriter {
 public:
  explicit BinaryWriter(const ReferenceForData& referenceForData)
      : referenceForData_(referenceForData) {}

  std::optional<PropertyList::Data> write(const PropertyList& root);

 private:
  std::optional<std::uint32_t> add(const PropertyList& value, std::size_t depth);
  std::uint32_t addText(const std::string& text);
  bool addElements(std::uint32_t owner, const PropertyList::Array& elements, std::size_t depth);
  bool addEntries(std::uint32_t owner, const PropertyList::Dictionary& entries, std::size_t depth);
  std::uint32_t append(Object object);
  /// Counts one use of an object of so many bytes; false when that exceeds a limit.
  bool count(std::size_t bytes);

  void emit(const Object& object);
  void emitScalar(const PropertyList& value);
  void emitInteger(std::int64_t value);
  void emitText(const std::string& text);
  void emitCollection(Marker marker, std::size_t count, const std::vector<std::uint32_t>& children);
  void emitMarker(Marker marker, std::size_t count);
  void emitNumber(std::uint64_t number, unsigned width);
  void emitTrailer(const std::vector<std::uint64_t>& offsets);

  const ReferenceForData& referenceForData_;
  std::vector<Object> objects_;
  std::unordered_map<std::string_view, std::uint32_t> texts_;
  std::size_t uses_ = 0;
  std::size_t bytes_ = 0;
  unsigned referenceWidth_ = 1;
  PropertyList::Data output_;
};

unsigned widthOf(std::uint64_t number) {
  if (number <= 0xFF) return 1;
  if (number <= 0xFFFF) return 2;
  return number <= 0xFFFFFFFF ? 4 : 8;
}

std::optional<PropertyList::Data> BinaryWriter::write(const PropertyList& root) {
  if (!add(root, 0)) return std::nullopt;
  referenceWidth_ = widthOf(objects_.size());
  constexpr std::string_view header = "bplist00";
  output_.assign(header.begin(), header.end());
  std::vector<std::uint64_t> offsets;
  offsets.reserve(objects_.size());
  for (const Object& object : objects_) {
    offsets.push_back(output_.size());
    emit(object);
  }
  emitTrailer(offsets);
  return std::move(output_);
}

bool BinaryWriter::count(std::size_t bytes) {
  bytes_ += bytes;
  return ++uses_ <= usualPropertyListLimits.objects && bytes_ <= usualPropertyListLimits.bytes;
}

std::uint32_t BinaryWriter::append(Object object) {
  objects_.push_back(std::move(object));
  return static_cast<std::uint32_t>(objects_.size() - 1);
}

std::optional<std::uint32_t> BinaryWriter::add(const PropertyList& value, std::size_t depth) {
  if (const std::string* text = value.stringIfString()) {
    return count(text->size()) ? std::optional(addText(*text)) : std::nullopt;
  }
  Object object;
  object.value = &value;
  const auto data = value.sharedDataIfData();
  if (data && referenceForData_) object.reference = referenceForData_(data);
  if (!count(data && !object.reference ? data->size() : 0)) return std::nullopt;
  const auto* elements = value.arrayIfArray();
  const auto* entries = value.dictionaryIfDictionary();
  if ((elements || entries) && depth >= PropertyListSerialization::maximumDepth) {
    return std::nullopt;
  }
  const std::uint32_t index = append(std::move(object));
  if (elements && !addElements(index, *elements, depth + 1)) return std::nullopt;
  if (entries && !addEntries(index, *entries, depth + 1)) return std::nullopt;
  return index;
}

std::uint32_t BinaryWriter::addText(const std::string& text) {
  const auto [known, isNew] = texts_.try_emplace(text, static_cast<std::uint32_t>(objects_.size()));
  if (isNew) {
    Object object;
    object.text = &text;
    append(std::move(object));
  }
  return known->second;
}

bool BinaryWriter::addElements(std::uint32_t owner, const PropertyList::Array& elements,
                               std::size_t depth) {
  std::vector<std::uint32_t> children;
  children.reserve(elements.size());
  for (const PropertyList& element : elements) {
    const auto child = add(element, depth);
    if (!child) return false;
    children.push_back(*child);
  }
  objects_[owner].children = std::move(children);
  return true;
}

bool BinaryWriter::addEntries(std::uint32_t owner, const PropertyList::Dictionary& entries,
                              std::size_t depth) {
  std::vector<std::uint32_t> children;
  children.reserve(entries.size() * 2);
  for (const auto& [key, value] : entries) {
    if (!count(key.size())) return false;
    children.push_back(addText(key));
  }
  for (const auto& [key, value] : entries) {
    const auto child = add(value, depth);
    if (!child) return false;
    children.push_back(*child);
  }
  objects_[owner].children = std::move(children);
  return true;
}

void BinaryWriter::emit(const Object& object) {
  if (object.text) return emitText(*object.text);
  if (object.reference) {
    const unsigned width = widthOf(*object.reference);
    output_.push_back(static_cast<std::uint8_t>(markerUid + width - 1));
    return emitNumber(*object.reference, width);
  }
  if (object.value->isArray()) {
    return emitCollection(markerArray, object.children.size(), object.children);
  }
  if (object.value->isDictionary()) {
    return emitCollection(markerDictionary, object.children.size() / 2, object.children);
  }
  emitScalar(*object.value);
}

void BinaryWriter::emitScalar(const PropertyList& value) {
  if (value.isBoolean()) {
    output_.push_back(value.boolValue() ? markerTrue : markerFalse);
  } else if (value.isInteger()) {
    emitInteger(value.integerValue());
  } else if (const auto* date = value.dateIfDate()) {
    output_.push_back(markerDate);
    emitNumber(std::bit_cast<std::uint64_t>(date->secondsSinceReferenceDate), 8);
  } else if (const auto* data = value.dataIfData()) {
    emitMarker(markerData, data->size());
    output_.insert(output_.end(), data->begin(), data->end());
  } else {
    output_.push_back(markerReal);
    emitNumber(std::bit_cast<std::uint64_t>(value.doubleValue()), 8);
  }
}

void BinaryWriter::emitInteger(std::int64_t value) {
  // A negative number always takes eight bytes: shorter ones are read as unsigned.
  const unsigned width = value < 0 ? 8 : widthOf(static_cast<std::uint64_t>(value));
  output_.push_back(
      static_cast<std::uint8_t>(markerInteger + static_cast<unsigned>(std::countr_zero(width))));
  emitNumber(static_cast<std::uint64_t>(value), width);
}

void BinaryWriter::emitText(const std::string& text) {
  if (isAscii(text)) {
    emitMarker(markerAscii, text.size());
    output_.insert(output_.end(), text.begin(), text.end());
    return;
  }
  const std::u16string units = utf16FromBytes(text);
  emitMarker(markerUtf16, units.size());
  for (const char16_t unit : units) emitNumber(unit, 2);
}

void BinaryWriter::emitCollection(Marker marker, std::size_t count,
                                  const std::vector<std::uint32_t>& children) {
  emitMarker(marker, count);
  for (const std::uint32_t child : children) emitNumber(child, referenceWidth_);
}

void BinaryWriter::emitMarker(Marker marker, std::size_t count) {
  if (count < 15) {
    output_.push_back(static_cast<std::uint8_t>(marker + count));
    return;
  }
  output_.push_back(static_cast<std::uint8_t>(marker + 15U));
  emitInteger(static_cast<std::int64_t>(count));
}

void BinaryWriter::emitNumber(std::uint64_t number, unsigned width) {
  for (unsigned byte = width; byte > 0; --byte) {
    output_.push_back(static_cast<std::uint8_t>(number >> (8 * (byte - 1))));
  }
}

void BinaryWriter::emitTrailer(const std::vector<std::uint64_t>& offsets) {
  const std::uint64_t tableOffset = output_.size();
  const unsigned offsetWidth = widthOf(tableOffset);
  for (const std::uint64_t offset : offsets) emitNumber(offset, offsetWidth);
  output_.insert(output_.end(), 6, 0);
  emitNumber(offsetWidth, 1);
  emitNumber(referenceWidth_, 1);
  emitNumber(offsets.size(), 8);
  emitNumber(0, 8);
  emitNumber(tableOffset, 8);
}

}  // namespace

std::optional<PropertyList::Data> binaryFromPropertyList(const PropertyList& value,
                                                         const ReferenceForData& referenceForData) {
  return BinaryWriter(referenceForData).write(value);
}

}  // namespace tavrin
