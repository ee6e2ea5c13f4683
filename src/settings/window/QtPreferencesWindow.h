#pragma once

#include <QColor>
#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <memory>

#include "platform/Platform.h"
#include "settings/PreferencesWindow.h"
#include "settings/SettingsController.h"
#include "settings/window/WindowPalette.h"

namespace Ui {
class PreferencesWindow;
}

namespace tavrin {

class FileManagersDialog;
class SettingsViewController;

/// The preferences window, laid out by PreferencesWindow.ui.
class QtPreferencesWindow final : public QMainWindow, public PreferencesWindow {
 public:
  /// All outlive this object. The controls are connected and the settings published when this
  /// returns.
  QtPreferencesWindow(Platform& platform, UserDefaults& standardUserDefaults,
                      SettingsController& settings);
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
  void setClosedAction(std::function<void()> action) override;

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void fillTexts(const Bundle& bundle);
  WindowPalette colours() const;
  void applyColours();
  void showFileManagers();
  void restoreFrame();
  void saveFrame();

  Platform& platform_;
  UserDefaults& standardUserDefaults_;
  SettingsController& settings_;
  std::unique_ptr<Ui::PreferencesWindow> ui_;
  std::unique_ptr<SettingsViewController> controller_;
  std::function<void()> authorizeRootAction_;
  std::function<void()> closedAction_;
  QPointer<FileManagersDialog> fileManagers_;
  Observation contrastObservation_;
  QColor background_ = Qt::white;
  bool isMovableByBackground_ = false;
};

}  // namespace tavrin
