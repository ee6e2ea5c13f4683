#pragma once

#include <memory>

#include "platform/linux/WorkDisplay.h"

typedef struct _GDBusConnection GDBusConnection;  // NOLINT(bugprone-reserved-identifier)

namespace tavrin {

/// The desktop's own list of running jobs, where it has one: KDE's, by its interfaces
/// org.kde.JobViewServerV2 with org.kde.JobViewV3, or the older org.kde.JobViewServer with
/// org.kde.JobViewV2. Nothing is started for it.
class JobView final : public WorkDisplay {
 public:
  /// `connection`, to the session bus, is null when there is none, and outlives this object.
  explicit JobView(GDBusConnection* connection) : connection_(connection) {}

  void show(const ShownWork& work, const std::function<void()>& cancel) override;
  void end(WorkEnd end) override;

 private:
  class View;

  GDBusConnection* connection_;
  /// Of the command that is shown. A request for a view that is not answered yet shares it.
  std::shared_ptr<View> view_;
};

}  // namespace tavrin
