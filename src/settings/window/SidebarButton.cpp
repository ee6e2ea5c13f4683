#include "settings/window/SidebarButton.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr int margin = 10;
constexpr int gap = 10;
constexpr int iconSide = 18;
constexpr int leastHeight = 34;
constexpr qreal radius = 6;

/// The drawing in one colour, `side` points wide on a screen of the given pixel ratio.
QPixmap tintedPixmap(const QImage& mask, const QColor& colour, int side, qreal pixelRatio) {
  const int pixels = qRound(side * pixelRatio);
  QImage tinted = mask.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                      .convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter painter(&tinted);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(tinted.rect(), colour);
  painter.end();
  QPixmap pixmap = QPixmap::fromImage(std::move(tinted));
  pixmap.setDevicePixelRatio(pixelRatio);
  return pixmap;
}

}  // namespace

SidebarButton::SidebarButton(QWidget* parent) : PaintedButton(parent) {
  setCheckable(true);
  setAutoExclusive(true);
}

void SidebarButton::setMask(QImage mask) {
  mask_ = std::move(mask);
  update();
}

void SidebarButton::setLayerBackground(const QColor& colour) {
  layerBackground_ = colour;
  update();
}

QSize SidebarButton::sizeHint() const {
  const QFontMetrics metrics = fontMetrics();
  const int width =
      2 * margin + iconSide + gap + metrics.size(Qt::TextShowMnemonic, text()).width();
  return {width, std::max(leastHeight, metrics.height() + margin)};
}

QRect SidebarButton::iconRect() const {
  const QRect left(margin, (height() - iconSide) / 2, iconSide, iconSide);
  return QStyle::visualRect(layoutDirection(), rect(), left);
}

void SidebarButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor text = palette().color(QPalette::WindowText);
  QColor fill = layerBackground_;
  if (underMouse() && fill.alpha() == 0) {
    fill = text;
    fill.setAlphaF(0.07F);
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(fill);
  painter.drawRoundedRect(rect(), radius, radius);

  const QRect icon = iconRect();
  if (!mask_.isNull()) {
    painter.drawPixmap(icon, tintedPixmap(mask_, text, iconSide, devicePixelRatioF()));
  }
  const QRect left = rect().adjusted(margin + iconSide + gap, 0, -margin, 0);
  painter.setPen(text);
  painter.drawText(QStyle::visualRect(layoutDirection(), rect(), left),
                   static_cast<int>(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)) |
                       Qt::AlignVCenter | Qt::TextShowMnemonic,
                   this->text());
  if (!showsFocus()) return;
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
}

}  // namespace tavrin
