#pragma once

#include <QObject>
#include <QString>
#include <functional>

namespace tavrin {

/// Tells whether the desktop has a place for status items: the StatusNotifierWatcher is on the
/// session bus and knows a host (StatusNotifierItem specification, freedesktop.org). Nothing waits
/// for the bus.
class StatusNotifierHost final : public QObject {
  Q_OBJECT

 public:
  /// `availabilityChanged` is called on the main thread when a host appears and when it is gone.
  explicit StatusNotifierHost(std::function<void()> availabilityChanged);

  bool isAvailable() const { return isAvailable_; }

 private Q_SLOTS:
  void askForHost();

 private:  // NOLINT(readability-redundant-access-specifiers): the slots above are Qt's
  void setAvailable(bool isAvailable);

  std::function<void()> availabilityChanged_;
  bool isAvailable_ = false;
};

}  // namespace tavrin
