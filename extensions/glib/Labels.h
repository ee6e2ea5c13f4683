#pragma once

#include <string>

#include "menu/MenuItem.h"

namespace tavrin {

/// The name of an icon of the theme: the emblem of a file that waits to be pasted.
inline constexpr const char* cutEmblem = "edit-cut";

/// By what a file manager tells an item from those of other extensions.
std::string itemName(const MenuItem& item);

/// The title as a label whose mnemonics are marked by "_".
std::string itemLabel(const MenuItem& item);

}  // namespace tavrin
