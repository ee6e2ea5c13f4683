#include "platform/linux/AcceptedRequests.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace tavrin {

AcceptedRequests::AcceptedRequests()
    : ready_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)) {
  // Without it the program could accept requests and would never handle one.
  if (!ready_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void AcceptedRequests::push(const std::vector<ExternalRequest>& requests) {
  if (requests.empty()) return;
  const std::lock_guard lock(mutex_);
  requests_.insert(requests_.end(), requests.begin(), requests.end());
  const std::uint64_t added = requests.size();
  [[maybe_unused]] const ssize_t written = ::write(ready_.get(), &added, sizeof added);
}

std::optional<ExternalRequest> AcceptedRequests::take() {
  const std::lock_guard lock(mutex_);
  if (requests_.empty()) return std::nullopt;
  std::uint64_t one = 0;
  [[maybe_unused]] const ssize_t taken = ::read(ready_.get(), &one, sizeof one);
  ExternalRequest request = std::move(requests_.front());
  requests_.pop_front();
  return request;
}

std::size_t AcceptedRequests::size() const {
  const std::lock_guard lock(mutex_);
  return requests_.size();
}

}  // namespace tavrin
