#pragma once

#include <functional>

#include "app/AppDelegate.h"

namespace tavrin {

/// Leads a process that shows the preferences window and nothing else: no status item, no requests.
/// It ends with its last window.
class PreferencesDelegate final : public ApplicationDelegate {
 public:
  /// `shown` is called each time the window has come to the front. `host` outlives this object.
  PreferencesDelegate(AppDelegate& host, std::function<void()> shown);

  void applicationWillFinishLaunching() override;
  void applicationDidFinishLaunching() override {}
  /// Files are the host's.
  void applicationOpen(const std::string& /*fileName*/) override {}
  bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
  bool applicationShouldTerminateAfterLastWindowClosed() override { return true; }
  void applicationWillTerminate() override {}

 private:
  AppDelegate& host_;
  std::function<void()> shown_;
};

}  // namespace tavrin
