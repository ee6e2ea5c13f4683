#pragma once

#include <string>
#include <vector>

#include "platform/OpenPanel.h"

namespace tavrin {

/// Lets a panel pick only one requested item or one of its ancestor folders, so that any pick
/// covers the item.
class AppSandboxFileAccessOpenSavePanelDelegate final : public OpenSavePanelDelegate {
 public:
  /// `fileURL` is the item that access is requested for.
  explicit AppSandboxFileAccessOpenSavePanelDelegate(const FileURL& fileURL);

  /// True when every component of `candidate` equals the requested item's at the same place.
  bool panelShouldEnableURL(const FileURL& candidate) const override;

 private:
  std::vector<std::string> pathComponents_;
};

}  // namespace tavrin
