#pragma once

#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// Calls a method of the message bus itself. `arguments` is a tuple, floating, or null; `answered`
/// is called in the main loop with `data`, as those of g_dbus_connection_call.
inline void callBus(GDBusConnection* connection, const char* method, GVariant* arguments,
                    GCancellable* cancellable, GAsyncReadyCallback answered, gpointer data) {
  g_dbus_connection_call(connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                         "org.freedesktop.DBus", method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                         -1, cancellable, answered, data);
}

}  // namespace tavrin
