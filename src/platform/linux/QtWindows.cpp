#include "platform/linux/QtWindows.h"

#include <QApplication>
#include <QMainWindow>

namespace tavrin {

QWidget* mainWindowWidget() {
  const QWidgetList topLevels = QApplication::topLevelWidgets();
  for (QWidget* widget : topLevels) {
    if (widget->isVisible() && qobject_cast<QMainWindow*>(widget) != nullptr) return widget;
  }
  return nullptr;
}

void bringToFront(QWidget& widget) {
  widget.setWindowState(widget.windowState() & ~Qt::WindowMinimized);
  widget.show();
  widget.raise();
  widget.activateWindow();
}

}  // namespace tavrin
