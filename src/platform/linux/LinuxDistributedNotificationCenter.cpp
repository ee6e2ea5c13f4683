#include "platform/linux/LinuxDistributedNotificationCenter.h"

#include <utility>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

constexpr const char* objectPath = "/app/tavrin/DistributedNotification";
constexpr const char* interfaceName = "app.tavrin.DistributedNotification";

}  // namespace

struct LinuxDistributedNotificationCenter::Observer {
  Observer(std::string notificationName, std::function<void()> callback)
      : name(std::move(notificationName)), received(std::move(callback)) {}
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;
  ~Observer() {
    if (connection) g_dbus_connection_signal_unsubscribe(connection.get(), subscription);
  }

  /// The bus wakes the process for this observer's notifications only.
  static void subscribe(const std::shared_ptr<Observer>& observer, GDBusConnection* bus) {
    observer->connection.reset(G_DBUS_CONNECTION(g_object_ref(bus)));
    observer->subscription = g_dbus_connection_signal_subscribe(
        bus, nullptr, interfaceName, observer->name.c_str(), objectPath, nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE, onSignal, new std::weak_ptr<Observer>(observer),
        [](gpointer weak) { delete static_cast<std::weak_ptr<Observer>*>(weak); });
  }

  static void onSignal(GDBusConnection*, const char*, const char*, const char*, const char*,
                       GVariant*, gpointer weak) {
    // Held during the call: the observer may end its own observation.
    const auto observer = static_cast<std::weak_ptr<Observer>*>(weak)->lock();
    if (observer) observer->received();
  }

  const std::string name;
  const std::function<void()> received;
  GObjectPointer<GDBusConnection> connection;
  unsigned subscription = 0;
};

LinuxDistributedNotificationCenter::LinuxDistributedNotificationCenter(GDBusConnection* connection,
                                                                       Log& log)
    : connection_(connection), log_(log) {}

void LinuxDistributedNotificationCenter::postNotificationName(const std::string& name) {
  if (connection_ == nullptr) {
    if (!std::exchange(saidThatThereIsNoBus_, true)) {
      log_.write("no session bus, so nobody hears the notification " + name);
    }
    return;
  }
  GLibError error;
  if (g_dbus_connection_emit_signal(connection_, nullptr, objectPath, interfaceName, name.c_str(),
                                    nullptr, error.slot()) == FALSE ||
      g_dbus_connection_flush_sync(connection_, nullptr, error.slot()) == FALSE) {
    log_.write("post notification " + name + ": " + error.message());
  }
}

void LinuxDistributedNotificationCenter::postNotificationWithOptions(
    const std::string& name, NotificationOptions /*options*/) {
  postNotificationName(name);
}

Observation LinuxDistributedNotificationCenter::addObserver(const std::string& name,
                                                            std::function<void()> received) {
  auto observer = std::make_shared<Observer>(name, std::move(received));
  if (connection_ != nullptr) Observer::subscribe(observer, connection_);
  std::erase_if(observers_, [](const auto& known) { return known.expired(); });
  observers_.push_back(observer);
  return observer;
}

void LinuxDistributedNotificationCenter::deliverLocally(const std::string& name) {
  const auto observers = observers_;
  for (const auto& weak : observers) {
    const auto observer = weak.lock();
    if (observer && observer->name == name) observer->received();
  }
}

}  // namespace tavrin
