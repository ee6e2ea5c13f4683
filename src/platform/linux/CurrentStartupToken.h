#pragma once

#include <cstdint>
#include <string>

namespace tavrin {

/// The token by which the desktop lets the windows of the request in hand come to the front
/// (Startup Notification Protocol, xdg-activation): that of the user's click in the file manager.
/// "" when the request has none. Used on the main thread, while a QApplication lives.
void setCurrentStartupToken(const std::string& token);
std::string currentStartupToken();

/// The X server's time of the user's click, in milliseconds, as a startup token tells it; 0 when it
/// does not.
std::uint32_t timeOfStartupToken(const std::string& token);

}  // namespace tavrin
