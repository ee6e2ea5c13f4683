#pragma once

#include <glib.h>

#include <exception>

namespace tavrin {

/// Runs what C code has called: no exception may reach it. Returns what `work` does, or the empty
/// value of its type where it has thrown.
template <typename Work>
auto guarded(Work work) noexcept -> decltype(work()) {
  try {
    return work();
  } catch (const std::exception& error) {
    g_warning("The menu extension failed: %s", error.what());
  } catch (...) {
    g_warning("The menu extension failed");
  }
  return decltype(work())();
}

}  // namespace tavrin
