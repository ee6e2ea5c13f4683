#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "fuzz/HostileValues.h"
#include "fuzz/Require.h"
#include "fuzz/SamePropertyList.h"
#include "platform/linux/PropertyListFormats.h"
#include "platform/linux/PropertyListText.h"

namespace tavrin::fuzz {

namespace {

using Bytes = PropertyList::Data;

struct Free {
  void operator()(void* list) const { plist_free(list); }
};
using PeerList = std::unique_ptr<void, Free>;

/// A text that the other implementation, whose strings end at a NUL byte, can hold.
std::string shareable(const std::string& text) {
  std::string shared = text;
  std::erase(shared, '\0');
  return xmlTextFromBytes(shared) == shared ? shared : std::string("text");
}

/// The value without what one implementation or the other cannot tell.
PropertyList shareable(const PropertyList& value) {
  if (const std::string* text = value.stringIfString()) return shareable(*text);
  if (value.isDate() || (value.isReal() && !std::isnormal(value.doubleValue()))) return 1.5;
  if (const auto* elements = value.arrayIfArray()) {
    PropertyList::Array shared;
    for (const PropertyList& element : *elements) shared.push_back(shareable(element));
    return shared;
  }
  const auto* entries = value.dictionaryIfDictionary();
  if (entries == nullptr) return value;
  PropertyList::Dictionary shared;
  for (const auto& [key, entry] : *entries) {
    const std::string sharedKey = shareable(key);
    shared.insert_or_assign(sharedKey.empty() ? "key" : sharedKey, shareable(entry));
  }
  return shared;
}

PeerList peerList(const Bytes& file, bool isXml) {
  plist_t list = nullptr;
  const char* bytes = reinterpret_cast<const char*>(file.data());
  const auto size = static_cast<std::uint32_t>(file.size());
  if (isXml) {
    plist_from_xml(bytes, size, &list);
  } else {
    plist_from_bin(bytes, size, &list);
  }
  return PeerList(list);
}

/// What the other implementation reads, by way of the format that loses nothing there.
std::optional<PropertyList> readByPeer(const Bytes& file, bool isXml) {
  const PeerList list = peerList(file, isXml);
  require(list != nullptr, "the other implementation reads what was written");
  char* written = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(list.get(), &written, &size);
  const std::unique_ptr<char, decltype(&plist_to_bin_free)> owner(written, plist_to_bin_free);
  return propertyListFromBinary(reinterpret_cast<const std::uint8_t*>(written), size, {});
}

void run(Input& input) {
  const PropertyList value = shareable(recordsFrom(input));
  const auto binary = binaryFromPropertyList(value, {});
  const auto xml = xmlFromPropertyList(value);
  require(binary && xml, "a small value can be written");
  const auto ofBinary = readByPeer(*binary, false);
  require(ofBinary && areSame(*ofBinary, value, Dates::Exact), "both mean the same binary file");
  const auto ofXml = readByPeer(*xml, true);
  require(ofXml && areSame(*ofXml, value, Dates::Exact), "both mean the same XML file");
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::Input input(bytes, size);
  tavrin::fuzz::run(input);
  return 0;
}
