#include "platform/linux/TerminationSignals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

namespace tavrin {

namespace {

std::atomic<int> signalDescriptor = -1;
static_assert(std::atomic<int>::is_always_lock_free);

// Signals are not blocked and read from a signalfd, because programs that are launched would
// inherit the blocked signals and could not be ended.
void noteSignal(int) {
  const int error = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(signalDescriptor, &one, sizeof one);
  errno = error;
}

}  // namespace

TerminationSignals::TerminationSignals() : arrived_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!arrived_) return;
  signalDescriptor = arrived_.get();
  for (std::size_t index = 0; index < signals.size(); ++index) {
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    ::sigaction(signals[index], &action, &previous_[index]);
    if (previous_[index].sa_handler == SIG_IGN) {
      ::sigaction(signals[index], &previous_[index], nullptr);
    }
  }
}

TerminationSignals::~TerminationSignals() {
  if (!arrived_) return;
  for (std::size_t index = 0; index < signals.size(); ++index) {
    ::sigaction(signals[index], &previous_[index], nullptr);
  }
  signalDescriptor = -1;
}

void TerminationSignals::acknowledge() {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t taken = ::read(arrived_.get(), &count, sizeof count);
}

}  // namespace tavrin
