#pragma once

#include <array>

/// The commands that a request can name, compared exactly. The two that undo hiding differ in the
/// case of one letter.
namespace tavrin::action_name {

inline constexpr const char* createNewFile = "createNewFile";
inline constexpr const char* copyFilesTo = "copyFilesTo";
inline constexpr const char* moveFilesTo = "moveFilesTo";
inline constexpr const char* copyFilesToCustom = "copyFilesToCustom";
inline constexpr const char* moveFilesToCustom = "moveFilesToCustom";
inline constexpr const char* customIcon = "customIcon";
inline constexpr const char* openCommonPath = "openCommonPath";
inline constexpr const char* cutSelectedFiles = "cutSelectedFiles";
inline constexpr const char* pasteSelectedFiles = "pasteSelectedFiles";
inline constexpr const char* hiddenSelectedFiles = "hiddenSelectedFiles";
inline constexpr const char* unHiddenSelectedFiles = "unHiddenSelectedFiles";
inline constexpr const char* deleteDirectlySelectedFiles = "deleteDirectlySelectedFiles";
inline constexpr const char* hiddenAllFilesInPath = "hiddenAllFilesInPath";
inline constexpr const char* unhiddenAllFilesInPath = "unhiddenAllFilesInPath";
inline constexpr const char* openInVSCode = "openInVSCode";
inline constexpr const char* openInIDEA = "openInIDEA";
inline constexpr const char* openInSublimeText = "openInSublimeText";
inline constexpr const char* openInEmacs = "openInEmacs";
inline constexpr const char* openFileInVSCode = "openFileInVSCode";
inline constexpr const char* openFileInIDEA = "openFileInIDEA";
inline constexpr const char* openFileInSublimeText = "openFileInSublimeText";
inline constexpr const char* openFileInEmacs = "openFileInEmacs";
inline constexpr const char* pinbySnapvane = "pinbySnapvane";
inline constexpr const char* imageToIconSetForMac = "imageToIconSetForMac";
inline constexpr const char* imageToIconSetForiOS = "imageToIconSetForiOS";

/// All of them, in the order in which a request's command is compared with them.
inline constexpr std::array<const char*, 25> all = {
    createNewFile,         copyFilesTo,
    moveFilesTo,           copyFilesToCustom,
    moveFilesToCustom,     customIcon,
    openCommonPath,        cutSelectedFiles,
    pasteSelectedFiles,    hiddenSelectedFiles,
    unHiddenSelectedFiles, deleteDirectlySelectedFiles,
    hiddenAllFilesInPath,  unhiddenAllFilesInPath,
    openInVSCode,          openInIDEA,
    openInSublimeText,     openInEmacs,
    openFileInVSCode,      openFileInIDEA,
    openFileInSublimeText, openFileInEmacs,
    pinbySnapvane,         imageToIconSetForMac,
    imageToIconSetForiOS};

}  // namespace tavrin::action_name
