#pragma once

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

 private:
  void deliverNext();
  void handleRemaining();
  void launchSuccessor();

  AcceptedRequests& accepted_;
  BusIntake& intake_;
  TerminationSignals& signalsToEnd_;
  Log& log_;
  ApplicationDelegate* delegate_ = nullptr;
  bool terminating_ = false;
  bool endedBySignal_ = false;
  bool wantsSuccessor_ = false;
};

}  // namespace tavrin
