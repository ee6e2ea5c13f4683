#pragma once

#include "extensions/thunar/Thunarx.h"

namespace tavrin {

/// Registers the type that gives Thunar's windows their items, as Thunar asks at each load of a
/// module.
GType registerThunarMenu(ThunarxProviderPlugin* plugin);

}  // namespace tavrin
