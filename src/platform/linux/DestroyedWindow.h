#pragma once

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <functional>

namespace tavrin {

/// Tells that another client of the X server has destroyed a window of this program, which never
/// comes back then: Qt takes it for visible still. Where there is no X server, tells nothing.
class DestroyedWindow final : public QAbstractNativeEventFilter {
 public:
  /// Lives within the QApplication; `destroyed` is called in its loop.
  explicit DestroyedWindow(std::function<void()> destroyed);
  ~DestroyedWindow() override;
  DestroyedWindow(const DestroyedWindow&) = delete;
  DestroyedWindow& operator=(const DestroyedWindow&) = delete;

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  std::function<void()> destroyed_;
};

}  // namespace tavrin
