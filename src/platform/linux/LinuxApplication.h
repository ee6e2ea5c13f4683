#pragma once

#include <functional>
#include <utility>

#include "platform/Application.h"
#include "platform/Log.h"
#include "platform/linux/AcceptedRequests.h"
#include "platform/linux/BusIntake.h"
#include "platform/linux/TerminationSignals.h"

namespace tavrin {

/// The running program on Qt's event loop: it takes what other programs, the desktop and signals
/// ask of it to the delegate. A QApplication lives around `run`.
class LinuxApplication final : public Application {
 public:
  /// All four outlive the application.
  LinuxApplication(AcceptedRequests& accepted, BusIntake& intake, TerminationSignals& signalsToEnd,
                   Log& log);

  void setDelegate(ApplicationDelegate* delegate) override;
  ApplicationDelegate* delegate() const override { return delegate_; }

  /// As promised by Application. Every request that the intake accepted has been handed to the
  /// delegate, and the work it queued for them on the main loop is done, before
  /// applicationWillTerminate. What would have to ask the user by then is refused.
  int run() override;

  void activateIgnoringOtherApps() override;

  /// Also ends the event loops of modal panels that are up.
  void terminate() override;
  [[noreturn]] void exitImmediately(int status) override;

  /// Whether the program is to end, once it has handled what it has accepted.
  bool isTerminating() const { return terminating_; }

  /// Ends the process in the middle of a command, once the program is to end: as `run` does after
  /// the event loop, but the command stays undone, and the requests that wait behind it, which the
  /// log hears of.
  [[noreturn]] void terminateNow();

  /// `beforeEnd` is called when the process ends by terminateNow or exitImmediately: what is done
  /// must not be lost. It waits for nobody.
  void setBeforeEnd(std::function<void()> beforeEnd) { beforeEnd_ = std::move(beforeEnd); }

 private:
  void deliverNext();
  void stopIntake();
  void announceEnd();
  void handleRemaining();
  void launchSuccessor();

  AcceptedRequests& accepted_;
  BusIntake& intake_;
  TerminationSignals& signalsToEnd_;
  Log& log_;
  std::function<void()> beforeEnd_;
  ApplicationDelegate* delegate_ = nullptr;
  bool terminating_ = false;
  bool endedBySignal_ = false;
  bool wantsSuccessor_ = false;
};

}  // namespace tavrin
