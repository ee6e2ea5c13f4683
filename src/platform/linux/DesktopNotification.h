#pragma once

#include <string>

namespace tavrin {

/// Shows a message by the desktop's own means (Desktop Notifications Specification), from another
/// thread: returns at once. Where the desktop has none it reaches the log of GLib, as every failure
/// does. Never throws, for it runs in other programs' processes.
void showDesktopNotification(std::string summary, std::string body) noexcept;

}  // namespace tavrin
