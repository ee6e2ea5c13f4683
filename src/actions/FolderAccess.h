#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_set>

#include "platform/FileManager.h"
#include "sandbox/AppSandboxFileAccess.h"

namespace tavrin {

/// Access to the folders that the items of one request stand in. A folder that was granted once is
/// entered again without another look-up, for its scope stays open: a request of many items costs
/// little more than its work on them. A refused one is asked for again.
class FolderAccess {
 public:
  /// Both outlive this object.
  FolderAccess(AppSandboxFileAccess& fileAccess, FileManager& fileManager);

  /// As AppSandboxFileAccess::accessFilePath with the permission persisted. No change to hidden
  /// flags waits while the user is asked.
  bool accessFilePath(const std::string& path, const std::function<void()>& block);

 private:
  AppSandboxFileAccess& fileAccess_;
  FileManager& fileManager_;
  FileManager::Batch batch_;
  std::unordered_set<std::string> granted_;
};

}  // namespace tavrin
