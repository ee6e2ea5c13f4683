#pragma once

// By which KIO makes its objects of this module. The macro defines functions, so that this stands
// in the source alone that Qt's meta-object compiler writes.
#include <KPluginFactory>

#include "extensions/dolphin/DolphinMenu.h"

using tavrin::DolphinMenu;
K_PLUGIN_CLASS_WITH_JSON(DolphinMenu, "tavrin.json")
