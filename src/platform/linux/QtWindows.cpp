#include "platform/linux/QtWindows.h"

#include <QApplication>
#include <QMainWindow>
#include <QVariant>

namespace tavrin {

namespace {

constexpr const char* endingProperty = "tavrinIsEnding";

}  // namespace

void stopAskingTheUser() {
  qApp->setProperty(endingProperty, true);
}

bool mayAskTheUser() {
  return !qApp->property(endingProperty).toBool();
}

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
