#pragma once

#include <string>

#include "platform/PropertyListSerialization.h"

namespace tavrin {

/// Both formats by own readers and writers, which stay within the limits of PropertyListFormats.h
/// and go by no locale. The formats' own limits are told there too.
class LinuxPropertyListSerialization : public PropertyListSerialization {
 public:
  Result<PropertyList> propertyListFromData(const PropertyList::Data& data) override;
  Result<PropertyList::Data> dataFromPropertyList(const PropertyList& value,
                                                  Format format) override;
  Result<PropertyList> propertyListWithContentsOfFile(const std::string& path) override;
};

/// What a property list's file holds, under the rules of propertyListWithContentsOfFile.
Result<PropertyList::Data> contentsOfPropertyListFile(const std::string& path);

/// Takes apart what the file at `path` held; the path is for the error.
Result<PropertyList> propertyListFromContentsOfFile(const PropertyList::Data& contents,
                                                    const std::string& path);

}  // namespace tavrin
