#include "platform/linux/FolderEntry.h"

namespace tavrin {

std::string FolderEntry::path() const {
  return isShownWhole_ ? *shownPath_ : *shownPath_ + "/" + *name_;
}

SystemError FolderEntry::failure(const char* operation, int cause) const {
  return {operation, path(), std::error_code(cause, std::generic_category())};
}

}  // namespace tavrin
