#include "actions/FolderAccess.h"

namespace tavrin {

namespace {

// Items in ever other folders must not add to the memory that a request takes.
constexpr std::size_t mostFoldersRemembered = 64;

}  // namespace

FolderAccess::FolderAccess(AppSandboxFileAccess& fileAccess, FileManager& fileManager)
    : fileAccess_(fileAccess), fileManager_(fileManager) {}

bool FolderAccess::accessFilePath(const std::string& path, const std::function<void()>& block) {
  if (granted_.contains(path)) {
    if (!batch_) batch_ = fileManager_.batch();
    block();
    return true;
  }
  batch_.reset();
  return fileAccess_.accessFilePath(path, PersistPermission::Yes, [&] {
    if (granted_.size() >= mostFoldersRemembered) granted_.clear();
    granted_.insert(path);
    batch_ = fileManager_.batch();
    block();
  });
}

}  // namespace tavrin
