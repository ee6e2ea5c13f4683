#pragma once

#include "platform/linux/WorkDisplay.h"

typedef struct _GDBusConnection GDBusConnection;  // NOLINT(bugprone-reserved-identifier)

namespace tavrin {

/// The progress bar on the program's launcher in docks and task bars that listen to the signal
/// "Update" of com.canonical.Unity.LauncherEntry (Unity Launcher API). It is there while a share is
/// known.
class LauncherProgress final : public WorkDisplay {
 public:
  /// `connection`, to the session bus, is null when there is none, and outlives this object.
  explicit LauncherProgress(GDBusConnection* connection) : connection_(connection) {}

  void show(const ShownWork& work, const std::function<void()>& cancel) override;
  void end(WorkEnd end) override;

 private:
  void update(std::optional<double> share);

  GDBusConnection* connection_;
  bool isShown_ = false;
};

}  // namespace tavrin
