#pragma once

#include <QColor>
#include <QPalette>

namespace tavrin {

/// The colours of a window with a background of its own: dark texts on light backgrounds, light
/// ones on dark backgrounds.
class WindowPalette {
 public:
  WindowPalette(const QColor& background, const QColor& accent);

  /// Of controls and main texts.
  const QPalette& controls() const { return controls_; }
  /// Of texts beside the main ones.
  QPalette secondary() const { return withText(0.68F); }
  /// Of lines between parts of the window.
  QPalette line() const { return withText(0.16F); }
  /// Of the sidebar, which stands out a little.
  QPalette sidebar() const;

 private:
  QPalette withText(float strength) const;

  QPalette controls_;
};

}  // namespace tavrin
