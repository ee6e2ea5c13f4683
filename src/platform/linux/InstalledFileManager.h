#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// A file manager as its desktop entry presents it.
struct InstalledFileManager {
  /// With its own name in brackets where the entry has another ("Files (Nemo)"), UTF-8.
  std::string displayName;
  /// The name of an icon of the theme, or the absolute path of an image; "" when unknown.
  std::string icon;
};

/// The file manager of that name of file_manager; nothing when neither its desktop entry nor its
/// program is there.
std::optional<InstalledFileManager> installedFileManager(std::string_view identifier);

}  // namespace tavrin
