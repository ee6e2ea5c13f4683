#include "platform/linux/LinuxWorkspace.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <utility>

#include "foundation/FileURL.h"
#include "foundation/PathString.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/OpenWithApplication.h"
#include "platform/linux/ProgramLauncher.h"

namespace tavrin {

namespace {

/// A folder that the file manager was asked to show.
struct FolderToShow {
  std::string uri;
  Log& log;
};

void openWithDefaultApplication(const FolderToShow& folder, const std::string& whyNotByBus) {
  const GObjectPointer<GAppInfo> application(
      g_app_info_get_default_for_type("inode/directory", TRUE));
  if (!application) {
    folder.log.write("no file manager shows " + folder.uri + ": " + whyNotByBus);
    return;
  }
  GList uris = {const_cast<char*>(folder.uri.c_str()), nullptr, nullptr};
  GLibError error;
  if (g_app_info_launch_uris(application.get(), &uris, nullptr, error.slot()) == FALSE) {
    folder.log.write("no file manager shows " + folder.uri + ": " + error.message());
  }
}

void onFolderShown(GObject* connection, GAsyncResult* result, gpointer pending) {
  const std::unique_ptr<FolderToShow> folder(static_cast<FolderToShow*>(pending));
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  if (answer || error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  openWithDefaultApplication(*folder, error.message());
}

bool isFolder(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isProgram(const std::string& path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> programOfBundle(const std::string& bundlePath) {
  const std::string name = deletingPathExtension(lastPathComponent(bundlePath));
  for (const std::string& candidate : {name, std::string("AppRun")}) {
    std::string program = appendingPathComponent(bundlePath, candidate);
    if (isProgram(program)) return program;
  }
  return std::nullopt;
}

}  // namespace

void LinuxWorkspace::GObjectRelease::operator()(GCancellable* cancellable) const {
  g_object_unref(cancellable);
}

LinuxWorkspace::LinuxWorkspace(GDBusConnection* connection, ApplicationTable& applications,
                               Log& log)
    : connection_(connection),
      applications_(applications),
      log_(log),
      pendingCalls_(g_cancellable_new()),
      sleepSignal_(log) {}

LinuxWorkspace::~LinuxWorkspace() {
  g_cancellable_cancel(pendingCalls_.get());
}

void LinuxWorkspace::selectNoFileInFileViewerRootedAtPath(const std::string& rootPath) {
  auto folder = std::make_unique<FolderToShow>(
      FolderToShow{FileURL::fileURLWithPath(rootPath).absoluteString(), log_});
  if (connection_ == nullptr) {
    openWithDefaultApplication(*folder, "no session bus");
    return;
  }
  const char* const uris[] = {folder->uri.c_str(), nullptr};
  g_dbus_connection_call(
      connection_, "org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
      "org.freedesktop.FileManager1", "ShowFolders", g_variant_new("(^ass)", uris, ""), nullptr,
      G_DBUS_CALL_FLAGS_NONE, -1, pendingCalls_.get(), onFolderShown, folder.release());
}

bool LinuxWorkspace::openFileWithApplication(const std::string& path,
                                             const std::string& applicationName) {
  return tavrin::openFileWithApplication(path, applicationName, applications_, log_);
}

bool LinuxWorkspace::launchApplication(const std::string& path) {
  const std::optional<std::string> program = isFolder(path) ? programOfBundle(path) : path;
  if (!program) {
    log_.write("launch " + path + ": no program in the bundle");
    return false;
  }
  const Status launched = launchProgram(*program);
  if (!launched) log_.write(launched.error().describe());
  return static_cast<bool>(launched);
}

Observation LinuxWorkspace::observeWillSleep(std::function<void()> willSleep) {
  return sleepSignal_.observe(std::move(willSleep));
}

}  // namespace tavrin
