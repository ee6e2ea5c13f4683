#include "platform/linux/BoundedWait.h"

#include <algorithm>
#include <thread>

namespace tavrin {

bool BoundedWait::pause() {
  using std::chrono::microseconds;
  constexpr unsigned doublings = 6;
  const auto now = Clock::now();
  if (turn_ == 0) end_ = now + (wasInVain_ ? shortPatience : patience);
  if (now >= end_) {
    wasInVain_ = true;
    return false;
  }
  const microseconds step(50U << std::min(turn_++, doublings));
  std::this_thread::sleep_until(std::min<Clock::time_point>(now + step, end_));
  return true;
}

}  // namespace tavrin
