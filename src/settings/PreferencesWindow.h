#pragma once

#include <functional>
#include <memory>

#include "platform/UserDefaults.h"
#include "platform/Window.h"

namespace tavrin {

class SettingsController;

/// The option by which the program shows the window alone, in a process for it.
inline constexpr const char* preferencesWindowOption = "--preferences-window";

/// The window in which the user edits the settings, as the application sees it. Made when it is
/// needed and gone once it is closed; used on the main thread.
class PreferencesWindow : public Window {
 public:
  /// Whether another process shows the window; it then does all that is done with it, and its
  /// settings are this one's by their store.
  virtual bool isOfOtherProcess() const { return false; }

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

  /// `action` is called when the user has closed the window; it may schedule the end of this
  /// object, but not end it.
  virtual void setClosedAction(std::function<void()> action) = 0;
};

/// Makes the window, which edits the settings through the two; both outlive it.
using PreferencesWindowFactory = std::function<std::unique_ptr<PreferencesWindow>(
    UserDefaults& standardUserDefaults, SettingsController& settings)>;

}  // namespace tavrin
