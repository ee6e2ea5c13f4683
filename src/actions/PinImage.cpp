#include <utility>
#include <vector>

#include "app/AppDelegate.h"
#include "foundation/PathString.h"

namespace tavrin {

namespace {

constexpr const char* pinFromPasteboard = "PinFromPasteboardByTavrin";

}  // namespace

std::vector<FileURL> AppDelegate::urlsOfItems(const std::string& selection) {
  std::vector<FileURL> urls;
  for (const std::string_view item : splitFileList(selection)) {
    if (auto url = urlOfItem(item)) urls.push_back(*std::move(url));
  }
  return urls;
}

bool AppDelegate::isImage(const std::string& path) const {
  UniformTypes& types = platform_.uniformTypes;
  const auto type = types.preferredTypeForFilenameExtension(pathExtension(path));
  return type && types.typeConformsTo(*type, uniform_type::image);
}

void AppDelegate::handOverForPinning(std::vector<FileURL> urls) {
  std::erase_if(urls, [this](const FileURL& url) { return !isImage(url.path()); });
  const auto pasteboard = platform_.pasteboards.pasteboardWithName(pasteboard_name::drag);
  pasteboard->clearContents();
  const Status written = pasteboard->writeObjects(urls);
  if (!written) return logFailure(written.error().describe());
  platform_.distributedNotifications.postNotificationWithOptions(
      pinFromPasteboard, {.deliverImmediately = true, .postToAllSessions = true});
}

void AppDelegate::pinbySnapvane(const ActionRequest& request) {
  const auto selection = request.stringForKey(request_key::selectedFilesUrl);
  if (!selection) return logFailure("no selection given");
  std::vector<FileURL> urls = urlsOfItems(*selection);
  if (urls.empty()) return;
  const std::string first = urls.front().path();
  const bool granted = fileAccess_->accessFilePath(first, PersistPermission::Yes,
                                                   [&] { handOverForPinning(std::move(urls)); });
  if (!granted) logFailure("no access to " + first);
}

}  // namespace tavrin
