#pragma once

#include <glib-object.h>

#include <string>
#include <string_view>
#include <vector>

#include "menu/SelectedItems.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// Takes a text of GLib's over; null reads as "".
inline std::string takeText(char* text) {
  const GLibPointer<char> owned(text);
  return owned ? std::string(owned.get()) : std::string();
}

/// The URI of a file of a file manager: where a list of recent files or of results leads to a file
/// of the disk, the URI of that file.
template <typename Manager>
std::string uriOf(typename Manager::FileInfo* file) {
  constexpr std::string_view ofDisk = "file:";
  // What lies in the trash is to be put back, not worked on, though there is a file behind it.
  constexpr std::string_view ofTrash = "trash:";
  std::string uri = takeText(Manager::fileUri(file));
  if (uri.starts_with(ofDisk) || uri.starts_with(ofTrash)) return uri;
  std::string target = takeText(Manager::fileActivationUri(file));
  return target.starts_with(ofDisk) ? target : uri;
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
