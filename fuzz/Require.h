#pragma once

#include <cstdio>
#include <cstdlib>

namespace tavrin::fuzz {

/// Ends the run, so that the input is kept, unless `holds`; `rule` says what does not hold.
inline void require(bool holds, const char* rule) {
  if (holds) return;
  std::fprintf(stderr, "This does not hold: %s\n", rule);
  std::abort();
}

}  // namespace tavrin::fuzz
