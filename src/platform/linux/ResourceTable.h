#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PropertyList.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/PropertyListSerialization.h"

namespace tavrin {

/// A property list among the program's resources, read at the first question. One that cannot be
/// read is empty, with a line in the log.
class ResourceTable {
 public:
  /// `name` is that of the resource, without "plist". All three references outlive the table.
  ResourceTable(const Bundle& bundle, PropertyListSerialization& propertyLists, Log& log,
                std::string name);

  /// What the keys lead to, each in the dictionary that the one before led to; nothing when there
  /// is no such entry. It lives as long as the table.
  const PropertyList* find(std::initializer_list<std::string_view> keys);

 private:
  const PropertyList& contents();

  const Bundle& bundle_;
  PropertyListSerialization& propertyLists_;
  Log& log_;
  const std::string name_;
  std::optional<PropertyList> contents_;
};

/// The strings of an array; none when `array` is null or no array.
std::vector<std::string> stringsOf(const PropertyList* array);

}  // namespace tavrin
