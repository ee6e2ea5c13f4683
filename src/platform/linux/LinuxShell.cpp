#include "platform/linux/LinuxShell.h"

#include <fcntl.h>
#include <poll.h>
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
#include "platform/linux/CommandOutput.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/ProcessSpawning.h"
#include "platform/linux/SystemErrors.h"
#include "platform/linux/shell/Protocol.h"

namespace tavrin {

namespace {

constexpr int aboveTheHelpers = shell_protocol::folderDescriptor + 1;
constexpr std::size_t longestReport = 4096;
constexpr std::size_t longestOutput = 16384;
constexpr std::size_t mostOutputLines = 20;
// What a pipe can still hold when nobody writes any more.
constexpr int piecesOfAPipe = 16;
constexpr std::size_t longestPiece = 4096;

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

/// What comes from a pipe, up to a length; the rest is read and dropped.
class Listener {
 public:
  Listener(const FileDescriptor& readEnd, std::size_t longest)
      : descriptor_(readEnd.get()), longest_(longest) {}

  const std::string& text() const { return text_; }
  bool hasEnded() const { return descriptor_ < 0; }
  pollfd waiting() const { return {descriptor_, POLLIN, 0}; }

  void readPiece() {
    std::array<char, longestPiece> piece{};
    const ssize_t size = ::read(descriptor_, piece.data(), piece.size());
    if (size < 0 && errno == EINTR) return;
    if (size <= 0) {
      descriptor_ = -1;
      return;
    }
    text_.append(piece.data(), std::min(static_cast<std::size_t>(size), longest_ - text_.size()));
  }

 private:
  int descriptor_;
  std::size_t longest_;
  std::string text_;
};

/// Listens until the reports end, as they do with the helper; what the script leaves running may
/// keep its output open.
void listen(Listener& reports, Listener& output) {
  while (!reports.hasEnded()) {
    std::array<pollfd, 2> ends = {reports.waiting(), output.waiting()};
    if (::poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
    if (ends[0].revents != 0) reports.readPiece();
    if (ends[1].revents != 0) output.readPiece();
  }
  for (int piece = 0; piece < piecesOfAPipe; ++piece) {
    pollfd end = output.waiting();
    if (::poll(&end, 1, 0) <= 0) return;
    output.readPiece();
  }
}

std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
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
  auto output = makePipe();
  if (!output) return output.error();
  const auto child = start(script, writableFolder,
                           {FileDescriptor(reports.value().writeEnd.release()),
                            FileDescriptor(output.value().writeEnd.release())});
  if (!child) return child.error();
  Listener report(reports.value().readEnd, longestReport);
  Listener printed(output.value().readEnd, longestOutput);
  listen(report, printed);
  auto status = finish(child.value(), report.text());
  logOutput(printed.text());
  return status;
}

Result<int> LinuxShell::start(const std::string& script, const std::string& writableFolder,
                              const WriteEnds& ends) {
  // The place of some item in the folder: its parent is the folder as the scope has it.
  const auto place =
      scopes_.locate(appendingPathComponent(writableFolder, "item"), ScopeAccess::Change);
  if (!place) return place.error();
  if (place.value().required) {
    return systemError("run script in", writableFolder, std::errc::permission_denied);
  }
  const FileDescriptor folder = outOfTheWay(place.value().parent);
  const FileDescriptor reports = outOfTheWay(ends.reports);
  const FileDescriptor output = outOfTheWay(ends.output);
  if (!folder || !reports || !output) return systemError("run script in", writableFolder);
  SpawnSettings settings;
  settings.open(STDIN_FILENO, "/dev/null");
  // Not the program's own: that may be a file, which is none of the script's.
  settings.put(output, STDOUT_FILENO);
  settings.put(output, STDERR_FILENO);
  settings.put(reports, shell_protocol::reportDescriptor);
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

void LinuxShell::logOutput(const std::string& output) {
  const auto lines = linesOf(output);
  for (std::size_t index = 0; index < std::min(lines.size(), mostOutputLines); ++index) {
    log_.write("script: " + std::string(lines[index]));
  }
  if (lines.size() > mostOutputLines) log_.write("script: and more");
}

std::string LinuxShell::helperPath() const {
  return appendingPathComponent(moduleFolder_, shell_protocol::helperName);
}

void LinuxShell::reportOnce(const std::string& missing) {
  if (reported_.insert(missing).second) log_.write("scripts run less confined: " + missing);
}

std::string LinuxShell::outputOfCommand(const std::string& command) {
  auto output = tavrin::outputOfCommand(command);
  if (output) return std::move(output.value());
  log_.write(output.error().describe());
  return {};
}

}  // namespace tavrin
