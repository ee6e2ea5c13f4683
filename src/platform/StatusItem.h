#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

/// One line of the status item's menu.
struct MenuItem {
  /// The text as shown; "" makes a separator.
  std::string title;
  std::function<void()> action;
};

/// The program's item in the system's status bar, as NSStatusItem. Used on the main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// The image resource of the given name; a template image takes the bar's own colour.
  virtual void setTemplateImageNamed(const std::string& name) = 0;
  virtual void setMenu(std::vector<MenuItem> menu) = 0;

  /// Shows or hides the item. It appears as soon as the desktop has a status bar to show it in.
  virtual void setVisible(bool visible) = 0;
  virtual bool isVisible() const = 0;
};

/// Makes status items.
class StatusBar {
 public:
  virtual ~StatusBar() = default;

  /// A new item of variable length, not yet visible.
  virtual std::unique_ptr<StatusItem> statusItem() = 0;
};

}  // namespace tavrin
