#include "tests/platform/desktop/DesktopSession.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace tavrin::test {

namespace {

namespace fs = std::filesystem;

void applySetting(GLibPointer<char*>& environment, const std::string& setting) {
  const std::size_t equals = setting.find('=');
  const std::string name = setting.substr(0, equals);
  char** changed = equals == std::string::npos
                       ? g_environ_unsetenv(environment.release(), name.c_str())
                       : g_environ_setenv(environment.release(), name.c_str(),
                                          setting.c_str() + equals + 1, TRUE);
  environment.reset(changed);
}

GObjectPointer<GDBusConnection> connectTo(const std::string& address) {
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  return GObjectPointer<GDBusConnection>(
      g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr));
}

}  // namespace

void setVariable(const char* name, const std::optional<std::string>& value) {
  // Between tests no thread of theirs reads the environment.
  if (value) {
    ::setenv(name, value->c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  } else {
    ::unsetenv(name);  // NOLINT(concurrency-mt-unsafe)
  }
}

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (fs::temp_directory_path() / "tavrin-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp");
  path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code left;
  fs::remove_all(path_, left);
}

void writeFile(const std::string& path, const std::string& contents) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << contents;
  if (contents.starts_with("#!")) fs::permissions(path, fs::perms::owner_all);
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    if (g_main_context_iteration(nullptr, FALSE) == FALSE) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  return true;
}

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::vector<std::string>& settings,
                           const std::string& workingFolder) {
  GLibPointer<char*> environment(g_get_environ());
  for (const std::string& setting : settings) applySetting(environment, setting);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  const auto open = [](const std::string& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  };
  const int output = open(folder_ / "output");
  const int errors = open(folder_ / "errors");
  GLibError error;
  const auto flags =
      static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_SEARCH_PATH_FROM_ENVP);
  const bool started =
      g_spawn_async_with_fds(workingFolder.c_str(), arguments.data(), environment.get(), flags,
                             nullptr, nullptr, &processId_, -1, output, errors,
                             error.slot()) != FALSE;
  ::close(output);
  ::close(errors);
  if (!started) throw std::runtime_error(error.message());
}

ChildProcess::~ChildProcess() {
  if (!isRunning()) return;
  signal(SIGCONT);
  signal(SIGKILL);
  wait();
}

void ChildProcess::signal(int number) const {
  ::kill(processId_, number);
}

int ChildProcess::wait(std::chrono::milliseconds limit) {
  waitUntil(
      [this] {
        if (status_ != -1) return true;
        int status = 0;
        if (::waitpid(processId_, &status, WNOHANG) != processId_) return false;
        status_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        return true;
      },
      limit);
  return status_;
}

PrivateBus::PrivateBus(const char* variable, const std::vector<std::string>& settings)
    : variable_(variable), address_("unix:path=" + (folder_ / "bus")) {
  daemon_ = std::make_unique<ChildProcess>(
      std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                               "--address=" + address_},
      settings);
  if (!waitUntil([this] { return connect() != nullptr; })) throw std::runtime_error("no bus");
  setVariable(variable_, address_);
}

PrivateBus::~PrivateBus() {
  setVariable(variable_, std::nullopt);
}

GObjectPointer<GDBusConnection> PrivateBus::connect() const {
  return connectTo(address_);
}

bool PrivateBus::hasOwner(const std::string& name) const {
  const auto connection = connect();
  const GLibPointer<GVariant> answer(g_dbus_connection_call_sync(
      connection.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
      "NameHasOwner", g_variant_new("(s)", name.c_str()), nullptr, G_DBUS_CALL_FLAGS_NONE, 5000,
      nullptr, nullptr));
  gboolean owned = FALSE;
  if (answer) g_variant_get(answer.get(), "(b)", &owned);
  return owned != FALSE;
}

void PrivateBus::kill() {
  daemon_->signal(SIGKILL);
  daemon_->wait();
}

}  // namespace tavrin::test
