#pragma once

#include <QIcon>

#include "platform/Bundle.h"

namespace tavrin {

/// The program's icon: the icon theme's, or the files of the installation that `bundle` describes
/// where the desktop has no such icon.
QIcon applicationIcon(const Bundle& bundle);

}  // namespace tavrin
