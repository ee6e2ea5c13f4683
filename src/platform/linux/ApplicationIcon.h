#pragma once

namespace tavrin {

/// Gives the program's windows their icon: the icon theme's, or that of the installation where the
/// desktop has none. Does so once, for the first window that is about to be made: a start that
/// shows nothing does not look for icons.
void ensureApplicationIcon();

}  // namespace tavrin
