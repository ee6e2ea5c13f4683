#pragma once

#include <string_view>

#include "foundation/Result.h"

/// The switches that some file managers have for each module that they load. A file manager goes by
/// its name of file_manager; one without such a switch is never off.
namespace tavrin {

/// Whether the user has switched the menu's module off in the file manager itself.
bool isSwitchedOffInFileManager(std::string_view fileManager);

/// Takes that back. Nemo and Caja heed it when they start the next time, Dolphin at its next menu.
/// Fails when the settings cannot be written, because they are locked or damaged.
Status switchOnInFileManager(std::string_view fileManager);

}  // namespace tavrin
