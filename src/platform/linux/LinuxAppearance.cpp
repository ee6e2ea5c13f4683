#include "platform/linux/LinuxAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <utility>

namespace tavrin {

namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto objectPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearanceNamespace = QStringLiteral("org.freedesktop.appearance");
const auto colorSchemeKey = QStringLiteral("color-scheme");
constexpr uint preferDark = 1;

/// The portal's Read answers a variant in a variant, its signal and newer calls a single one.
bool isDarkScheme(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value.toUInt() == preferDark;
}

}  // namespace

LinuxAppearance::LinuxAppearance(std::function<void(bool isDark)> appearanceChanged)
    : appearanceChanged_(std::move(appearanceChanged)) {
  QDBusConnection::sessionBus().connect(service, objectPath, settingsInterface,
                                        QStringLiteral("SettingChanged"), this,
                                        SLOT(settingChanged(QDBusMessage)));
  // A portal that comes later may have told its choice before this end knew of it.
  auto* portal = new QDBusServiceWatcher(service, QDBusConnection::sessionBus(),
                                         QDBusServiceWatcher::WatchForRegistration, this);
  QObject::connect(portal, &QDBusServiceWatcher::serviceRegistered, this,
                   [this] { readColorScheme(); });
  readColorScheme();
}

void LinuxAppearance::readColorScheme() {
  QDBusMessage call = QDBusMessage::createMethodCall(service, objectPath, settingsInterface,
                                                     QStringLiteral("Read"));
  call << appearanceNamespace << colorSchemeKey;
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    watcher->deleteLater();
    const QDBusMessage reply = watcher->reply();
    const bool isAnswer = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().empty();
    // A change that was told meanwhile is newer than a missing answer.
    if (isAnswer) tell(isDarkScheme(reply.arguments().constFirst()));
    if (!isAnswer && !isDark_) tell(false);
  });
}

void LinuxAppearance::settingChanged(const QDBusMessage& message) {
  const QList<QVariant> arguments = message.arguments();
  if (arguments.size() != 3 || arguments[0].toString() != appearanceNamespace ||
      arguments[1].toString() != colorSchemeKey) {
    return;
  }
  tell(isDarkScheme(arguments[2]));
}

void LinuxAppearance::tell(bool isDark) {
  if (isDark_ == isDark) return;
  isDark_ = isDark;
  if (appearanceChanged_) appearanceChanged_(isDark);
}

}  // namespace tavrin
