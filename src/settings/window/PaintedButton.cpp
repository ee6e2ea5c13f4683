#include "settings/window/PaintedButton.h"

#include <QFocusEvent>

namespace tavrin {

bool isKeyboardFocus(const QFocusEvent& event) {
  return event.reason() == Qt::TabFocusReason || event.reason() == Qt::BacktabFocusReason ||
         event.reason() == Qt::ShortcutFocusReason;
}

PaintedButton::PaintedButton(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setAttribute(Qt::WA_Hover);
}

bool PaintedButton::event(QEvent* event) {
  if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) update();
  return QAbstractButton::event(event);
}

void PaintedButton::focusInEvent(QFocusEvent* event) {
  // Arrow keys and the return to the window leave it as it was.
  isFocusShown_ =
      isKeyboardFocus(*event) || (isFocusShown_ && event->reason() != Qt::MouseFocusReason);
  QAbstractButton::focusInEvent(event);
}

}  // namespace tavrin
