#include "platform/linux/QtWindows.h"

#include <xcb/xcb.h>

#include <QApplication>
#include <QGuiApplication>
#include <QMainWindow>
#include <QVariant>
#include <cstdlib>
#include <cstring>

#include "platform/linux/CurrentStartupToken.h"

namespace tavrin {

namespace {

constexpr const char* endingProperty = "tavrinIsEnding";

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
  const auto length = static_cast<std::uint16_t>(std::strlen(name));
  xcb_intern_atom_reply_t* reply =
      xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, length, name), nullptr);
  const xcb_atom_t atom = reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
  std::free(reply);
  return atom;
}

/// Asks an X11 window manager for the keyboard (Extended Window Manager Hints, _NET_ACTIVE_WINDOW)
/// at the time of the user's click. Qt would name the time when this program last heard of its
/// user, which is before the click, and many managers leave such a window behind.
void activateAtTime(QWidget& widget, std::uint32_t time) {
  constexpr std::uint32_t fromApplication = 1;
  auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr) return;
  xcb_connection_t* connection = x11->connection();
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = static_cast<xcb_window_t>(widget.winId());
  message.type = atomNamed(connection, "_NET_ACTIVE_WINDOW");
  message.data.data32[0] = fromApplication;
  message.data.data32[1] = time;
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  xcb_send_event(connection, 0, root,
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(connection);
}

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
  if (const auto time = timeOfStartupToken(currentStartupToken())) activateAtTime(widget, time);
}

}  // namespace tavrin
