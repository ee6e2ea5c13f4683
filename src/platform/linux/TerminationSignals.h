#pragma once

#include <array>
#include <csignal>

#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into a descriptor that an
/// event loop watches, for as long as this object lives. A signal that the process was started to
/// ignore stays ignored. There is one such object at a time.
class TerminationSignals {
 public:
  TerminationSignals();
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

  /// Readable once a signal has come, until `acknowledge`.
  int descriptor() const { return arrived_.get(); }
  void acknowledge();

 private:
  static constexpr std::array<int, 3> signals = {SIGTERM, SIGINT, SIGHUP};

  FileDescriptor arrived_;
  std::array<struct sigaction, signals.size()> previous_{};
};

}  // namespace tavrin
