#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "app/AppDelegate.h"
#include "settings/SettingsKeys.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {

/// The host on a system in memory.
class HostFixture : public testing::Test {
 protected:
  /// Makes the host and goes through its launch, up to but without its delayed step.
  AppDelegate& launch() {
    host_ = std::make_unique<AppDelegate>(system_.platform, defaults_,
                                          [this](UserDefaults&, SettingsController& settings) {
                                            settings.viewDidLoad();
                                            return std::make_unique<FakePreferencesWindow>(window_);
                                          });
    host_->applicationWillFinishLaunching();
    host_->applicationDidFinishLaunching();
    return *host_;
  }

  AppDelegate& host() { return host_ ? *host_ : launch(); }

  /// Hands a request to the host as a file and lets it be handled.
  void serve(PropertyList::Dictionary request) {
    system_.propertyLists.files.insert_or_assign("/request", std::move(request));
    host().applicationOpen("/request");
    system_.mainLoop.runPending();
  }

  /// The user has granted a folder on an earlier day.
  void grant(const std::string& path) {
    system_.panels.answerWithPath(path);
    AppSandboxFileAccess access(system_.platform, *standard_, "");
    ASSERT_TRUE(access.accessFilePath(path, PersistPermission::Yes, [] {}));
    system_.panels.shown.clear();
  }

  FakePlatform system_;
  DefaultSettings defaults_;
  FakePreferencesWindow::Record window_;
  std::unique_ptr<UserDefaults> standard_ = system_.userDefaults.standardUserDefaults();
  std::unique_ptr<AppDelegate> host_;
};

}  // namespace tavrin
