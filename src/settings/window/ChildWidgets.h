#pragma once

class QPalette;
class QWidget;

namespace tavrin {

/// Where the window is read from right to left: a label else stands where its own language begins,
/// apart from what is around it.
void alignLabels(QWidget& container);

/// Gives the check boxes among controls of the given palette frames that can be seen.
void setSwitchPalettes(QWidget& container, const QPalette& controls);

}  // namespace tavrin
