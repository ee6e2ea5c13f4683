#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "settings/SettingsController.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {

/// Both stores and the controller between them.
class SettingsFixture : public testing::Test, protected FakePlatform {
 protected:
  SettingsController& makeController() {
    controller.reset();
    lists = std::make_unique<WorkingLists>(*standard);
    controller = std::make_unique<SettingsController>(platform, *standard, *lists, defaults);
    return *controller;
  }

  /// What the menu reads under a key; the text "(absent)" when there is nothing.
  PropertyList published(const std::string& key) const {
    return suite->objectForKey(key).value_or(PropertyList("(absent)"));
  }

  PropertyList stored(const std::string& key) const {
    return standard->objectForKey(key).value_or(PropertyList("(absent)"));
  }

  DefaultSettings defaults;
  std::unique_ptr<UserDefaults> standard = userDefaults.standardUserDefaults();
  std::unique_ptr<UserDefaults> suite = userDefaults.suite(bundle.group);
  std::unique_ptr<WorkingLists> lists;
  std::unique_ptr<SettingsController> controller;
};

}  // namespace tavrin
