#include <string_view>
#include <utility>
#include <vector>

#include "actions/FolderAccess.h"
#include "app/AppDelegate.h"
#include "foundation/PathString.h"
#include "sandbox/NSPanels.h"

namespace tavrin {

void AppDelegate::sendItem(const std::string& sourcePath, const std::string& destinationFolder,
                           IsCopy isCopy) {
  const std::string destination =
      uniquePathForPath(appendingPathComponent(destinationFolder, lastPathComponent(sourcePath)),
                        [this](const std::string& path) { return itemExists(path); });
  FileManager& fileManager = platform_.fileManager;
  const Status sent = isCopy == IsCopy::Yes ? fileManager.copyItemAtPath(sourcePath, destination)
                                            : fileManager.moveItemAtPath(sourcePath, destination);
  if (!sent) return logFailure(sent.error().describe());
  ++successCounter_;
}

void AppDelegate::sendFilesTo(const ActionRequest& request, IsCopy isCopy) {
  const auto selection = request.stringForKey(request_key::selectedFilesUrl);
  const auto toPath = request.stringForKey(request_key::toPath);
  const auto items = fileListItems(selection);
  if (!toPath && !items.empty()) logFailure("no destination given");
  const std::string folder = expandingHome(toPath.value_or(""), homePath());

  successCounter_ = 0;
  {
    FolderAccess folders(*fileAccess_, platform_.fileManager);
    for (const std::string_view item : items) {
      if (!toPath) break;
      const auto url = urlOfItem(item);
      if (!url) continue;
      const std::string& source = url->path();
      accessFolderOfItem(folders, deletingLastPathComponent(source), source, [&] {
        const bool granted =
            folders.accessFilePath(folder, [&] { sendItem(source, folder, isCopy); });
        if (!granted) logFailure("no access to " + folder);
      });
    }
  }
  playResultSound(items.size(), successSound_);
}

void AppDelegate::sendFilesToCustom(const ActionRequest& request, IsCopy isCopy) {
  // The panel outlives this call; requests behind this one wait for its end.
  NSPanels::openNSOpenPanelAtWindow(
      platform_.panels, platform_.bundle, nullptr, "", AllowsMultipleSelection::No,
      CanChooseFiles::No,
      [this, isCopy, selection = request.stringForKey(request_key::selectedFilesUrl),
       action = actionInHand_->name(), hold = requests_.hold()](const std::vector<FileURL>& urls) {
        if (urls.empty()) return;
        const ActionInHand inHand(platform_.log, actionInHand_, action);
        sendItemsToChosenFolder(fileListItems(selection), urls.front().path(), isCopy);
      });
}

void AppDelegate::sendItemsToChosenFolder(const std::vector<std::string_view>& items,
                                          const std::string& folder, IsCopy isCopy) {
  successCounter_ = 0;
  {
    FolderAccess folders(*fileAccess_, platform_.fileManager);
    for (const std::string_view item : items) {
      const auto url = urlOfItem(item);
      if (!url) continue;
      const std::string& source = url->path();
      accessFolderOfItem(folders, deletingLastPathComponent(source), source,
                         [&] { sendItem(source, folder, isCopy); });
    }
  }
  playResultSound(items.size(), successSound_);
}

}  // namespace tavrin
