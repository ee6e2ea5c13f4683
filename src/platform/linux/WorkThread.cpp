#include "platform/linux/WorkThread.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <system_error>
#include <utility>

namespace tavrin {

WorkThread::WorkThread(const std::function<Status()>& work)
    : ended_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!ended_) {
    run(work);
    return;
  }
  try {
    thread_ = std::thread([this, &work] {
      run(work);
      const std::uint64_t one = 1;
      [[maybe_unused]] const ssize_t written = ::write(ended_.get(), &one, sizeof one);
    });
  } catch (const std::system_error&) {
    ended_.reset();
    run(work);
  }
}

WorkThread::~WorkThread() {
  if (thread_.joinable()) thread_.join();
}

void WorkThread::run(const std::function<Status()>& work) noexcept {
  try {
    result_ = work();
  } catch (...) {
    failure_ = std::current_exception();
  }
}

bool WorkThread::hasEndedBy(Clock::time_point time) const {
  if (!ended_) return true;
  pollfd end{ended_.get(), POLLIN, 0};
  while (true) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - Clock::now()).count();
    const auto timeout = std::clamp<std::int64_t>(left, 0, INT_MAX);
    const int ready = ::poll(&end, 1, static_cast<int>(timeout));
    if (ready >= 0 || errno != EINTR) return ready > 0;
  }
}

Status WorkThread::result() {
  if (thread_.joinable()) thread_.join();
  if (failure_) std::rethrow_exception(failure_);
  return std::move(*result_);
}

}  // namespace tavrin
