#include "sandbox/NSPanels.h"

#include <memory>
#include <utility>

namespace tavrin {

void NSPanels::openNSOpenPanelAtWindow(
    PanelProvider& panels, const Bundle& bundle, Window* window, const std::string& message,
    AllowsMultipleSelection allowsMultipleSelection, CanChooseFiles canChooseFiles,
    std::function<void(const std::vector<FileURL>& urls)> returnBlock) {
  const std::shared_ptr<OpenPanel> panel = panels.openPanel();
  panel->setCanChooseDirectories(true);
  panel->setCanChooseFiles(canChooseFiles == CanChooseFiles::Yes);
  panel->setAllowsMultipleSelection(allowsMultipleSelection == AllowsMultipleSelection::Yes);
  panel->setMessage(message);
  panel->setPrompt(bundle.localizedString("OK"));
  // The panel keeps itself alive until its end; a strong reference in its own completion would
  // keep it for ever.
  const std::weak_ptr<OpenPanel> weakPanel = panel;
  panel->beginSheetModalForWindow(
      window, [weakPanel, block = std::move(returnBlock)](OpenPanel::Response response) {
        const auto ended = weakPanel.lock();
        if (response == OpenPanel::Response::OK && ended && block) block(ended->urls());
      });
}

}  // namespace tavrin
