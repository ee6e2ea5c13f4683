#include "sandbox/AppSandboxFileAccessOpenSavePanelDelegate.h"

#include <algorithm>

namespace tavrin {

AppSandboxFileAccessOpenSavePanelDelegate::AppSandboxFileAccessOpenSavePanelDelegate(
    const FileURL& fileURL)
    : pathComponents_(fileURL.pathComponents()) {}

bool AppSandboxFileAccessOpenSavePanelDelegate::panelShouldEnableURL(
    const FileURL& candidate) const {
  const std::vector<std::string> components = candidate.pathComponents();
  return components.size() <= pathComponents_.size() &&
         std::equal(components.begin(), components.end(), pathComponents_.begin());
}

}  // namespace tavrin
