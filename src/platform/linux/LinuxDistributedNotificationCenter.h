#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DistributedNotificationCenter.h"
#include "platform/Log.h"

typedef struct _GDBusConnection GDBusConnection;  // NOLINT(bugprone-reserved-identifier)

namespace tavrin {

/// Notifications as signals on the session bus: object "/app/tavrin/DistributedNotification",
/// interface "app.tavrin.DistributedNotification", the notification's name as the member, without
/// arguments.
class LinuxDistributedNotificationCenter final : public DistributedNotificationCenter {
 public:
  /// `connection` is null when there is no session bus: then notifications stay in the process, and
  /// the first post says so in the log. Both outlive the center.
  LinuxDistributedNotificationCenter(GDBusConnection* connection, Log& log);

  void postNotificationName(const std::string& name) override;
  /// Every signal is delivered immediately, to all sessions of the user that share the bus.
  void postNotificationWithOptions(const std::string& name, NotificationOptions options) override;
  [[nodiscard]] Observation addObserver(const std::string& name,
                                        std::function<void()> received) override;

  /// Calls this process's observers of a notification that the system does not post itself.
  void deliverLocally(const std::string& name);

 private:
  struct Observer;

  GDBusConnection* connection_;
  Log& log_;
  bool saidThatThereIsNoBus_ = false;
  std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace tavrin
