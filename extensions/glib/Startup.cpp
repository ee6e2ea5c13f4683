#include "extensions/glib/Startup.h"

#include "platform/linux/GLibPointers.h"

namespace tavrin {

std::string startupTokenOfClick(std::uint32_t time) {
  return time == 0 ? std::string() : "tavrin_TIME" + std::to_string(time);
}

std::string startupTokenFrom(GAppLaunchContext* context) {
  const GObjectPointer<GAppInfo> program(g_app_info_create_from_commandline(
      "tavrin", nullptr, G_APP_INFO_CREATE_SUPPORTS_STARTUP_NOTIFICATION, nullptr));
  if (!program) return {};
  const GLibPointer<char> token(
      g_app_launch_context_get_startup_notify_id(context, program.get(), nullptr));
  return token ? token.get() : std::string();
}

}  // namespace tavrin
