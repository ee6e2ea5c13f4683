#pragma once

#include <string>
#include <vector>

#include "platform/linux/ResourceTable.h"

namespace tavrin {

/// What applications are known by, as the resource "Applications.plist" says; what it does not hold
/// is empty.
class ApplicationTable {
 public:
  /// All three outlive the table.
  ApplicationTable(const Bundle& bundle, PropertyListSerialization& propertyLists, Log& log)
      : table_(bundle, propertyLists, log, "Applications") {}

  /// The desktop ids ("code.desktop") that an application goes by, packaged in one way or another,
  /// best first.
  std::vector<std::string> desktopEntries(const std::string& bundleIdentifier);

  /// The bundle identifier of the application of that name ("Sublime Text").
  std::string bundleIdentifier(const std::string& applicationName);

  /// The window classes (StartupWMClass) of the application of that name: they tell its desktop
  /// entry where each installation gives it another id.
  std::vector<std::string> windowClasses(const std::string& applicationName);

 private:
  ResourceTable table_;
};

}  // namespace tavrin
