#include "platform/linux/DisplayCheck.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>

#include <QDir>
#include <QLibraryInfo>
#include <QString>
#include <QStringList>
#include <cstdlib>
#include <cstring>

#include "foundation/PathString.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

namespace {

std::string environmentText(const char* name) {
  // Nothing in this program changes the environment beside other threads.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : value;
}

/// A platform of Qt that needs neither X nor Wayland.
bool isAnotherPlatformChosen() {
  const std::string platform = environmentText("QT_QPA_PLATFORM");
  return !platform.empty() && !platform.starts_with("xcb") && !platform.starts_with("wayland");
}

bool answersOnX() {
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(connection) == 0;
  xcb_disconnect(connection);
  return answers;
}

bool answersOnWayland(const std::string& display) {
  const std::string path =
      display.starts_with("/") ? display : appendingPathComponent(userRuntimeDirectory(), display);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) return false;
  std::memcpy(address.sun_path, path.data(), path.size());
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool hasPlugin(const QString& platform) {
  const QString ownFolder = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
  for (const QString& folder :
       {ownFolder, QLibraryInfo::path(QLibraryInfo::PluginsPath) + QStringLiteral("/platforms")}) {
    const QStringList pattern = {QStringLiteral("libq%1*.so").arg(platform)};
    if (!folder.isEmpty() && !QDir(folder).entryList(pattern, QDir::Files).isEmpty()) return true;
  }
  return false;
}

/// The platforms that QT_QPA_PLATFORM names, "name:options" separated by ";", without options.
bool hasChosenPlugin() {
  const QString chosen = qEnvironmentVariable("QT_QPA_PLATFORM");
  for (const QString& platform : chosen.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    if (hasPlugin(platform.section(QLatin1Char(':'), 0, 0))) return true;
  }
  return false;
}

}  // namespace

std::optional<std::string> missingDisplay() {
  if (isAnotherPlatformChosen()) {
    if (hasChosenPlugin()) return std::nullopt;
    return "no display: Qt has no platform " + environmentText("QT_QPA_PLATFORM");
  }
  const std::string xDisplay = environmentText("DISPLAY");
  const std::string waylandDisplay = environmentText("WAYLAND_DISPLAY");
  if (!xDisplay.empty() && answersOnX()) return std::nullopt;
  if (!waylandDisplay.empty() && answersOnWayland(waylandDisplay)) {
    if (hasPlugin(QStringLiteral("wayland"))) return std::nullopt;
    return "no display: Qt's Wayland plugin is not installed and no X server answers";
  }
  if (xDisplay.empty() && waylandDisplay.empty()) {
    return "no display: set DISPLAY or WAYLAND_DISPLAY";
  }
  return "no display: nothing answers at " + (xDisplay.empty() ? waylandDisplay : xDisplay);
}

}  // namespace tavrin
