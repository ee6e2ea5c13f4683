#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/OpenPanel.h"
#include "platform/linux/panel/LinuxSavePanel.h"
#include "platform/linux/panel/OpenPanelDialog.h"

namespace tavrin {

/// Called with each item that the user has picked, before the panel's caller learns of it.
using GrantPicked = std::function<void(const std::shared_ptr<const ScopeGrant>& item)>;

/// The access panel and the folder chooser. It makes no folders and shows names in full, so that
/// setCanCreateDirectories and setExtensionHidden change nothing.
class LinuxOpenPanel final : public OpenPanel, public std::enable_shared_from_this<LinuxOpenPanel> {
 public:
  explicit LinuxOpenPanel(GrantPicked grantPicked);

  void setCanCreateDirectories(bool) override {}
  void setCanChooseFiles(bool flag) override { options_.rules.canChooseFiles = flag; }
  void setCanChooseDirectories(bool flag) override { options_.rules.canChooseDirectories = flag; }
  void setAllowsMultipleSelection(bool flag) override { options_.allowsMultipleSelection = flag; }
  void setPrompt(const std::string& prompt) override;
  void setTitle(const std::string& title) override;
  void setMessage(const std::string& message) override;
  void setShowsHiddenFiles(bool flag) override;
  void setExtensionHidden(bool) override {}
  void setDirectoryURL(const FileURL& url) override { options_.directory = url; }
  void setDelegate(const OpenSavePanelDelegate* delegate) override {
    options_.rules.delegate = delegate;
  }
  void setAllowedFileTypes(std::vector<std::string> extensions) override {
    options_.rules.allowedFileTypes = std::move(extensions);
  }
  void setAccessoryText(const std::string& text) override;

  Response runModal() override;
  void beginSheetModalForWindow(Window* window, std::function<void(Response)> completion) override;
  std::vector<FileURL> urls() const override { return urls_; }

 private:
  Response takeResult(const OpenPanelDialog& dialog);

  GrantPicked grantPicked_;
  PanelOptions options_;
  std::vector<FileURL> urls_;
};

class LinuxPanelProvider final : public PanelProvider {
 public:
  LinuxPanelProvider(GrantPicked grantPicked, GrantPlace grantPlace);
  std::shared_ptr<OpenPanel> openPanel() override;
  std::shared_ptr<SavePanel> savePanel() override;

 private:
  GrantPicked grantPicked_;
  GrantPlace grantPlace_;
};

}  // namespace tavrin
