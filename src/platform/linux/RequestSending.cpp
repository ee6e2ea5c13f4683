#include "platform/linux/RequestSending.h"

#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "foundation/FileURL.h"
#include "platform/linux/ApplicationObject.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/Identity.h"
#include "platform/linux/RequestFolder.h"
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

SystemError busError(const char* operation, const GLibError& error) {
  return systemError(operation, "(" + error.message() + ")", causeOf(error));
}

/// The process's shared connection would end a process that did not make it itself.
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

Status askToOpen(GDBusConnection* connection, const std::string& path,
                 std::chrono::milliseconds patience) {
  const std::string uri = FileURL::fileURLWithPath(path).absoluteString();
  const char* const uris[] = {uri.c_str(), nullptr};
  GLibError error;
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection, identity::applicationId, applicationObjectPath, applicationInterface, "Open",
      g_variant_new("(^as@a{sv})", uris, g_variant_new("a{sv}", nullptr)), nullptr,
      G_DBUS_CALL_FLAGS_NONE, static_cast<int>(patience.count()), nullptr, error.slot()));
  if (!answer) return busError("have the request opened", error);
  return success();
}

Status writeAndSend(const PropertyList& request, std::chrono::milliseconds patience) {
  const auto file = writeRequestFile(request);
  if (!file) return file.error();
  const auto connection = connectToSessionBus();
  if (!connection) return connection.error();
  return askToOpen(connection.value().get(), file.value().path(), patience);
}

/// A request on its way on another thread. The mutex orders the two threads, whoever lets go last.
struct Sending {
  Sending(PropertyList whatToSend, RequestCompletion whenSent)
      : request(std::move(whatToSend)),
        completion(std::move(whenSent)),
        context(g_main_context_ref_thread_default()) {}

  std::mutex mutex;
  const PropertyList request;
  const RequestCompletion completion;
  /// The caller's.
  const GLibPointer<GMainContext> context;
  Status outcome = systemError("start", "a thread", EAGAIN);
};

gboolean complete(gpointer data) {
  auto* sending = static_cast<Sending*>(data);
  const std::lock_guard lock(sending->mutex);
  try {
    if (sending->completion) sending->completion(sending->outcome);
  } catch (...) {
    g_warning("the receiver of a request's outcome failed");
  }
  return G_SOURCE_REMOVE;
}

void dispose(gpointer data) {
  const std::unique_ptr<Sending> sending(static_cast<Sending*>(data));
  const std::lock_guard lock(sending->mutex);
}

/// Hands over to the caller's loop, which disposes of it: the mutex must be held.
void completeInLoop(Sending* sending) {
  GSource* source = g_idle_source_new();
  g_source_set_priority(source, G_PRIORITY_DEFAULT);
  g_source_set_callback(source, complete, sending, dispose);
  g_source_attach(source, sending->context.get());
  g_source_unref(source);
}

void sendAndComplete(Sending* sending) {
  const std::lock_guard lock(sending->mutex);
  sending->outcome = sendRequest(sending->request);
  completeInLoop(sending);
}

}  // namespace

Status sendRequest(const PropertyList& request, std::chrono::milliseconds patience) noexcept {
  try {
    return writeAndSend(request, patience);
  } catch (...) {
    return systemError("send", "request", ENOMEM);
  }
}

void sendRequestAsync(PropertyList request, RequestCompletion completion) noexcept {
  // Without memory GLib ends the process as well.
  auto* sending = std::make_unique<Sending>(std::move(request), std::move(completion)).release();
  try {
    std::thread(sendAndComplete, sending).detach();
  } catch (...) {
    const std::lock_guard lock(sending->mutex);
    completeInLoop(sending);
  }
}

}  // namespace tavrin
