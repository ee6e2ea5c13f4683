#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/RequestKeys.h"
#include "foundation/Result.h"

namespace tavrin {

/// One request as it was read: a dictionary whose known keys hold values of their kinds.
class ActionRequest {
 public:
  /// Takes over what a request file held. Fails, with the key as the error's path, when `content`
  /// is no dictionary or a known key holds a value of another kind.
  static Result<ActionRequest> requestWithPropertyList(PropertyList content);

  /// The value of a string key; nothing when it is absent.
  std::optional<std::string> stringForKey(const char* key) const;

  /// The tag as integerValue reads it; 0 when it is absent.
  std::int64_t tag() const;

 private:
  explicit ActionRequest(PropertyList content);
  PropertyList content_;
};

/// The items of a selection, a file list string, as pieces of it; an absent one has none.
std::vector<std::string_view> fileListItems(const std::optional<std::string>& selection);

}  // namespace tavrin
