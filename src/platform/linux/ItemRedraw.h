#pragma once

#include <string>

namespace tavrin {

/// Redraws an item in windows that watch it, by setting the rights that it has. `folder` is an open
/// folder; a symbolic link is not followed.
void redrawItem(int folder, const std::string& name);

}  // namespace tavrin
