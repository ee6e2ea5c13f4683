#pragma once

#include <optional>
#include <string>

namespace tavrin {

/// Why no window can be shown, as a line for the user; nothing when a display answers. To be asked
/// before a QApplication is made, which ends the process when there is no display.
std::optional<std::string> missingDisplay();

}  // namespace tavrin
