#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "platform/ExtensionController.h"

namespace tavrin {

class FakeExtensionController final : public ExtensionController {
 public:
  bool isExtensionEnabled() const override { return isEnabled; }
  void showExtensionManagementInterface() override {
    ++shows;
    if (managementInterface) managementInterface();
  }
  void setManagementInterface(std::function<void()> show) override {
    managementInterface = std::move(show);
  }
  std::vector<ExtensionHost> hosts() const override { return installed; }
  std::optional<PropertyList::Data> iconOfHost(const std::string& /*identifier*/,
                                               int /*sidePixels*/) const override {
    return std::nullopt;
  }
  void setEnabled(const std::string& identifier, bool enabled) override {
    const auto host = std::ranges::find(installed, identifier, &ExtensionHost::identifier);
    if (host == installed.end() || host->identifier == refusing) return;
    host->state = enabled ? ExtensionHost::State::On : ExtensionHost::State::Off;
  }
  [[nodiscard]] Observation observeHosts(std::function<void()> observer) override {
    changed = std::move(observer);
    return std::make_shared<int>(0);
  }

  bool isEnabled = true;
  /// How often the management interface was shown.
  int shows = 0;
  std::function<void()> managementInterface;
  std::vector<ExtensionHost> installed;
  /// The file manager whose extension cannot be switched.
  std::string refusing;
  std::function<void()> changed;
};

}  // namespace tavrin
