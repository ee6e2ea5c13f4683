#include "platform/linux/DesktopNotification.h"

#include <thread>
#include <utility>

#include "platform/linux/Identity.h"
#include "platform/linux/SessionBus.h"

namespace tavrin {

namespace {

constexpr int patienceInMilliseconds = 10000;
/// The desktop decides how long the message stays.
constexpr int lifetime = -1;

Status notify(const std::string& summary, const std::string& body) {
  const auto connection = connectToSessionBus();
  if (!connection) return connection.error();
  GLibError error;
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection.value().get(), "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
      "org.freedesktop.Notifications", "Notify",
      g_variant_new("(susssasa{sv}i)", identity::displayName, 0U, identity::applicationId,
                    summary.c_str(), body.c_str(), nullptr, nullptr, lifetime),
      nullptr, G_DBUS_CALL_FLAGS_NONE, patienceInMilliseconds, nullptr, error.slot()));
  if (!answer) return busError("show a message", error);
  return success();
}

void show(const std::string& summary, const std::string& body) {
  const Status shown = notify(summary, body);
  if (!shown)
    g_warning("%s: %s (%s)", summary.c_str(), body.c_str(), shown.error().describe().c_str());
}

}  // namespace

void showDesktopNotification(std::string summary, std::string body) noexcept {
  try {
    std::thread(show, std::move(summary), std::move(body)).detach();
  } catch (...) {
    g_warning("no thread to show a message");
  }
}

}  // namespace tavrin
