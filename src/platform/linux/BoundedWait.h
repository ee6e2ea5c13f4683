#pragma once

#include <chrono>

namespace tavrin {

/// The waits of one operation for other processes, which together never last longer than
/// `patience`.
///
/// Once that was in vain, the next operations wait only for `shortPatience`, until one succeeds: a
/// process that is stopped must not stop this one again and again.
class BoundedWait {
 public:
  static constexpr std::chrono::milliseconds patience{2000};
  static constexpr std::chrono::milliseconds shortPatience{20};

  /// A new operation, which has not waited yet.
  void begin() { turn_ = 0; }
  /// The operation had what it waited for.
  void succeed() { wasInVain_ = false; }
  /// Sleeps a little, longer each time. Returns false, at once, when the time is used up.
  bool pause();

 private:
  using Clock = std::chrono::steady_clock;

  Clock::time_point end_;
  unsigned turn_ = 0;
  bool wasInVain_ = false;
};

}  // namespace tavrin
