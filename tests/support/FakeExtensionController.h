#pragma once

#include "platform/ExtensionController.h"

namespace tavrin {

class FakeExtensionController final : public ExtensionController {
 public:
  bool isExtensionEnabled() const override { return isEnabled; }
  void showExtensionManagementInterface() override { ++shows; }

  bool isEnabled = true;
  /// How often the management interface was shown.
  int shows = 0;
};

}  // namespace tavrin
