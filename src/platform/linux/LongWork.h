#pragma once

#include <QPointer>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Log.h"
#include "platform/linux/OperationWatch.h"
#include "platform/linux/WorkDisplay.h"
#include "platform/linux/WorkThread.h"

namespace tavrin {

/// Shows commands that take long, and keeps the program within reach meanwhile.
///
/// The long part of an operation runs on a thread of its own. For the first second of a command the
/// main thread waits for it, which costs next to nothing; after that it serves a nested event loop,
/// as a modal panel does: requests are accepted and wait in line, the command can be cancelled, the
/// program can be told to end. A command of many small operations takes a turn of the event loop
/// between two of them now and then. Used on the main thread.
class LongWork final : public OperationWatch {
 public:
  /// What this needs of the running program.
  struct Program {
    /// Whether the program is to end.
    std::function<bool()> isEnding;
    /// Ends the process in the middle of an operation; does not return.
    std::function<void()> endNow;
  };
  struct Delays {
    /// The time that a command works before it is shown.
    std::chrono::milliseconds untilShown{1000};
    /// Between two turns of the event loop in a command of small operations, at least.
    std::chrono::milliseconds betweenTurns{100};
    /// Between two changes of what is shown.
    std::chrono::milliseconds betweenChanges{500};
  };

  /// `displays` and `log` outlive this object.
  LongWork(Program program, std::vector<WorkDisplay*> displays, Log& log, Delays delays);
  ~LongWork() override;
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;

  [[nodiscard]] std::shared_ptr<void> series() override;
  [[nodiscard]] std::unique_ptr<FileOperation> operation(OperationKind kind,
                                                         const std::string& path) override;

  /// Cancels the command in hand: the operation that runs, and all that would follow.
  void cancel();

  /// Takes what is shown off the desktop; for the end of the program.
  void hide();

 private:
  using Clock = WorkThread::Clock;
  class Operation;

  void begin();
  void pause();
  void commandOver();
  void takeTurn();
  Status runLongPart(Operation& operation, const std::function<Status()>& work);
  void serve(WorkThread& thread);
  void showIfDue();
  void endWithProgram();

  Program program_;
  std::vector<WorkDisplay*> displays_;
  Log& log_;
  Delays delays_;

  /// Series and operations that live.
  int holds_ = 0;
  /// Goes when the main thread is back in the loop that the command came from.
  QPointer<QObject> endMark_;
  /// When the command would have begun had it worked without a pause, and how long it has worked.
  Clock::time_point begun_;
  Clock::duration worked_{};
  Clock::time_point nextTurn_;
  Clock::time_point nextChange_;
  Operation* current_ = nullptr;
  std::uint64_t items_ = 0;
  std::uint64_t bytes_ = 0;
  bool isCancelled_ = false;
  bool isShown_ = false;
  /// Events are being served, so that nothing else may.
  bool isServing_ = false;
};

}  // namespace tavrin
