#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/OpenPanel.h"
#include "platform/Window.h"

namespace tavrin {

enum class AllowsMultipleSelection { No, Yes };
enum class CanChooseFiles { No, Yes };

/// Ready-made panels.
class NSPanels {
 public:
  /// Shows an open panel that can choose folders, and files where `canChooseFiles` says so, with
  /// the localised confirm label "OK", for `window`, or on its own with nullptr,
  /// and returns at once. `returnBlock` is called
  /// with the picked URLs when the user confirms; on cancel it is only destroyed.
  static void openNSOpenPanelAtWindow(
      PanelProvider& panels, const Bundle& bundle, Window* window, const std::string& message,
      AllowsMultipleSelection allowsMultipleSelection, CanChooseFiles canChooseFiles,
      std::function<void(const std::vector<FileURL>& urls)> returnBlock);
};

}  // namespace tavrin
