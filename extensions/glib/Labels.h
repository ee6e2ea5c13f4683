#pragma once

#include <cstddef>
#include <string>

#include "menu/MenuItem.h"

namespace tavrin {

/// The emblem of a file that waits to be pasted, a name in the icon theme behind "emblem-".
inline constexpr const char* cutEmblem = "tavrin-cut";

/// The title as a label whose mnemonics are marked by "_".
std::string itemLabel(const MenuItem& item);

/// The same, unlike that of any other item, though it looks the same: `number` counts the items of
/// a menu that need it, from 1.
std::string distinctLabel(const MenuItem& item, std::size_t number);

/// A text that is equal for menus that look the same and have the same identifiers.
std::string contentsOf(const Menu& menu);

}  // namespace tavrin
