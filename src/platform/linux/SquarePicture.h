#pragma once

#include <QImage>
#include <QPainter>

namespace tavrin {

/// A square of `side` pixels with `picture` in its middle and nothing around it.
inline QImage centredOnSquare(const QImage& picture, int side) {
  QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
  square.fill(Qt::transparent);
  QPainter painter(&square);
  painter.drawImage((side - picture.width()) / 2, (side - picture.height()) / 2, picture);
  return square;
}

}  // namespace tavrin
