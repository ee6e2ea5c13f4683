#pragma once

#include <memory>
#include <string>

#include "platform/Log.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// The desktop's file manager: the one behind org.freedesktop.FileManager1 on the session bus, or
/// else the default application for folders. Requests return at once; that nobody carries one out
/// reaches the log. Used on the main thread.
class FileViewer {
 public:
  /// `connection` is the session bus, null when there is none. Both outlive the viewer.
  FileViewer(GDBusConnection* connection, Log& log);
  /// What was asked for and not answered yet is left to the file manager.
  ~FileViewer();
  FileViewer(const FileViewer&) = delete;
  FileViewer& operator=(const FileViewer&) = delete;

  /// Opens a window that shows the folder at an absolute path.
  void showFolder(const std::string& path);

  /// Opens a window in which the item at an absolute path is selected. Where no file manager is on
  /// the bus, the folder `rootPath` is shown.
  void showItem(const std::string& path, const std::string& rootPath);

 private:
  void ask(const char* method, const std::string& path, const std::string& folder);

  GDBusConnection* connection_;
  Log& log_;
  GObjectPointer<GCancellable> pendingCalls_;
};

}  // namespace tavrin
