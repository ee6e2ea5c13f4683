#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "platform/Log.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/QuitLock.h"
#include "platform/linux/RunningFileViewer.h"

namespace tavrin {

/// Has the file managers of the user's session loaded anew, for they load the modules of their
/// menus at their start alone. Used on the main thread, which it never keeps waiting.
class FileViewerRestart {
 public:
  /// `connection` is the session bus, null when there is none. Both outlive the restart.
  FileViewerRestart(GDBusConnection* connection, Log& log, RunningFileViewer::Pace pace);
  /// A file manager that was not asked to end yet goes on.
  ~FileViewerRestart();
  FileViewerRestart(const FileViewerRestart&) = delete;
  FileViewerRestart& operator=(const FileViewerRestart&) = delete;

  /// Ends each known file manager that is running, once it does nothing with files, and starts it
  /// again without a window. Returns at once; until all is done, closing the last window does not
  /// end this program. What fails reaches the log, a line for each file
  /// manager.
  void start();

 private:
  static void onNames(GObject* connection, GAsyncResult* result, gpointer self);
  static void onStarted(GObject* connection, GAsyncResult* result, gpointer start);

  void restartIfFileViewer(const std::string& busName);
  void startAgain(const FileViewerKind& kind);

  GDBusConnection* connection_;
  Log& log_;
  RunningFileViewer::Pace pace_;
  GObjectPointer<GCancellable> pendingCalls_;
  std::map<std::string, std::unique_ptr<RunningFileViewer>> viewers_;
  std::optional<QuitLock> untilListed_;
  /// One start serves all processes of a kind.
  std::set<const FileViewerKind*> startedKinds_;
};

}  // namespace tavrin
