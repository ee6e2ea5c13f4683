#pragma once

#include <QMenu>
#include <QSystemTrayIcon>
#include <memory>
#include <string>
#include <vector>

#include "platform/StatusItem.h"
#include "platform/linux/StatusNotifierHost.h"

namespace tavrin {

/// An item in the desktop's status bar. The tray icon behind it exists only while the item is
/// visible and the desktop has a bar: Qt looks for one only once, at its first tray icon.
class LinuxStatusItem final : public StatusItem {
 public:
  /// `iconFolder` holds the image resources.
  explicit LinuxStatusItem(std::string iconFolder);
  ~LinuxStatusItem() override;
  LinuxStatusItem(const LinuxStatusItem&) = delete;
  LinuxStatusItem& operator=(const LinuxStatusItem&) = delete;

  void setTemplateImageNamed(const std::string& name) override;
  void setMenu(std::vector<MenuItem> menu) override;
  void setVisible(bool visible) override;
  bool isVisible() const override { return isVisible_; }

  /// Whether the desktop's bar has the item.
  bool isInStatusBar() const { return trayIcon_ != nullptr; }

 private:
  void showOrRemove();
  void runFirstAction();

  std::string iconFolder_;
  std::string imageName_;
  std::vector<MenuItem> items_;
  std::unique_ptr<QMenu> menu_;
  std::unique_ptr<QSystemTrayIcon> trayIcon_;
  bool isVisible_ = false;
  StatusNotifierHost host_;
};

class LinuxStatusBar final : public StatusBar {
 public:
  /// `iconFolder` is the absolute path of the image resources.
  explicit LinuxStatusBar(std::string iconFolder);
  std::unique_ptr<StatusItem> statusItem() override;

 private:
  std::string iconFolder_;
};

}  // namespace tavrin
