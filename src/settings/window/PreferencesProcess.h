#pragma once

#include <QProcess>
#include <functional>

#include "platform/Platform.h"
#include "settings/PreferencesWindow.h"

namespace tavrin {

/// The preferences window as the host sees it: a process of its own, which the host starts and asks
/// to come to the front by a line on its standard input. It answers each line when it has done so,
/// and ends with its window, or with the host. So a host whose window is closed is as small as one
/// that never showed it, and no fault of the window ends the host.
class PreferencesProcess final : public PreferencesWindow {
 public:
  /// What is written for each wish to see the window, and for each fulfilled one.
  static constexpr const char* showLine = "show\n";

  /// Outlives this object.
  explicit PreferencesProcess(Platform& platform);
  ~PreferencesProcess() override;
  PreferencesProcess(const PreferencesProcess&) = delete;
  PreferencesProcess& operator=(const PreferencesProcess&) = delete;

  void makeKeyAndOrderFront() override;
  bool isVisible() const override;
  bool isOfOtherProcess() const override { return true; }
  void setClosedAction(std::function<void()> action) override;

  // Of these the process itself takes care.
  void setMovableByWindowBackground(bool /*flag*/) override {}
  void setBackgroundColor(double /*red*/, double /*green*/, double /*blue*/) override {}
  void setAuthorizeRootButtonState(bool /*on*/) override {}
  bool authorizeRootButtonState() const override { return false; }
  void setAuthorizeRootButtonAction(std::function<void()> /*action*/) override {}

 private:
  void start();
  void failedToStart();
  void readAnswers();
  void ended(int exitCode, QProcess::ExitStatus status);

  Platform& platform_;
  QProcess process_;
  std::function<void()> closedAction_;
  int unansweredWishes_ = 0;
};

}  // namespace tavrin
