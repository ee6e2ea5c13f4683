#include "tests/faults/Attackers.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <tuple>
#include <utility>

namespace tavrin::testing {
namespace {

constexpr std::chrono::microseconds pause(5);

}  // namespace

FileDescriptor openOwnFolder(int parent, const std::string& name) {
  return FileDescriptor(
      ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool exchange(int oneFolder, const std::string& one, int otherFolder, const std::string& other) {
  return ::renameat2(oneFolder, one.c_str(), otherFolder, other.c_str(), RENAME_EXCHANGE) == 0;
}

Attackers::~Attackers() {
  stop();
}

void Attackers::add(std::function<bool()> strike) {
  threads_.emplace_back([this, strike = std::move(strike)] {
    ::prctl(PR_SET_TIMERSLACK, 1);
    while (!hasEnded_) {
      count_ += strike() ? 1 : 0;
      // Folders can be locked by one alone: what is attacked has to get its turn.
      std::this_thread::sleep_for(pause);
    }
  });
}

void Attackers::stop() {
  hasEnded_ = true;
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
}

Bait::Bait(int folder, std::string path, std::string name, std::string target)
    : folder_(folder), path_(std::move(path)), name_(std::move(name)), target_(std::move(target)) {
  restore();
}

bool Bait::strike(int outer, const std::string& inner) const {
  return exchange(outer, inner, folder_, name_);
}

void Bait::restore() const {
  std::error_code cause;
  const std::filesystem::path bait = path_ + "/" + name_;
  if (std::filesystem::is_symlink(bait, cause)) return;
  std::filesystem::remove_all(bait, cause);
  std::ignore = ::symlinkat(target_.c_str(), folder_, name_.c_str());
}

}  // namespace tavrin::testing
