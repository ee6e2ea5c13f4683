#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/GLibPointers.h"

/// A desktop session of a test's own: folders, a message bus, and programs that run in it.
namespace tavrin::test {

/// Sets a variable of this process's environment, or removes it.
void setVariable(const char* name, const std::optional<std::string>& value);

/// A new folder, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// Writes a file and the folders above it; an executable one when it begins with "#!".
void writeFile(const std::string& path, const std::string& contents);
/// The contents of a file; "" when it cannot be read.
std::string readFile(const std::string& path);
std::vector<std::string> linesOf(const std::string& text);

/// Runs GLib's default main loop until the condition holds. False after `limit`.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(20));

/// A program in the test's environment, ended with this object. What it writes is kept.
class ChildProcess {
 public:
  /// `command` is a program (found in PATH) and its arguments; each of `settings` is "NAME=value",
  /// or "NAME" for a variable that the program must not have.
  explicit ChildProcess(const std::vector<std::string>& command,
                        const std::vector<std::string>& settings = {},
                        const std::string& workingFolder = "/");
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void signal(int number) const;
  /// The exit status, 128 plus the signal's number, or -1 when it still runs after `limit`.
  int wait(std::chrono::milliseconds limit = std::chrono::seconds(20));
  bool isRunning() { return wait(std::chrono::milliseconds(0)) == -1; }
  int processId() const { return processId_; }
  std::string output() const { return readFile(folder_ / "output"); }
  std::string errors() const { return readFile(folder_ / "errors"); }

 private:
  TemporaryFolder folder_;
  int processId_ = -1;
  int status_ = -1;
};

/// A message bus of its own. Its address stands in the environment while it lives.
class PrivateBus {
 public:
  /// `variable` is DBUS_SESSION_BUS_ADDRESS or DBUS_SYSTEM_BUS_ADDRESS; `settings` are the daemon's
  /// own, as for a ChildProcess.
  explicit PrivateBus(const char* variable, const std::vector<std::string>& settings = {});
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  const std::string& address() const { return address_; }
  /// A new connection to the bus.
  GObjectPointer<GDBusConnection> connect() const;
  bool hasOwner(const std::string& name) const;
  void kill();

 private:
  const char* variable_;
  TemporaryFolder folder_;
  std::string address_;
  std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace tavrin::test
