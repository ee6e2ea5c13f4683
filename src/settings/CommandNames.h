#pragma once

/// The commands of the Others list: what its records have as `Action`.
namespace tavrin::command_name {

inline constexpr const char* hideSelected = "Hidden Selected Files";
inline constexpr const char* hideAll = "Hidden All Files in Path";
inline constexpr const char* unhideSelected = "Nohidden Selected Files";
inline constexpr const char* unhideAll = "Nohidden All Files in Path";
inline constexpr const char* openInITerm2 = "Open in iTerm2";
inline constexpr const char* deleteDirectly = "Delete directly";
inline constexpr const char* openInTerminal = "Open in Terminal";
inline constexpr const char* paste = "Paste";
inline constexpr const char* copyPath = "Copy Path";
inline constexpr const char* cut = "Cut";
inline constexpr const char* imageToIconForMac = "Image to Icon for mac";
inline constexpr const char* imageToIconForIOS = "Image to Icon for iOS";
inline constexpr const char* openInVSCode = "Open in VSCode";
inline constexpr const char* openInIDEA = "Open in IDEA";
inline constexpr const char* openInSublimeText = "Open in Sublime Text";
inline constexpr const char* openInFileManager = "Finder";
inline constexpr const char* openInEmacs = "Open in Emacs";

/// Part of the name of each command that pins images.
inline constexpr const char* snapvane = "Snapvane";

}  // namespace tavrin::command_name
