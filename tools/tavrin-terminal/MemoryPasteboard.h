#pragma once

#include "platform/Pasteboard.h"

namespace tavrin::terminaltool {

/// Pasteboards that nobody else sees and that leave nothing behind, however the program ends: the
/// services are performed in this process. They take texts.
class MemoryPasteboards final : public PasteboardProvider {
 public:
  std::unique_ptr<Pasteboard> pasteboardWithName(const std::string& name) override;
  std::unique_ptr<Pasteboard> pasteboardWithUniqueName() override;
};

}  // namespace tavrin::terminaltool
