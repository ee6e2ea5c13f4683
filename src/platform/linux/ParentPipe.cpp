#include "platform/linux/ParentPipe.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace tavrin {

ParentPipe::ParentPipe(AcceptedRequests& accepted)
    : accepted_(accepted), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
  connect(&notifier_, &QSocketNotifier::activated, this, [this] { readWishes(); });
}

bool ParentPipe::isThere() {
  struct stat input {};
  return ::fstat(STDIN_FILENO, &input) == 0 && (S_ISFIFO(input.st_mode) || S_ISSOCK(input.st_mode));
}

void ParentPipe::readWishes() {
  std::array<char, 256> buffer{};
  const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count <= 0) {
    notifier_.setEnabled(false);
    return accept(ExternalRequest::Kind::Terminate);
  }
  const auto wishes = std::count(buffer.begin(), buffer.begin() + count, '\n');
  for (auto wish = 0; wish < wishes; ++wish) accept(ExternalRequest::Kind::Reopen);
}

/// Requests without files are never too many.
void ParentPipe::accept(ExternalRequest::Kind kind) {
  [[maybe_unused]] const bool isAccepted = accepted_.push({{kind}});
}

}  // namespace tavrin
