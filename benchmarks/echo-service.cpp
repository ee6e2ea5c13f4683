// The least that a service on the session bus can be: it answers calls of the form of
// org.freedesktop.Application.Open, and does nothing else. The floor for a request over the bus.

#include <gio/gio.h>

namespace {

constexpr const char* introspection =
    "<node><interface name='app.tavrin.Echo'><method name='Open'>"
    "<arg type='as' direction='in'/><arg type='a{sv}' direction='in'/>"
    "</method></interface></node>";

void answer(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
            GDBusMethodInvocation* invocation, gpointer) {
  g_dbus_method_invocation_return_value(invocation, nullptr);
}

void exportObject(GDBusConnection* connection, const char*, gpointer) {
  static constexpr GDBusInterfaceVTable methods = {answer, nullptr, nullptr, {}};
  GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(introspection, nullptr);
  g_dbus_connection_register_object(connection, "/app/tavrin/Echo", node->interfaces[0], &methods,
                                    nullptr, nullptr, nullptr);
  g_dbus_node_info_unref(node);
}

}  // namespace

int main() {
  const unsigned owner =
      g_bus_own_name(G_BUS_TYPE_SESSION, "app.tavrin.Echo", G_BUS_NAME_OWNER_FLAGS_NONE,
                     exportObject, nullptr, nullptr, nullptr, nullptr);
  GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
  g_bus_unown_name(owner);
  return 0;
}
