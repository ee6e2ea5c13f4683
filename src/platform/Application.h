#pragma once

#include <string>

namespace tavrin {

/// What the system tells the program, as NSApplicationDelegate. Called on the main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;

  virtual void applicationWillFinishLaunching() = 0;
  virtual void applicationDidFinishLaunching() = 0;

  /// A file was opened with the program. May be called while an earlier call has not returned,
  /// when that one shows a modal panel. `fileName` is an absolute path.
  virtual void applicationOpen(const std::string& fileName) = 0;

  /// The user launched the running program again, or chose it in the desktop.
  virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;

  virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;
  virtual void applicationWillTerminate() = 0;
};

/// The running program, as NSApplication. Used on the main thread.
class Application {
 public:
  virtual ~Application() = default;

  /// `delegate` outlives the application's run.
  virtual void setDelegate(ApplicationDelegate* delegate) = 0;
  virtual ApplicationDelegate* delegate() const = 0;

  /// Runs the event loop until the program ends: calls applicationWillFinishLaunching, then
  /// applicationDidFinishLaunching, then delivers events. Returns the exit status.
  virtual int run() = 0;

  /// Brings the program's windows before those of other programs, as far as the desktop allows.
  virtual void activateIgnoringOtherApps() = 0;

  /// Ends the event loop in an orderly way; applicationWillTerminate is called before run returns.
  virtual void terminate() = 0;

  /// Ends the process at once with the given status; nothing else is called.
  [[noreturn]] virtual void exitImmediately(int status) = 0;
};

}  // namespace tavrin
