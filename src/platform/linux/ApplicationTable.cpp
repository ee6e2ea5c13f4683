#include "platform/linux/ApplicationTable.h"

namespace tavrin {

std::vector<std::string> ApplicationTable::desktopEntries(const std::string& bundleIdentifier) {
  return stringsOf(table_.find({"DesktopEntries", bundleIdentifier}));
}

std::string ApplicationTable::bundleIdentifier(const std::string& applicationName) {
  const PropertyList* identifier = table_.find({"BundleIdentifiers", applicationName});
  const std::string* text = identifier == nullptr ? nullptr : identifier->stringIfString();
  return text == nullptr ? std::string() : *text;
}

std::vector<std::string> ApplicationTable::windowClasses(const std::string& applicationName) {
  return stringsOf(table_.find({"WindowClasses", applicationName}));
}

}  // namespace tavrin
