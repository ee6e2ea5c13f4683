#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/Log.h"
#include "platform/MainLoop.h"

namespace tavrin {

/// The line in which request files wait: one is handled at a time, each to its end, in the order of
/// arrival, also when they arrive while a modal panel of an earlier one is up. Used on the main
/// thread.
class RequestLine {
 public:
  /// Handles one request file, an absolute path. An exception it throws is logged and ends only
  /// that request.
  using Handler = std::function<void(const std::string& fileName)>;

  /// Keeps the line waiting while it lives.
  using Hold = std::shared_ptr<void>;

  /// `mainLoop` and `log` outlive the line and the loop's last turn.
  RequestLine(MainLoop& mainLoop, Log& log, Handler handler);
  ~RequestLine();
  RequestLine(const RequestLine&) = delete;
  RequestLine& operator=(const RequestLine&) = delete;

  /// Puts a request file at the end of the line. It is handled in a later turn of the main loop.
  void add(std::string fileName);

  /// Keeps the requests behind the current one waiting until the result and its copies are gone:
  /// for work that goes on after the handler has returned.
  Hold hold();

  /// True while a request is in hand or waits.
  bool isBusy() const;

  /// Empties the line; returns what waited in it.
  std::deque<std::string> takeAll();

 private:
  struct State;
  static void schedule(const std::shared_ptr<State>& state);
  static void handleNext(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
};

}  // namespace tavrin
