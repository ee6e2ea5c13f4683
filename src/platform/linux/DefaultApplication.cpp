#include "platform/linux/DefaultApplication.h"

#include "platform/linux/DesktopApplication.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

Result<std::string> contentTypeOf(const std::string& path) {
  const GObjectPointer<GFile> file(g_file_new_for_path(path.c_str()));
  GLibError error;
  const GObjectPointer<GFileInfo> info(
      g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE, G_FILE_QUERY_INFO_NONE,
                        nullptr, error.slot()));
  if (!info) {
    const bool isMissing = error.matches(G_IO_ERROR, G_IO_ERROR_NOT_FOUND);
    return systemError("find the type of", path,
                       isMissing ? std::errc::no_such_file_or_directory : std::errc::io_error);
  }
  const char* type = g_file_info_get_content_type(info.get());
  return std::string(type == nullptr ? "application/octet-stream" : type);
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
