#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/Image.h"
#include "platform/UserDefaults.h"

namespace tavrin {

/// The desktop around the program, as NSWorkspace. Used on the main thread.
class Workspace {
 public:
  virtual ~Workspace() = default;

  /// Opens a window of the file viewer that shows the folder `rootPath` (absolute). Returns at
  /// once; that no file viewer answers reaches the log.
  virtual void selectNoFileInFileViewerRootedAtPath(const std::string& rootPath) = 0;

  /// Opens the item at `path` (absolute) in the application of that name ("Sublime Text"), which is
  /// started if need be (openFile:withApplication:). True when it was; false when the application
  /// is not installed, of which nothing is told, or when it cannot be started, which reaches the
  /// log.
  virtual bool openFileWithApplication(const std::string& path,
                                       const std::string& applicationName) = 0;

  /// Makes an image the icon that file managers show for the file or folder at `path` (absolute),
  /// or with null gives it back its standard icon (setIcon:forFile:options:). Needs a started scope
  /// that covers the item; the item itself is not followed when it is a symbolic link. What the
  /// user keeps in the folder stays, and a removed icon leaves nothing behind there. True when some
  /// file manager of the system will show it; a failure reaches the log.
  virtual bool setIcon(const Image* image, const std::string& path) = 0;

  /// The icon of the item at `path` (absolute) as the desktop shows it for such items, a PNG file
  /// of `sidePixels` pixels square: by the kind of a folder, by the type of a file (iconForFile:).
  /// Of a missing item it is told by the name; one that no name tells is taken for a folder where
  /// the name has no extension. Reads nothing of the file and needs no scope.
  virtual std::optional<PropertyList::Data> iconForFile(const std::string& path,
                                                        int sidePixels) = 0;

  /// Opens a URL ("https://...", "mailto:...") in the default application of its scheme. Returns at
  /// once; a failure reaches the log.
  virtual void openURL(const std::string& url) = 0;

  /// Opens a window of the file viewer in which the item at `path` is selected; `rootPath` is the
  /// folder to show where no viewer can select it. Both are absolute. Returns at once; that no file
  /// viewer answers reaches the log.
  virtual void selectFile(const std::string& path, const std::string& rootPath) = 0;

  /// Opens a file (an absolute path) in the default application for its type. The application is
  /// no child of this program. A failure reaches the log.
  virtual void openFile(const std::string& path) = 0;

  /// Launches the program or bundle at a path. True when it was started. May be called on any
  /// thread.
  virtual bool launchApplication(const std::string& path) = 0;

  /// Ends the file viewers that run in the user's session, so that they load their menus anew, and
  /// starts them again without a window. Returns at once; one that is at work with files is waited
  /// for, and what fails reaches the log.
  virtual void restartFileViewer() = 0;

  /// Calls `willSleep` when the system is about to sleep.
  [[nodiscard]] virtual Observation observeWillSleep(std::function<void()> willSleep) = 0;
};

}  // namespace tavrin
