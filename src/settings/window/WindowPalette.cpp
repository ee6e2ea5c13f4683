#include "settings/window/WindowPalette.h"

namespace tavrin {

namespace {

QColor mixed(const QColor& from, const QColor& towards, float share) {
  const auto mix = [share](float left, float right) { return left + (right - left) * share; };
  return QColor::fromRgbF(mix(from.redF(), towards.redF()), mix(from.greenF(), towards.greenF()),
                          mix(from.blueF(), towards.blueF()));
}

/// The luma of ITU-R BT.601, from 0 to 1.
float luma(const QColor& colour) {
  return 0.299F * colour.redF() + 0.587F * colour.greenF() + 0.114F * colour.blueF();
}

}  // namespace

WindowPalette::WindowPalette(const QColor& background, const QPalette& desktop, Contrast contrast)
    : contrast_(contrast) {
  const bool isDark = luma(background) < 0.5F;
  const bool isStrong = hasMoreContrast();
  const QColor full = isDark ? Qt::white : Qt::black;
  const QColor soft = isDark ? QColor(0xee, 0xf0, 0xf2) : QColor(0x1d, 0x21, 0x25);
  const QColor text = isStrong ? full : soft;
  const QColor button = mixed(background, text, isDark ? 0.12F : 0.05F);
  controls_ = QPalette(button, background);
  controls_.setColor(QPalette::Window, background);
  controls_.setColor(QPalette::Base, mixed(background, text, isDark && !isStrong ? 0.05F : 0.0F));
  controls_.setColor(QPalette::AlternateBase, mixed(background, text, isDark ? 0.08F : 0.03F));
  const float frame = isDark ? 0.7F : 0.3F;
  controls_.setColor(QPalette::Midlight, mixed(background, text, isStrong ? 1.0F : frame));
  controls_.setColor(QPalette::Highlight, desktop.color(QPalette::Highlight));
  controls_.setColor(QPalette::HighlightedText, desktop.color(QPalette::HighlightedText));
  controls_.setColor(QPalette::PlaceholderText, mixed(background, text, isStrong ? 1.0F : 0.66F));
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    controls_.setColor(role, text);
    controls_.setColor(QPalette::Disabled, role, mixed(background, text, isStrong ? 0.7F : 0.45F));
  }
}

QPalette switchPalette(const QPalette& controls) {
  // Styles derive the frame from the window's colour, on which it is hardly seen.
  QPalette palette = controls;
  palette.setColor(QPalette::Window, controls.color(QPalette::Midlight));
  return palette;
}

QPalette WindowPalette::withText(float strength) const {
  QPalette palette = controls_;
  QColor colour = palette.color(QPalette::WindowText);
  colour.setAlphaF(strength);
  palette.setColor(QPalette::WindowText, colour);
  return palette;
}

QPalette WindowPalette::sidebar() const {
  QPalette palette = controls_;
  palette.setColor(QPalette::Window,
                   mixed(controls_.color(QPalette::Window), controls_.color(QPalette::WindowText),
                         hasMoreContrast() ? 0.0F : 0.05F));
  return palette;
}

}  // namespace tavrin
