#pragma once

#include <QMainWindow>
#include <functional>
#include <memory>

#include "platform/Bundle.h"
#include "settings/PreferencesWindow.h"

namespace Ui {
class PreferencesWindow;
}

namespace tavrin {

/// The preferences window, laid out by PreferencesWindow.ui. Closing hides it; the program goes on.
class QtPreferencesWindow final : public QMainWindow, public PreferencesWindow {
 public:
  /// Takes the program's name, version, texts and images from `bundle`.
  explicit QtPreferencesWindow(const Bundle& bundle);
  ~QtPreferencesWindow() override;
  QtPreferencesWindow(const QtPreferencesWindow&) = delete;
  QtPreferencesWindow& operator=(const QtPreferencesWindow&) = delete;

  void makeKeyAndOrderFront() override;
  bool isVisible() const override { return QMainWindow::isVisible(); }
  void setMovableByWindowBackground(bool flag) override { isMovableByBackground_ = flag; }
  /// The texts take colours that can be read on the background, whatever the desktop's own are.
  void setBackgroundColor(double red, double green, double blue) override;
  void setAuthorizeRootButtonState(bool on) override;
  bool authorizeRootButtonState() const override;
  void setAuthorizeRootButtonAction(std::function<void()> action) override;

 protected:
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void fillTexts(const Bundle& bundle);

  std::unique_ptr<Ui::PreferencesWindow> ui_;
  std::function<void()> authorizeRootAction_;
  bool isMovableByBackground_ = false;
};

}  // namespace tavrin
