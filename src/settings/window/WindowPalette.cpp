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

WindowPalette::WindowPalette(const QColor& background, const QColor& accent) {
  const bool isDark = luma(background) < 0.5F;
  const QColor text = isDark ? QColor(0xee, 0xf0, 0xf2) : QColor(0x1d, 0x21, 0x25);
  const QColor button = mixed(background, text, isDark ? 0.12F : 0.05F);
  controls_ = QPalette(button, background);
  controls_.setColor(QPalette::Window, background);
  controls_.setColor(QPalette::Base, mixed(background, text, isDark ? 0.05F : 0.0F));
  controls_.setColor(QPalette::AlternateBase, mixed(background, text, isDark ? 0.08F : 0.03F));
  controls_.setColor(QPalette::Midlight, mixed(background, text, isDark ? 0.20F : 0.0F));
  controls_.setColor(QPalette::Highlight, accent);
  controls_.setColor(QPalette::HighlightedText, Qt::white);
  controls_.setColor(QPalette::PlaceholderText, mixed(background, text, 0.6F));
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    controls_.setColor(role, text);
    controls_.setColor(QPalette::Disabled, role, mixed(background, text, 0.45F));
  }
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
  palette.setColor(QPalette::Window, mixed(controls_.color(QPalette::Window),
                                           controls_.color(QPalette::WindowText), 0.05F));
  return palette;
}

}  // namespace tavrin
