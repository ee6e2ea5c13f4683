#include "extensions/glib/Places.h"

#include "platform/linux/GLibPointers.h"

namespace tavrin {

bool isInListOfFiles(const std::string& uri) {
  return uri.starts_with("recent:") || uri.starts_with("favorites:");
}

std::string desktopFolder() {
  const char* path = g_get_user_special_dir(G_USER_DIRECTORY_DESKTOP);
  if (path == nullptr) return {};
  const GLibPointer<char> uri(g_filename_to_uri(path, nullptr, nullptr));
  return uri ? uri.get() : std::string();
}

}  // namespace tavrin
