#include "platform/linux/LinuxLaunchServices.h"

#include <gio/gdesktopappinfo.h>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

constexpr const char* tableName = "Applications";

bool isInstalled(const std::string& desktopId) {
  return GObjectPointer<GDesktopAppInfo>(g_desktop_app_info_new(desktopId.c_str())) != nullptr;
}

Result<PropertyList> readTable(const Bundle& bundle, PropertyListSerialization& propertyLists) {
  const std::optional<std::string> path = bundle.pathForResource(tableName, "plist");
  if (path) return propertyLists.propertyListWithContentsOfFile(*path);
  return SystemError{"find resource", tableName,
                     std::make_error_code(std::errc::no_such_file_or_directory)};
}

}  // namespace

LinuxLaunchServices::LinuxLaunchServices(const Bundle& bundle,
                                         PropertyListSerialization& propertyLists, Log& log)
    : bundle_(bundle), propertyLists_(propertyLists), log_(log) {}

std::vector<std::string> LinuxLaunchServices::applicationsForBundleIdentifier(
    const std::string& bundleIdentifier) {
  const PropertyList* identifiers = table().find("DesktopEntries");
  const PropertyList* entries =
      identifiers == nullptr ? nullptr : identifiers->find(bundleIdentifier);
  const PropertyList::Array* ids = entries == nullptr ? nullptr : entries->arrayIfArray();
  if (ids == nullptr) return {};

  std::vector<std::string> installed;
  for (const PropertyList& id : *ids) {
    const std::string* text = id.stringIfString();
    if (text != nullptr && isInstalled(*text)) installed.push_back(*text);
  }
  return installed;
}

const PropertyList& LinuxLaunchServices::table() {
  if (table_) return *table_;
  Result<PropertyList> read = readTable(bundle_, propertyLists_);
  if (!read) log_.write("table of applications: " + read.error().describe());
  table_ = read ? std::move(read).value() : PropertyList(PropertyList::Dictionary{});
  return *table_;
}

}  // namespace tavrin
