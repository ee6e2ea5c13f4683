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

struct PortalSetting {
  const char* group;
  const char* key;
};

/// 1 is on in all of them: dark, high contrast, true.
constexpr std::array settings{
    PortalSetting{"org.freedesktop.appearance", "color-scheme"},
    PortalSetting{"org.freedesktop.appearance", "contrast"},
    PortalSetting{"org.gnome.desktop.a11y.interface", "high-contrast"},
};
constexpr std::size_t colorScheme = 0;
constexpr std::size_t contrast = 1;
constexpr std::size_t gnomeContrast = 2;

/// The portal's Read answers a variant in a variant, its signal and newer calls a single one.
bool isOne(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value.toUInt() == 1;
}

}  // namespace

LinuxAppearance::LinuxAppearance(Changed appearanceChanged)
    : appearanceChanged_(std::move(appearanceChanged)) {
  static_assert(settings.size() == settingCount);
  QDBusConnection::sessionBus().connect(service, objectPath, settingsInterface,
                                        QStringLiteral("SettingChanged"), this,
                                        SLOT(settingChanged(QDBusMessage)));
  // A portal that comes later may have told its choice before this end knew of it.
  auto* portal = new QDBusServiceWatcher(service, QDBusConnection::sessionBus(),
                                         QDBusServiceWatcher::WatchForRegistration, this);
  QObject::connect(portal, &QDBusServiceWatcher::serviceRegistered, this, [this] { readAll(); });
  readAll();
}

void LinuxAppearance::readAll() {
  for (std::size_t setting = 0; setting < settingCount; ++setting) read(setting);
}

void LinuxAppearance::read(std::size_t setting) {
  QDBusMessage call = QDBusMessage::createMethodCall(service, objectPath, settingsInterface,
                                                     QStringLiteral("Read"));
  call << QString::fromUtf8(settings.at(setting).group)
       << QString::fromUtf8(settings.at(setting).key);
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, setting, watcher] {
    watcher->deleteLater();
    answered(setting, watcher->reply());
  });
}

void LinuxAppearance::answered(std::size_t setting, const QDBusMessage& reply) {
  const bool isAnswer = reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().empty();
  // A change that was told meanwhile is newer than a missing answer.
  if (isAnswer) return set(setting, reply.arguments().constFirst());
  if (setting == colorScheme) isColorSchemeKnown_ = true;
  tell();
}

void LinuxAppearance::settingChanged(const QDBusMessage& message) {
  const QList<QVariant> arguments = message.arguments();
  if (arguments.size() != 3) return;
  for (std::size_t setting = 0; setting < settingCount; ++setting) {
    if (arguments[0].toString() == QLatin1String(settings.at(setting).group) &&
        arguments[1].toString() == QLatin1String(settings.at(setting).key)) {
      set(setting, arguments[2]);
    }
  }
}

void LinuxAppearance::set(std::size_t setting, const QVariant& value) {
  isOn_.at(setting) = isOne(value);
  if (setting == colorScheme) isColorSchemeKnown_ = true;
  tell();
}

void LinuxAppearance::tell() {
  if (!isColorSchemeKnown_) return;
  const Appearance now{isOn_[colorScheme], isOn_[contrast] || isOn_[gnomeContrast]};
  if (told_ == now) return;
  told_ = now;
  if (appearanceChanged_) appearanceChanged_(now);
}

}  // namespace tavrin
