#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "foundation/Result.h"
#include "platform/Log.h"
#include "platform/linux/FileViewerKind.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/ProcessRest.h"
#include "platform/linux/QuitLock.h"

namespace tavrin {

/// A file manager of the session on its way to its end: it is asked to quit once it does nothing
/// with files, since most of them break off what they are copying. Nothing ends it by force. Until
/// it is finished, closing the last window does not end this program. Used on the main thread.
class RunningFileViewer {
 public:
  struct Pace {
    std::chrono::milliseconds betweenLooks;
    /// How many looks in a row must find it at rest.
    int looksAtRest;
    /// After so many looks it is left alone.
    int looksAtMost;
  };

  /// `connection`, the session bus, `kind` and `log` outlive this object; `ended` is called when
  /// the file manager has ended as it was asked to. That it cannot be asked, or has not ended after
  /// all looks, is one line in the log.
  RunningFileViewer(GDBusConnection* connection, std::string busName, const FileViewerKind& kind,
                    Pace pace, Log& log, std::function<void()> ended);
  ~RunningFileViewer();
  RunningFileViewer(const RunningFileViewer&) = delete;
  RunningFileViewer& operator=(const RunningFileViewer&) = delete;

  /// Whether nothing more will happen: it has ended, or is left alone.
  bool isFinished() const { return watch_ == 0; }

 private:
  static void onAppeared(GDBusConnection* connection, const char* name, const char* owner,
                         gpointer self);
  static void onVanished(GDBusConnection* connection, const char* name, gpointer self);
  static void onProcess(GObject* connection, GAsyncResult* result, gpointer self);
  static void onWindows(GObject* connection, GAsyncResult* result, gpointer self);
  static gboolean onLook(gpointer self);

  void look();
  void askToQuit();
  void askWindowsToClose(const char* description);
  void askApplicationToQuit();
  void leaveAlone(const std::string& reason);
  void finish();

  GDBusConnection* connection_;
  const std::string busName_;
  const FileViewerKind& kind_;
  const Pace pace_;
  Log& log_;
  const std::function<void()> ended_;
  GObjectPointer<GCancellable> pendingCalls_;
  unsigned watch_ = 0;
  unsigned timer_ = 0;
  std::optional<QuitLock> untilFinished_{std::in_place};
  std::optional<ProcessRest> rest_;
  int looks_ = 0;
  bool isAsked_ = false;
};

/// Starts the program of a file manager with one option, as launchProgram. Fails when it is not
/// installed.
Status launchFileViewer(const FileViewerKind& kind, const char* option);

}  // namespace tavrin
