#include "platform/linux/BusHandOver.h"

#include <utility>

#include "foundation/FileURL.h"
#include "platform/linux/ApplicationObject.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/Identity.h"

namespace tavrin {

namespace {

void addText(GVariantBuilder& dictionary, const char* key, const std::string& text) {
  if (text.empty() || !g_utf8_validate(text.c_str(), -1, nullptr)) return;
  g_variant_builder_add(&dictionary, "{sv}", key, g_variant_new_string(text.c_str()));
}

GVariant* platformData(const BusIntake::Launch& launch) {
  GVariantBuilder dictionary;
  g_variant_builder_init(&dictionary, G_VARIANT_TYPE_VARDICT);
  addText(dictionary, platform_data::activationToken, launch.activationToken);
  addText(dictionary, platform_data::startupId, launch.startupId);
  return g_variant_builder_end(&dictionary);
}

GVariant* openArguments(const BusIntake::Launch& launch) {
  GVariantBuilder uris;
  g_variant_builder_init(&uris, G_VARIANT_TYPE_STRING_ARRAY);
  for (const std::string& file : launch.files) {
    const std::string uri = FileURL::fileURLWithPath(file).absoluteString();
    g_variant_builder_add(&uris, "s", uri.c_str());
  }
  return g_variant_new("(as@a{sv})", &uris, platformData(launch));
}

bool isOwnerGone(const GLibError& error) {
  // NoReply is the bus's own answer for an owner that left without one; a call that took too long
  // is G_IO_ERROR_TIMED_OUT.
  return error.matches(G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
         error.matches(G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
         error.matches(G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY);
}

}  // namespace

HandOver handOver(GDBusConnection* connection, const BusIntake::Launch& launch,
                  int timeoutMilliseconds, Log& log) {
  const bool hasFiles = !launch.files.empty();
  GVariant* arguments =
      hasFiles ? openArguments(launch) : g_variant_new("(@a{sv})", platformData(launch));
  GLibError error;
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection, identity::applicationId, applicationObjectPath, applicationInterface,
      hasFiles ? "Open" : "Activate", arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START,
      timeoutMilliseconds, nullptr, error.slot()));
  if (answer) return HandOver::Accepted;
  if (isOwnerGone(error)) return HandOver::OwnerGone;
  log.write("the running program did not accept the request: " + error.message());
  return HandOver::Failed;
}

}  // namespace tavrin
