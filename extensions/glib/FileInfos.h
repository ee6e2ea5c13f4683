#pragma once

#include <glib-object.h>

#include <string>
#include <vector>

#include "extensions/glib/Places.h"
#include "menu/SelectedItems.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// Takes a text of GLib's over; null reads as "".
inline std::string takeText(char* text) {
  const GLibPointer<char> owned(text);
  return owned ? std::string(owned.get()) : std::string();
}

/// The URI of a file of a file manager; where that stands for a file of the disk, the URI of it.
template <typename Manager>
std::string uriOf(typename Manager::FileInfo* file) {
  std::string uri = takeText(Manager::fileUri(file));
  if (uri == Manager::desktop) return desktopFolder();
  if (!isInListOfFiles(uri)) return uri;
  std::string target = takeText(Manager::fileActivationUri(file));
  return target.starts_with("file:") ? target : uri;
}

/// Files of a file manager, held as long as a menu needs them.
template <typename Manager>
class FileInfos : public SelectedItems {
 public:
  /// Of a list of file infos; null is the empty list.
  explicit FileInfos(const GList* files) {
    for (; files != nullptr; files = files->next) {
      files_.emplace_back(static_cast<FileInfo*>(g_object_ref(files->data)));
    }
  }

  std::size_t count() const override { return files_.size(); }
  std::string uri(std::size_t index) const override { return uriOf<Manager>(files_[index].get()); }
  bool isFolder(std::size_t index) const override {
    return Manager::isFolder(files_[index].get()) != FALSE;
  }
  std::string contentType(std::size_t index) const override {
    return takeText(Manager::contentType(files_[index].get()));
  }

 private:
  using FileInfo = typename Manager::FileInfo;

  std::vector<GObjectPointer<FileInfo>> files_;
};

}  // namespace tavrin
