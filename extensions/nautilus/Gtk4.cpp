#include "extensions/nautilus/Gtk4.h"

#include <dlfcn.h>
#include <gio/gio.h>

#include "extensions/glib/Startup.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin::gtk4 {
namespace {

/// Calls a function of the process by its name; without one, the answer is the empty value.
template <typename Result, typename... Arguments>
Result call(const char* name, Arguments... arguments) {
  auto* function = reinterpret_cast<Result (*)(Arguments...)>(dlsym(RTLD_DEFAULT, name));
  if (function != nullptr) return function(arguments...);
  g_warning("%s is missing in this process", name);
  return Result();
}

void* display() {
  return call<void*>("gdk_display_get_default");
}

}  // namespace

void copyText(const std::string& text) {
  auto* clipboard = call<void*>("gdk_display_get_clipboard", display());
  call<void>("gdk_clipboard_set_text", clipboard, text.c_str());
}

std::string startupToken() {
  auto* shown = static_cast<GObject*>(display());
  if (shown == nullptr) return {};
  if (g_strcmp0(G_OBJECT_TYPE_NAME(shown), "GdkX11Display") == 0) {
    return startupTokenOfClick(call<guint32>("gdk_x11_display_get_user_time", shown));
  }
  const GObjectPointer<GAppLaunchContext> context(
      call<GAppLaunchContext*>("gdk_display_get_app_launch_context", shown));
  return context ? startupTokenFrom(context.get()) : std::string();
}

}  // namespace tavrin::gtk4
