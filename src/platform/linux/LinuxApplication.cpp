#include "platform/linux/LinuxApplication.h"

#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QSocketNotifier>
#include <QWidget>
#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/ProgramLauncher.h"
#include "platform/linux/QtWindows.h"

namespace tavrin {

namespace {

bool isProgramWindow(const QWidget& widget) {
  const bool isWindow = widget.windowType() == Qt::Window || widget.windowType() == Qt::Dialog;
  return isWindow && widget.isVisible();
}

bool hasVisibleWindows() {
  for (const QWidget* widget : QApplication::topLevelWidgets()) {
    if (isProgramWindow(*widget)) return true;
  }
  return false;
}

}  // namespace

LinuxApplication::LinuxApplication(AcceptedRequests& accepted, BusIntake& intake,
                                   TerminationSignals& signalsToEnd, Log& log)
    : accepted_(accepted), intake_(intake), signalsToEnd_(signalsToEnd), log_(log) {}

void LinuxApplication::setDelegate(ApplicationDelegate* delegate) {
  delegate_ = delegate;
}

int LinuxApplication::run() {
  QGuiApplication::setQuitOnLastWindowClosed(
      delegate_->applicationShouldTerminateAfterLastWindowClosed());

  QSocketNotifier signalNotifier(signalsToEnd_.descriptor(), QSocketNotifier::Read);
  QObject::connect(&signalNotifier, &QSocketNotifier::activated, [&] {
    signalsToEnd_.acknowledge();
    endedBySignal_ = true;
    terminate();
  });
  QSocketNotifier requestNotifier(accepted_.readyDescriptor(), QSocketNotifier::Read);
  QObject::connect(&requestNotifier, &QSocketNotifier::activated, [this] { deliverNext(); });

  delegate_->applicationWillFinishLaunching();
  delegate_->applicationDidFinishLaunching();
  const int status = terminating_ ? 0 : QApplication::exec();

  stopIntake();
  handleRemaining();
  announceEnd();
  return status;
}

void LinuxApplication::stopIntake() {
  terminating_ = true;
  stopAskingTheUser();
  intake_.stop();
}

void LinuxApplication::announceEnd() {
  delegate_->applicationWillTerminate();
  if (wantsSuccessor_) launchSuccessor();
}

void LinuxApplication::terminateNow() {
  stopIntake();
  // They join the delegate's line, which is not worked off any more.
  while (accepted_.size() > 0) deliverNext();
  announceEnd();
  exitImmediately(0);
}

void LinuxApplication::deliverNext() {
  const std::optional<ExternalRequest> request = accepted_.take();
  if (!request) return;
  switch (request->kind) {
    case ExternalRequest::Kind::Open:
      delegate_->applicationOpen(request->path);
      break;
    case ExternalRequest::Kind::Reopen:
      if (terminating_) {
        wantsSuccessor_ = true;
      } else {
        delegate_->applicationShouldHandleReopen(hasVisibleWindows());
      }
      break;
    case ExternalRequest::Kind::Terminate:
      terminate();
      break;
  }
}

void LinuxApplication::handleRemaining() {
  while (accepted_.size() > 0) deliverNext();
  // The delegate handles what it was handed in later turns of the loop.
  while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) continue;
}

/// The user launched the program in the moment of its end: a new process shows the window.
void LinuxApplication::launchSuccessor() {
  if (endedBySignal_) return;
  std::error_code unknown;
  const std::string program = std::filesystem::read_symlink("/proc/self/exe", unknown).string();
  const Status launched = launchProgram(program);
  if (!launched) log_.write("new start after the end: " + launched.error().describe());
}

void LinuxApplication::activateIgnoringOtherApps() {
  QWidget* front = QApplication::activeModalWidget();
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (!isProgramWindow(*widget)) continue;
    widget->raise();
    if (front == nullptr) front = widget;
  }
  if (front == nullptr) return;
  front->raise();
  front->activateWindow();
}

void LinuxApplication::terminate() {
  terminating_ = true;
  stopAskingTheUser();
  QCoreApplication::exit(0);
}

void LinuxApplication::exitImmediately(int status) {
  if (beforeEnd_) beforeEnd_();
  if (const std::size_t waiting = accepted_.size(); waiting > 0) {
    log_.write("the program ends before " + std::to_string(waiting) + " accepted requests");
  }
  ::_exit(status);
}

}  // namespace tavrin
