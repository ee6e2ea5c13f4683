#include "platform/linux/OpenWithApplication.h"

#include <algorithm>

#include "platform/linux/DesktopApplication.h"

namespace tavrin {

namespace {

using DesktopApplication = GObjectPointer<GDesktopAppInfo>;

struct ApplicationListDeleter {
  void operator()(GList* applications) const { g_list_free_full(applications, g_object_unref); }
};

DesktopApplication applicationOfTable(const std::string& name, ApplicationTable& table) {
  for (const std::string& id : table.desktopEntries(table.bundleIdentifier(name))) {
    DesktopApplication application(g_desktop_app_info_new(id.c_str()));
    if (application) return application;
  }
  return nullptr;
}

bool isNamed(GDesktopAppInfo* application, const std::string& name,
             const std::vector<std::string>& windowClasses) {
  const GLibPointer<char> ownName(
      g_desktop_app_info_get_string(application, G_KEY_FILE_DESKTOP_KEY_NAME));
  if (ownName && name == ownName.get()) return true;
  const char* windowClass = g_desktop_app_info_get_startup_wm_class(application);
  return windowClass != nullptr && std::ranges::count(windowClasses, windowClass) > 0;
}

std::string idOf(GDesktopAppInfo* application) {
  const char* id = g_app_info_get_id(G_APP_INFO(application));
  return id == nullptr ? "" : id;
}

/// Of several, the one whose id comes first: GIO lists them in no order.
DesktopApplication applicationByOwnName(const std::string& name, ApplicationTable& table) {
  const std::vector<std::string> windowClasses = table.windowClasses(name);
  const std::unique_ptr<GList, ApplicationListDeleter> all(g_app_info_get_all());
  GDesktopAppInfo* best = nullptr;
  for (const GList* element = all.get(); element != nullptr; element = element->next) {
    if (!G_IS_DESKTOP_APP_INFO(element->data)) continue;
    auto* const application = G_DESKTOP_APP_INFO(element->data);
    if (!isNamed(application, name, windowClasses)) continue;
    if (best == nullptr || idOf(application) < idOf(best)) best = application;
  }
  if (best == nullptr) return nullptr;
  return DesktopApplication(G_DESKTOP_APP_INFO(g_object_ref(best)));
}

}  // namespace

bool openFileWithApplication(const std::string& path, const std::string& applicationName,
                             ApplicationTable& table, Log& log) {
  DesktopApplication application = applicationOfTable(applicationName, table);
  if (!application) application = applicationByOwnName(applicationName, table);
  if (!application) return false;
  const Status launched = launchWithFile(application.get(), path);
  if (!launched) log.write(launched.error().describe());
  return static_cast<bool>(launched);
}

}  // namespace tavrin
