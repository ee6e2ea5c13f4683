#pragma once

#include <map>
#include <string>
#include <system_error>

#include "platform/PropertyListSerialization.h"

namespace tavrin {

/// Property lists in files that are there only for a test. Data cannot be taken apart or made.
class FakePropertyLists final : public PropertyListSerialization {
 public:
  Result<PropertyList> propertyListFromData(const PropertyList::Data& /*data*/) override {
    return SystemError{"take apart", "", std::make_error_code(std::errc::invalid_argument)};
  }

  Result<PropertyList::Data> dataFromPropertyList(const PropertyList& /*value*/,
                                                  Format /*format*/) override {
    return SystemError{"put together", "", std::make_error_code(std::errc::not_supported)};
  }

  Result<PropertyList> propertyListWithContentsOfFile(const std::string& path) override {
    ++readCount;
    const auto file = files.find(path);
    if (file != files.end()) return file->second;
    return SystemError{"open", path, std::make_error_code(std::errc::no_such_file_or_directory)};
  }

  /// What the files hold, by their paths.
  std::map<std::string, PropertyList> files;
  int readCount = 0;
};

}  // namespace tavrin
