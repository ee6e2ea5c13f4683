#include "platform/linux/CommandOutput.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>
#include <vector>

#include "platform/linux/ProcessSpawning.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

std::vector<std::string> ownEnvironment() {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    variables.emplace_back(*variable);
  }
  return variables;
}

std::string readToEnd(const FileDescriptor& readEnd) {
  std::string text;
  std::array<char, 4096> piece{};
  for (;;) {
    const ssize_t size = ::read(readEnd.get(), piece.data(), piece.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return text;
    text.append(piece.data(), static_cast<std::size_t>(size));
  }
}

/// Has an ended child forgotten by the system, now or when it ends.
void collect(pid_t child) {
  if (::waitpid(child, nullptr, WNOHANG) != 0) return;
  std::thread([child] {
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
  }).detach();
}

}  // namespace

Result<std::string> outputOfCommand(const std::string& command) {
  if (command.find('\0') != std::string::npos) {
    return systemError("run command", command, std::errc::invalid_argument);
  }
  auto output = makePipe();
  if (!output) return output.error();
  SpawnSettings settings;
  settings.open(STDIN_FILENO, "/dev/null");
  settings.put(output.value().writeEnd, STDOUT_FILENO);
  const auto child = settings.spawn({"/bin/sh", "-c", command}, ownEnvironment());
  if (!child) return child.error();
  output.value().writeEnd = FileDescriptor();
  std::string text = readToEnd(output.value().readEnd);
  collect(child.value());
  return text;
}

}  // namespace tavrin
