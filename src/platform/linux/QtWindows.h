#pragma once

#include <QWidget>

#include "platform/Window.h"

namespace tavrin {

/// The widget behind a window of the program; nullptr for nullptr and for a window without one.
inline QWidget* widgetOfWindow(Window* window) {
  return dynamic_cast<QWidget*>(window);
}

/// From now on the program, which is ending, asks the user nothing: panels and alerts answer as
/// cancelled at once.
void stopAskingTheUser();
bool mayAskTheUser();

/// The program's main window; nullptr while none is shown.
QWidget* mainWindowWidget();

/// Shows a window before the others and gives it the keyboard, as far as the desktop allows.
void bringToFront(QWidget& widget);

}  // namespace tavrin
