#pragma once

#include "platform/UniformTypes.h"

namespace tavrin {

/// Types as GIO's content types ("image/png"), from the globs of the shared MIME database.
class LinuxUniformTypes final : public UniformTypes {
 public:
  std::optional<std::string> preferredTypeForFilenameExtension(
      const std::string& extension) override;
  bool typeConformsTo(const std::string& type, const std::string& conformsTo) override;
};

}  // namespace tavrin
