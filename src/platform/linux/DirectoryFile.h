#pragma once

#include <string>
#include <string_view>

/// The file ".directory" of a folder, which names the folder's icon (as KIO reads it; Desktop Entry
/// Specification, "Basic format of the file"). All else that stands in it stays as it is.
namespace tavrin {

inline constexpr const char* directoryFileName = ".directory";

/// `text` with the file at `iconPath` (absolute) as the icon: in the place of the one that it has,
/// else at the head of its group "Desktop Entry", else in such a group at the end. Lines end as
/// those of `text` do.
std::string directoryFileWithIcon(std::string_view text, std::string_view iconPath);

/// `text` without an icon; "" when nothing is left but empty groups.
std::string directoryFileWithoutIcon(std::string_view text);

}  // namespace tavrin
