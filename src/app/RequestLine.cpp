#include "app/RequestLine.h"

#include <exception>
#include <utility>

namespace tavrin {

struct RequestLine::State {
  MainLoop& mainLoop;
  Log& log;
  Handler handler;
  std::deque<std::string> waiting;
  bool handling = false;
  std::weak_ptr<void> hold;

  bool mayGoOn() const { return !handling && hold.expired(); }
};

RequestLine::RequestLine(MainLoop& mainLoop, Log& log, Handler handler)
    : state_(std::make_shared<State>(State{mainLoop, log, std::move(handler), {}, false, {}})) {}

RequestLine::~RequestLine() {
  // A hold may outlive the line; what it wakes must find nothing to do.
  state_->waiting.clear();
}

void RequestLine::add(std::string fileName) {
  state_->waiting.push_back(std::move(fileName));
  schedule(state_);
}

RequestLine::Hold RequestLine::hold() {
  if (Hold running = state_->hold.lock()) return running;
  Hold made(new char, [state = std::weak_ptr<State>(state_)](void* token) {
    delete static_cast<char*>(token);
    if (const auto alive = state.lock()) schedule(alive);
  });
  state_->hold = made;
  return made;
}

bool RequestLine::isBusy() const {
  return !state_->waiting.empty() || !state_->mayGoOn();
}

std::deque<std::string> RequestLine::takeAll() {
  return std::exchange(state_->waiting, {});
}

void RequestLine::schedule(const std::shared_ptr<State>& state) {
  state->mainLoop.async([state] { handleNext(state); });
}

void RequestLine::handleNext(const std::shared_ptr<State>& state) {
  if (!state->mayGoOn() || state->waiting.empty()) return;
  const std::string fileName = std::move(state->waiting.front());
  state->waiting.pop_front();
  state->handling = true;
  try {
    state->handler(fileName);
  } catch (const std::exception& failure) {
    state->log.write("request " + fileName + " ended early: " + failure.what());
  }
  state->handling = false;
  if (!state->waiting.empty()) schedule(state);
}

}  // namespace tavrin
