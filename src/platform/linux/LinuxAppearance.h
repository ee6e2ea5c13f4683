#pragma once

#include <QObject>
#include <functional>
#include <optional>

class QDBusMessage;
class QVariant;

namespace tavrin {

/// Follows the desktop's choice of a light or dark appearance, as the settings portal tells it
/// (org.freedesktop.portal.Settings, namespace org.freedesktop.appearance, key color-scheme).
/// Nothing waits for the portal; a desktop without one, or without a preference, is light.
class LinuxAppearance final : public QObject {
  Q_OBJECT

 public:
  /// `appearanceChanged` is called on the main thread with the first answer and each change.
  explicit LinuxAppearance(std::function<void(bool isDark)> appearanceChanged);

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& message);

 private:  // NOLINT(readability-redundant-access-specifiers): the slots above are Qt's
  void readColorScheme();
  void tell(bool isDark);

  std::function<void(bool isDark)> appearanceChanged_;
  std::optional<bool> isDark_;
};

}  // namespace tavrin
