#pragma once

#include <QObject>
#include <array>
#include <cstddef>
#include <functional>
#include <optional>

class QDBusMessage;
class QVariant;

namespace tavrin {

/// What the desktop's user has chosen for all programs.
struct Appearance {
  bool isDark = false;
  bool hasMoreContrast = false;
  bool operator==(const Appearance&) const = default;
};

/// Follows the desktop's choice of appearance, as the settings portal tells it
/// (org.freedesktop.portal.Settings, namespace org.freedesktop.appearance, keys color-scheme and
/// contrast; of older GNOME its own key). Nothing waits for the portal; a desktop without one, or
/// without a preference, is light and of normal contrast.
class LinuxAppearance final : public QObject {
  Q_OBJECT

 public:
  using Changed = std::function<void(const Appearance&)>;

  /// `appearanceChanged` is called on the main thread with the first answer and each change.
  explicit LinuxAppearance(Changed appearanceChanged);

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& message);

 private:  // NOLINT(readability-redundant-access-specifiers): the slots above are Qt's
  static constexpr std::size_t settingCount = 3;

  void readAll();
  void read(std::size_t setting);
  void answered(std::size_t setting, const QDBusMessage& reply);
  void set(std::size_t setting, const QVariant& value);
  void tell();

  Changed appearanceChanged_;
  std::array<bool, settingCount> isOn_{};
  bool isColorSchemeKnown_ = false;
  std::optional<Appearance> told_;
};

}  // namespace tavrin
