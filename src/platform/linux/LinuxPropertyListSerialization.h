#pragma once

#include "platform/PropertyListSerialization.h"

namespace tavrin {

/// Both formats by own readers and writers, which stay within the limits of PropertyListFormats.h
/// and go by no locale. The formats' own limits are told there too.
class LinuxPropertyListSerialization final : public PropertyListSerialization {
 public:
  Result<PropertyList> propertyListFromData(const PropertyList::Data& data) override;
  Result<PropertyList::Data> dataFromPropertyList(const PropertyList& value,
                                                  Format format) override;
  Result<PropertyList> propertyListWithContentsOfFile(const std::string& path) override;
};

}  // namespace tavrin
