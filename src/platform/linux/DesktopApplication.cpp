#include "platform/linux/DesktopApplication.h"

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileURL.h"
#include "platform/linux/CurrentStartupToken.h"
#include "platform/linux/ProgramLauncher.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

void becomeSessionLeader(gpointer) {
  ::setsid();
}

/// The environment of this process, with the token of the request in hand instead of what told of
/// its own start. An entry that is started by
/// D-Bus has none: GIO would complain of a context without startup id when the activation fails.
GObjectPointer<GAppLaunchContext> launchContext(GDesktopAppInfo* application) {
  if (g_desktop_app_info_get_boolean(application, G_KEY_FILE_DESKTOP_KEY_DBUS_ACTIVATABLE) !=
      FALSE) {
    return nullptr;
  }
  GObjectPointer<GAppLaunchContext> context(g_app_launch_context_new());
  for (const char* name : variablesOfOwnStart) {
    g_app_launch_context_unsetenv(context.get(), name);
  }
  const std::string token = currentStartupToken();
  if (token.empty()) return context;
  for (const std::string_view name : variablesOfStartupToken) {
    g_app_launch_context_setenv(context.get(), name.data(), token.c_str());
  }
  return context;
}

Status findItem(const std::string& path) {
  if (path.find('\0') != std::string::npos) {
    return systemError("open", path, std::errc::invalid_argument);
  }
  struct stat status = {};
  if (::lstat(path.c_str(), &status) != 0) return systemError("open", path);
  return success();
}

/// `name` is what a failure calls the item that `uri` leads to.
Status launch(GDesktopAppInfo* application, const std::string& uri, const std::string& name) {
  GList uris = {const_cast<char*>(uri.c_str()), nullptr, nullptr};
  const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL);
  GLibError error;
  // Without G_SPAWN_DO_NOT_REAP_CHILD GLib starts a grandchild and reaps the child between.
  if (g_desktop_app_info_launch_uris_as_manager(
          application, &uris, launchContext(application).get(), flags, becomeSessionLeader, nullptr,
          nullptr, nullptr, error.slot()) == FALSE) {
    const char* id = g_app_info_get_id(G_APP_INFO(application));
    return systemError(
        "launch " + std::string(id == nullptr ? "" : id) + " (" + error.message() + ") with", name,
        std::errc::io_error);
  }
  return success();
}

}  // namespace

Status launchWithFile(GDesktopAppInfo* application, const std::string& path) {
  Status found = findItem(path);
  if (!found) return found;
  return launch(application, FileURL::fileURLWithPath(path).absoluteString(), path);
}

Status launchWithUri(GDesktopAppInfo* application, const std::string& uri) {
  return launch(application, uri, uri);
}

}  // namespace tavrin
