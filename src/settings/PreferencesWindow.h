#pragma once

#include <functional>
#include <memory>

#include "platform/Window.h"

namespace tavrin {

/// The window in which the user edits the settings, as the application sees it. Made when it is
/// first needed, on the main thread; all of it is used there.
class PreferencesWindow : public Window {
 public:
  /// Whether a drag that begins on the window's background moves the window.
  virtual void setMovableByWindowBackground(bool flag) = 0;

  /// Colours the background of the content. The components of the device colour go from 0 to 1.
  virtual void setBackgroundColor(double red, double green, double blue) = 0;

  /// The state of the check box that authorises the root folder. Setting it here does not call its
  /// action.
  virtual void setAuthorizeRootButtonState(bool on) = 0;
  virtual bool authorizeRootButtonState() const = 0;

  /// `action` is called after the user has changed the state of that check box; an empty one is not
  /// called.
  virtual void setAuthorizeRootButtonAction(std::function<void()> action) = 0;
};

/// Makes the window.
using PreferencesWindowFactory = std::function<std::unique_ptr<PreferencesWindow>()>;

}  // namespace tavrin
