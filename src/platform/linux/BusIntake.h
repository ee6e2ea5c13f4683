#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform/Log.h"
#include "platform/linux/AcceptedRequests.h"

typedef struct _GDBusConnection GDBusConnection;  // NOLINT(bugprone-reserved-identifier)

namespace tavrin {

/// The program's place on the session bus: makes it the only one of the session and takes the
/// requests of other programs (org.freedesktop.Application of the Desktop Entry Specification, with
/// the actions "preferences" and "quit").
///
/// Requests are accepted on a thread of their own, so that the caller has its answer while the main
/// thread is busy. What was accepted stands in the line of requests before the answer leaves.
class BusIntake {
 public:
  /// What the program was launched with.
  struct Launch {
    /// Absolute paths.
    std::vector<std::string> files = {};
    /// The desktop's tokens that let a window come to the front; "" when there is none.
    std::string activationToken = {};
    std::string startupId = {};
    /// Launched by the bus: the request comes over the bus, not by the command line.
    bool isService = false;
    /// How long a running program may take to accept what is handed over to it.
    std::chrono::milliseconds patience{25000};
  };

  enum class Outcome {
    /// This process is the session's only one; the launch's own files stand first in the line.
    Primary,
    /// As Primary, but there is no bus and so no request but the launch's own.
    WithoutBus,
    /// A running program has accepted what this one was launched for.
    HandedOver,
    /// A program is running and did not accept in time, or the bus did not say in time whether one
    /// is; the log has said why.
    Refused,
  };

  /// `accepted` and `log` outlive the intake.
  BusIntake(AcceptedRequests& accepted, Log& log);
  ~BusIntake();
  BusIntake(const BusIntake&) = delete;
  BusIntake& operator=(const BusIntake&) = delete;

  /// Claims the program's name on the bus, or hands the launch over to the program that has it.
  /// Called once. Requests of other programs are kept unanswered until `serve`.
  Outcome start(const Launch& launch);

  /// Instead of `start` and `serve`, for a process that takes no requests: connects to the bus
  /// without a name there, and goes on when the bus has gone. Why there is no connection is told to
  /// the log.
  void connectOnly();

  /// Begins to accept requests; without a bus, tells the log why there will be none. Not before the
  /// program is sure to run: what it has accepted it has to handle.
  void serve();

  /// The connection to the session bus, which stays open until the end of this object; null when
  /// there is none.
  GDBusConnection* connection() const;

  /// Gives the name back and accepts nothing more. Every request that was accepted stands in the
  /// line when this returns; one that was not reaches a program started after this one, or fails at
  /// its caller.
  void stop();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavrin
