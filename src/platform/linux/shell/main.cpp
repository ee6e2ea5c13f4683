#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/linux/shell/Confinement.h"
#include "platform/linux/shell/Protocol.h"

namespace {

using namespace tavrin;

constexpr int notRun = 126;
constexpr int endedBySignal = 128;

void report(char kind, const std::string& text) {
  const std::string line = kind + text + "\n";
  [[maybe_unused]] const ssize_t written =
      ::write(shell_protocol::reportDescriptor, line.data(), line.size());
}

int run(const char* script) {
  // Without a lock, for no other thread runs.
  const int status = std::system(script);  // NOLINT(concurrency-mt-unsafe)
  if (status < 0) {
    report(shell_protocol::notStarted, std::to_string(errno));
    return notRun;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : endedBySignal + WTERMSIG(status);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3 || ::fcntl(shell_protocol::folderDescriptor, F_GETFD) < 0) return notRun;
  // What the host has open is not the script's, and the report is not either.
  ::close_range(shell_protocol::folderDescriptor + 1, ~0U, 0);
  ::fcntl(shell_protocol::reportDescriptor, F_SETFD, FD_CLOEXEC);
  for (const std::string& missing :
       shell::confine(shell_protocol::folderDescriptor, arguments[2])) {
    report(shell_protocol::missingPart, missing);
  }
  ::close(shell_protocol::folderDescriptor);
  if (::chdir("/") != 0) return notRun;
  // There is nothing to clean up, and what would look for it may not do so any more.
  ::_exit(run(arguments[1]));
}
