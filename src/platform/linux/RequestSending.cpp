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
#include "platform/linux/SessionBus.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

GVariant* platformData(const std::string& startupToken) {
  GVariantBuilder dictionary;
  g_variant_builder_init(&dictionary, G_VARIANT_TYPE_VARDICT);
  if (!startupToken.empty() && g_utf8_validate(startupToken.c_str(), -1, nullptr) != FALSE) {
    for (const char* key : {platform_data::activationToken, platform_data::startupId}) {
      g_variant_builder_add(&dictionary, "{sv}", key, g_variant_new_string(startupToken.c_str()));
    }
  }
  return g_variant_builder_end(&dictionary);
}

Status askToOpen(GDBusConnection* connection, const std::string& path,
                 const SendingOptions& options) {
  const std::string uri = FileURL::fileURLWithPath(path).absoluteString();
  const char* const uris[] = {uri.c_str(), nullptr};
  GLibError error;
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection, identity::applicationId, applicationObjectPath, applicationInterface, "Open",
      g_variant_new("(^as@a{sv})", uris, platformData(options.startupToken)), nullptr,
      G_DBUS_CALL_FLAGS_NONE, static_cast<int>(options.patience.count()), nullptr, error.slot()));
  if (!answer) return busError("have the request opened", error);
  return success();
}

Status writeAndSend(const PropertyList& request, const SendingOptions& options) {
  const auto file = writeRequestFile(request);
  if (!file) return file.error();
  const auto connection = connectToSessionBus();
  if (!connection) return connection.error();
  return askToOpen(connection.value().get(), file.value().path(), options);
}

/// A request on its way on another thread. The mutex orders the two threads, whoever lets go last.
struct Sending {
  Sending(std::vector<PropertyList> whatToSend, RequestCompletion whenSent, SendingOptions how)
      : requests(std::move(whatToSend)),
        completion(std::move(whenSent)),
        options(std::move(how)),
        context(g_main_context_ref_thread_default()) {}

  std::mutex mutex;
  const std::vector<PropertyList> requests;
  const RequestCompletion completion;
  const SendingOptions options;
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
  sending->outcome = success();
  for (const PropertyList& request : sending->requests) {
    sending->outcome = sendRequest(request, sending->options);
    if (!sending->outcome) break;
  }
  completeInLoop(sending);
}

}  // namespace

Status sendRequest(const PropertyList& request, const SendingOptions& options) noexcept {
  try {
    return writeAndSend(request, options);
  } catch (...) {
    return systemError("send", "request", ENOMEM);
  }
}

void sendRequestsAsync(std::vector<PropertyList> requests, RequestCompletion completion,
                       SendingOptions options) noexcept {
  // Without memory GLib ends the process as well.
  auto* sending =
      std::make_unique<Sending>(std::move(requests), std::move(completion), std::move(options))
          .release();
  try {
    std::thread(sendAndComplete, sending).detach();
  } catch (...) {
    const std::lock_guard lock(sending->mutex);
    completeInLoop(sending);
  }
}

}  // namespace tavrin
