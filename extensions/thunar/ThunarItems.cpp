#include "extensions/thunar/ThunarItems.h"

namespace tavrin {

namespace {

/// Takes a text of GLib's over.
std::string textOf(char* text) {
  const GLibPointer<char> owned(text);
  return owned ? std::string(owned.get()) : std::string();
}

}  // namespace

std::string uriOf(ThunarxFileInfo* file) {
  std::string uri = textOf(thunarx_file_info_get_uri(file));
  if (!uri.starts_with("recent:")) return uri;
  const GObjectPointer<GFileInfo> info(thunarx_file_info_get_file_info(file));
  if (!info) return uri;
  const char* target =
      g_file_info_get_attribute_string(info.get(), G_FILE_ATTRIBUTE_STANDARD_TARGET_URI);
  return target == nullptr ? uri : target;
}

ThunarItems::ThunarItems(const GList* files) {
  for (; files != nullptr; files = files->next) {
    files_.emplace_back(THUNARX_FILE_INFO(g_object_ref(files->data)));
  }
}

std::string ThunarItems::uri(std::size_t index) const {
  return uriOf(files_[index].get());
}

bool ThunarItems::isFolder(std::size_t index) const {
  return thunarx_file_info_is_directory(files_[index].get()) != FALSE;
}

std::string ThunarItems::contentType(std::size_t index) const {
  return textOf(thunarx_file_info_get_mime_type(files_[index].get()));
}

}  // namespace tavrin
