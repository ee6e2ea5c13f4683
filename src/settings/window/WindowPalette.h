#pragma once

#include <QColor>
#include <QPalette>

namespace tavrin {

enum class Contrast { Normal, More };

/// The colours of a window with a background of its own: dark texts on light backgrounds, light
/// ones on dark backgrounds.
class WindowPalette {
 public:
  /// The selection has the colours of `desktop`.
  WindowPalette(const QColor& background, const QPalette& desktop, Contrast contrast);

  /// Of controls and main texts.
  const QPalette& controls() const { return controls_; }
  /// Of texts beside the main ones.
  QPalette secondary() const { return withText(hasMoreContrast() ? 1.0F : 0.68F); }
  /// Of lines between parts of the window.
  QPalette line() const { return withText(hasMoreContrast() ? 1.0F : 0.16F); }
  /// Of the sidebar, which stands out a little.
  QPalette sidebar() const;

 private:
  QPalette withText(float strength) const;
  bool hasMoreContrast() const { return contrast_ == Contrast::More; }

  Contrast contrast_;
  QPalette controls_;
};

/// The palette of a switch among controls of the given palette: its frame can be seen.
QPalette switchPalette(const QPalette& controls);

}  // namespace tavrin
