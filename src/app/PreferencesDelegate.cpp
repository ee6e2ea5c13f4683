#include "app/PreferencesDelegate.h"

#include <utility>

namespace tavrin {

PreferencesDelegate::PreferencesDelegate(AppDelegate& host, std::function<void()> shown)
    : host_(host), shown_(std::move(shown)) {}

void PreferencesDelegate::applicationWillFinishLaunching() {
  host_.followAppearance();
}

bool PreferencesDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
  host_.openPreferences();
  shown_();
  return true;
}

}  // namespace tavrin
