#pragma once

#include <QColor>
#include <QPalette>

namespace tavrin {

/// A palette for controls and texts on a background of the given colour: dark on light backgrounds,
/// light on dark ones. The accent is `accent`.
QPalette paletteForBackground(const QColor& background, const QColor& accent);

}  // namespace tavrin
