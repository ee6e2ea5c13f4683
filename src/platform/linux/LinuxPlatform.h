#pragma once

#include <functional>
#include <memory>

#include "platform/Log.h"
#include "platform/Platform.h"
#include "platform/linux/AcceptedRequests.h"
#include "platform/linux/BusIntake.h"

namespace tavrin {

/// All services of the Linux backend. Making it touches no more than a start that serves a request
/// needs: no window, no tray, no sound device, no icon theme. A QApplication lives around it.
class LinuxPlatform {
 public:
  /// All three outlive the platform.
  LinuxPlatform(AcceptedRequests& accepted, BusIntake& intake, Log& log);
  ~LinuxPlatform();
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;

  Platform& services();

  /// Calls `reset` when a damaged store had to be replaced by an empty one.
  void setSettingsLost(std::function<void()> reset);

 private:
  struct Services;
  std::unique_ptr<Services> services_;
};

}  // namespace tavrin
