#pragma once

#include <array>

/// The keys of a request file, a property list with a dictionary at its root. All values are
/// strings, but for the tag.
namespace tavrin::request_key {

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

/// Every key whose value is a string.
inline constexpr std::array<const char*, 8> strings = {
    action, path, selectedFilesUrl, toPath, selectedFile, file, cuttingFilesURL, pasteInPath};

}  // namespace tavrin::request_key
