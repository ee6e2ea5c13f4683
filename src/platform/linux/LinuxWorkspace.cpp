#include "platform/linux/LinuxWorkspace.h"

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/DefaultApplication.h"
#include "platform/linux/FileIcon.h"
#include "platform/linux/FileViewer.h"
#include "platform/linux/FileViewerRestart.h"
#include "platform/linux/OpenWithApplication.h"
#include "platform/linux/ProgramLauncher.h"
#include "platform/linux/UrlOpening.h"

namespace tavrin {

namespace {

/// Three seconds at rest, since a copy may stand still for a moment; ten minutes at most.
constexpr RunningFileViewer::Pace restartPace = {std::chrono::milliseconds(250), 12, 2400};

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

LinuxWorkspace::LinuxWorkspace(GDBusConnection* connection, ApplicationTable& applications,
                               ItemIcons* itemIcons, Log& log)
    : applications_(applications),
      itemIcons_(itemIcons),
      log_(log),
      fileViewer_(std::make_unique<FileViewer>(connection, log)),
      fileViewerRestart_(std::make_unique<FileViewerRestart>(connection, log, restartPace)),
      sleepSignal_(log) {}

LinuxWorkspace::~LinuxWorkspace() = default;

void LinuxWorkspace::selectNoFileInFileViewerRootedAtPath(const std::string& rootPath) {
  fileViewer_->showFolder(rootPath);
}

void LinuxWorkspace::selectFile(const std::string& path, const std::string& rootPath) {
  fileViewer_->showItem(path, rootPath);
}

void LinuxWorkspace::openFile(const std::string& path) {
  const Status opened = openWithDefaultApplication(path);
  if (!opened) log_.write(opened.error().describe());
}

std::optional<PropertyList::Data> LinuxWorkspace::iconForFile(const std::string& path,
                                                              int sidePixels) {
  auto icon = pngOfFileIcon(path, sidePixels);
  if (icon) return std::move(icon.value());
  log_.write(icon.error().describe());
  return std::nullopt;
}

void LinuxWorkspace::openURL(const std::string& url) {
  const Status opened = openUrl(url);
  if (!opened) log_.write(opened.error().describe());
}

bool LinuxWorkspace::openFileWithApplication(const std::string& path,
                                             const std::string& applicationName) {
  return tavrin::openFileWithApplication(path, applicationName, applications_, log_);
}

bool LinuxWorkspace::setIcon(const Image* image, const std::string& path) {
  return itemIcons_ != nullptr && itemIcons_->setIcon(image, path);
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

void LinuxWorkspace::restartFileViewer() {
  fileViewerRestart_->start();
}

Observation LinuxWorkspace::observeWillSleep(std::function<void()> willSleep) {
  return sleepSignal_.observe(std::move(willSleep));
}

}  // namespace tavrin
