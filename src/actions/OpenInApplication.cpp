#include "app/AppDelegate.h"

namespace tavrin {

void AppDelegate::openIn(const std::optional<std::string>& path, const std::string& appName) {
  if (!path) return logFailure("no folder given");
  fileAccess_->accessFilePath(*path, PersistPermission::Yes,
                              [&] { platform_.workspace.openFileWithApplication(*path, appName); });
}

void AppDelegate::openFile(const std::optional<std::string>& file,
                           const std::optional<std::string>& path, const std::string& appName) {
  platform_.log.write(descriptionOf(file) + "," + appName);
  if (!path) return logFailure("no folder given");
  fileAccess_->accessFilePath(*path, PersistPermission::Yes, [&] {
    if (!file) return logFailure("no file given");
    platform_.workspace.openFileWithApplication(*file, appName);
  });
}

}  // namespace tavrin
