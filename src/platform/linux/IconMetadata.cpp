#include "platform/linux/IconMetadata.h"

#include "foundation/FileURL.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr const char* iconAttribute = "metadata::custom-icon";
/// An icon of the theme, which some file managers let the user choose.
constexpr const char* themedIconAttribute = "metadata::custom-icon-name";

/// The metadata are asked for over the connection that all of GIO shares, whose end would end the
/// program before it is through.
void outliveSharedConnection() {
  GLibError error;
  const GObjectPointer<GDBusConnection> shared(
      g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, error.slot()));
  if (shared) g_dbus_connection_set_exit_on_close(shared.get(), FALSE);
}

/// Sets an attribute of an item, or removes it when `value` is null.
Status setAttribute(const std::string& path, const char* attribute, const char* value) {
  const GObjectPointer<GFile> file(g_file_new_for_path(path.c_str()));
  const auto type = value == nullptr ? G_FILE_ATTRIBUTE_TYPE_INVALID : G_FILE_ATTRIBUTE_TYPE_STRING;
  GLibError error;
  const gboolean isSet =
      g_file_set_attribute(file.get(), attribute, type, const_cast<char*>(value),
                           G_FILE_QUERY_INFO_NOFOLLOW_SYMLINKS, nullptr, error.slot());
  if (isSet != FALSE) return success();
  const bool isMissing = error.matches(G_IO_ERROR, G_IO_ERROR_NOT_SUPPORTED);
  return systemError("set metadata of", path + " (" + error.message() + ")",
                     isMissing ? ENOTSUP : EIO);
}

}  // namespace

Status setIconMetadata(const std::string& path, const std::string& iconPath) {
  outliveSharedConnection();
  if (!iconPath.empty()) {
    const std::string uri = FileURL::fileURLWithPath(iconPath).absoluteString();
    return setAttribute(path, iconAttribute, uri.c_str());
  }
  const Status removed = setAttribute(path, iconAttribute, nullptr);
  return removed ? setAttribute(path, themedIconAttribute, nullptr) : removed;
}

}  // namespace tavrin
