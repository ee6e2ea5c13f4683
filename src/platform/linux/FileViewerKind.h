#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// How a file manager is found on the session bus, asked to end, and started without a window.
struct FileViewerKind {
  /// Of a name per process, as that of Dolphin, what stands before the process' number.
  std::string_view busName;
  bool hasNamePerProcess;
  const char* program;
  /// Null for one that is asked over the bus, as a KDE application.
  const char* quitOption;
  const char* backgroundOption;
};

/// The file manager that owns a name on the bus ("org.gnome.Nautilus", "org.kde.dolphin-4711");
/// null when the name is none's.
const FileViewerKind* fileViewerOfBusName(const std::string& busName);

}  // namespace tavrin
