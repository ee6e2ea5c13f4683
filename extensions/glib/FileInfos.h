#pragma once

#include <glib-object.h>

#include <string>
#include <string_view>
#include <vector>

#include "menu/SelectedItems.h"

namespace tavrin {

/// The text that a GLib function hands over; null reads as "".
inline std::string takeText(char* text) {
  std::string taken(text == nullptr ? "" : text);
  g_free(text);
  return taken;
}

/// The URI of a file of a file manager: where a list of recent files or of results leads to a file
/// of the disk, the URI of that file.
template <typename Manager>
std::string uriOf(typename Manager::FileInfo* file) {
  constexpr std::string_view ofDisk = "file:";
  // What lies in the trash is no file of the user's, though it has one behind it.
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
  explicit FileInfos(GList* files) {
    files_.reserve(g_list_length(files));
    for (GList* file = files; file != nullptr; file = file->next) {
      files_.push_back(static_cast<typename Manager::FileInfo*>(g_object_ref(file->data)));
    }
  }
  ~FileInfos() override {
    for (auto* file : files_) g_object_unref(file);
  }
  FileInfos(const FileInfos&) = delete;
  FileInfos& operator=(const FileInfos&) = delete;

  std::size_t count() const override { return files_.size(); }
  std::string uri(std::size_t index) const override { return uriOf<Manager>(files_.at(index)); }
  bool isFolder(std::size_t index) const override {
    return Manager::isFolder(files_.at(index)) != FALSE;
  }
  std::string contentType(std::size_t index) const override {
    return takeText(Manager::contentType(files_.at(index)));
  }

 private:
  std::vector<typename Manager::FileInfo*> files_;
};

}  // namespace tavrin
