#include "app/AppDelegate.h"

namespace tavrin {

void AppDelegate::openCommonPath(const ActionRequest& request) {
  const auto path = request.stringForKey(request_key::path);
  if (!path) return logFailure("no folder given");
  const std::string folder = expandingHome(*path, homePath());
  fileAccess_->accessFilePath(folder, PersistPermission::Yes, [&] {
    platform_.workspace.selectNoFileInFileViewerRootedAtPath(folder);
  });
}

}  // namespace tavrin
