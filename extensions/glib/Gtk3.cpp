#include "extensions/glib/Gtk3.h"

#include <gtk/gtk.h>

#include "extensions/glib/Startup.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin::gtk3 {

void copyText(const std::string& text) {
  GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
  gtk_clipboard_set_text(clipboard, text.data(), static_cast<int>(text.size()));
  gtk_clipboard_set_can_store(clipboard, nullptr, 0);
}

std::string startupToken() {
  GdkDisplay* display = gdk_display_get_default();
  const guint32 time = gtk_get_current_event_time();
  if (g_strcmp0(G_OBJECT_TYPE_NAME(display), "GdkX11Display") == 0) {
    return startupTokenOfClick(time);
  }
  const GObjectPointer<GdkAppLaunchContext> context(gdk_display_get_app_launch_context(display));
  gdk_app_launch_context_set_timestamp(context.get(), time);
  return startupTokenFrom(G_APP_LAUNCH_CONTEXT(context.get()));
}

}  // namespace tavrin::gtk3
