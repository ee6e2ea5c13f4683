#include "platform/linux/DestroyedWindow.h"

#include <xcb/xcb.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr unsigned sentByAnotherClient = 0x80;

/// A window that Qt itself has destroyed is no longer among them.
bool isWindowOfQt(xcb_window_t number) {
  return std::ranges::any_of(QGuiApplication::allWindows(), [number](const QWindow* window) {
    return window->handle() != nullptr && window->winId() == number;
  });
}

}  // namespace

DestroyedWindow::DestroyedWindow(std::function<void()> destroyed)
    : destroyed_(std::move(destroyed)) {
  QCoreApplication::instance()->installNativeEventFilter(this);
}

DestroyedWindow::~DestroyedWindow() {
  QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool DestroyedWindow::nativeEventFilter(const QByteArray& eventType, void* message,
                                        qintptr* /*result*/) {
  if (eventType != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  if ((event->response_type & ~sentByAnotherClient) != XCB_DESTROY_NOTIFY) return false;
  const auto* notice = static_cast<const xcb_destroy_notify_event_t*>(message);
  if (isWindowOfQt(notice->window)) destroyed_();
  return false;
}

}  // namespace tavrin
