#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <string>

namespace tavrin {

// The tokens by which a desktop lets the window of a started program come to the front.

/// On X11: a name that says when the user has clicked, in milliseconds of the server; 0 gives "".
/// No start is announced: programs that do not know of such announcements would leave the pointer
/// busy.
std::string startupTokenOfClick(std::uint32_t time);

/// From a display's context of launches; "" when it gives none.
std::string startupTokenFrom(GAppLaunchContext* context);

}  // namespace tavrin
