#include "platform/linux/LinuxLaunchServices.h"

#include <gio/gdesktopappinfo.h>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

std::vector<std::string> LinuxLaunchServices::applicationsForBundleIdentifier(
    const std::string& bundleIdentifier) {
  std::vector<std::string> ids = applications_.desktopEntries(bundleIdentifier);
  std::erase_if(ids, [](const std::string& id) {
    return GObjectPointer<GDesktopAppInfo>(g_desktop_app_info_new(id.c_str())) == nullptr;
  });
  return ids;
}

}  // namespace tavrin
