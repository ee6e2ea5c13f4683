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

QPalette paletteForBackground(const QColor& background, const QColor& accent) {
  const bool isDark = luma(background) < 0.5F;
  const QColor text = isDark ? QColor(0xee, 0xf0, 0xf2) : QColor(0x1d, 0x21, 0x25);
  const QColor button = mixed(background, text, isDark ? 0.10F : 0.04F);
  QPalette palette(button, background);
  palette.setColor(QPalette::Window, background);
  palette.setColor(QPalette::Base, mixed(background, text, isDark ? 0.05F : 0.0F));
  palette.setColor(QPalette::AlternateBase, mixed(background, text, isDark ? 0.08F : 0.03F));
  palette.setColor(QPalette::Midlight, mixed(background, text, isDark ? 0.20F : 0.0F));
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, mixed(background, text, 0.55F));
  for (const auto role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, mixed(background, text, 0.45F));
  }
  return palette;
}

}  // namespace tavrin
