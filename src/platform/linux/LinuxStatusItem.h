#pragma once

#include <QMenu>
#include <QPointer>
#include <QString>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/StatusItem.h"
#include "platform/linux/StatusNotifierHost.h"
#include "platform/linux/WorkDisplay.h"

namespace tavrin {

/// What runs, as a status item shows it.
struct StatusItemWork {
  QString toolTip = {};
  /// The menu item ahead of the others.
  QString cancelTitle = {};
  bool canBeCancelled = true;
  std::function<void()> cancel = {};
};

/// The status items of the program, and what all of them show.
struct StatusItems {
  std::vector<class LinuxStatusItem*> items = {};
  std::optional<StatusItemWork> work = {};
};

/// An item in the desktop's status bar. The tray icon behind it exists only while the item is
/// visible and the desktop has a bar: Qt looks for one only once, at its first tray icon.
class LinuxStatusItem final : public StatusItem {
 public:
  /// `iconFolder` holds the image resources. The item is one of `all` while it lives.
  explicit LinuxStatusItem(std::string iconFolder,
                           std::shared_ptr<StatusItems> all = std::make_shared<StatusItems>());
  ~LinuxStatusItem() override;
  LinuxStatusItem(const LinuxStatusItem&) = delete;
  LinuxStatusItem& operator=(const LinuxStatusItem&) = delete;

  void setTemplateImageNamed(const std::string& name) override;
  void setMenu(std::vector<MenuItem> menu) override;
  void setVisible(bool visible) override;
  bool isVisible() const override { return isVisible_; }

  /// Follows what runs, which has begun, changed or ended.
  void workChanged();

  /// Whether the desktop's bar has the item.
  bool isInStatusBar() const { return trayIcon_ != nullptr; }

 private:
  void showOrRemove();
  void showToolTip();
  void showCancelItem();
  void runFirstAction();

  std::string iconFolder_;
  std::shared_ptr<StatusItems> all_;
  std::string imageName_;
  std::vector<MenuItem> items_;
  std::unique_ptr<QMenu> menu_;
  /// At the head of the menu while something runs; the menu's.
  QPointer<QAction> cancelItem_;
  QPointer<QAction> cancelSeparator_;
  std::unique_ptr<QSystemTrayIcon> trayIcon_;
  bool isVisible_ = false;
  StatusNotifierHost host_;
};

/// What runs is shown by the tooltips of all items, and by a menu item that cancels it.
class LinuxStatusBar final : public StatusBar, public WorkDisplay {
 public:
  /// `iconFolder` is the absolute path of the image resources.
  explicit LinuxStatusBar(std::string iconFolder);
  std::unique_ptr<StatusItem> statusItem() override;

  void show(const ShownWork& work, const std::function<void()>& cancel) override;
  void end(WorkEnd end) override;

 private:
  void setWork(std::optional<StatusItemWork> work);

  std::string iconFolder_;
  std::shared_ptr<StatusItems> all_ = std::make_shared<StatusItems>();
};

}  // namespace tavrin
