#pragma once

#include <memory>
#include <string>

#include "platform/Window.h"

namespace tavrin {

/// A message that waits for a button, as NSAlert. Used on the main thread.
class Alert {
 public:
  virtual ~Alert() = default;

  enum class Style { Warning, Informational, Critical };

  /// The code of the first button; the next ones count on from it.
  static constexpr int firstButtonReturn = 1000;

  virtual void setAlertStyle(Style style) = 0;
  /// The title line; may stay empty.
  virtual void setMessageText(const std::string& text) = 0;
  virtual void setInformativeText(const std::string& text) = 0;
  /// The picture beside the texts, a PNG file; without one the style has its own.
  virtual void setIconWithContentsOfFile(const std::string& path) = 0;
  /// Buttons in order of addition. Return presses the first; Escape the one titled as the localised
  /// "Cancel", where there is one.
  virtual void addButtonWithTitle(const std::string& title) = 0;

  /// Shows the alert and returns the code of the button pressed: 1000 plus its index. Closing the
  /// alert's window counts as its "Cancel" button, or as the last one when there is none.
  virtual int runModal() = 0;

  /// As runModal, shown as a sheet of `window`; nullptr takes the program's main window, and
  /// without one the alert stands on its own.
  virtual int runModalAsSheet(Window* window) = 0;
};

/// Makes alerts.
class AlertProvider {
 public:
  virtual ~AlertProvider() = default;
  virtual std::unique_ptr<Alert> alert() = 0;
};

}  // namespace tavrin
