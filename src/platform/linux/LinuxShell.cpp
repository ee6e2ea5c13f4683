#include "platform/linux/LinuxShell.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/PathString.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SystemErrors.h"
#include "platform/linux/shell/Protocol.h"

namespace tavrin {

namespace {

constexpr int aboveTheHelpers = shell_protocol::folderDescriptor + 1;
constexpr std::size_t longestReport = 4096;

struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

Result<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return systemError("make a pipe", "");
  return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// A copy that no descriptor of the helper's will overwrite before it is put in its place.
FileDescriptor outOfTheWay(const FileDescriptor& descriptor) {
  return FileDescriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, aboveTheHelpers));
}

bool isForScripts(std::string_view variable) {
  return variable.starts_with("LANG=") || variable.starts_with("LANGUAGE=") ||
         variable.starts_with("LC_") || variable.starts_with("TZ=");
}

std::vector<std::string> scriptEnvironment(const std::string& toolsFolder) {
  std::vector<std::string> variables = {"PATH=" + toolsFolder + ":/usr/bin:/bin"};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (isForScripts(*variable)) variables.emplace_back(*variable);
  }
  return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  return pointers;
}

class SpawnSettings {
 public:
  SpawnSettings() {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }

  void open(int target, const char* path) {
    ::posix_spawn_file_actions_addopen(&actions_, target, path, O_RDONLY, 0);
  }
  void put(const FileDescriptor& descriptor, int target) {
    ::posix_spawn_file_actions_adddup2(&actions_, descriptor.get(), target);
  }
  /// The child's process number.
  Result<int> spawn(std::vector<std::string> words, std::vector<std::string> environment) {
    pid_t child = -1;
    const int cause = ::posix_spawn(&child, words.front().c_str(), &actions_, &attributes_,
                                    pointersTo(words).data(), pointersTo(environment).data());
    if (cause != 0) return systemError("start", words.front(), cause);
    return static_cast<int>(child);
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

/// Reads to the end, which is the helper's end. Keeps no more than a report may hold.
std::string readReport(int descriptor) {
  std::string report;
  std::array<char, 1024> piece{};
  for (;;) {
    const ssize_t size = ::read(descriptor, piece.data(), piece.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return report;
    report.append(piece.data(), static_cast<std::size_t>(size));
    if (report.size() > longestReport) report.resize(longestReport);
  }
}

std::vector<std::string_view> linesOf(std::string_view report) {
  std::vector<std::string_view> lines;
  while (!report.empty()) {
    const std::size_t end = std::min(report.find('\n'), report.size() - 1);
    lines.push_back(report.substr(0, end));
    report.remove_prefix(end + 1);
  }
  return lines;
}

/// Waits for a helper, and ends what its script left running behind it.
std::optional<int> waitForEnd(pid_t child) {
  siginfo_t end;
  while (::waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOWAIT) != 0 &&
         errno == EINTR) {
  }
  // As long as the helper is not waited for, its number is nobody else's.
  ::kill(-child, SIGKILL);
  int status = 0;
  pid_t ended = 0;
  do {
    ended = ::waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  return ended == child ? std::optional(status) : std::nullopt;
}

}  // namespace

LinuxShell::LinuxShell(const StartedScopes& scopes, Log& log, std::string moduleFolder)
    : scopes_(scopes), log_(log), moduleFolder_(std::move(moduleFolder)) {}

Result<int> LinuxShell::system(const std::string& script, const std::string& writableFolder) {
  if (script.find('\0') != std::string::npos) {
    return systemError("run script in", writableFolder, std::errc::invalid_argument);
  }
  auto reports = makePipe();
  if (!reports) return reports.error();
  const auto child =
      start(script, writableFolder, FileDescriptor(reports.value().writeEnd.release()));
  if (!child) return child.error();
  return finish(child.value(), readReport(reports.value().readEnd.get()));
}

Result<int> LinuxShell::start(const std::string& script, const std::string& writableFolder,
                              FileDescriptor reports) {
  // The place of some item in the folder: its parent is the folder as the scope has it.
  const auto place =
      scopes_.locate(appendingPathComponent(writableFolder, "item"), ScopeAccess::Change);
  if (!place) return place.error();
  if (place.value().required) {
    return systemError("run script in", writableFolder, std::errc::permission_denied);
  }
  const FileDescriptor folder = outOfTheWay(place.value().parent);
  const FileDescriptor writeEnd = outOfTheWay(reports);
  if (!folder || !writeEnd) return systemError("run script in", writableFolder);
  SpawnSettings settings;
  settings.open(STDIN_FILENO, "/dev/null");
  settings.put(writeEnd, shell_protocol::reportDescriptor);
  settings.put(folder, shell_protocol::folderDescriptor);
  const std::string tools = appendingPathComponent(moduleFolder_, shell_protocol::toolsFolderName);
  return settings.spawn({helperPath(), script, moduleFolder_}, scriptEnvironment(tools));
}

Result<int> LinuxShell::finish(int child, const std::string& report) {
  const auto status = waitForEnd(child);
  std::optional<int> cause;
  for (const std::string_view line : linesOf(report)) {
    if (line.starts_with(shell_protocol::missingPart)) reportOnce(std::string(line.substr(1)));
    if (line.starts_with(shell_protocol::notStarted)) {
      cause = std::atoi(std::string(line.substr(1)).c_str());  // 0 for what is no number
    }
  }
  if (cause) return systemError("start the shell by", helperPath(), *cause);
  if (!status || !WIFEXITED(*status)) {
    return systemError("wait for", helperPath(), std::errc::no_child_process);
  }
  return WEXITSTATUS(*status);
}

std::string LinuxShell::helperPath() const {
  return appendingPathComponent(moduleFolder_, shell_protocol::helperName);
}

void LinuxShell::reportOnce(const std::string& missing) {
  if (reported_.insert(missing).second) log_.write("scripts run less confined: " + missing);
}

}  // namespace tavrin
