#pragma once

#include "foundation/FileManagers.h"  // IWYU pragma: export
