#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// The keys of a request file, a property list with a dictionary at its root. All values are
/// strings, but for the tag.
namespace request_key {

/// The command: one of the names in ActionNames.h.
inline constexpr const char* action = "Action";
/// A folder path; may begin with "~" for the opening of a common path.
inline constexpr const char* path = "Path";
/// The zero-based position among the enabled entries of a rule list; a number or a string.
inline constexpr const char* tag = "Tag";
/// The selected items, a file list string.
inline constexpr const char* selectedFilesUrl = "SelectedFilesUrl";
/// The destination folder of a copy or move; may begin with "~".
inline constexpr const char* toPath = "ToPath";
/// The single selected item of the custom-icon action.
inline constexpr const char* selectedFile = "SelectedFile";
/// One file: to open in an editor, or the image of an icon set.
inline constexpr const char* file = "File";
/// The items being cut, for paste.
inline constexpr const char* cuttingFilesURL = "CuttingFilesURL";
/// The folder into which cut items are pasted.
inline constexpr const char* pasteInPath = "PasteInPath";

}  // namespace request_key

/// One request as it was read: a dictionary whose known keys hold values of their kinds.
class ActionRequest {
 public:
  /// Takes over what a request file held. Fails, with the key as the error's path, when `content`
  /// is no dictionary or a known key holds a value of another kind.
  static Result<ActionRequest> requestWithPropertyList(PropertyList content);

  /// The value of a string key; nothing when it is absent.
  std::optional<std::string> stringForKey(const char* key) const;

  /// The tag as integerValue reads it; 0 when it is absent.
  std::int64_t tag() const;

 private:
  explicit ActionRequest(PropertyList content);
  PropertyList content_;
};

}  // namespace tavrin
