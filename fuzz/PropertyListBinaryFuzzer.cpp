#include <algorithm>
#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/SamePropertyList.h"
#include "platform/linux/PropertyListFormats.h"

namespace tavrin::fuzz {

namespace {

using Shared = std::shared_ptr<const PropertyList::Data>;

constexpr std::uint32_t knownReference = 7;

/// As the settings read a value whose large data are stored apart.
void readWithReferences(const std::uint8_t* bytes, std::size_t size) {
  static const Shared apart = std::make_shared<const PropertyList::Data>(3, std::uint8_t{1});
  constexpr PropertyListLimits few{300, std::size_t{1} << 13U};
  const auto value = propertyListFromBinary(
      bytes, size,
      [](std::uint32_t reference) { return reference == knownReference ? apart : nullptr; }, few);
  if (!value) return;
  const auto written = binaryFromPropertyList(*value, [](const Shared& data) {
    return data == apart ? std::optional(knownReference) : std::nullopt;
  });
  require(written.has_value(), "a value with references can be written");
  const auto again =
      propertyListFromBinary(written->data(), written->size(), [](std::uint32_t) { return apart; });
  require(again && areSame(*value, *again, Dates::Exact), "references survive");
}

/// A file whose trailer fits: the first byte counts the objects, the second chooses the widths, a
/// byte each says where the objects begin, and the rest is they.
PropertyList::Data assembled(const std::uint8_t* bytes, std::size_t size) {
  const std::size_t count = size < 2 ? 0 : std::min<std::size_t>(bytes[0], size - 2);
  const auto width = static_cast<std::uint8_t>(size < 2 ? 1 : 1 + bytes[1] % 4);
  const std::string_view header = "bplist00";
  PropertyList::Data file(header.begin(), header.end());
  if (size >= 2) file.insert(file.end(), bytes + 2 + count, bytes + size);
  const std::size_t table = file.size();
  const auto append = [&file](std::size_t number, unsigned bytesOfNumber) {
    for (unsigned index = bytesOfNumber; index > 0; --index) {
      file.push_back(index > 4 ? 0 : static_cast<std::uint8_t>(number >> (8 * (index - 1))));
    }
  };
  for (std::size_t index = 0; index < count; ++index) {
    append(header.size() + bytes[2 + index], width);
  }
  file.insert(file.end(), 6, 0);
  file.insert(file.end(), {width, 1});
  append(count, 8);
  append(0, 8);
  append(table, 8);
  return file;
}

void readFile(const std::uint8_t* bytes, std::size_t size) {
  if (const auto value = smallListFromBinary(bytes, size)) requireRoundTrips(*value);
  readWithReferences(bytes, size);
}

void run(const std::uint8_t* bytes, std::size_t size) {
  if (size > 0 && bytes[0] == 'b') return readFile(bytes, size);
  const PropertyList::Data file = assembled(bytes, size);
  readFile(file.data(), file.size());
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::run(bytes, size);
  return 0;
}
