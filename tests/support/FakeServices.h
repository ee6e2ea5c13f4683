#pragma once

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/Services.h"

namespace tavrin {

/// Services that remember what they were performed with.
class FakeServices final : public Services {
 public:
  bool performService(const std::optional<std::string>& name, Pasteboard& pasteboard) override {
    const auto text = pasteboard.stringForType(PasteboardType::String);
    if (!name || !text || !published.contains(*name)) return false;
    performed.emplace_back(*name, *text);
    return true;
  }

  std::set<std::string> published;
  /// The names and the texts on the pasteboard, in order.
  std::vector<std::pair<std::string, std::string>> performed;
};

}  // namespace tavrin
