#include "platform/linux/DefaultApplication.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "platform/linux/DesktopApplication.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

/// The first bytes of a file, as many as its type may be told by; none when it cannot be read.
std::vector<guchar> startOf(const std::string& path) {
  constexpr std::size_t enough = 4096;
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  std::vector<guchar> bytes(enough);
  const ssize_t count = file ? ::read(file.get(), bytes.data(), bytes.size()) : 0;
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

/// Not asked of GIO's default file system, which waits for a service on the bus.
Result<std::string> contentTypeOf(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) != 0) return systemError("find the type of", path);
  if (S_ISDIR(status.st_mode)) return std::string("inode/directory");
  const auto start = S_ISREG(status.st_mode) ? startOf(path) : std::vector<guchar>();
  const GLibPointer<char> type(
      g_content_type_guess(path.c_str(), start.data(), start.size(), nullptr));
  return std::string(type.get());
}

}  // namespace

Status openWithDefaultApplication(const std::string& path) {
  const auto type = contentTypeOf(path);
  return type ? openWithDefaultApplication(path, type.value()) : Status(type.error());
}

Status openWithDefaultApplication(const std::string& path, const std::string& contentType) {
  const GObjectPointer<GAppInfo> application(
      g_app_info_get_default_for_type(contentType.c_str(), FALSE));
  if (!application || !G_IS_DESKTOP_APP_INFO(application.get())) {
    return systemError("find an application for " + contentType + " to open", path,
                       std::errc::no_such_device_or_address);
  }
  return launchWithFile(G_DESKTOP_APP_INFO(application.get()), path);
}

}  // namespace tavrin
