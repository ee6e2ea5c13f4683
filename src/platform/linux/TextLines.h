#pragma once

#include <algorithm>
#include <string_view>

namespace tavrin {

/// Calls `use` with each line, without its line break.
template <typename Use>
void forEachLine(std::string_view text, const Use& use) {
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    use(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace tavrin
