#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>

namespace tavrin::test {

/// A StatusNotifierWatcher on a connection of its own, there while this object lives.
class FakeStatusNotifierWatcher : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
  Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
  Q_PROPERTY(int ProtocolVersion READ protocolVersion)

 public:
  explicit FakeStatusNotifierWatcher(bool hasHost);
  ~FakeStatusNotifierWatcher() override;
  FakeStatusNotifierWatcher(const FakeStatusNotifierWatcher&) = delete;
  FakeStatusNotifierWatcher& operator=(const FakeStatusNotifierWatcher&) = delete;

  bool hasHost() const { return hasHost_; }
  QStringList items() const { return items_; }
  static int protocolVersion() { return 0; }
  /// A panel comes.
  void registerHost();

 public Q_SLOTS:  // NOLINT(readability-redundant-access-specifiers)
  void RegisterStatusNotifierItem(const QString& item);  // NOLINT(readability-identifier-naming)

 Q_SIGNALS:
  void StatusNotifierHostRegistered();  // NOLINT(readability-identifier-naming)

 private:
  bool hasHost_;
  QStringList items_;
  QDBusConnection connection_;
};

/// The settings portal on a connection of its own, there while this object lives.
class FakeSettingsPortal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  explicit FakeSettingsPortal(uint colourScheme);
  ~FakeSettingsPortal() override;
  FakeSettingsPortal(const FakeSettingsPortal&) = delete;
  FakeSettingsPortal& operator=(const FakeSettingsPortal&) = delete;

  void change(const QString& group, const QString& key, uint value);

 public Q_SLOTS:  // NOLINT(readability-redundant-access-specifiers)
  // NOLINTBEGIN(readability-identifier-naming): the names are the portal's.
  QDBusVariant Read(const QString& group, const QString& key);

 Q_SIGNALS:
  void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
  // NOLINTEND(readability-identifier-naming)

 private:
  uint colourScheme_;
  QDBusConnection connection_;
};

}  // namespace tavrin::test
