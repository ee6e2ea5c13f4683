#pragma once

#include <optional>
#include <string>

#include "platform/Pasteboard.h"

namespace tavrin {

/// What applications offer to do with content that is handed to them, as the system's Services.
class Services {
 public:
  virtual ~Services() = default;

  /// Performs the service of that name ("New Terminal at Folder") with the pasteboard's content
  /// (NSPerformService). False when there is no such service, or no name, or when it cannot be
  /// performed; nothing is told then.
  virtual bool performService(const std::optional<std::string>& name, Pasteboard& pasteboard) = 0;
};

}  // namespace tavrin
