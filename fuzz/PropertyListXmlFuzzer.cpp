#include <string_view>

#include "fuzz/SamePropertyList.h"
#include "platform/linux/PropertyListFormats.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  if (const auto value = tavrin::propertyListFromXml(text)) {
    tavrin::fuzz::requireRoundTrips(*value);
  }
  return 0;
}
