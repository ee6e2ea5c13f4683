#include "platform/linux/LongWork.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace tavrin {

class LongWork::Operation final : public FileOperation {
 public:
  Operation(LongWork& work, OperationKind kind, const std::string& path)
      : kind_(kind), path_(path), work_(work), outer_(std::exchange(work.current_, this)) {
    work_.begin();
  }
  ~Operation() override {
    work_.items_ += items();
    work_.bytes_ += bytes();
    work_.current_ = outer_;
    work_.pause();
  }
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;

  Status runLongPart(const std::function<Status()>& work) override {
    return work_.runLongPart(*this, work);
  }

  ShownWork shown() const {
    ShownWork shown;
    shown.kind = kind_;
    shown.path = path_;
    shown.items = work_.items_ + items();
    shown.bytes = work_.bytes_ + bytes();
    if (hasLongPart_) shown.share = std::clamp(share(), 0.0, 1.0);
    shown.isCancelled = work_.isCancelled_;
    return shown;
  }

  void noteLongPart() { hasLongPart_ = true; }

 private:
  OperationKind kind_;
  const std::string& path_;
  LongWork& work_;
  /// The operation in whose time this one was begun by an event.
  Operation* outer_;
  bool hasLongPart_ = false;
};

LongWork::LongWork(Program program, std::vector<WorkDisplay*> displays, Log& log, Delays delays)
    : program_(std::move(program)), displays_(std::move(displays)), log_(log), delays_(delays) {}

LongWork::~LongWork() {
  delete endMark_;
}

std::shared_ptr<void> LongWork::series() {
  begin();
  return {this, [](LongWork* work) { work->pause(); }};
}

std::unique_ptr<FileOperation> LongWork::operation(OperationKind kind, const std::string& path) {
  auto operation = std::make_unique<Operation>(*this, kind, path);
  if (Clock::now() >= nextTurn_) takeTurn();
  if (isCancelled_ && !isServing_) operation->cancel();
  return operation;
}

void LongWork::begin() {
  if (holds_++ > 0) return;
  begun_ = Clock::now() - worked_;
  if (!isShown_) nextTurn_ = begun_ + delays_.untilShown;
}

/// The command may go on with another series, after a panel that asks the user for a folder, say.
/// It is over when the main thread is back where it came from, which is when Qt deletes an object
/// later.
void LongWork::pause() {
  if (--holds_ > 0) return;
  worked_ = Clock::now() - begun_;
  if (endMark_) return;
  endMark_ = new QObject;
  QObject::connect(endMark_, &QObject::destroyed, endMark_, [this] { commandOver(); });
  endMark_->deleteLater();
}

void LongWork::commandOver() {
  // A series that outlives its turn of the loop ends it.
  if (holds_ > 0) return;
  hide();
  worked_ = {};
  items_ = 0;
  bytes_ = 0;
  isCancelled_ = false;
}

void LongWork::hide() {
  if (!std::exchange(isShown_, false)) return;
  for (WorkDisplay* display : displays_) {
    display->end(isCancelled_ ? WorkEnd::Cancelled : WorkEnd::Done);
  }
}

void LongWork::cancel() {
  if (!isShown_ || std::exchange(isCancelled_, true)) return;
  if (current_ != nullptr) current_->cancel();
  nextChange_ = {};
  showIfDue();
}

void LongWork::takeTurn() {
  if (isServing_) return;
  isServing_ = true;
  showIfDue();
  QCoreApplication::processEvents();
  if (program_.isEnding()) endWithProgram();
  isServing_ = false;
  nextTurn_ = Clock::now() + delays_.betweenTurns;
}

Status LongWork::runLongPart(Operation& operation, const std::function<Status()>& work) {
  // Of an operation that an event has begun nothing is shown, and nobody waits for it.
  if (isServing_) return work();
  operation.noteLongPart();
  WorkThread thread(work);
  if (!thread.hasEndedBy(nextTurn_)) serve(thread);
  return thread.result();
}

void LongWork::serve(WorkThread& thread) {
  isServing_ = true;
  showIfDue();
  QEventLoop loop;
  QSocketNotifier ended(thread.endDescriptor(), QSocketNotifier::Read);
  QObject::connect(&ended, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
  QTimer change;
  QObject::connect(&change, &QTimer::timeout, &change, [this] { showIfDue(); });
  change.start(delays_.betweenChanges);
  if (!program_.isEnding()) loop.exec();
  if (program_.isEnding() || !thread.hasEndedBy(Clock::now())) endWithProgram();
  isServing_ = false;
  nextTurn_ = Clock::now() + delays_.betweenTurns;
}

void LongWork::showIfDue() {
  const auto now = Clock::now();
  if (current_ == nullptr || (isShown_ && now < nextChange_)) return;
  isShown_ = true;
  // A little less, for timers may come early.
  nextChange_ = now + delays_.betweenChanges * 9 / 10;
  const ShownWork shown = current_->shown();
  for (WorkDisplay* display : displays_) display->show(shown, [this] { cancel(); });
}

void LongWork::endWithProgram() {
  if (current_ != nullptr) {
    log_.write("the program ends in the middle of its work on " + current_->shown().path);
  }
  program_.endNow();
}

}  // namespace tavrin
