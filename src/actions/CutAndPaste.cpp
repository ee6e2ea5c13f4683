#include "actions/FolderAccess.h"
#include "app/AppDelegate.h"
#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

void AppDelegate::setHidden(const std::string& path, IsHidden isHidden) {
  const Status changed = platform_.fileManager.setHiddenAtPath(path, isHidden);
  if (!changed) logFailure(changed.error().describe());
}

void AppDelegate::setHiddenOfItems(FolderAccess& folders,
                                   const std::optional<std::string>& selection, IsHidden isHidden) {
  for (const std::string_view item : fileListItems(selection)) {
    const auto url = urlOfItem(item);
    if (!url) continue;
    // The text of the URL goes to the access layer as it stands, its scheme included.
    accessFolderOfItem(folders, deletingLastPathComponent(item), url->path(),
                       [&] { setHidden(url->path(), isHidden); });
  }
}

void AppDelegate::cutSelectedFiles(const ActionRequest& request) {
  const auto selection = request.stringForKey(request_key::selectedFilesUrl);
  const auto previous = sharedSuite_->stringForKey(settings_key::filesUrlOfCutting);
  const auto hidesWhenCutting = [this] {
    const auto value = standardUserDefaults_->objectForKey(settings_key::enableHideWhenCutting);
    return value && value->boolValue();
  };
  FolderAccess folders(*fileAccess_, platform_.fileManager);
  if (previous && hidesWhenCutting()) setHiddenOfItems(folders, previous, IsHidden::No);
  if (selection) {
    sharedSuite_->setObject(*selection, settings_key::filesUrlOfCutting);
  } else {
    sharedSuite_->removeObjectForKey(settings_key::filesUrlOfCutting);
  }
  if (hidesWhenCutting()) setHiddenOfItems(folders, selection, IsHidden::Yes);
}

void AppDelegate::pasteItem(FolderAccess& folders, std::string_view item,
                            const std::string& folder) {
  const auto url = urlOfItem(item);
  if (!url) return;
  const std::string& source = url->path();
  const std::string destination =
      uniquePathForPath(folder + "/" + lastPathComponent(source),
                        [this](const std::string& path) { return itemExists(path); });
  accessFolderOfItem(folders, deletingLastPathComponent(item), source, [&] {
    const bool granted = folders.accessFilePath(folder, [&] {
      const Status moved = platform_.fileManager.moveItemAtPath(source, destination);
      const Status shown = platform_.fileManager.setHiddenAtPath(destination, IsHidden::No);
      if (!moved) return logFailure(moved.error().describe());
      ++successCounter_;
      if (!shown) logFailure(shown.error().describe());
    });
    if (!granted) logFailure("no access to " + folder);
  });
}

void AppDelegate::pasteSelectedFiles(const ActionRequest& request) {
  const auto selection = request.stringForKey(request_key::cuttingFilesURL);
  const auto folder = request.stringForKey(request_key::pasteInPath);
  const auto items = fileListItems(selection);
  if (!folder && !items.empty()) logFailure("no destination given");

  successCounter_ = 0;
  {
    FolderAccess folders(*fileAccess_, platform_.fileManager);
    for (const std::string_view item : items) {
      if (!folder) break;
      pasteItem(folders, item, *folder);
    }
  }
  playResultSound(items.size(), successSound_);
}

}  // namespace tavrin
