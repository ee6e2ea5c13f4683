// Runs one operation of the file engine, to be measured, killed and given trouble: what the host's
// FileManager does once the whole disk is granted. The cause of a failure goes to standard error.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PathString.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "platform/linux/TreeWorkers.h"

namespace tavrin {
namespace {

constexpr const char* usage =
    "Usage: file-engine [--data FOLDER] [--workers COUNT] [--time] [--peak] OPERATION\n"
    "\n"
    "  copy SOURCE DESTINATION   as all others with absolute paths\n"
    "  move SOURCE DESTINATION\n"
    "  remove PATH\n"
    "  hide FOLDER               all that is in it and has no leading dot, in one batch\n"
    "  show FOLDER\n"
    "  create PATH SIZE          a file of so many bytes\n"
    "  recover                   clears what killed operations left\n"
    "\n"
    "  --data    where records of unfinished operations are, instead of $XDG_DATA_HOME\n"
    "  --workers threads of an operation at most, instead of one for each processor\n"
    "  --time    prints the seconds that the operation took\n"
    "  --peak    prints the KiB that the process had in memory at most\n";

struct CommandLine {
  std::string dataFolder = userDataDirectory();
  unsigned workers = 0;
  bool printsTime = false;
  bool printsPeak = false;
  std::string operation;
  std::vector<std::string> operands;
};

bool readNumber(const char* text, std::uint64_t& number) {
  char* end = nullptr;
  number = std::strtoull(text, &end, 10);
  return end != text && *end == '\0';
}

/// Nothing but the options' own words is looked at. False when they cannot be understood.
bool readOptions(std::vector<const char*>& words, CommandLine& line) {
  std::size_t next = 0;
  for (; next < words.size() && std::strncmp(words[next], "--", 2) == 0; ++next) {
    const std::string_view option = words[next];
    std::uint64_t workers = 0;
    if (option == "--time") {
      line.printsTime = true;
    } else if (option == "--peak") {
      line.printsPeak = true;
    } else if (option == "--data" && next + 1 < words.size()) {
      line.dataFolder = words[++next];
    } else if (option == "--workers" && next + 1 < words.size() &&
               readNumber(words[++next], workers) && workers > 0) {
      line.workers = static_cast<unsigned>(workers);
    } else {
      return false;
    }
  }
  words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(next));
  return !words.empty();
}

/// Remembers that there was something to tell, for what an operation fails in without saying so.
class NotingLog final : public Log {
 public:
  void write(std::string_view message) override {
    hasMessages_ = true;
    standardError_.write(message);
  }
  bool hasMessages() const { return hasMessages_; }

 private:
  std::atomic<bool> hasMessages_ = false;
  LinuxLog standardError_;
};

class Engine {
 public:
  explicit Engine(const std::string& dataFolder) : files_(scopes_, log_, dataFolder) {}

  /// As the user does who picks the file system in a panel.
  Status grantAll() {
    const auto disk = ScopeGrant::open("/");
    if (!disk) return disk.error();
    scopes_.grantByPicking(disk.value());
    return success();
  }

  /// False for an operation that there is not, or not with so many operands.
  bool run(const CommandLine& line, Status& status) {
    const auto& words = line.operands;
    if (line.operation == "copy" && words.size() == 2) {
      status = files_.copyItemAtPath(words[0], words[1]);
    } else if (line.operation == "move" && words.size() == 2) {
      status = files_.moveItemAtPath(words[0], words[1]);
    } else if (line.operation == "remove" && words.size() == 1) {
      status = files_.removeItemAtPath(words[0]);
    } else if (line.operation == "hide" && words.size() == 1) {
      status = setHiddenInFolder(words[0], IsHidden::Yes);
    } else if (line.operation == "show" && words.size() == 1) {
      status = setHiddenInFolder(words[0], IsHidden::No);
    } else if (line.operation == "recover" && words.empty()) {
      files_.clearLeftovers();
      status = noted("recover", line.dataFolder);
    } else {
      return runCreation(line, status);
    }
    return true;
  }

 private:
  bool runCreation(const CommandLine& line, Status& status) {
    std::uint64_t size = 0;
    if (line.operation != "create" || line.operands.size() != 2) return false;
    if (!readNumber(line.operands[1].c_str(), size)) return false;
    const PropertyList::Data bytes(size, std::uint8_t{'x'});
    status = files_.createFileAtPath(line.operands[0], bytes, FileManager::Replace::No);
    return true;
  }

  Status setHiddenInFolder(const std::string& folder, IsHidden isHidden) {
    const auto names = files_.contentsOfDirectoryAtPath(folder);
    if (!names) return names.error();
    {
      const FileManager::Batch batch = files_.batch();
      for (const std::string& name : names.value()) {
        if (name.starts_with('.')) continue;
        Status set = files_.setHiddenAtPath(appendingPathComponent(folder, name), isHidden);
        if (!set) return set;
      }
    }
    return noted("hide", folder);
  }

  /// A failure when the log has heard of one.
  Status noted(const char* operation, const std::string& path) const {
    if (!log_.hasMessages()) return success();
    return SystemError{operation, path, std::make_error_code(std::errc::io_error)};
  }

  NotingLog log_;
  LinuxSecurityScope scopes_{{}, log_};
  LinuxFileManager files_;
};

/// VmHWM, in KiB: what getrusage tells counts what the process was before it became this program.
std::string peakOfMemory() {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word && word != "VmHWM:") {
  }
  status >> word;
  return word;
}

int runCommand(const CommandLine& line) {
  TreeWorkers::setMostWorkers(line.workers);
  Engine engine(line.dataFolder);
  Status status = engine.grantAll();
  const auto start = std::chrono::steady_clock::now();
  if (status && !engine.run(line, status)) {
    std::fputs(usage, stderr);
    return 2;
  }
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (!status) {
    std::fprintf(stderr, "%s\n", status.error().describe().c_str());
    return 1;
  }
  if (line.printsTime) std::printf("%.6f\n", seconds.count());
  if (line.printsPeak) std::printf("%s\n", peakOfMemory().c_str());
  return 0;
}

}  // namespace
}  // namespace tavrin

int main(int count, char** arguments) {
  std::vector<const char*> words(arguments + 1, arguments + count);
  tavrin::CommandLine line;
  if (!tavrin::readOptions(words, line)) {
    std::fputs(tavrin::usage, stderr);
    return 2;
  }
  line.operation = words.front();
  line.operands.assign(words.begin() + 1, words.end());
  return tavrin::runCommand(line);
}
