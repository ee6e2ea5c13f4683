#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/Log.h"
#include "platform/UserDefaults.h"

namespace tavrin {

/// The system's announcement that it is about to sleep: logind's signal PrepareForSleep on the
/// system bus. Used on the main thread.
class SleepSignal {
 public:
  explicit SleepSignal(Log& log);
  ~SleepSignal();
  SleepSignal(const SleepSignal&) = delete;
  SleepSignal& operator=(const SleepSignal&) = delete;

  /// Calls `willSleep` from the main loop before each sleep. The first call begins to connect to
  /// the system bus and does not wait for it; a system without one never announces a sleep, which
  /// the log hears once.
  [[nodiscard]] Observation observe(std::function<void()> willSleep);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavrin
