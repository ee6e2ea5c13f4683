#include "platform/linux/SleepSignal.h"

#include <utility>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

struct SleepSignal::State {
  explicit State(Log& systemLog) : log(systemLog) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    g_cancellable_cancel(cancellable.get());
    if (connection) g_dbus_connection_signal_unsubscribe(connection.get(), subscription);
  }

  void connect();
  void connected(GObjectPointer<GDBusConnection> made);
  void announce();

  static void onConnected(GObject*, GAsyncResult* result, gpointer state);
  static void onPrepareForSleep(GDBusConnection*, const char*, const char*, const char*,
                                const char*, GVariant* arguments, gpointer state);

  Log& log;
  bool isConnecting = false;
  GObjectPointer<GCancellable> cancellable{g_cancellable_new()};
  GObjectPointer<GDBusConnection> connection;
  unsigned subscription = 0;
  std::vector<std::weak_ptr<std::function<void()>>> observers;
};

void SleepSignal::State::connect() {
  isConnecting = true;
  GLibError error;
  const GLibPointer<char> address(
      g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, error.slot()));
  if (!address) {
    log.write("no notice before a sleep: " + error.message());
    return;
  }
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  g_dbus_connection_new_for_address(address.get(), flags, nullptr, cancellable.get(), onConnected,
                                    this);
}

void SleepSignal::State::onConnected(GObject*, GAsyncResult* result, gpointer state) {
  GLibError error;
  GObjectPointer<GDBusConnection> made(
      g_dbus_connection_new_for_address_finish(result, error.slot()));
  // A cancelled attempt belongs to an object that is gone.
  if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  auto& self = *static_cast<State*>(state);
  if (made) {
    self.connected(std::move(made));
  } else {
    self.log.write("no notice before a sleep: " + error.message());
  }
}

void SleepSignal::State::connected(GObjectPointer<GDBusConnection> made) {
  connection = std::move(made);
  // The sender is named, because anybody on the system bus may send a signal of that kind.
  subscription = g_dbus_connection_signal_subscribe(
      connection.get(), "org.freedesktop.login1", "org.freedesktop.login1.Manager",
      "PrepareForSleep", "/org/freedesktop/login1", nullptr, G_DBUS_SIGNAL_FLAGS_NONE,
      onPrepareForSleep, this, nullptr);
}

void SleepSignal::State::onPrepareForSleep(GDBusConnection*, const char*, const char*, const char*,
                                           const char*, GVariant* arguments, gpointer state) {
  if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(b)"))) return;
  gboolean goesToSleep = FALSE;
  g_variant_get(arguments, "(b)", &goesToSleep);
  if (goesToSleep != FALSE) static_cast<State*>(state)->announce();
}

void SleepSignal::State::announce() {
  const auto current = observers;
  for (const auto& weak : current) {
    if (const auto willSleep = weak.lock()) (*willSleep)();
  }
}

SleepSignal::SleepSignal(Log& log) : state_(std::make_unique<State>(log)) {}

SleepSignal::~SleepSignal() = default;

Observation SleepSignal::observe(std::function<void()> willSleep) {
  auto observer = std::make_shared<std::function<void()>>(std::move(willSleep));
  std::erase_if(state_->observers, [](const auto& known) { return known.expired(); });
  state_->observers.push_back(observer);
  if (!state_->isConnecting) state_->connect();
  return observer;
}

}  // namespace tavrin
