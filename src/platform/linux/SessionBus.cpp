#include "platform/linux/SessionBus.h"

#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

std::errc causeOf(const GLibError& error) {
  if (error.matches(G_IO_ERROR, G_IO_ERROR_TIMED_OUT) ||
      error.matches(G_DBUS_ERROR, G_DBUS_ERROR_TIMEOUT)) {
    return std::errc::timed_out;
  }
  if (error.matches(G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
      error.matches(G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER)) {
    return std::errc::no_such_device_or_address;
  }
  return std::errc::connection_refused;
}

}  // namespace

SystemError busError(const char* operation, const GLibError& error) {
  return systemError(operation, "(" + error.message() + ")", causeOf(error));
}

Result<std::shared_ptr<GDBusConnection>> connectToSessionBus() {
  GLibError error;
  const GLibPointer<char> address(
      g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, error.slot()));
  if (!address) return busError("find the session bus", error);
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  GDBusConnection* connection =
      g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, error.slot());
  if (connection == nullptr) return busError("reach the session bus", error);
  return std::shared_ptr<GDBusConnection>(connection, [](GDBusConnection* open) {
    g_dbus_connection_close_sync(open, nullptr, nullptr);
    g_object_unref(open);
  });
}

}  // namespace tavrin
