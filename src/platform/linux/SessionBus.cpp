#include "platform/linux/SessionBus.h"

#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

std::errc causeOf(const GLibError& error) {
  if (error.matches(G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
      error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED) ||
      error.matches(G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT)) {
    return std::errc::timed_out;
  }
  if (error.matches(G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
      error.matches(G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER)) {
    return std::errc::no_such_device_or_address;
  }
  return std::errc::connection_refused;
}

constexpr guint patienceInSeconds = 10;

/// A connection that is being made, in a main context that is its own where none is given.
struct Connecting {
  explicit Connecting(GMainContext* given)
      : context(given == nullptr ? g_main_context_new() : g_main_context_ref(given)) {}

  GLibPointer<GMainContext> context;
  GLibPointer<GMainLoop> loop{g_main_loop_new(context.get(), FALSE)};
  GObjectPointer<GCancellable> cancellable{g_cancellable_new()};
  GDBusConnection* connection = nullptr;
  GLibError error;
};

void connected(GObject*, GAsyncResult* result, gpointer data) {
  auto* connecting = static_cast<Connecting*>(data);
  connecting->connection =
      g_dbus_connection_new_for_address_finish(result, connecting->error.slot());
  g_main_loop_quit(connecting->loop.get());
}

gboolean giveUp(gpointer data) {
  g_cancellable_cancel(static_cast<Connecting*>(data)->cancellable.get());
  return G_SOURCE_REMOVE;
}

/// Runs until the connection is made, refused or given up.
void connect(Connecting& connecting, const char* address) {
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  g_main_context_push_thread_default(connecting.context.get());
  GSource* limit = g_timeout_source_new_seconds(patienceInSeconds);
  g_source_set_callback(limit, giveUp, &connecting, nullptr);
  g_source_attach(limit, connecting.context.get());
  g_dbus_connection_new_for_address(address, flags, nullptr, connecting.cancellable.get(),
                                    connected, &connecting);
  g_main_loop_run(connecting.loop.get());
  g_source_destroy(limit);
  g_source_unref(limit);
  g_main_context_pop_thread_default(connecting.context.get());
}

}  // namespace

SystemError busError(const char* operation, const GLibError& error) {
  return systemError(operation, "(" + error.message() + ")", causeOf(error));
}

Result<std::shared_ptr<GDBusConnection>> connectToSessionBus(GMainContext* notices) {
  GLibError error;
  const GLibPointer<char> address(
      g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, error.slot()));
  if (!address) return busError("find the session bus", error);
  Connecting connecting(notices);
  connect(connecting, address.get());
  if (connecting.connection == nullptr) return busError("reach the session bus", connecting.error);
  return std::shared_ptr<GDBusConnection>(connecting.connection, [](GDBusConnection* open) {
    g_dbus_connection_close_sync(open, nullptr, nullptr);
    g_object_unref(open);
  });
}

}  // namespace tavrin
