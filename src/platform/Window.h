#pragma once

namespace tavrin {

/// A window of the program, as NSWindow. Used on the main thread.
class Window {
 public:
  virtual ~Window() = default;

  /// Shows the window before all others and gives it the keyboard.
  virtual void makeKeyAndOrderFront() = 0;
  virtual bool isVisible() const = 0;
};

}  // namespace tavrin
