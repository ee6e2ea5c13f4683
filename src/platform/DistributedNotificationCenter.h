#pragma once

#include <functional>
#include <string>

#include "platform/UserDefaults.h"

namespace tavrin {

/// How a notification is posted (CFNotificationCenterPostNotificationWithOptions).
struct NotificationOptions {
  /// To observers that are suspended too.
  bool deliverImmediately = false;
  /// To every session of the user.
  bool postToAllSessions = false;
};

/// Notifications between the programs of a user's session. Used on the main thread.
class DistributedNotificationCenter {
 public:
  virtual ~DistributedNotificationCenter() = default;

  /// Posts a notification without object or user info, delivered immediately; it has left the
  /// process when this returns. Names are letters, digits and "_", not beginning with a digit.
  virtual void postNotificationName(const std::string& name) = 0;

  /// As postNotificationName; what the system cannot do of the options is left out.
  virtual void postNotificationWithOptions(const std::string& name,
                                           NotificationOptions options) = 0;

  /// Calls `received` for each notification of that name, from any sender, the system's own
  /// "AppleInterfaceThemeChangedNotification" among them.
  [[nodiscard]] virtual Observation addObserver(const std::string& name,
                                                std::function<void()> received) = 0;
};

}  // namespace tavrin
