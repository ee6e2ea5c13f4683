#pragma once

#include <gio/gio.h>

#include <functional>
#include <string>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// Tells when the files of a settings domain change, by the system's own notices, in the
/// thread-default main context, a moment later and once for many changes.
class SettingsWatch {
 public:
  explicit SettingsWatch(std::function<void()> changed) : changed_(std::move(changed)) {}
  SettingsWatch(const SettingsWatch&) = delete;
  SettingsWatch& operator=(const SettingsWatch&) = delete;
  ~SettingsWatch();

  /// Begins to watch a folder, unless it is watched already or not there.
  void watch(const std::string& folder);

  /// Has `changed` called a moment later, as after a change.
  void tellSoon();

 private:
  static void fileChanged(GFileMonitor* monitor, GFile* file, GFile* other, GFileMonitorEvent event,
                          gpointer watch);
  static gboolean momentIsOver(gpointer watch);

  std::function<void()> changed_;
  GObjectPointer<GFileMonitor> monitor_;
  GSource* moment_ = nullptr;
};

}  // namespace tavrin
