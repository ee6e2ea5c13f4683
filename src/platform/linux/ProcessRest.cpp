#include "platform/linux/ProcessRest.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace tavrin {

namespace {

namespace fs = std::filesystem;

/// Of the 100 in a second a copy of small files uses more than 50, an idle file manager none.
constexpr long ticksAtRest = 5;

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The fields of "stat", that of a process or of a thread, from the third on: see proc(5).
std::istringstream statusFields(const fs::path& task) {
  const std::string status = contentsOf(task / "stat");
  // The name before this bracket may hold anything.
  const std::size_t end = status.rfind(')');
  return std::istringstream(end == std::string::npos ? std::string() : status.substr(end + 1));
}

/// The processor time that the process has used, in clock ticks.
std::optional<long> ticksOf(const fs::path& process) {
  std::istringstream fields = statusFields(process);
  std::string skipped;
  for (int field = 3; field < 14; ++field) fields >> skipped;
  long userTicks = 0;
  long systemTicks = 0;
  fields >> userTicks >> systemTicks;
  return fields ? std::optional(userTicks + systemTicks) : std::nullopt;
}

/// Whether a thread of the process waits for a disk; nothing when that cannot be seen.
std::optional<bool> isWaitingForDisk(const fs::path& process) {
  std::error_code hidden;
  fs::directory_iterator thread(process / "task", hidden);
  for (; !hidden && thread != fs::directory_iterator(); thread.increment(hidden)) {
    std::string state;
    statusFields(thread->path()) >> state;
    if (state == "D") return true;
  }
  return hidden ? std::nullopt : std::optional(false);
}

bool isOpenForWritingAlone(const fs::path& process, const std::string& descriptor) {
  const std::string information = contentsOf(process / "fdinfo" / descriptor);
  const std::string key = "flags:";
  const std::size_t flags = information.find(key);
  if (flags == std::string::npos) return false;
  const long value = std::strtol(information.c_str() + flags + key.size(), nullptr, 8);
  return (value & O_ACCMODE) == O_WRONLY;
}

/// Whether the descriptor is a file's, told by its name: a question about the file itself could
/// wait for a network.
bool isFile(const fs::path& link) {
  std::error_code gone;
  const std::string target = fs::read_symlink(link, gone).string();
  return target.starts_with('/') && !target.starts_with("/dev/");
}

/// Whether the process writes a file; nothing when that cannot be seen.
std::optional<bool> isWriting(const fs::path& process) {
  std::error_code hidden;
  fs::directory_iterator entry(process / "fd", hidden);
  for (; !hidden && entry != fs::directory_iterator(); entry.increment(hidden)) {
    const std::string descriptor = entry->path().filename().string();
    if (std::atoi(descriptor.c_str()) <= STDERR_FILENO) continue;
    if (isFile(entry->path()) && isOpenForWritingAlone(process, descriptor)) return true;
  }
  return hidden ? std::nullopt : std::optional(false);
}

}  // namespace

int ProcessRest::look() {
  const fs::path process = fs::path("/proc") / std::to_string(processId_);
  const std::optional<long> ticks = ticksOf(process);
  const bool isAtRest = ticks && ticksBefore_ && *ticks - *ticksBefore_ <= ticksAtRest &&
                        !isWaitingForDisk(process).value_or(true) &&
                        !isWriting(process).value_or(true);
  looks_ = isAtRest ? looks_ + 1 : 0;
  if (!isAtRest) ticksBefore_ = ticks;
  return looks_;
}

}  // namespace tavrin
