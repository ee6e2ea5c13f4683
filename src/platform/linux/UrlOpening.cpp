#include "platform/linux/UrlOpening.h"

#include "platform/linux/DesktopApplication.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

Status openUrl(const std::string& url) {
  // GIO reads up to the first NUL byte.
  const bool isUrl = url.find('\0') == std::string::npos &&
                     g_uri_is_valid(url.c_str(), G_URI_FLAGS_NONE, nullptr) != FALSE;
  if (!isUrl) return systemError("open the URL", url, std::errc::invalid_argument);
  const GLibPointer<char> scheme(g_uri_parse_scheme(url.c_str()));
  const GObjectPointer<GAppInfo> application(g_app_info_get_default_for_uri_scheme(scheme.get()));
  if (!application || !G_IS_DESKTOP_APP_INFO(application.get())) {
    return systemError("find an application for", url, std::errc::no_such_device_or_address);
  }
  return launchWithUri(G_DESKTOP_APP_INFO(application.get()), url);
}

}  // namespace tavrin
