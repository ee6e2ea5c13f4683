#include "platform/linux/StatusNotifierHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <utility>

namespace tavrin {

namespace {

const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");

}  // namespace

StatusNotifierHost::StatusNotifierHost(std::function<void()> availabilityChanged)
    : availabilityChanged_(std::move(availabilityChanged)) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  auto* watcher =
      new QDBusServiceWatcher(watcherName, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
  QObject::connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
                   [this] { askForHost(); });
  QObject::connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this,
                   [this] { setAvailable(false); });
  for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    bus.connect(watcherName, watcherPath, watcherName, QString::fromLatin1(signal), this,
                SLOT(askForHost()));
  }
  askForHost();
}

void StatusNotifierHost::askForHost() {
  QDBusMessage call = QDBusMessage::createMethodCall(
      watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
      QStringLiteral("Get"));
  call << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
  // A question to a name that nobody has must not start anything.
  call.setAutoStartService(false);
  auto* reply = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  QObject::connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply] {
    reply->deleteLater();
    const QList<QVariant> arguments = reply->reply().arguments();
    const bool isAnswer = !reply->isError() && !arguments.empty();
    setAvailable(isAnswer && arguments.constFirst().value<QDBusVariant>().variant().toBool());
  });
}

void StatusNotifierHost::setAvailable(bool isAvailable) {
  if (std::exchange(isAvailable_, isAvailable) != isAvailable) availabilityChanged_();
}

}  // namespace tavrin
