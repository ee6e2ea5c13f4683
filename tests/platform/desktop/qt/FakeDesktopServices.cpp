#include "tests/platform/desktop/qt/FakeDesktopServices.h"

#include <QVariant>

namespace tavrin::test {

namespace {

constexpr auto everything = QDBusConnection::ExportAllContents;
const auto watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto portalName = QStringLiteral("org.freedesktop.portal.Desktop");

QDBusConnection newConnection(const QString& name) {
  return QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
}

}  // namespace

FakeStatusNotifierWatcher::FakeStatusNotifierWatcher(bool hasHost)
    : hasHost_(hasHost), connection_(newConnection(QStringLiteral("watcher"))) {
  connection_.registerObject(QStringLiteral("/StatusNotifierWatcher"), this, everything);
  connection_.registerService(watcherName);
}

FakeStatusNotifierWatcher::~FakeStatusNotifierWatcher() {
  connection_.unregisterService(watcherName);
  QDBusConnection::disconnectFromBus(QStringLiteral("watcher"));
}

void FakeStatusNotifierWatcher::registerHost() {
  hasHost_ = true;
  Q_EMIT StatusNotifierHostRegistered();
}

void FakeStatusNotifierWatcher::RegisterStatusNotifierItem(const QString& item) {
  items_.append(item);
}

FakeSettingsPortal::FakeSettingsPortal(uint colourScheme)
    : colourScheme_(colourScheme), connection_(newConnection(QStringLiteral("portal"))) {
  connection_.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this, everything);
  connection_.registerService(portalName);
}

FakeSettingsPortal::~FakeSettingsPortal() {
  connection_.unregisterService(portalName);
  QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
}

void FakeSettingsPortal::change(const QString& group, const QString& key, uint value) {
  if (key == QLatin1String("color-scheme")) colourScheme_ = value;
  Q_EMIT SettingChanged(group, key, QDBusVariant(value));
}

// The portal's own answer: a variant that holds another one.
QDBusVariant FakeSettingsPortal::Read(const QString& group, const QString& key) {
  const bool isColourScheme =
      group == QLatin1String("org.freedesktop.appearance") && key == QLatin1String("color-scheme");
  return QDBusVariant(QVariant::fromValue(QDBusVariant(isColourScheme ? colourScheme_ : 77U)));
}

}  // namespace tavrin::test
