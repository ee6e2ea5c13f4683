#include <chrono>
#include <thread>

#include "app/AppDelegate.h"
#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

/// Between the removal of an icon and the new one, so that windows see both.
constexpr std::chrono::milliseconds pauseBeforeNewIcon{10};

std::unique_ptr<Image> imageOfEntry(const PropertyList& entry, ImageProvider& images) {
  const PropertyList* icon = entry.find(record_field::icon);
  const PropertyList::Data* data = icon == nullptr ? nullptr : icon->dataIfData();
  return data == nullptr ? nullptr : images.imageWithData(*data);
}

}  // namespace

void AppDelegate::customIcon(const ActionRequest& request) {
  const std::string path = request.stringForKey(request_key::selectedFile).value_or("");
  const std::int64_t tag = request.tag();
  const PropertyList::Array entries =
      standardUserDefaults_->arrayForKey(settings_key::arrOfCustomIcon);
  if (!path.starts_with('/')) return logFailure("no item at a full path given");

  fileAccess_->accessFilePath(deletingLastPathComponent(path), PersistPermission::Yes, [&] {
    platform_.workspace.setIcon(nullptr, path);
    if (tag < 1) return;
    const auto position = static_cast<std::uint64_t>(tag) - 1;
    if (position >= entries.size()) {
      return logFailure("there is no icon " + std::to_string(tag) + " in the list of " +
                        std::to_string(entries.size()));
    }
    const auto image = imageOfEntry(entries[position], platform_.images);
    std::this_thread::sleep_for(pauseBeforeNewIcon);
    platform_.workspace.setIcon(image.get(), path);
  });
}

}  // namespace tavrin
