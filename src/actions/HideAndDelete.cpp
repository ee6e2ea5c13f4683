#include "actions/FolderAccess.h"
#include "app/AppDelegate.h"
#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

void AppDelegate::hiddenSelectedFiles(const ActionRequest& request, IsHidden isHidden) {
  FolderAccess folders(*fileAccess_, platform_.fileManager);
  const auto selection = request.stringForKey(request_key::selectedFilesUrl);
  if (!selection) return logFailure("no items given");
  setHiddenOfItems(folders, selection, isHidden);
}

void AppDelegate::hiddenAllFilesInPath(const ActionRequest& request, IsHidden isHidden) {
  const auto folder = request.stringForKey(request_key::path);
  if (!folder) return logFailure("no folder given");
  FolderAccess folders(*fileAccess_, platform_.fileManager);
  const bool granted =
      folders.accessFilePath(*folder, [&] { setHiddenOfFolder(*folder, isHidden); });
  if (!granted) logFailure("no access to " + *folder);
}

void AppDelegate::setHiddenOfFolder(const std::string& folder, IsHidden isHidden) {
  const auto names = platform_.fileManager.contentsOfDirectoryAtPath(folder);
  if (!names) return logFailure(names.error().describe());
  std::string path = folder + "/";
  const std::size_t length = path.size();
  for (const std::string& name : names.value()) {
    if (name.starts_with('.')) continue;
    path.replace(length, std::string::npos, name);
    setHidden(path, isHidden);
  }
}

bool AppDelegate::mayDeleteDirectly() {
  if (standardUserDefaults_->boolForKey(settings_key::enableDirectDeleteFiles)) return true;
  const Bundle& bundle = platform_.bundle;
  const auto alert = platform_.alerts.alert();
  alert->setMessageText(bundle.localizedString("Warning"));
  alert->setInformativeText(
      bundle.localizedString("The files you selected will be permanently deleted!"));
  alert->addButtonWithTitle(bundle.localizedString("OK"));
  alert->addButtonWithTitle(bundle.localizedString("Cancel"));
  if (const auto icon = bundle.pathForResource("Tavrin", "png")) {
    alert->setIconWithContentsOfFile(*icon);
  }
  return alert->runModal() == Alert::firstButtonReturn;
}

void AppDelegate::removeItem(const std::string& path) {
  const Status removed = platform_.fileManager.removeItemAtPath(path);
  if (!removed) return logFailure(removed.error().describe());
  ++successCounter_;
}

void AppDelegate::deleteDirectlySelectedFiles(const ActionRequest& request) {
  if (!mayDeleteDirectly()) return;
  const auto selection = request.stringForKey(request_key::selectedFilesUrl);
  const auto items = fileListItems(selection);
  successCounter_ = 0;
  {
    FolderAccess folders(*fileAccess_, platform_.fileManager);
    for (const std::string_view item : items) {
      const auto url = urlOfItem(item);
      if (!url) continue;
      accessFolderOfItem(folders, deletingLastPathComponent(item), url->path(),
                         [&] { removeItem(url->path()); });
    }
  }
  playResultSound(items.size(), trashSound_);
}

}  // namespace tavrin
