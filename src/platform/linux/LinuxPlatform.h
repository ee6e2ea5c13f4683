#pragma once

#include <functional>
#include <memory>

#include "platform/Log.h"
#include "platform/Platform.h"
#include "platform/linux/AcceptedRequests.h"
#include "platform/linux/BusIntake.h"
#include "platform/linux/TerminationSignals.h"

namespace tavrin {

/// All services of the Linux backend. Making it touches no more than a start that serves a request
/// needs: no window, no tray, no sound device, no icon theme. A QApplication lives around it.
class LinuxPlatform {
 public:
  /// All four outlive the platform.
  LinuxPlatform(AcceptedRequests& accepted, BusIntake& intake, TerminationSignals& signalsToEnd,
                Log& log);
  ~LinuxPlatform();
  LinuxPlatform(const LinuxPlatform&) = delete;
  LinuxPlatform& operator=(const LinuxPlatform&) = delete;

  Platform& services();

  /// Removes, once the start is over and on a thread of its own, what copies have left half done
  /// because their process was killed.
  void clearLeftoversSoon();

  /// Calls `reset` when a damaged store had to be replaced by an empty one.
  void setSettingsLost(std::function<void()> reset);

 private:
  struct Services;
  std::unique_ptr<Services> services_;
};

}  // namespace tavrin
