#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/SavePanel.h"
#include "platform/linux/panel/SavePanelDialog.h"

namespace tavrin {

/// Called with the place that the user has picked, before the panel's caller learns of it.
using GrantPlace = std::function<void(const PickedPlace& place)>;

/// The panel that names new files.
class LinuxSavePanel final : public SavePanel {
 public:
  explicit LinuxSavePanel(GrantPlace grantPlace);

  void setLevel(int level) override { options_.isAboveOthers = level > 0; }
  void setAllowsOtherFileTypes(bool flag) override;
  void setTitle(const std::string& title) override;
  void setDirectoryURL(const FileURL& url) override { options_.directory = url; }
  void setNameFieldStringValue(const std::string& name) override { options_.name = name; }
  void setAllowedFileTypes(const std::vector<std::string>& extensions) override {
    options_.types = extensions;
  }
  void validateVisibleColumns() override;
  void setAccessoryView(const PopUpAccessory& accessory) override {
    options_.accessory = accessory;
  }

  Response runModal() override;
  std::optional<FileURL> url() const override;
  bool mayReplace() const override { return picked_ && picked_->replaces; }

 private:
  GrantPlace grantPlace_;
  SavePanelOptions options_;
  std::optional<PickedDestination> picked_;
  /// The window while it is up.
  SavePanelDialog* dialog_ = nullptr;
};

}  // namespace tavrin
