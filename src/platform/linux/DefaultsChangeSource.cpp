#include "platform/linux/DefaultsChangeSource.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace tavrin {

namespace {

// The log grows, is made, is taken back into the database and removed; the database may be replaced
// as a whole; who dies in the middle closes its files.
constexpr std::uint32_t folderEvents = IN_MODIFY | IN_CLOSE_WRITE | IN_CREATE | IN_DELETE |
                                       IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF |
                                       IN_ONLYDIR;

bool add(int set, int descriptor) {
  epoll_event event{};
  event.events = EPOLLIN;
  return ::epoll_ctl(set, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

/// Whether the watch on a folder ended.
bool holdsEndOfWatch(const char* events, std::size_t size) {
  bool ended = false;
  for (std::size_t position = 0; position + sizeof(inotify_event) <= size;) {
    inotify_event event{};
    std::memcpy(&event, events + position, sizeof event);
    ended = ended || (event.mask & (IN_IGNORED | IN_MOVE_SELF)) != 0;
    position += sizeof event + event.len;
  }
  return ended;
}

}  // namespace

int DefaultsChangeSource::descriptor() {
  if (!descriptor_) descriptor_ = FileDescriptor(::epoll_create1(EPOLL_CLOEXEC));
  return descriptor_.get();
}

bool DefaultsChangeSource::open() {
  if (notices_ || failed_) return !failed_;
  notices_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  wakeups_ = FileDescriptor(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
  failed_ = !notices_ || !wakeups_ || descriptor() < 0 || !add(descriptor_.get(), notices_.get()) ||
            !add(descriptor_.get(), wakeups_.get());
  if (failed_) {
    log_.write("cannot follow changes of settings: " + std::generic_category().message(errno));
  }
  return !failed_;
}

void DefaultsChangeSource::watch(const std::string& folder) {
  if (!open() || folder.empty()) return;
  if (::inotify_add_watch(notices_.get(), folder.c_str(), folderEvents) >= 0) return;
  log_.write("cannot follow changes of settings in " + folder + ": " +
             std::generic_category().message(errno));
}

void DefaultsChangeSource::wake() {
  const std::uint64_t one = 1;
  if (wakeups_) static_cast<void>(::write(wakeups_.get(), &one, sizeof one) == sizeof one);
}

bool DefaultsChangeSource::drain() {
  if (!notices_) return false;
  std::uint64_t count = 0;
  static_cast<void>(::read(wakeups_.get(), &count, sizeof count) == sizeof count);
  std::array<char, 16384> events{};
  bool ended = false;
  for (;;) {
    const ssize_t size = ::read(notices_.get(), events.data(), events.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return ended;
    ended = holdsEndOfWatch(events.data(), static_cast<std::size_t>(size)) || ended;
  }
}

}  // namespace tavrin
