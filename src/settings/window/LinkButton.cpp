#include "settings/window/LinkButton.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int margin = 14;
constexpr int gap = 3;
constexpr int arrowWidth = 6;
constexpr int arrowHeight = 10;
constexpr qreal radius = 8;

/// A colour of the text, as strong as `share` says.
QColor faded(const QPalette& palette, float share) {
  QColor colour = palette.color(QPalette::WindowText);
  colour.setAlphaF(share);
  return colour;
}

}  // namespace

LinkButton::LinkButton(QWidget* parent) : PaintedButton(parent) {
  setCursor(Qt::PointingHandCursor);
}

void LinkButton::setDescription(const QString& description) {
  description_ = description;
  setAccessibleDescription(description);
  updateGeometry();
  update();
}

QFont LinkButton::titleFont() const {
  QFont bold = font();
  bold.setBold(true);
  return bold;
}

QSize LinkButton::sizeHint() const {
  const QFontMetrics title(titleFont());
  const QFontMetrics line = fontMetrics();
  const int textWidth =
      std::max(title.horizontalAdvance(text()), line.horizontalAdvance(description_));
  return {textWidth + 3 * margin + arrowWidth, title.height() + line.height() + gap + 2 * margin};
}

void LinkButton::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const bool isLit = underMouse() || isDown();
  const QRectF box = QRectF(rect()).adjusted(1, 1, -1, -1);
  painter.setPen(showsFocus() ? QPen(palette().color(QPalette::Highlight), 2)
                              : QPen(faded(palette(), 0.16F), 1));
  painter.setBrush(faded(palette(), isLit ? 0.10F : 0.04F));
  painter.drawRoundedRect(box, radius, radius);

  const QRect inner = rect().adjusted(margin, margin, -margin, -margin);
  const QRect left = inner.adjusted(0, 0, -margin - arrowWidth, 0);
  const QRect lines = QStyle::visualRect(layoutDirection(), inner, left);
  const int leading = static_cast<int>(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft));
  painter.setPen(palette().color(QPalette::WindowText));
  painter.setFont(titleFont());
  painter.drawText(lines, leading | Qt::AlignTop, text());
  painter.setFont(font());
  painter.setPen(faded(palette(), 0.68F));
  painter.drawText(lines, leading | Qt::AlignBottom, description_);

  const bool isRightToLeft = layoutDirection() == Qt::RightToLeft;
  const qreal outer = isRightToLeft ? inner.left() : inner.right();
  const qreal back = isRightToLeft ? outer + arrowWidth : outer - arrowWidth;
  const qreal middle = rect().center().y() + 0.5;
  QPainterPath arrow({back, middle - arrowHeight / 2.0});
  arrow.lineTo(outer, middle);
  arrow.lineTo(back, middle + arrowHeight / 2.0);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(faded(palette(), 0.55F), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(arrow);
}

}  // namespace tavrin
