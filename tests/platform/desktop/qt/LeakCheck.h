#pragma once

// The leak detector's own call; there only in a build that has the detector.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" void __lsan_do_leak_check() __attribute__((weak));

namespace tavrin::test {

/// Looks for leaks now, and not at the exit: Qt's threads are ending there, and a detector that
/// meets one at its end fails itself. To be called when the tests are over.
inline void checkForLeaks() {
  if (__lsan_do_leak_check != nullptr) __lsan_do_leak_check();
}

}  // namespace tavrin::test
